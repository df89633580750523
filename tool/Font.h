// A small bitmap font: capital letters, digits and a few signs, five pixels wide and seven high.
#pragma once

#include <array>
#include <cstdint>

namespace tool {

constexpr int kGlyphWidth = 5;
constexpr int kGlyphHeight = 7;

/// Rows from the top; bit 4 is the leftmost pixel. Signs that the font lacks are blank.
using Glyph = std::array<std::uint8_t, kGlyphHeight>;
Glyph GlyphOf(char sign);

}  // namespace tool
