#include "ModelPixel.h"

#include <algorithm>
#include <limits>

namespace model {

std::uint32_t ReadPixel(Storage form, std::uint32_t word) {
  if (form == Storage::Buffer) {
    const std::uint32_t transparency = word >> 24;
    const std::uint32_t alpha = transparency == 127 ? 0 : (255 - 2 * transparency) % 256;
    return (alpha << 24) | (word & 0xFFFFFF);
  }
  const std::uint32_t alpha = Alpha(word);
  if (alpha == 0) return 0;
  if (alpha == 255) return word;
  // A colour above alpha gives more than 255 and carries into the next channel. The sum wraps at 32
  // bits.
  return (alpha << 24) + ((Red(word) * 255 / alpha) << 16) + ((Green(word) * 255 / alpha) << 8) +
         Blue(word) * 255 / alpha;
}

std::uint32_t WritePixel(Storage form, std::uint32_t pixel) {
  if (form == Storage::Buffer) return (((pixel >> 1) & 0x7F000000) | (pixel & 0xFFFFFF)) ^ 0x7F000000;
  const std::uint32_t alpha = Alpha(pixel);
  if (alpha == 0) return 0;
  if (alpha == 255) return pixel;
  return Pack(alpha, Red(pixel) * alpha / 255, Green(pixel) * alpha / 255, Blue(pixel) * alpha / 255);
}

Hsv HsvFromPixel(std::uint32_t pixel) {
  const auto R = static_cast<std::int32_t>(Red(pixel));
  const auto G = static_cast<std::int32_t>(Green(pixel));
  const auto B = static_cast<std::int32_t>(Blue(pixel));
  const std::int32_t max = std::max({R, G, B});
  const std::int32_t delta = max - std::min({R, G, B});
  Hsv hsv = {-1, 0, max, static_cast<std::int32_t>(Alpha(pixel))};
  if (max == 0) return hsv;
  hsv.saturation = delta * 1024 / max;
  if (delta == 0) return hsv;
  if (R >= G && R >= B) {
    hsv.hue = (G - B) * 1024 / delta;
  } else if (G > R && G >= B) {
    hsv.hue = 2048 + (B - R) * 1024 / delta;
  } else {
    hsv.hue = 4096 + (R - G) * 1024 / delta;
  }
  if (hsv.hue < 0) hsv.hue += 6144;
  return hsv;
}

std::uint32_t PixelFromHsv(const Hsv& hsv) {
  // Channels are not clamped or masked: a channel below 0 changes those above it.
  const auto pack = [&](std::int32_t red, std::int32_t green, std::int32_t blue) {
    return static_cast<std::uint32_t>(hsv.alpha) << 24 | static_cast<std::uint32_t>(red) << 16 |
           static_cast<std::uint32_t>(green) << 8 | static_cast<std::uint32_t>(blue);
  };
  const std::int32_t value = hsv.value;
  const std::int32_t s = hsv.saturation;
  if (s == 0) return pack(value, value, value);
  const std::int32_t i = hsv.hue / 1024;  // truncated: -1023 to 1023 is sector 0
  if (i < 0 || i > 5) return pack(0, 0, 0);
  const std::int32_t p = (1024 - s) * value / 1024;
  const std::int32_t f = hsv.hue - i * 1024;
  const std::int32_t q = (1048576 - f * s) * value / 1048576;
  const std::int32_t t = (1048576 - (1024 - f) * s) * value / 1048576;
  switch (i) {
    case 0:
      return pack(value, t, p);
    case 1:
      return pack(q, value, p);
    case 2:
      return pack(p, value, t);
    case 3:
      return pack(p, q, value);
    case 4:
      return pack(t, p, value);
    default:
      return pack(value, p, q);
  }
}

std::uint32_t AdjustHsv(std::uint32_t pixel, std::int32_t hueShift, std::int32_t saturationScale,
                        std::int32_t valueScale) {
  Hsv hsv = HsvFromPixel(pixel);
  std::int64_t hue = std::int64_t{hsv.hue} + hueShift;
  if (hue < 0) hue += 6144;
  if (hue > 6143) hue -= 6144;
  hsv.hue = static_cast<std::int32_t>(hue);
  hsv.saturation = std::min(hsv.saturation * saturationScale / 1024, 1023);
  hsv.value = std::min(hsv.value * valueScale / 1024, 255);
  return PixelFromHsv(hsv);
}

std::uint32_t AdjustRgb(std::uint32_t pixel, int red, int green, int blue) {
  const auto shifted = [](std::uint32_t channel, int delta) {
    return static_cast<std::uint32_t>(std::clamp(static_cast<int>(channel) + delta, 0, 255));
  };
  return Pack(Alpha(pixel), shifted(Red(pixel), red), shifted(Green(pixel), green), shifted(Blue(pixel), blue));
}

std::int32_t WrappingSum(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

std::int32_t IntegerPart(double value) {
  if (value > -2147483649.0 && value < 2147483648.0) return static_cast<std::int32_t>(value);
  return std::numeric_limits<std::int32_t>::min();
}

}  // namespace model
