// `lmx compare`: whether two pictures are the same, and where they are not.
#pragma once

#include <array>
#include <cstdint>

#include "CommandLine.h"
#include "Image.h"

namespace tool {

/// The exit status.
constexpr int kDifferent = 1;

struct Difference {
  struct Largest {
    int amount = 0;  ///< 0: no pixel differs in this channel
    int x = 0, y = 0;
  };
  std::int64_t pixels = 0;          ///< that differ by more than the tolerance in some channel
  std::array<Largest, 4> channels;  ///< red, green, blue, alpha: the first of the largest differences
};

/// Compares two pictures of one size. Colours of pixels that are clear in both do not count: they
/// are invisible.
Difference Compare(const Image& a, const Image& b, int tolerance);

/// A picture of the difference: for each colour, or in grey for alpha where that differs more.
/// Scaled so that the largest difference is 255; black where the pictures are equal. Opaque.
Image PictureOfDifference(const Image& a, const Image& b, const Difference& difference);

/// Compares the two pictures of the command line, prints the result, and writes the picture of
/// their difference, if asked for. Returns the exit status: 0 for equal pictures, 1 for others.
/// Throws Trouble for files that fail, UsageError, and Interrupted.
int ComparePictures(const CommandLine& line);

}  // namespace tool
