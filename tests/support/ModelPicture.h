// Pictures in the reference model: functions from a place to a working pixel. An operation on a
// picture is a function from such pictures to such a picture. A pixel is computed only when
// somebody asks for it, so a picture may have any size.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "ModelPixel.h"

namespace model {

/// The order in which the lines of a picture are completed.
enum class Order { TopDown, BottomUp, LeftRight };

struct Picture {
  int width;
  int height;
  /// The pixel at (x, y), reached by a walk along column x from row `start`; 0 outside the picture.
  /// A walk stops before a missing row.
  std::function<std::uint32_t(std::int64_t x, std::int64_t y, std::int64_t start)> walkTo;
  Order order = Order::TopDown;

  std::uint32_t At(std::int64_t x, std::int64_t y) const { return walkTo(x, y, y); }
};

/// The working pixels after they were stored in that form.
Picture Stored(const Picture& picture, Storage form);

// ---------------------------------------------------------------------------------------- geometry

/// The lines that are displaced by a shear, or averaged by a stretch.
enum class Lines { Rows, Columns };

/// The size of a picture after quarter turns.
std::pair<int, int> TurnedSize(int width, int height, int quarters);
/// Flips first, then turns clockwise.
Picture FlipRotated(const Picture& source, bool flipH, bool flipV, int quarter);
Picture Sheared(const Picture& source, Lines lines, int width, int height, double shear, std::uint32_t frameColour);
/// Each pixel is the mean of the part of the source's line that it covers.
Picture Stretched(const Picture& source, Lines lines, int width, int height);

struct Rectangle {
  int left, top, width, height;
};

Picture Trimmed(const Picture& source, const Rectangle& area, std::uint32_t frameColour);

/// One of the pictures that a rotation makes, each from the one before: one turned by quarters,
/// then three sheared ones.
struct RotationStep {
  int width, height;
  std::function<Picture(const Picture& source, int width, int height)> make;
};

/// The steps of a rotation. Empty if the computation of a size needs more than 32 bits.
std::vector<RotationStep> RotationSteps(int width, int height, double degrees);

// ----------------------------------------------------------------------------------------- colours

/// The part of a picture that a rectangle selects. Both ends are included.
struct Selection {
  Selection(const Rectangle& rectangle, int width, int height);

  bool Valid() const { return x0 <= x1 && y0 <= y1; }
  bool Contains(std::int64_t x, std::int64_t y) const { return x0 <= x && x <= x1 && y0 <= y && y <= y1; }

  int x0, x1, y0, y1;
};

struct HsvChange {
  double hueDegrees, saturationFactor, brightnessFactor;
  std::uint8_t negative;  ///< any byte: a boolean argument
};

struct RgbChange {
  int red, green, blue;
};

Picture Adjusted(const Picture& source, const Rectangle& rectangle, const HsvChange& change);
Picture Adjusted(const Picture& source, const Rectangle& rectangle, const RgbChange& change);

/// Sums over pixels, and the means. Integer sums have 32 bits and wrap.
struct Sums {
  void Add(std::uint32_t pixel);
  std::array<int, 3> MeanRgb() const { return {red / count, green / count, blue / count}; }
  std::array<double, 3> MeanHsv() const;

  std::int32_t red = 0, green = 0, blue = 0, count = 0;
  double saturation = 0, brightness = 0;
};

/// A vertical gradient from the first colour at the top to the last one. Of three colours, the
/// middle one ends the upper half and begins the lower one.
Picture Gradient(int width, int height, const std::vector<std::uint32_t>& colours);

}  // namespace model
