// Rejects JPEG files that would make the decoder write out of bounds.
#pragma once

#include <vector>

namespace tool {

/// Whether every Huffman table that a decoder may read has at most 256 codes.
bool HuffmanTablesFit(const std::vector<unsigned char>& jpeg);

}  // namespace tool
