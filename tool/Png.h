// PNG files, written by zlib.
#pragma once

#include <functional>
#include <vector>

#include "Image.h"

namespace tool {

/// Writes alpha only if a pixel is not opaque. Calls `tick` once a row with the rows done and all
/// rows; it may throw.
std::vector<unsigned char> EncodePng(const Image& image, int compression, const std::function<void(int, int)>& tick);

}  // namespace tool
