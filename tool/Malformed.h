// What is looked for in a JPEG before it is given to the decoder that is built in: claims that this
// one believes, and that would make it write outside its memory.
#pragma once

#include <vector>

namespace tool {

/// Whether every Huffman table that a decoder may meet in a JPEG has at most 256 codes.
bool HuffmanTablesFit(const std::vector<unsigned char>& jpeg);

}  // namespace tool
