// Converts rows of a PNG to pixels: samples of 1 to 16 bits, with or without a palette.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "PngReader.h"

namespace tool {

constexpr unsigned kGrey = 0, kColours = 2, kPalette = 3, kGreyAlpha = 4, kColoursAlpha = 6;

/// Whether there are such pixels.
bool IsKnown(const PngHeader& header);
std::size_t Channels(const PngHeader& header);
/// In bytes.
std::size_t RowSize(const PngHeader& header, std::size_t width);

/// The palette and the clear colour, which make colours of samples.
class Colours {
 public:
  /// Keeps a reference to the header, which must be of a known kind.
  explicit Colours(const PngHeader& header) : header_(header) { palette_.fill(0xFF000000); }

  /// False for a size that cannot be.
  bool SetPalette(const unsigned char* data, std::size_t size);
  bool HasPalette() const { return count_ != 0; }
  /// Alphas of the palette, or the one colour that is clear. False where there can be none.
  bool SetTransparency(const unsigned char* data, std::size_t size);
  /// Writes a pixel to every `step`th place. One that lies beyond the palette is black.
  void Expand(const unsigned char* row, std::size_t width, std::uint32_t* to, std::size_t step) const;

 private:
  unsigned Sample(const unsigned char* row, std::size_t i) const;
  unsigned InEightBits(unsigned sample) const;
  std::uint32_t At(const unsigned char* row, std::size_t x) const;

  const PngHeader& header_;
  std::array<std::uint32_t, 256> palette_{};
  std::size_t count_ = 0;
  std::optional<std::array<unsigned, 3>> clear_;
};

}  // namespace tool
