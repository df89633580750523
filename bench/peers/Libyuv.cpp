#include <libyuv.h>

#include "Peer.h"

namespace bench {
namespace {

using libyuv::FilterMode;
using libyuv::RotationMode;

std::function<void()> Rotate(const PeerPicture& from, RotationMode mode) {
  const bool quarter = mode != libyuv::kRotate180;
  const Canvas to(quarter ? from.height : from.width, quarter ? from.width : from.height);
  return [=] {
    const PeerPicture& p = to.Picture();
    Require(libyuv::ARGBRotate(from.Bytes(), from.Stride(), p.Bytes(), p.Stride(), from.width, from.height, mode) == 0,
            "ARGBRotate");
  };
}

std::function<void()> Scale(const PeerPicture& from, double factor, FilterMode mode) {
  const Canvas to(static_cast<int>(from.width * factor), static_cast<int>(from.height * factor));
  return [=] {
    const PeerPicture& p = to.Picture();
    Require(libyuv::ARGBScale(from.Bytes(), from.Stride(), from.width, from.height, p.Bytes(), p.Stride(), p.width,
                              p.height, mode) == 0,
            "ARGBScale");
  };
}

std::function<void()> Copy(const PeerPicture& from, int x, int y, int width, int height) {
  const Canvas to(width, std::abs(height));
  return [=] {
    const PeerPicture& p = to.Picture();
    Require(libyuv::ARGBCopy(from.At(x, y), from.Stride(), p.Bytes(), p.Stride(), width, height) == 0, "ARGBCopy");
  };
}

std::function<void()> Mirror(const PeerPicture& from) {
  const Canvas to(from.width, from.height);
  return [=] {
    const PeerPicture& p = to.Picture();
    Require(libyuv::ARGBMirror(from.Bytes(), from.Stride(), p.Bytes(), p.Stride(), from.width, from.height) == 0,
            "ARGBMirror");
  };
}

std::function<void()> Border(const PeerPicture& from) {
  const int x = from.width / 20, y = from.height / 20;
  const Canvas to(from.width + 2 * x, from.height + 2 * y);
  return [=] {
    const PeerPicture& p = to.Picture();
    const auto fill = [&](int left, int top, int width, int height) {
      Require(libyuv::ARGBRect(p.Bytes(), p.Stride(), left, top, width, height, 0) == 0, "ARGBRect");
    };
    fill(0, 0, p.width, y);
    fill(0, y + from.height, p.width, y);
    fill(0, y, x, from.height);
    fill(x + from.width, y, x, from.height);
    libyuv::ARGBCopy(from.Bytes(), from.Stride(), p.At(x, y), p.Stride(), from.width, from.height);
  };
}

// Row by row: displaced by whole pixels, and blended with the neighbour for the fraction.
std::function<void()> ShearHorizontal(const PeerPicture& from) {
  const Canvas to(from.width + from.height * 3 / 10 + 2, from.height);
  return [=] {
    const PeerPicture& p = to.Picture();
    for (int y = 0; y < from.height; ++y) {
      const int position = (from.height - 1 - y) * 256 * 3 / 10, x = position >> 8, fraction = position & 255;
      libyuv::ARGBRect(p.Bytes(), p.Stride(), 0, y, x + 1, 1, 0);
      libyuv::ARGBInterpolate(from.At(1, y), from.Stride(), from.At(0, y), from.Stride(), p.At(x + 1, y), p.Stride(),
                              from.width - 1, 1, fraction);
      const int end = x + from.width;
      libyuv::ARGBRect(p.Bytes(), p.Stride(), end, y, p.width - end, 1, 0);
    }
  };
}

// One pass adds to the channels that grow, another subtracts from those that shrink.
std::function<void()> AddColour(const PeerPicture& from) {
  const Canvas to(from.width, from.height), more(from.width, 1), less(from.width, 1);
  for (int x = 0; x < from.width; ++x) {
    more.Picture().words[x] = 0x00140005;
    less.Picture().words[x] = 0x00000A00;
  }
  return [=] {
    const PeerPicture& p = to.Picture();
    Require(libyuv::ARGBAdd(from.Bytes(), from.Stride(), more.Picture().Bytes(), 0, p.Bytes(), p.Stride(), p.width,
                            p.height) == 0,
            "ARGBAdd");
    Require(libyuv::ARGBSubtract(p.Bytes(), p.Stride(), less.Picture().Bytes(), 0, p.Bytes(), p.Stride(), p.width,
                                 p.height) == 0,
            "ARGBSubtract");
  };
}

std::function<void()> Gradient(const PeerPicture& like) {
  const Canvas to(like.width, like.height);
  return [=] {
    const PeerPicture& p = to.Picture();
    for (int y = 0; y < p.height; ++y) {
      const auto channel = [&](int first, int last) {
        return static_cast<std::uint32_t>(first + (last - first) * y / p.height);
      };
      const std::uint32_t colour =
          0xFF000000 | channel(0x30, 0xF0) << 16 | channel(0x70, 0xF8) << 8 | channel(0xD0, 0xFF);
      libyuv::ARGBRect(p.Bytes(), p.Stride(), 0, y, p.width, 1, colour);
    }
  };
}

std::vector<PeerWork> Prepare(const PeerPicture& s) {
  const char* const exact = "the same pixels; translucent ones are moved, not converted";
  return {
      {"flip horizontal", exact, Mirror(s)},
      {"flip vertical", exact, Copy(s, 0, 0, s.width, -s.height)},
      {"half turn", exact, Rotate(s, libyuv::kRotate180)},
      {"turn 90", exact, Rotate(s, libyuv::kRotate90)},
      {"turn 270", exact, Rotate(s, libyuv::kRotate270)},
      {"trim whole", exact, Copy(s, 0, 0, s.width, s.height)},
      {"trim inside", exact, Copy(s, s.width / 8, s.height / 8, s.width * 3 / 4, s.height * 3 / 4)},
      {"trim border", exact, Border(s)},
      {"shear horizontal 0.3", "8-bit weights; hard edges; premultiplied", ShearHorizontal(s)},
      {"stretch 1/2", "means of 2 x 2, rounded once; premultiplied", Scale(s, 0.5, libyuv::kFilterBox)},
      {"stretch 1/3.7", "of the 3.7 x 3.7 pixels only 2 x 2 count; 7-bit weights",
       Scale(s, 10 / 37.0, libyuv::kFilterBox)},
      {"stretch 0.9", "bilinear, 7-bit weights; premultiplied", Scale(s, 0.9, libyuv::kFilterBilinear)},
      {"stretch 1.5", "bilinear instead of box, 7-bit weights; premultiplied", Scale(s, 1.5, libyuv::kFilterBilinear)},
      {"stretch 3", "bilinear instead of box, 7-bit weights; premultiplied", Scale(s, 3, libyuv::kFilterBilinear)},
      {"RGB", "a saturating addition, then a subtraction; on premultiplied colours", AddColour(s)},
      {"gradient", "a filled rectangle for each row; other rounding", Gradient(s)},
  };
}

}  // namespace

Peer Libyuv() {
  return {"libyuv", std::to_string(LIBYUV_VERSION), true, Prepare};
}

}  // namespace bench
