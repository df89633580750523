// The rectangle that the colour methods work on.
#pragma once

#include <algorithm>
#include <cstdint>

#include "LMX_Convert.h"
#include "LMX_Picture.h"

/// Columns x0 to x1 and rows y0 to y1, both ends included.
///
/// Rationale: the far end is start + size, not start + size - 1, so that a size of 0 still selects
/// one line. Both ends are clamped into the picture: a selection outside it is pinned to the
/// nearest edge, and only an end that comes before its start makes a selection invalid. Sums wrap
/// in 32 bits.
struct Selection {
  Selection(const LMX_Picture& picture, std::int32_t left, std::int32_t top, std::int32_t width, std::int32_t height)
      : x0(Clamped(left, picture.width)),
        y0(Clamped(top, picture.height)),
        x1(Clamped(WrappedToInt(static_cast<std::int64_t>(left) + width), picture.width)),
        y1(Clamped(WrappedToInt(static_cast<std::int64_t>(top) + height), picture.height)) {}

  bool IsValid() const { return x0 <= x1 && y0 <= y1; }
  bool HasRow(std::int32_t y) const { return y0 <= y && y <= y1; }
  std::int32_t Width() const { return x1 - x0 + 1; }

  /// Whether the picture has no pixels. The selection is then at column or row -1, and can be
  /// valid.
  bool IsEmpty() const { return x1 < 0 || y1 < 0; }

  /// How many pixels are selected, in 32 bits.
  std::int32_t Count() const { return WrappedToInt(static_cast<std::int64_t>(Width()) * (y1 - y0 + 1)); }

  /// A channel's sum over the selection, in 32 bits, divided by the count and truncated. 0 for a
  /// count that wrapped to 0.
  std::int32_t Mean(std::uint32_t sum) const {
    const std::int64_t count = Count();
    return count == 0 ? 0 : WrappedToInt(static_cast<std::int32_t>(sum) / count);
  }

  std::int32_t x0;
  std::int32_t y0;
  std::int32_t x1;
  std::int32_t y1;

 private:
  static std::int32_t Clamped(std::int32_t position, std::int32_t size) {
    return std::min(std::max(position, 0), size - 1);
  }
};
