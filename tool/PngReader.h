// PNG files, unpacked by zlib: every kind of pixel, interlaced or not.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Image.h"

namespace tool {

bool IsPng(const std::vector<unsigned char>& file);

/// What the file is before its pixels are looked at.
struct PngHeader {
  std::int64_t width = 0, height = 0;
  unsigned depth = 0;  ///< bits of a sample
  unsigned kind = 0;   ///< of a pixel: the format's number
  bool interlaced = false;
};

/// Throws Failure, naming the path, for a file whose parts do not lie within it.
PngHeader HeaderOfPng(const std::string& path, const std::vector<unsigned char>& file);

/// Samples of 16 bits lose their lower half. Throws Failure for a file that is not whole, or whose
/// checksums are wrong: those of the pixels and of all parts that the picture depends on. `tick`
/// gets how many rows of how many are done, once a row, and may leave by an exception.
Image DecodePng(const std::string& path, const std::vector<unsigned char>& file,
                const std::function<void(int, int)>& tick);

}  // namespace tool
