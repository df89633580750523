#include "LazyPicture.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <tuple>

#include "support/Model.h"
#include "support/ReferenceFunctions.h"

namespace lazy {
namespace {

constexpr auto kForm = model::Form::BitmapContext;

std::uint32_t Channel(std::uint32_t pixel, int shift) {
  return pixel >> shift & 0xFF;
}

template <class Mix>
std::uint32_t MapChannels(Mix mix) {
  std::uint32_t pixel = 0;
  for (int shift = 0; shift < 32; shift += 8) pixel |= (mix(shift) & 0xFF) << shift;
  return pixel;
}

std::uint32_t Converted(std::uint32_t word) {
  return model::WritePixel(kForm, model::ReadPixel(kForm, word));
}

Picture Transposed(const Picture& source) {
  return {source.height, source.width, [source](std::int64_t x, std::int64_t y) { return source.word(y, x); }};
}

// Rounded towards minus infinity.
std::int64_t FloorDivided(std::int64_t a, std::int64_t b) {
  return a / b - (a % b < 0 ? 1 : 0);
}

// How `source` units of a line cover `destination` ones.
struct Coverage {
  Coverage(std::int64_t source, std::int64_t destination)
      : perSource(destination * 32768 / source), perDestination(perSource * source / destination) {}

  // The mean of what read(0), read(1), ... give, in destination pixel i.
  template <class Read>
  std::uint32_t Mean(std::int64_t i, Read read) const {
    const std::int64_t begin = i * perDestination, end = begin + perDestination;
    std::uint64_t sums[4] = {};
    for (std::int64_t j = begin / perSource; j * perSource < end; ++j) {
      const std::int64_t units = std::min(end, (j + 1) * perSource) - std::max(begin, j * perSource);
      const std::uint32_t pixel = read(j);
      for (int k = 0; k < 4; ++k)
        sums[k] += static_cast<std::uint64_t>(Channel(pixel, 8 * k)) * static_cast<std::uint64_t>(units);
    }
    return MapChannels([&](int shift) {
      return static_cast<std::uint32_t>(sums[shift / 8] / static_cast<std::uint64_t>(perDestination));
    });
  }

  std::int64_t perSource;
  std::int64_t perDestination;
};

Picture StretchedHorizontally(const Picture& source, int width) {
  const Coverage coverage(source.width, width);
  return {width, source.height, [source, coverage](std::int64_t x, std::int64_t y) {
            const auto read = [&](std::int64_t j) { return model::ReadPixel(kForm, source.word(j, y)); };
            return model::WritePixel(kForm, coverage.Mean(x, read));
          }};
}

}  // namespace

Picture FlipRotated(const Picture& source, bool flipH, bool flipV, int quarter) {
  const std::int64_t W = source.width, H = source.height;
  const bool swapped = quarter % 2 == 1;
  return {swapped ? source.height : source.width, swapped ? source.width : source.height,
          [=](std::int64_t x, std::int64_t y) {
            // Where the pixel was before it was turned, then before it was mirrored.
            if (quarter == 1) std::tie(x, y) = std::pair(y, H - 1 - x);
            if (quarter == 2) std::tie(x, y) = std::pair(W - 1 - x, H - 1 - y);
            if (quarter == 3) std::tie(x, y) = std::pair(W - 1 - y, x);
            return Converted(source.word(flipH ? W - 1 - x : x, flipV ? H - 1 - y : y));
          }};
}

Picture ShearedHorizontally(const Picture& source, int width, int height, double shear, std::uint32_t frameColour) {
  const std::int64_t W = source.width, H = source.height;
  const auto natural =
      static_cast<std::int64_t>(std::floor(static_cast<double>(W) + static_cast<double>(H) * std::fabs(shear)));
  const auto step = static_cast<std::int64_t>(std::floor(shear * 65536.0));
  const std::int64_t margin = height > H ? (height - H) / 2 : 0;
  const std::int64_t cropped = height < H ? (H - height) / 2 : 0;
  const std::int64_t start = (width - natural) / 2 * 65536 + (step > 0 ? H * step : 0);
  const std::uint32_t frame = frameColour ^ 0xFF000000;
  return {
      width, height, [=](std::int64_t x, std::int64_t y) {
        const std::int64_t r = cropped + y - margin;
        const std::int64_t offset = start - step * r;
        const std::int64_t whole = FloorDivided(offset, 65536);
        const std::int64_t i = x - whole;
        const auto f = static_cast<std::uint32_t>(offset - whole * 65536);
        if (r < 0 || r >= H || i < 0 || i > W || (i == W && f == 0)) return model::WritePixel(kForm, frame);
        const auto read = [&](std::int64_t j) { return model::ReadPixel(kForm, source.word(j, r)); };
        const auto beside = [&](std::uint32_t image) { return frame >> 24 == 255 ? image | 0xFF000000 : frame; };
        const std::uint32_t pixel = read(std::min(i, W - 1));
        if (i == W) {  // the last one's share in the edge
          return model::WritePixel(kForm, MapChannels([&](int shift) {
                                     return (Channel(pixel, shift) * f + Channel(beside(pixel), shift) * (65535 - f)) >>
                                            16;
                                   }));
        }
        const std::uint32_t before = i > 0 ? read(i - 1) : beside(pixel);
        return model::WritePixel(kForm, MapChannels([&](int shift) {
                                   return (Channel(before, shift) * f + Channel(pixel, shift) * (65535 - f)) / 65535;
                                 }));
      }};
}

Picture ShearedVertically(const Picture& source, int width, int height, double shear, std::uint32_t frameColour) {
  return Transposed(ShearedHorizontally(Transposed(source), height, width, shear, frameColour));
}

Picture Rotated(const Picture& source, double degrees, int width, int height) {
  constexpr std::uint32_t kClear = 0xFF000000;
  const double theta = degrees * 3.14159 / 180.0;
  const double tangent = reference::Tangent(theta * -0.5);
  const double sine = reference::Sine(-theta);
  const auto length = [](int size, int lines, double step) {
    return static_cast<int>((std::int64_t{size} * 65536 + 65535 + std::abs(static_cast<std::int64_t>(step)) * lines) /
                            65536);
  };
  const int w = length(source.width, source.height, tangent * 65536);
  const int h = length(source.height, w, sine * 65536);
  const Picture turned = FlipRotated(source, false, false, 0);
  const Picture once = ShearedHorizontally(turned, w, source.height, -tangent, kClear);
  return ShearedHorizontally(ShearedVertically(once, w, h, sine, kClear), width, height, -tangent, kClear);
}

Picture Stretched(const Picture& source, int width, int height) {
  return Transposed(StretchedHorizontally(Transposed(StretchedHorizontally(source, width)), height));
}

Picture Trimmed(const Picture& source, int left, int top, int width, int height) {
  return {width, height, [=](std::int64_t x, std::int64_t y) {
            const std::int64_t sx = x + left, sy = y + top;
            const bool inside = sx >= 0 && sx < source.width && sy >= 0 && sy < source.height;
            return inside ? Converted(source.word(sx, sy)) : 0;
          }};
}

}  // namespace lazy
