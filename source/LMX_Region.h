// Where the image lies in a sheared picture. Everything outside is clear; only a margin of it is
// written and read.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "LMX_Picture.h"

/// Consecutive pixels of a line, or consecutive lines: `begin` to `end` - 1.
struct LineSpan {
  std::int32_t begin;
  std::int32_t end;
};

/// A parallelogram, as the intersection of two stripes of the plane. It starts as a whole picture.
/// Each shear tilts the stripes. It also widens them by one pixel to either side, for the pixel
/// that a blend adds and for the rounding of positions.
///
/// It is used for temporary pictures only, which no program sees. The image is written with a
/// margin of kWritten pixels and read again with a margin of kRead. Positions are computed in
/// doubles, so their last digits are not exact; they decide only how much clear frame is moved.
class ImageRegion {
 public:
  enum Axis { kAlongRows = 0, kAlongColumns = 1 };
  static constexpr double kRead = 2;
  static constexpr double kWritten = 4;

  explicit ImageRegion(const LMX_Picture& whole)
      : stripes_{{{1, 0}, 0, static_cast<double>(whole.width) - 1},
                 {{0, 1}, 0, static_cast<double>(whole.height) - 1}} {}

  /// Line i of the source moves to line i + `lines`, and along itself by start - step * i pixels.
  void Shear(Axis along, double start, double step, double lines) {
    for (Stripe& stripe : stripes_) {
      const double a = stripe.of[along], b = stripe.of[1 - along];
      const double moved = a * (start + step * lines) + b * lines;
      stripe.of[1 - along] = b + a * step;
      stripe.low += moved - std::fabs(a);
      stripe.high += moved + std::fabs(a);
    }
  }

  /// The pixels of 0 to length - 1 that are within `margin` of the image in at least one of the
  /// lines `first` to `last`.
  LineSpan Along(Axis along, std::int32_t first, std::int32_t last, double margin, std::int32_t length) const {
    double begin = 0, end = length;
    for (const Stripe& stripe : stripes_) {
      const double a = stripe.of[along], b = stripe.of[1 - along];
      const double wider = margin * (std::fabs(a) + std::fabs(b));
      const double low = stripe.low - wider - std::max(b * first, b * last);
      const double high = stripe.high + wider - std::min(b * first, b * last);
      if (a == 0) {
        if (low > 0 || high < 0) return {0, 0};
        continue;
      }
      begin = std::max(begin, std::floor(std::min(low / a, high / a)));
      end = std::min(end, std::ceil(std::max(low / a, high / a)) + 1);
    }
    if (begin >= end) return {0, 0};
    return {static_cast<std::int32_t>(begin), static_cast<std::int32_t>(end)};
  }

 private:
  struct Stripe {
    double of[2];  // low <= of[0] x + of[1] y <= high
    double low;
    double high;
  };

  Stripe stripes_[2];
};
