// Pictures in the reference model: functions from a place to a working pixel. What a method does to
// a picture is a function from such pictures to such pictures. Nothing is computed before somebody
// looks at a place, so that a picture may have any size.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "ModelPixel.h"

namespace model {

/// In which order the lines of a picture are completed.
enum class Order { TopDown, BottomUp, LeftRight };

struct Picture {
  int width;
  int height;
  /// The pixel that a walk along column x, from row `start` to row y, finds; 0 outside the picture.
  /// Where a row is missing, walks stop before it.
  std::function<std::uint32_t(std::int64_t x, std::int64_t y, std::int64_t start)> walkTo;
  Order order = Order::TopDown;

  std::uint32_t At(std::int64_t x, std::int64_t y) const { return walkTo(x, y, y); }
};

/// What pixels are after a picture in that form has stored them.
Picture Stored(const Picture& picture, Form form);

// ---------------------------------------------------------------------------------------- geometry

/// What is moved, or averaged, along itself.
enum class Lines { Rows, Columns };

/// The size of a picture that is turned by quarters.
std::pair<int, int> TurnedSize(int width, int height, int quarters);
/// Mirrored first, then turned clockwise.
Picture FlipRotated(const Picture& source, bool flipH, bool flipV, int quarter);
Picture Sheared(const Picture& source, Lines lines, int width, int height, double shear, std::uint32_t frameColour);
/// Each pixel is the mean of what it covers of the source's line.
Picture Stretched(const Picture& source, Lines lines, int width, int height);

struct Rectangle {
  int left, top, width, height;
};

Picture Trimmed(const Picture& source, const Rectangle& area, std::uint32_t frameColour);

/// One of the pictures that a rotation makes, each of the one before: a picture turned by quarters,
/// then three sheared ones.
struct RotationStep {
  int width, height;
  std::function<Picture(const Picture& source, int width, int height)> make;
};

/// None if the numbers that a size is made from need more than 32 bits.
std::vector<RotationStep> RotationSteps(int width, int height, double degrees);

// ----------------------------------------------------------------------------------------- colours

/// The part of a picture that a rectangle means, both ends included.
struct Selection {
  Selection(const Rectangle& rectangle, int width, int height);

  bool Valid() const { return x0 <= x1 && y0 <= y1; }
  bool Contains(std::int64_t x, std::int64_t y) const { return x0 <= x && x <= x1 && y0 <= y && y <= y1; }

  int x0, x1, y0, y1;
};

struct HsvChange {
  double hueDegrees, saturationFactor, brightnessFactor;
  std::uint8_t negative;  ///< a boolean
};

struct RgbChange {
  int red, green, blue;
};

Picture Adjusted(const Picture& source, const Rectangle& rectangle, const HsvChange& change);
Picture Adjusted(const Picture& source, const Rectangle& rectangle, const RgbChange& change);

/// Sums over pixels, those of whole numbers in 32 bits that wrap, and the means.
struct Sums {
  void Add(std::uint32_t pixel);
  std::array<int, 3> MeanRgb() const { return {red / count, green / count, blue / count}; }
  std::array<double, 3> MeanHsv() const;

  std::int32_t red = 0, green = 0, blue = 0, count = 0;
  double saturation = 0, brightness = 0;
};

/// From the first colour at the top to the last one at the bottom. Of three, the middle one ends
/// the upper half and begins the lower one.
Picture Gradient(int width, int height, const std::vector<std::uint32_t>& colours);

}  // namespace model
