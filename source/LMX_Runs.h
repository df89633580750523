// Runs of a picture's pixels: n neighbouring pixels of one row, whichever way the picture stores them.
//
// Positions may lie outside the picture, partly or wholly: what is outside, or in a row that a malformed buffer lacks,
// reads as 0 and ignores writes. So does a picture whose depth is not 32 bits. n may be 0.
#pragma once

#include <cstdint>

#include "LMX_Picture.h"
#include "kernels/RunKernels.h"

inline PixelForm FormOf(const LMX_Picture& picture) {
  return picture.buffer ? kBufferForm : kContextForm;
}

/// Reads n pixels from column x of row y on.
void ReadRun(const LMX_Picture& picture, std::int32_t x, std::int32_t y, std::int32_t n, std::uint32_t* working);

/// Writes n pixels from column x of row y on.
void WriteRun(const LMX_Picture& picture, std::int32_t x, std::int32_t y, std::int32_t n, const std::uint32_t* working);

/// Writes the same working pixel n times.
void FillRun(const LMX_Picture& picture, std::int32_t x, std::int32_t y, std::int32_t n, std::uint32_t working);

/// A run of n pixels as the picture stores it: where it lies if the picture holds all of it, else a copy in `spare`, with
/// clear pixels for what is missing.
const std::uint8_t* StoredRun(const LMX_Picture& picture, std::int32_t x, std::int32_t y, std::int32_t n,
                              std::uint32_t* spare);

/// Where to put a run of n pixels as the picture stores it: where it belongs if the picture holds all of it, else
/// `spare`. PutRun has to follow when it is there.
std::uint8_t* RoomForRun(const LMX_Picture& picture, std::int32_t x, std::int32_t y, std::int32_t n,
                         std::uint32_t* spare);

/// Moves what of the run belongs into the picture there, if it is in `spare`.
void PutRun(const LMX_Picture& picture, std::int32_t x, std::int32_t y, std::int32_t n, const std::uint8_t* room,
            const std::uint32_t* spare);

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

/// Copies with an adjustment, or as colour negatives. `to` may be the same place as `from`.
void AdjustRun(const PixelPosition& to, const PixelPosition& from, std::int32_t n, const HSVAdjustment& by);
void AdjustRun(const PixelPosition& to, const PixelPosition& from, std::int32_t n, const RGBAdjustment& by);
void NegateRun(const PixelPosition& to, const PixelPosition& from, std::int32_t n);

/// Copies n pixels, each blended with the one before it: `before` is the one before the first, and `fraction` the weight
/// of the one before, 0 to 65535. `to` is in another picture.
void BlendRun(const PixelPosition& to, const PixelPosition& from, std::int32_t n, std::uint32_t before,
              std::uint32_t fraction);

/// Adds n pixels to the sums.
void SumRun(const PixelPosition& from, std::int32_t n, RGBSums* sums);
void SumRun(const PixelPosition& from, std::int32_t n, HSVSums* sums);
