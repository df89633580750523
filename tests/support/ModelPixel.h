// One pixel in the reference model: the storage forms, and the operations on its channels. The
// tests of the kernels compare with these functions, too.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "host/Storage.h"

namespace model {

using host::Storage;

/// Working pixels: 0xAARRGGBB, straight alpha, 255 opaque.
std::uint32_t ReadPixel(Storage form, std::uint32_t word);
std::uint32_t WritePixel(Storage form, std::uint32_t pixel);

constexpr std::uint32_t Alpha(std::uint32_t pixel) {
  return pixel >> 24;
}
constexpr std::uint32_t Red(std::uint32_t pixel) {
  return pixel >> 16 & 0xFF;
}
constexpr std::uint32_t Green(std::uint32_t pixel) {
  return pixel >> 8 & 0xFF;
}
constexpr std::uint32_t Blue(std::uint32_t pixel) {
  return pixel & 0xFF;
}
constexpr std::uint32_t Pack(std::uint32_t alpha, std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
  return alpha << 24 | red << 16 | green << 8 | blue;
}

/// Weighted sums of each channel. The weights add up to at most 65536, so a sum is below 2^24.
class WeightedSum {
 public:
  void Add(std::uint32_t pixel, std::uint32_t weight) {
    for (std::size_t i = 0; i < 4; ++i) sums_[i] += (pixel >> 8 * i & 0xFF) * weight;
  }
  /// Divides and truncates. The divisor is at least the sum of the weights.
  std::uint32_t DividedBy(std::uint32_t divisor) const {
    return Pack(sums_[3] / divisor, sums_[2] / divisor, sums_[1] / divisor, sums_[0] / divisor);
  }

 private:
  std::array<std::uint32_t, 4> sums_ = {};
};

inline std::uint32_t Mix(std::uint32_t a, std::uint32_t weightA, std::uint32_t b, std::uint32_t weightB,
                         std::uint32_t divisor) {
  WeightedSum sum;
  sum.Add(a, weightA);
  sum.Add(b, weightB);
  return sum.DividedBy(divisor);
}

/// A pixel of a sheared line. The pixel before it has a share of `fraction` / 65535.
inline std::uint32_t Blend(std::uint32_t pixel, std::uint32_t before, std::uint32_t fraction) {
  return Mix(pixel, 65535 - fraction, before, fraction, 65535);
}

/// Hue in 1/1024 of a sixth of the circle (-1: none), saturation 0 to 1024, value and alpha 0 to
/// 255.
struct Hsv {
  std::int32_t hue, saturation, value, alpha;
};

Hsv HsvFromPixel(std::uint32_t pixel);
std::uint32_t PixelFromHsv(const Hsv& hsv);

/// Turns the hue by less than a circle, and scales saturation and value. Scales are in 1/1024 and
/// not negative.
std::uint32_t AdjustHsv(std::uint32_t pixel, std::int32_t hueShift, std::int32_t saturationScale,
                        std::int32_t valueScale);
/// Adds to each colour channel and clamps to 0 to 255.
std::uint32_t AdjustRgb(std::uint32_t pixel, int red, int green, int blue);

/// The sum in 32 bits, which wraps.
std::int32_t WrappingSum(std::int32_t a, std::int32_t b);
/// The integer part. NaN, and what does not fit, gives the most negative integer.
std::int32_t IntegerPart(double value);

}  // namespace model
