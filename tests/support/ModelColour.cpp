// Adjustments and averages of the colours in a selection, and gradients.

#include <algorithm>
#include <cmath>

#include "ModelPicture.h"

namespace model {

Selection::Selection(const Rectangle& r, int width, int height) {
  const auto clamp = [](int value, int size) { return std::min(std::max(value, 0), size - 1); };
  x0 = clamp(r.left, width);
  x1 = clamp(WrappingSum(r.left, r.width), width);
  y0 = clamp(r.top, height);
  y1 = clamp(WrappingSum(r.top, r.height), height);
}

Picture Adjusted(const Picture& source, const Rectangle& rectangle, const HsvChange& change) {
  const Selection selection(rectangle, source.width, source.height);
  const auto scale = [](double factor) {  // 0 for NaN
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(IntegerPart(factor)) * 1024);
  };
  const std::int32_t hueShift = IntegerPart(std::floor(change.hueDegrees * 1024.0 / 60.0));
  const std::int32_t saturation = scale(change.saturationFactor), value = scale(change.brightnessFactor);
  const bool negative = change.negative != 0;
  return {source.width, source.height, [=](auto x, auto y, auto) {
            std::uint32_t pixel = source.At(x, y);
            if (selection.Contains(x, y)) pixel = AdjustHsv(pixel, hueShift, saturation, value);
            return negative ? ~pixel & 0xFFFFFF : pixel;  // a negative is always clear
          }};
}

Picture Adjusted(const Picture& source, const Rectangle& rectangle, const RgbChange& change) {
  const Selection selection(rectangle, source.width, source.height);
  return {source.width, source.height, [=](auto x, auto y, auto) {
            const std::uint32_t pixel = source.At(x, y);
            return selection.Contains(x, y) ? AdjustRgb(pixel, change.red, change.green, change.blue) : pixel;
          }};
}

void Sums::Add(std::uint32_t pixel) {
  red = WrappingSum(red, static_cast<int>(Red(pixel)));
  green = WrappingSum(green, static_cast<int>(Green(pixel)));
  blue = WrappingSum(blue, static_cast<int>(Blue(pixel)));
  count = WrappingSum(count, 1);
  const double M = std::max({Red(pixel), Green(pixel), Blue(pixel)});
  const double m = std::min({Red(pixel), Green(pixel), Blue(pixel)});
  brightness += M * 0.00390625;
  saturation += M == 0 ? 0 : (M - m) / M;
}

std::array<double, 3> Sums::MeanHsv() const {
  const auto [r, g, b] = MeanRgb();
  const int M = std::max({r, g, b});
  const double d = M - std::min({r, g, b});
  double hue = (r - g) / d + 4.0;
  if (r == M) {
    hue = (g - b) / d;
  } else if (g == M) {
    hue = (b - r) / d + 2.0;
  }
  hue *= 60.0;
  if (hue < 0) hue += 360.0;
  return {M == 0 ? -1.0 : hue, saturation / count, brightness / count};
}

namespace {

// One channel of colour P with weight tP plus colour N with weight tN. Both products are truncated.
std::uint32_t BlendChannel(std::uint32_t P, double tP, std::uint32_t N, double tN) {
  return static_cast<std::uint32_t>(std::clamp(IntegerPart(IntegerPart(N * tN) + P * tP), 0, 255));
}

std::uint32_t BlendColours(std::uint32_t P, double tP, std::uint32_t N, double tN) {
  return Pack(BlendChannel(255 - Alpha(P), tP, 255 - Alpha(N), tN), BlendChannel(Red(P), tP, Red(N), tN),
              BlendChannel(Green(P), tP, Green(N), tN), BlendChannel(Blue(P), tP, Blue(N), tN));
}

// The colour of row y: P in row `first`, N in row `last`, a mixture between. A single row divides 0
// by 0.
std::uint32_t RowColour(std::int64_t y, double first, double last, std::uint32_t P, std::uint32_t N) {
  const double d = last - first, row = static_cast<double>(y);
  return BlendColours(P, (last - row) / d, N, (row - first) / d);
}

}  // namespace

Picture Gradient(int width, int height, const std::vector<std::uint32_t>& colours) {
  const int half = colours.size() == 3 ? height / 2 : 0;
  const std::uint32_t first = colours[0], middle = colours[colours.size() - 2], last = colours.back();
  return {width, height, [=](auto, auto y, auto) {
            return y < half ? RowColour(y, 0, half - 1, first, middle) : RowColour(y, half, height - 1, middle, last);
          }};
}

}  // namespace model
