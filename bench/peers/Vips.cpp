#include <vips/vips.h>

#include <cmath>

#include "Peer.h"

namespace bench {
namespace {

using Image = std::shared_ptr<VipsImage>;
using Step = std::function<int(VipsImage* from, VipsImage** to)>;

void Drop(VipsImage* image) {
  g_object_unref(image);
}

Image Wrap(const PeerPicture& p) {
  const std::size_t size = 4 * static_cast<std::size_t>(p.width) * static_cast<std::size_t>(p.height);
  const Image memory(vips_image_new_from_memory(p.words, size, p.width, p.height, 4, VIPS_FORMAT_UCHAR), Drop);
  VipsImage* image = nullptr;
  Require(vips_copy(memory.get(), &image, "interpretation", VIPS_INTERPRETATION_sRGB, nullptr) == 0, "vips_copy");
  return {image, Drop};
}

Image Apply(const Image& from, const Step& step) {
  VipsImage* to = nullptr;
  Require(step(from.get(), &to) == 0, "a vips operation");
  return {to, Drop};
}

// Builds the pipeline, as every call of the plug-in does, and runs it into memory.
std::function<void()> Run(const Image& source, const std::vector<Step>& steps) {
  return [=] {
    Image image = source;
    for (const Step& step : steps) image = Apply(image, step);
    std::size_t size = 0;
    void* const pixels = vips_image_write_to_memory(image.get(), &size);
    Require(pixels != nullptr, "vips_image_write_to_memory");
    g_free(pixels);
  };
}

// Builds the pipeline and runs it into the sums of the channels.
std::function<void()> Measure(const Image& source, const std::vector<Step>& steps) {
  return [=] {
    Image image = source;
    for (const Step& step : steps) image = Apply(image, step);
    Apply(image, [](VipsImage* from, VipsImage** to) { return vips_stats(from, to, nullptr); });
  };
}

Step Linear(std::vector<double> factors, std::vector<double> offsets) {
  return [=](VipsImage* from, VipsImage** to) {
    return vips_linear(from, to, factors.data(), offsets.data(), static_cast<int>(factors.size()), "uchar", TRUE,
                       nullptr);
  };
}

// A function of the library with its arguments.
template <class Function, class... Arguments>
Step By(Function apply, Arguments... arguments) {
  return [=](VipsImage* from, VipsImage** to) { return apply(from, to, arguments..., nullptr); };
}

Step Shrink(double factor) {
  return By(vips_shrink, factor, factor);
}

Step Enlarge(double factor) {
  return By(vips_resize, factor, "kernel", VIPS_KERNEL_LINEAR);
}

// HSV bands are treated as red, green, blue and alpha; the order does not change the time.
std::vector<PeerWork> Prepare(const PeerPicture& s) {
  const Image p = Wrap(s);
  const int w = s.width, h = s.height, x = w / 20, y = h / 20;
  const char* const exact = "the same pixels; translucent ones are moved, not converted";
  const char* const warp = "one bilinear warp; premultiplied";
  return {
      {"flip horizontal", exact, Run(p, {By(vips_flip, VIPS_DIRECTION_HORIZONTAL)})},
      {"flip vertical", exact, Run(p, {By(vips_flip, VIPS_DIRECTION_VERTICAL)})},
      {"half turn", exact, Run(p, {By(vips_rot, VIPS_ANGLE_D180)})},
      {"turn 90", exact, Run(p, {By(vips_rot, VIPS_ANGLE_D90)})},
      {"turn 270", exact, Run(p, {By(vips_rot, VIPS_ANGLE_D270)})},
      {"trim whole", exact, Run(p, {By(vips_extract_area, 0, 0, w, h)})},
      {"trim inside", exact, Run(p, {By(vips_extract_area, w / 8, h / 8, w * 3 / 4, h * 3 / 4)})},
      {"trim border", exact, Run(p, {By(vips_embed, x, y, w + 2 * x, h + 2 * y)})},
      {"shear horizontal 0.3", warp, Run(p, {By(vips_affine, 1.0, -0.3, 0.0, 1.0)})},
      {"shear vertical 0.3", warp, Run(p, {By(vips_affine, 1.0, 0.0, -0.3, 1.0)})},
      {"rotate 30", "one bilinear warp instead of three shears; premultiplied", Run(p, {By(vips_rotate, 30.0)})},
      {"rotate 75", "one bilinear warp instead of a turn and three shears; premultiplied",
       Run(p, {By(vips_rotate, 75.0)})},
      {"stretch 1/2", "means of 2 x 2, rounded once in each direction; premultiplied", Run(p, {Shrink(2)})},
      {"stretch 1/3.7", "area: means of 3 x 3, then a linear kernel; premultiplied", Run(p, {Shrink(3.7)})},
      {"stretch 0.9", "a linear kernel; premultiplied", Run(p, {Enlarge(0.9)})},
      {"stretch 1.5", "bilinear instead of box; premultiplied", Run(p, {Enlarge(1.5)})},
      {"stretch 3", "bilinear instead of box; premultiplied", Run(p, {Enlarge(3)})},
      {"HSV", "hue in 256 steps, clamped instead of turned; 8-bit saturation and value; premultiplied",
       Run(p, {By(vips_sRGB2HSV), Linear({1, 1, 1, 1}, {21, 0, 0, 0}), By(vips_HSV2sRGB)})},
      {"RGB", "in floating point; on premultiplied colours", Run(p, {Linear({1, 1, 1, 1}, {5, -10, 20, 0})})},
      {"average RGB", "four channels, with smallest, largest and deviation; of premultiplied colours", Measure(p, {})},
      {"average HSV", "mean of 8-bit hues, saturations and values; premultiplied", Measure(p, {By(vips_sRGB2HSV)})},
  };
}

}  // namespace

Peer Vips() {
  Require(vips_init("bench") == 0, "vips_init");
  vips_concurrency_set(1);
  vips_cache_set_max(0);
  return {"libvips", vips_version_string(), true, Prepare};
}

}  // namespace bench
