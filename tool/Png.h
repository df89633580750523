// PNG files, written by zlib.
#pragma once

#include <functional>
#include <vector>

#include "Image.h"

namespace tool {

/// Without alpha where every pixel is opaque. `tick` gets how many rows of how many are done, once
/// a row, and may leave by an exception.
std::vector<unsigned char> EncodePng(const Image& image, int compression, const std::function<void(int, int)>& tick);

}  // namespace tool
