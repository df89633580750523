#include <magick/api.h>

#include "Peer.h"
#include "host/Value.h"

namespace bench {
namespace {

using Picture = std::shared_ptr<Image>;

// Receives the errors of every function.
class Report {
 public:
  Report() { GetExceptionInfo(&info_); }
  ~Report() { DestroyExceptionInfo(&info_); }
  Report(const Report&) = delete;
  Report& operator=(const Report&) = delete;
  ExceptionInfo* operator&() { return &info_; }

 private:
  ExceptionInfo info_;
};

Picture Wrap(const PeerPicture& p) {
  Report report;
  const auto width = static_cast<unsigned long>(p.width), height = static_cast<unsigned long>(p.height);
  Picture image(ConstituteImage(width, height, "BGRA", CharPixel, p.words, &report), DestroyImage);
  Require(image != nullptr, "ConstituteImage");
  return image;
}

// A function that makes a picture from another one, with its arguments.
template <class Make, class... Arguments>
std::function<void()> Making(const char* name, const Picture& image, const Make& make, const Arguments&... arguments) {
  return [=] {
    Report report;
    Image* const result = make(image.get(), arguments..., &report);
    Require(result != nullptr, name);
    DestroyImage(result);
  };
}

// The work keeps a copy of the rectangle.
template <Image* function(const Image*, const RectangleInfo*, ExceptionInfo*)>
Image* ByRectangle(const Image* from, const RectangleInfo& rectangle, ExceptionInfo* info) {
  return function(from, &rectangle, info);
}

std::function<void()> Rotate(const Picture& image, double degrees) {
  return Making("RotateImage", image, RotateImage, degrees);
}

std::function<void()> Shear(const Picture& image, double x, double y) {
  return Making("ShearImage", image, ShearImage, x, y);
}

std::function<void()> Scale(const Picture& image, double factor) {
  const auto width = static_cast<unsigned long>(static_cast<double>(image->columns) * factor);
  const auto height = static_cast<unsigned long>(static_cast<double>(image->rows) * factor);
  return Making("ScaleImage", image, ScaleImage, width, height);
}

std::function<void()> AddColour(const Picture& image) {
  return [=] {
    Report report;
    const std::pair<ChannelType, double> channels[] = {{RedChannel, 20}, {GreenChannel, -10}, {BlueChannel, 5}};
    for (const auto& [channel, delta] : channels) {
      const QuantumOperator add = delta < 0 ? SubtractQuantumOp : AddQuantumOp;
      Require(QuantumOperatorImage(image.get(), channel, add, std::abs(delta) * 257, &report) == MagickPass,
              "QuantumOperatorImage");
    }
  };
}

std::vector<PeerWork> Prepare(const PeerPicture& s) {
  const Picture p = Wrap(s), changed = Wrap(s);
  const unsigned long w = p->columns, h = p->rows;
  const RectangleInfo inside = {w * 3 / 4, h * 3 / 4, static_cast<long>(w / 8), static_cast<long>(h / 8)};
  const RectangleInfo border = {w / 20, h / 20, 0, 0};
  const char* const exact = "the same pixels, of 16-bit channels";
  const char* const shear = "also a shear; 16-bit channels in floating point";
  const double slope = 16.69924423;  // the angle whose tangent is 0.3
  return {
      {"flip horizontal", exact, Making("FlopImage", p, FlopImage)},
      {"flip vertical", exact, Making("FlipImage", p, FlipImage)},
      {"half turn", exact, Rotate(p, 180)},
      {"turn 90", exact, Rotate(p, 90)},
      {"turn 270", exact, Rotate(p, 270)},
      {"trim inside", exact, Making("CropImage", p, ByRectangle<CropImage>, inside)},
      {"trim border", exact, Making("BorderImage", p, ByRectangle<BorderImage>, border)},
      {"shear horizontal 0.3", shear, Shear(p, slope, 0)},
      {"shear vertical 0.3", shear, Shear(p, 0, slope)},
      {"rotate 30", "also three shears; 16-bit channels in floating point", Rotate(p, 30)},
      {"rotate 75", "also a turn and three shears; 16-bit channels in floating point", Rotate(p, 75)},
      {"stretch 1/2", "also by area; 16-bit channels in floating point", Scale(p, 0.5)},
      {"stretch 1/3.7", "also by area; 16-bit channels in floating point", Scale(p, 10 / 37.0)},
      {"stretch 0.9", "also by area; 16-bit channels in floating point", Scale(p, 0.9)},
      {"stretch 1.5", "also by area; 16-bit channels in floating point", Scale(p, 1.5)},
      {"stretch 3", "also by area; 16-bit channels in floating point", Scale(p, 3)},
      {"HSV in place", "hue, saturation and lightness; floating point",
       [=] { Require(ModulateImage(changed.get(), "100,100,117") == MagickPass, "ModulateImage"); }},
      {"RGB in place", "three passes over 16-bit channels", AddColour(changed)},
      {"average RGB", "with smallest, largest and deviation; 16-bit channels",
       [=] {
         Report report;
         ImageStatistics statistics;
         Require(GetImageStatistics(p.get(), &statistics, &report) == MagickPass, "GetImageStatistics");
       }},
      {"gradient", "16-bit channels; other rounding",
       [=] {
         const PixelPacket first = {0xD0 * 257, 0x70 * 257, 0x30 * 257, 0};
         const PixelPacket last = {0xFF * 257, 0xF8 * 257, 0xF0 * 257, 0};
         Require(GradientImage(changed.get(), &first, &last) == MagickPass, "GradientImage");
       }},
  };
}

}  // namespace

Peer GraphicsMagick() {
  InitializeMagick(nullptr);
  SetMagickResourceLimit(ThreadsResource, 1);
  unsigned long number = 0;
  const std::string text = GetMagickVersion(&number);  // "GraphicsMagick 1.3.40 2023-01-14 Q16 ..."
  const std::size_t start = text.find(' ') + 1;
  return {"GraphicsMagick", text.substr(start, text.find(' ', start) - start), false, Prepare};
}

}  // namespace bench
