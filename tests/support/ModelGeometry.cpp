// Flips, quarter turns, shears, stretches, trims and rotations.

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <tuple>

#include "ModelPicture.h"
#include "ReferenceFunctions.h"

namespace model {
namespace {

// A picture as a list of rows or of columns.
struct LinesOf {
  LinesOf(const Picture& ofPicture, Lines lines)
      : picture(ofPicture),
        columns(lines == Lines::Columns),
        count(columns ? picture.width : picture.height),
        length(columns ? picture.height : picture.width) {}

  // Pixel i of a line, by a walk along the line that begins at pixel `start`.
  std::uint32_t At(std::int64_t line, std::int64_t i, std::int64_t start) const {
    return columns ? picture.walkTo(line, i, start) : picture.At(i, line);
  }

  Picture picture;
  bool columns;
  std::int64_t count, length;
};

// The picture whose lines have the pixels at(line, i).
template <class At>
Picture FromLines(Lines lines, int width, int height, At at) {
  if (lines == Lines::Columns) {
    return {width, height, [at](auto x, auto y, auto) { return at(x, y); }, Order::LeftRight};
  }
  return {width, height, [at](auto x, auto y, auto) { return at(y, x); }};
}

}  // namespace

Picture Stored(const Picture& picture, Storage form) {
  return {picture.width, picture.height,
          [=](auto x, auto y, auto) { return ReadPixel(form, WritePixel(form, picture.At(x, y))); }};
}

std::pair<int, int> TurnedSize(int width, int height, int quarters) {
  return quarters % 2 == 1 ? std::pair(height, width) : std::pair(width, height);
}

Picture FlipRotated(const Picture& source, bool flipH, bool flipV, int quarter) {
  const std::int64_t W = source.width, H = source.height;
  // The place of a pixel before the turn, and before the flip that precedes the turn.
  const auto origin = [=](std::int64_t x, std::int64_t y) {
    if (quarter == 1) std::tie(x, y) = std::pair(y, H - 1 - x);
    if (quarter == 2) std::tie(x, y) = std::pair(W - 1 - x, H - 1 - y);
    if (quarter == 3) std::tie(x, y) = std::pair(W - 1 - y, x);
    return std::pair(flipH ? W - 1 - x : x, flipV ? H - 1 - y : y);
  };
  const auto [width, height] = TurnedSize(source.width, source.height, quarter);
  const bool bottomUp = flipH == flipV && quarter == (flipH ? 3 : 1);
  return {width, height,
          [=](auto x, auto y, auto) {
            const auto [column, row] = origin(x, y);
            // A row of the result may be a walk along a column of the source.
            return source.walkTo(column, row, quarter % 2 == 1 ? origin(0, y).second : row);
          },
          bottomUp ? Order::BottomUp : Order::TopDown};
}

// Lines move in steps of 1/65536 pixel; the fraction blends each pixel with the one before it.
Picture Sheared(const Picture& source, Lines lines, int width, int height, double shear, std::uint32_t frameColour) {
  if (std::isnan(shear)) shear = 0;
  const LinesOf from(source, lines);
  const std::int64_t W = from.length, H = from.count;
  const std::int64_t length = lines == Lines::Rows ? width : height;
  const std::int64_t count = lines == Lines::Rows ? height : width;
  const auto natural =
      static_cast<std::int64_t>(std::floor(static_cast<double>(W) + static_cast<double>(H) * std::fabs(shear)));
  const auto step = static_cast<std::int64_t>(std::floor(shear * 65536.0));
  const std::int64_t margin = (count - H) / 2;  // lines of frame; below 0, lines of the source that are cut off
  const std::int64_t offsetOfFirst = (length - natural) / 2 * 65536 + (step > 0 ? H * step : 0);
  const std::uint32_t frame = frameColour ^ 0xFF000000;

  return FromLines(lines, width, height, [=](std::int64_t line, std::int64_t place) {
    const std::int64_t r = line - margin;
    const std::int64_t offset = offsetOfFirst - r * step;
    const auto f = static_cast<std::uint32_t>(offset & 0xFFFF);
    const std::int64_t whole = (offset - f) / 65536;
    const std::int64_t i = place - whole;
    const bool isBeyond = i > W || (i == W && f == 0);
    if (r < 0 || r >= H || W == 0 || i < 0 || isBeyond) return frame;

    const std::int64_t start = std::max<std::int64_t>(-whole - 1, 0);
    const std::uint32_t pixel = from.At(r, std::min(i, W - 1), start);
    // An opaque frame does not tint the edges of the image.
    const std::uint32_t beside = Alpha(frame) == 255 ? pixel | 0xFF000000 : frame;
    if (i == W) return Mix(pixel, f, beside, 65535 - f, 65536);  // the last pixel's share of the edge
    return Blend(pixel, i > 0 ? from.At(r, i - 1, start) : beside, f);
  });
}

Picture Stretched(const Picture& source, Lines lines, int width, int height) {
  const LinesOf from(source, lines);
  const std::int64_t length = lines == Lines::Rows ? width : height;
  const std::int64_t perSource = length * 32768 / from.length;  // units that one source pixel covers
  const std::int64_t perResult = perSource * from.length / length;
  return FromLines(lines, width, height, [=](std::int64_t line, std::int64_t i) {
    const std::int64_t begin = i * perResult, end = begin + perResult;
    WeightedSum sum;
    for (std::int64_t j = begin / perSource; j * perSource < end; ++j) {
      const std::int64_t units = std::min(end, (j + 1) * perSource) - std::max(begin, j * perSource);
      sum.Add(from.At(line, j, 0), static_cast<std::uint32_t>(units));
    }
    return sum.DividedBy(static_cast<std::uint32_t>(perResult));
  });
}

Picture Trimmed(const Picture& source, const Rectangle& area, std::uint32_t frameColour) {
  return {area.width, area.height, [=](std::int64_t x, std::int64_t y, auto) {
            x += area.left;
            y += area.top;
            const bool inside = x >= 0 && x < source.width && y >= 0 && y < source.height;
            return inside ? source.At(x, y) : frameColour & 0xFFFFFF;
          }};
}

// ---------------------------------------------------------------------------------------- rotation

namespace {

double Normalised(double angle) {
  if (angle < 0.0) angle += 6.28318;
  if (angle > 6.28318) angle -= 6.28318;
  return angle;
}

// The bounding box of a rectangle turned by d degrees (theta in radians).
std::pair<int, int> BoxOfTurned(int width, int height, double d, double theta) {
  if (d == 0) return {width, height};
  const double w = width, h = height;
  const double a = reference::ArcTangent(h / w);
  const double A1 = Normalised(theta + a);
  const double A2 = Normalised((3.14159 - a) + theta);
  const double A3 = Normalised(theta - a);
  const double diagonal = 2 * std::sqrt((h * h + w * w) * 0.25);
  return {IntegerPart(std::ceil(diagonal * reference::Cosine(d > 0 ? A3 : A1))),
          IntegerPart(std::ceil(reference::Sine(d > 0 ? A1 : A2) * diagonal))};
}

// The length of the lines of a sheared picture; 0 if a step of the computation exceeds a 32-bit
// integer.
int ShearedLength(int length, int lines, double shear) {
  const std::int64_t k = std::abs(std::int64_t{IntegerPart(shear * 65536.0)});
  const std::int64_t sum = std::int64_t{length} * 65536 + 65535 + k * lines;
  return sum > std::numeric_limits<std::int32_t>::max() ? 0 : static_cast<int>(sum / 65536);
}

}  // namespace

std::vector<RotationStep> RotationSteps(int width, int height, double degrees) {
  if (std::isnan(degrees)) degrees = 0;
  const int quarters = IntegerPart(std::floor((degrees + 45.0) / 90.0));
  const double d = degrees - quarters * 90;
  const double theta = d * 3.14159 / 180.0;
  const double along = -reference::Tangent(theta * -0.5), down = reference::Sine(-theta);
  const auto [w, h] = TurnedSize(width, height, quarters);
  const int sheared = ShearedLength(w, h, along);
  const int shearedDown = ShearedLength(h, sheared, down);
  if (sheared == 0 || shearedDown == 0) return {};
  const auto [resultWidth, resultHeight] = BoxOfTurned(w, h, d, theta);

  const auto shear = [](Lines lines, double factor) {
    constexpr std::uint32_t kClear = 0xFF000000;
    return [=](const Picture& source, int toWidth, int toHeight) {
      return Sheared(source, lines, toWidth, toHeight, factor, kClear);
    };
  };
  const auto turn = [=](const Picture& source, int, int) { return FlipRotated(source, false, false, quarters % 4); };
  return {{w, h, turn},
          {sheared, h, shear(Lines::Rows, along)},
          {sheared, shearedDown, shear(Lines::Columns, down)},
          {resultWidth, resultHeight, shear(Lines::Rows, along)}};
}

}  // namespace model
