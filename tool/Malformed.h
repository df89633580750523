// What is looked for in a picture file before it is given to the decoder that is built in: claims
// that this one believes, and that would make it read or write outside its memory, or read what
// nobody has written.
#pragma once

#include <vector>

namespace tool {

/// Whether all chunks of a PNG lie within the file, up to the one that ends it.
bool ChunksFit(const std::vector<unsigned char>& png);

/// Fills up the palette of a PNG whose chunks fit, to 256 colours, with black: the decoder does not ask
/// whether the file has the colour of a pixel. False when there are two palettes.
bool FillPalette(std::vector<unsigned char>* png);

/// Whether every Huffman table that a decoder may meet in a JPEG has at most 256 codes.
bool HuffmanTablesFit(const std::vector<unsigned char>& jpeg);

}  // namespace tool
