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

/// Of two pictures of one size. The colours of pixels that are clear in both do not count: nobody
/// sees them.
Difference Compare(const Image& a, const Image& b, int tolerance);

/// Black where the pictures are the same; otherwise the difference of each colour, or that of alpha
/// in grey where it is larger than those, multiplied so that the largest one is 255. Opaque.
Image PictureOfDifference(const Image& a, const Image& b, const Difference& difference);

/// Tells about the two pictures of the command line on standard output and writes the picture of
/// their difference, if it is wanted. Returns the exit status: 0 for equal pictures, 1 for others.
/// Throws Trouble instead of what else goes wrong with files, UsageError, and Interrupted.
int ComparePictures(const CommandLine& line);

}  // namespace tool
