// What has to be known of a JPEG file before it is given to the decoder.
#pragma once

#include <vector>

namespace tool {

/// Whether every Huffman table that a decoder may meet in the file has at most 256 codes. The decoder that is built in
/// believes what a table claims, and would write behind its own.
bool HuffmanTablesFit(const std::vector<unsigned char>& bytes);

}  // namespace tool
