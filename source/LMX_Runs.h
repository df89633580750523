// Runs of a picture's pixels: n neighbouring pixels of one row, in either storage form. This is the
// only layer that chooses kernels.
//
// Positions may lie outside the picture, partly or wholly. Pixels outside, and in rows that a
// malformed buffer lacks, read as 0 and ignore writes. So do all pixels of a picture whose depth is
// not 32 bits. n may be 0.
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

/// A working pixel as a picture stores it.
inline std::uint32_t StoredPixel(const LMX_Picture& picture, std::uint32_t working) {
  std::uint32_t stored = 0;
  picture.WritePixel(reinterpret_cast<std::uint8_t*>(&stored), working);
  return stored;
}

/// Writes the same stored pixel n times.
void FillRun(const LMX_Picture& picture, std::int32_t x, std::int32_t y, std::int32_t n, std::uint32_t stored);

/// A place in a picture.
struct PixelPosition {
  const LMX_Picture& picture;
  std::int32_t x;
  std::int32_t y;
};

/// A single pixel, as ReadRun reads and WriteRun writes it.
inline std::uint8_t* PixelAddress(const PixelPosition& at) {
  const LMX_Picture& picture = at.picture;
  if (at.x < 0 || at.x >= picture.width || at.y < 0 || at.y >= picture.height) return nullptr;
  std::uint8_t* const row = picture.RowAddress(at.y);
  return row ? row + 4 * static_cast<std::ptrdiff_t>(at.x) : nullptr;
}
inline std::uint32_t ReadOnePixel(const PixelPosition& at) {
  const std::uint8_t* const pixel = PixelAddress(at);
  return pixel ? at.picture.ReadPixel(pixel) : 0;
}
inline void WriteOnePixel(const PixelPosition& at, std::uint32_t working) {
  std::uint8_t* const pixel = PixelAddress(at);
  if (pixel) at.picture.WritePixel(pixel, working);
}

/// Writes the same stored pixel to n pixels of each of `rows` rows.
void FillRuns(const PixelPosition& to, std::int32_t n, std::int32_t rows, std::uint32_t stored);

/// `count` runs of n stored pixels, in rows from.y, from.y + step, ..., for kernels that take
/// several runs. A run points into the picture if the picture holds all of it. Otherwise it points
/// into `scratch`, where it is a copy with clear pixels for the missing ones. `scratch` must hold
/// all runs.
void StoredRuns(const PixelPosition& from, std::int32_t step, std::int32_t n, std::int32_t count,
                std::uint32_t* scratch, const std::uint8_t** runs);

/// The same for the rows of a ColumnWalk, from column x on. Advances the walk past them.
void StoredRuns(ColumnWalk& walk, std::int32_t x, std::int32_t n, std::int32_t count, std::uint32_t* scratch,
                const std::uint8_t** runs);

/// Where to write such runs: in the picture if it holds all of a run, else in `scratch`. PutRuns
/// must follow: it copies the pixels that lie in the picture from `scratch` to it.
void WritableRuns(const PixelPosition& to, std::int32_t step, std::int32_t n, std::int32_t count,
                  std::uint32_t* scratch, std::uint8_t** runs);
void PutRuns(const PixelPosition& to, std::int32_t step, std::int32_t n, std::int32_t count,
             const std::uint32_t* scratch, std::uint8_t* const* runs);

/// The same for the rows of a ColumnWalk. True if the picture holds all runs. Otherwise PutRuns
/// must follow, which also advances the walk.
bool WritableRuns(ColumnWalk walk, std::int32_t x, std::int32_t n, std::int32_t count, std::uint32_t* scratch,
                  std::uint8_t** runs);
void PutRuns(ColumnWalk& walk, std::int32_t x, std::int32_t n, std::int32_t count, const std::uint32_t* scratch,
             std::uint8_t* const* runs);

/// Reads n pixels from `from` on and writes them from `to` on, which may be the same place.
void CopyRun(const PixelPosition& to, const PixelPosition& from, std::int32_t n);

/// The same from right to left: the pixel at `to` becomes the last of the n pixels from `from` on.
void CopyRunMirrored(const PixelPosition& to, const PixelPosition& from, std::int32_t n);

/// Turns columns x to x + n - 1 of another picture, 1 <= n <= kMostTurned, into rows of `pixels`
/// pixels. The walk gives the source row of each pixel. Column x becomes the row at `to`. Each
/// further column becomes the next row, in the direction `rowStep`, 1 or -1.
constexpr std::int32_t kMostTurned = 256;
void TransposeRuns(const PixelPosition& to, std::int32_t rowStep, ColumnWalk walk, std::int32_t x, std::int32_t n,
                   std::int32_t pixels);

/// Copies n pixels with an adjustment, or as their negatives; NegateRun adjusts them first unless
/// `by` is nil. `to` may be the same place as `from`.
void AdjustRun(const PixelPosition& to, const PixelPosition& from, std::int32_t n, const HSVAdjustment& by);
void AdjustRun(const PixelPosition& to, const PixelPosition& from, std::int32_t n, const RGBAdjustment& by);
void NegateRun(const PixelPosition& to, const PixelPosition& from, std::int32_t n, const HSVAdjustment* by);

/// Copies n pixels, each blended with the one before it (LMX_Pixel::Blend). `before` is the pixel
/// before the first one. `to` is in another picture.
void BlendRun(const PixelPosition& to, const PixelPosition& from, std::int32_t n, std::uint32_t before,
              std::uint32_t fraction);

/// Where the columns of a vertical shear come from. Pixel r of column c mixes the pixels r +
/// down[c] and r + down[c] + 1 of its source; the first of the two has the weight fraction[c] of
/// 65535. The `down` of neighbours differ by at most 1.
constexpr std::int32_t kMostColumns = 16;
struct ColumnShears {
  std::uint32_t down[kMostColumns];
  std::uint32_t fraction[kMostColumns];
};

/// Makes `rows` rows of n <= kMostColumns columns, from another picture at `from`. Both pictures
/// must hold all pixels that this takes.
void BlendColumns(const PixelPosition& to, const PixelPosition& from, std::int32_t n, std::int32_t rows,
                  const ColumnShears& shears);

/// Makes n working pixels, each the truncated mean of two neighbours of the 2 n pixels from `from`
/// on, written in the form `through` and read again.
void HalveRun(std::uint8_t* working, const PixelPosition& from, std::int32_t n, PixelForm through);

/// Transposes `lines` rows of n pixels, from `from` on, into n runs of working pixels. Both numbers
/// are at most kTile.
constexpr std::int32_t kTile = 64;
void ReadColumns(const PixelPosition& from, std::int32_t n, std::int32_t lines, std::uint8_t* const* columns);

/// Transposes n runs of `lines` pixels, stored as the picture stores them, into `lines` rows from
/// `to` on.
void WriteColumns(const PixelPosition& to, std::int32_t n, std::int32_t lines, const std::uint8_t* const* columns);

/// Transposes n runs of `lines` pixels of a form into `lines` runs of working pixels.
void ColumnsToRows(std::uint8_t* const* rows, const std::uint8_t* const* columns, PixelForm form, std::int32_t n,
                   std::int32_t lines);

/// StoredRuns for a ColumnWalk, as runs of working pixels, all of them in `working`.
void ReadRuns(ColumnWalk walk, std::int32_t x, std::int32_t n, std::int32_t count, std::uint32_t* working,
              const std::uint8_t** runs);

/// `count` box averages of runs of working pixels, by the kernel `boxes` (RunKernels.h). No box has
/// more than kMostBoxRuns runs. `written` is the picture whose whole rows are written, if they are.
void AverageRuns(std::uint8_t* const* to, PixelForm form, const std::uint8_t* const* runs, const BoxUnits& units,
                 std::int32_t count, std::int32_t n, const LMX_Picture* written = nullptr);

/// One average of any number of such runs of at most kMostSums pixels. The runs are added part by
/// part.
class RunSums {
 public:
  static constexpr std::int32_t kMostSums = kTile;

  explicit RunSums(std::int32_t n);
  void Add(const std::uint8_t* const* runs, std::int32_t count, std::uint32_t units);
  void Average(std::uint8_t* to, PixelForm form, std::uint32_t units) const;

 private:
  std::int32_t n_;
  std::uint32_t sums_[4 * kMostSums];
};

/// Adds n pixels to the sums.
void SumRun(const PixelPosition& from, std::int32_t n, RGBSums* sums);
void SumRun(const PixelPosition& from, std::int32_t n, HSVSums* sums);
