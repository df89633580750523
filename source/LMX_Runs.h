// Runs of a picture's pixels: n neighbouring pixels of one row, whichever way the picture stores them.
//
// Positions may lie outside the picture, partly or wholly: what is outside, or in a row that a malformed buffer lacks,
// reads as 0 and ignores writes. So does a picture whose depth is not 32 bits. n may be 0.
#pragma once

#include <cstdint>

#include "LMX_Picture.h"

/// Pixels that pass through a buffer on the stack at a time.
constexpr std::int32_t kChunk = 512;

/// Reads n pixels from column x of row y on.
void ReadRun(const LMX_Picture& picture, std::int32_t x, std::int32_t y, std::int32_t n, std::uint32_t* working);

/// Writes n pixels from column x of row y on.
void WriteRun(const LMX_Picture& picture, std::int32_t x, std::int32_t y, std::int32_t n, const std::uint32_t* working);

/// Writes the same working pixel n times.
void FillRun(const LMX_Picture& picture, std::int32_t x, std::int32_t y, std::int32_t n, std::uint32_t working);

/// A place in a picture.
struct PixelPosition {
  const LMX_Picture& picture;
  std::int32_t x;
  std::int32_t y;
};

/// Reads n pixels from `from` on and writes them from `to` on, which may be the same place.
void CopyRun(const PixelPosition& to, const PixelPosition& from, std::int32_t n);

/// The same from right to left: the pixel at `to` becomes the last of the n pixels from `from` on.
void CopyRunMirrored(const PixelPosition& to, const PixelPosition& from, std::int32_t n);
