// What the kernels do to one pixel, on top of the reference model: channel by channel in
// 64-bit signed arithmetic, without a thought of speed.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "support/Model.h"

namespace plain {

/// Alpha, red, green, blue of a working pixel.
using Channels = std::array<std::int64_t, 4>;

inline Channels Split(std::uint32_t pixel) {
  return {pixel / 0x1000000, pixel / 0x10000 % 256, pixel / 0x100 % 256, pixel % 256};
}

inline std::uint32_t Join(const Channels& k) {
  return static_cast<std::uint32_t>(k[0] * 0x1000000 + k[1] * 0x10000 + k[2] * 0x100 + k[3]);
}

/// The scales are 1024 times a whole number.
inline std::uint32_t AdjustHSV(std::uint32_t pixel, std::int64_t shift, std::int64_t saturationScale,
                               std::int64_t valueScale) {
  model::Hsv hsv = model::HsvFromPixel(pixel);
  std::int64_t hue = hsv.hue + shift;
  if (hue < 0) hue += 6144;
  if (hue > 6143) hue -= 6144;
  hsv.hue = static_cast<std::int32_t>(hue);
  hsv.saturation = static_cast<std::int32_t>(std::min<std::int64_t>(hsv.saturation * saturationScale / 1024, 1023));
  hsv.value = static_cast<std::int32_t>(std::min<std::int64_t>(hsv.value * valueScale / 1024, 255));
  return model::PixelFromHsv(hsv);
}

inline std::uint32_t AdjustRGB(std::uint32_t pixel, std::int64_t red, std::int64_t green, std::int64_t blue) {
  const Channels k = Split(pixel);
  const auto clamped = [](std::int64_t channel) { return std::clamp<std::int64_t>(channel, 0, 255); };
  return Join({k[0], clamped(k[1] + red), clamped(k[2] + green), clamped(k[3] + blue)});
}

inline std::uint32_t Blend(std::uint32_t pixel, std::uint32_t before, std::int64_t fraction) {
  const Channels b = Split(pixel), a = Split(before);
  const auto mixed = [&](std::size_t c) { return (b[c] * (65535 - fraction) + a[c] * fraction) / 65535; };
  return Join({mixed(0), mixed(1), mixed(2), mixed(3)});
}

inline std::uint32_t Mix(std::uint32_t first, std::uint32_t second, std::int64_t ofSecond, std::int64_t units) {
  const Channels a = Split(first), b = Split(second);
  const auto mixed = [&](std::size_t c) { return (a[c] * (units - ofSecond) + b[c] * ofSecond) / units; };
  return Join({mixed(0), mixed(1), mixed(2), mixed(3)});
}

}  // namespace plain
