// What the geometric methods do, as functions from a place to a stored word: for pictures that are
// too large to be values, of which only some pixels are looked at. All are bitmap contexts.
#pragma once

#include <cstdint>
#include <functional>

namespace lazy {

struct Picture {
  int width;
  int height;
  std::function<std::uint32_t(std::int64_t x, std::int64_t y)> word;  ///< of any place inside
};

/// Mirrored first, then turned clockwise.
Picture FlipRotated(const Picture& source, bool flipH, bool flipV, int quarter);
Picture ShearedHorizontally(const Picture& source, int width, int height, double shear, std::uint32_t frameColour);
Picture ShearedVertically(const Picture& source, int width, int height, double shear, std::uint32_t frameColour);
/// By an angle above 0 and below 45 degrees, into a result of that size.
Picture Rotated(const Picture& source, double degrees, int width, int height);
Picture Stretched(const Picture& source, int width, int height);
Picture Trimmed(const Picture& source, int left, int top, int width, int height);

}  // namespace lazy
