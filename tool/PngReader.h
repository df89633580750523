// Reads PNG files with zlib: every kind of pixel, interlaced or not.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Image.h"

namespace tool {

bool IsPng(const std::vector<unsigned char>& file);

/// What the file says before its pixels.
struct PngHeader {
  std::int64_t width = 0, height = 0;
  unsigned depth = 0;  ///< bits of a sample
  unsigned kind = 0;   ///< of a pixel: the format's number
  bool interlaced = false;
};

/// Throws Failure, naming the path, for a file whose chunks do not fit in it.
PngHeader HeaderOfPng(const std::string& path, const std::vector<unsigned char>& file);

/// Samples of 16 bits lose their lower half. Throws Failure for an incomplete file, and for a wrong
/// checksum of the pixels or of a chunk that the picture depends on. Calls `tick` for each row
/// that it reads, with the row's number and the number of rows; it may throw. An interlaced picture
/// is read in seven passes, each from the top.
Image DecodePng(const std::string& path, const std::vector<unsigned char>& file,
                const std::function<void(int, int)>& tick);

}  // namespace tool
