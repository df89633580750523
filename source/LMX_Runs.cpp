// Runs of a picture's pixels: clipping, and the choice of the kernel by storage form.
#include "LMX_Runs.h"

#include <algorithm>
#include <cstring>

namespace {

// How many pixels pass through scratch memory on the stack at a time.
constexpr std::int32_t kChunk = 512;

// The part of a run inside the picture: `count` pixels at `address`, after `before` pixels that lie
// left of the picture.
struct Clipped {
  std::uint8_t* address;
  std::int32_t before;
  std::int32_t count;
};

Clipped Clip(const LMX_Picture& picture, std::int32_t x, std::int32_t y, std::int32_t n) {
  constexpr Clipped kNothing = {nullptr, 0, 0};
  if (y < 0 || y >= picture.height || picture.bitsPerPixel != 32) return kNothing;
  const std::int64_t first = std::max(x, 0);
  const std::int64_t end = std::min(static_cast<std::int64_t>(x) + n, static_cast<std::int64_t>(picture.width));
  if (end <= first) return kNothing;
  std::uint8_t* const row = picture.RowAddress(y);
  if (!row) return kNothing;
  return {row + 4 * first, static_cast<std::int32_t>(first - x), static_cast<std::int32_t>(end - first)};
}

std::size_t Size(std::int32_t n) {
  return static_cast<std::size_t>(n);
}

std::uint8_t* Bytes(std::uint32_t* pixels) {
  return reinterpret_cast<std::uint8_t*>(pixels);
}
const std::uint8_t* Bytes(const std::uint32_t* pixels) {
  return reinterpret_cast<const std::uint8_t*>(pixels);
}

// A run of stored pixels: in place if the picture holds all of it, else a copy in `scratch`, with
// clear pixels for the missing ones.
const std::uint8_t* StoredRun(const LMX_Picture& picture, std::int32_t x, std::int32_t y, std::int32_t n,
                              std::uint32_t* scratch) {
  const Clipped part = Clip(picture, x, y, n);
  if (part.count == n) return part.address;
  std::fill_n(scratch, n, picture.buffer ? 0x7F000000 : 0);
  if (part.count > 0) std::memcpy(scratch + part.before, part.address, Size(part.count) * 4);
  return Bytes(scratch);
}

// Where to write a run: in place if the picture holds all of it, else in `scratch`.
std::uint8_t* WritableRun(const LMX_Picture& picture, std::int32_t x, std::int32_t y, std::int32_t n,
                          std::uint32_t* scratch) {
  const Clipped part = Clip(picture, x, y, n);
  return part.count == n ? part.address : Bytes(scratch);
}

// Copies a run from `scratch`, if it was written there, to the picture, as far as the picture holds
// it.
void PutRun(const LMX_Picture& picture, std::int32_t x, std::int32_t y, std::int32_t n, const std::uint8_t* run,
            const std::uint32_t* scratch) {
  if (run != Bytes(scratch)) return;
  const Clipped part = Clip(picture, x, y, n);
  if (part.count > 0) std::memcpy(part.address, scratch + part.before, Size(part.count) * 4);
}

// The kernels that write to a picture: those with non-temporal stores if the picture is too large
// for the cache. A temporary picture is read again at once, so it always gets ordinary stores.
const RunKernels& KernelsFor(const LMX_Picture& written) {
  constexpr std::int64_t kCachedPixels = 3 << 20;
  const bool isLarge = static_cast<std::int64_t>(written.width) * written.height > kCachedPixels;
  return isLarge && !written.unlockOnRelease ? gNonTemporalKernels : gRunKernels;
}

// Gives the addresses of `count` runs of n pixels in rows from.y, from.y + step, ... False if the
// picture does not hold all of them.
template <class Byte>
bool RunsInside(const PixelPosition& from, std::int32_t step, std::int32_t n, std::int32_t count, Byte** runs) {
  const LMX_Picture& picture = from.picture;
  const std::int64_t last = static_cast<std::int64_t>(from.y) + static_cast<std::int64_t>(step) * (count - 1);
  if (count < 1 || Clip(picture, from.x, from.y, n).count < n || last < 0 || last >= picture.height) return false;
  const std::ptrdiff_t x = 4 * static_cast<std::ptrdiff_t>(from.x);
  if (!picture.buffer) {
    const auto pitch = static_cast<std::uintptr_t>(picture.bytesPerRow) * static_cast<std::uintptr_t>(step);
    auto run = reinterpret_cast<std::uintptr_t>(picture.RowAddress(from.y) + x);
    for (std::int32_t i = 0; i < count; ++i, run += pitch) runs[i] = reinterpret_cast<std::uint8_t*>(run);
    return true;
  }
  for (std::int32_t i = 0; i < count; ++i) {
    std::uint8_t* const row = picture.RowAddress(from.y + i * step);
    if (!row) return false;
    runs[i] = row + x;
  }
  return true;
}

// The kernels from one picture to another. A picture that is changed in place gets ordinary stores:
// its pixels are in the cache already.
const PairKernels& KernelsBetween(const LMX_Picture& from, const LMX_Picture& to) {
  const RunKernels& kernels = &from == &to ? gRunKernels : KernelsFor(to);
  return kernels.between[FormOf(from)][FormOf(to)];
}

// Calls kernel(to, from, n, i) for a run that both pictures hold. Otherwise the run goes in pieces
// through scratch memory, where missing pixels are clear; `i` is the first pixel of the piece.
template <class Kernel>
void Transform(const PixelPosition& to, const PixelPosition& from, std::int32_t n, Kernel kernel) {
  const Clipped source = Clip(from.picture, from.x, from.y, n);
  const Clipped target = Clip(to.picture, to.x, to.y, n);
  if (source.count == n && target.count == n) {
    kernel(target.address, source.address, Size(n), 0);
    return;
  }
  std::uint32_t in[kChunk], out[kChunk];
  for (std::int32_t i = 0; i < n; i += kChunk) {
    const std::int32_t part = std::min(kChunk, n - i);
    std::uint8_t* const run = WritableRun(to.picture, to.x + i, to.y, part, out);
    kernel(run, StoredRun(from.picture, from.x + i, from.y, part, in), Size(part), i);
    PutRun(to.picture, to.x + i, to.y, part, run, out);
  }
}

}  // namespace

void ReadRun(const LMX_Picture& picture, std::int32_t x, std::int32_t y, std::int32_t n, std::uint32_t* working) {
  const Clipped part = Clip(picture, x, y, n);
  std::fill_n(working, part.before, 0);
  gRunKernels.between[FormOf(picture)][kWorkingForm].copy(Bytes(working + part.before), part.address, Size(part.count));
  std::fill(working + part.before + part.count, working + n, 0);
}

void WriteRun(const LMX_Picture& picture, std::int32_t x, std::int32_t y, std::int32_t n,
              const std::uint32_t* working) {
  const Clipped part = Clip(picture, x, y, n);
  gRunKernels.between[kWorkingForm][FormOf(picture)].copy(part.address, Bytes(working + part.before), Size(part.count));
}

void FillRun(const LMX_Picture& picture, std::int32_t x, std::int32_t y, std::int32_t n, std::uint32_t stored) {
  FillRuns({picture, x, y}, n, 1, stored);
}

void FillRuns(const PixelPosition& to, std::int32_t n, std::int32_t rows, std::uint32_t stored) {
  if (rows <= 0) return;
  const LMX_Picture& picture = to.picture;
  const std::int64_t first = std::max(to.x, 0);
  const std::int64_t count =
      std::min(static_cast<std::int64_t>(to.x) + n, static_cast<std::int64_t>(picture.width)) - first;
  if (count <= 0 || picture.bitsPerPixel != 32) return;
  // Only fills of whole rows get non-temporal stores: pieces of rows share cache lines with their
  // neighbours.
  const auto fill = (count == picture.width ? KernelsFor(picture) : gRunKernels).fill;
  const std::int64_t end = std::min(static_cast<std::int64_t>(to.y) + rows, static_cast<std::int64_t>(picture.height));
  for (std::int32_t y = std::max(to.y, 0); y < end; ++y) {
    std::uint8_t* const later = y + kRowsAhead < end ? picture.RowAddress(y + kRowsAhead) : nullptr;
    if (later) __builtin_prefetch(later + 4 * first, 1);
    std::uint8_t* const row = picture.RowAddress(y);
    if (row) fill(row + 4 * first, Bytes(&stored), static_cast<std::size_t>(count));
  }
}

void StoredRuns(const PixelPosition& from, std::int32_t step, std::int32_t n, std::int32_t count,
                std::uint32_t* scratch, const std::uint8_t** runs) {
  if (RunsInside(from, step, n, count, runs)) return;
  for (std::int32_t i = 0; i < count; ++i, scratch += n) {
    runs[i] = StoredRun(from.picture, from.x, from.y + i * step, n, scratch);
  }
}

void StoredRuns(ColumnWalk& walk, std::int32_t x, std::int32_t n, std::int32_t count, std::uint32_t* scratch,
                const std::uint8_t** runs) {
  if (RunsInside({walk.Picture(), x, walk.Row()}, walk.Step(), n, count, runs)) return walk.Skip(count);
  for (std::int32_t i = 0; i < count; ++i, scratch += n, walk.Next()) {
    runs[i] = StoredRun(walk.Picture(), x, walk.Row(), n, scratch);
  }
}

void WritableRuns(const PixelPosition& to, std::int32_t step, std::int32_t n, std::int32_t count,
                  std::uint32_t* scratch, std::uint8_t** runs) {
  if (RunsInside(to, step, n, count, runs)) return;
  for (std::int32_t i = 0; i < count; ++i, scratch += n) {
    runs[i] = WritableRun(to.picture, to.x, to.y + i * step, n, scratch);
  }
}

void PutRuns(const PixelPosition& to, std::int32_t step, std::int32_t n, std::int32_t count,
             const std::uint32_t* scratch, std::uint8_t* const* runs) {
  for (std::int32_t i = 0; i < count; ++i, scratch += n) PutRun(to.picture, to.x, to.y + i * step, n, runs[i], scratch);
}

bool WritableRuns(ColumnWalk walk, std::int32_t x, std::int32_t n, std::int32_t count, std::uint32_t* scratch,
                  std::uint8_t** runs) {
  if (RunsInside({walk.Picture(), x, walk.Row()}, walk.Step(), n, count, runs)) return true;
  for (std::int32_t i = 0; i < count; ++i, scratch += n, walk.Next()) {
    runs[i] = WritableRun(walk.Picture(), x, walk.Row(), n, scratch);
  }
  return false;
}

void PutRuns(ColumnWalk& walk, std::int32_t x, std::int32_t n, std::int32_t count, const std::uint32_t* scratch,
             std::uint8_t* const* runs) {
  for (std::int32_t i = 0; i < count; ++i, scratch += n, walk.Next()) {
    PutRun(walk.Picture(), x, walk.Row(), n, runs[i], scratch);
  }
}

void CopyRun(const PixelPosition& to, const PixelPosition& from, std::int32_t n) {
  const auto copy = KernelsBetween(from.picture, to.picture).copy;
  Transform(to, from, n, [copy](auto* out, auto* in, std::size_t count, std::int32_t) { copy(out, in, count); });
}

void CopyRunMirrored(const PixelPosition& to, const PixelPosition& from, std::int32_t n) {
  const Clipped source = Clip(from.picture, from.x, from.y, n);
  const Clipped target = Clip(to.picture, to.x, to.y, n);
  if (source.count == n && target.count == n) {
    KernelsBetween(from.picture, to.picture).copyMirrored(target.address, source.address, Size(n));
    return;
  }
  std::uint32_t working[kChunk];
  for (std::int32_t i = 0; i < n; i += kChunk) {
    const std::int32_t part = std::min(kChunk, n - i);
    ReadRun(from.picture, from.x + n - i - part, from.y, part, working);
    std::reverse(working, working + part);
    WriteRun(to.picture, to.x + i, to.y, part, working);
  }
}

void TransposeRuns(const PixelPosition& to, std::int32_t rowStep, ColumnWalk walk, std::int32_t x, std::int32_t n,
                   std::int32_t pixels) {
  constexpr std::int32_t kScratch = kTile * kTile;
  const auto transpose = gRunKernels.between[FormOf(walk.Picture())][FormOf(to.picture)].transpose;
  std::uint32_t scratchFrom[kScratch], scratchTo[kScratch];
  const std::uint8_t* from[kTile + kRowsAhead];
  std::uint8_t* rows[kMostTurned];
  for (std::int32_t i = 0, part; i < pixels; i += part) {
    const PixelPosition at = {to.picture, to.x + i, to.y};
    part = std::min(kTile, pixels - i);
    const std::int32_t ahead = std::min(kRowsAhead, pixels - i - part);
    if (RunsInside({walk.Picture(), x, walk.Row()}, walk.Step(), n, part + ahead, from) &&
        RunsInside(at, rowStep, part, n, rows)) {
      transpose(rows, from, Size(part), Size(ahead), Size(n));
      walk.Skip(part);
      continue;
    }
    part = std::min(part, kScratch / n);
    StoredRuns(walk, x, n, part, scratchFrom, from);
    WritableRuns(at, rowStep, part, n, scratchTo, rows);
    transpose(rows, from, Size(part), 0, Size(n));
    PutRuns(at, rowStep, part, n, scratchTo, rows);
  }
}

void AdjustRun(const PixelPosition& to, const PixelPosition& from, std::int32_t n, const HSVAdjustment& by) {
  const auto adjust = KernelsBetween(from.picture, to.picture).adjustHSV;
  Transform(to, from, n, [&](auto* out, auto* in, std::size_t count, std::int32_t) { adjust(out, in, &by, count); });
}

void AdjustRun(const PixelPosition& to, const PixelPosition& from, std::int32_t n, const RGBAdjustment& by) {
  const auto adjust = KernelsBetween(from.picture, to.picture).adjustRGB;
  Transform(to, from, n, [&](auto* out, auto* in, std::size_t count, std::int32_t) { adjust(out, in, &by, count); });
}

void NegateRun(const PixelPosition& to, const PixelPosition& from, std::int32_t n, const HSVAdjustment* by) {
  if (!by) {
    const auto negate = KernelsBetween(from.picture, to.picture).negative;
    Transform(to, from, n, [negate](auto* out, auto* in, std::size_t count, std::int32_t) { negate(out, in, count); });
    return;
  }
  // The adjusted pixels pass through the buffer form, which keeps all colours. A negative needs
  // nothing else of a pixel.
  const auto adjust = gRunKernels.between[FormOf(from.picture)][kBufferForm].adjustHSV;
  const auto negate = gRunKernels.between[kBufferForm][FormOf(to.picture)].negative;
  Transform(to, from, n, [&](std::uint8_t* out, const std::uint8_t* in, std::size_t count, std::int32_t) {
    std::uint32_t adjusted[kChunk];
    for (std::size_t i = 0; i < count; i += kChunk) {
      const std::size_t part = std::min<std::size_t>(kChunk, count - i);
      adjust(Bytes(adjusted), in + 4 * i, by, part);
      negate(out + 4 * i, Bytes(adjusted), part);
    }
  });
}

void BlendRun(const PixelPosition& to, const PixelPosition& from, std::int32_t n, std::uint32_t before,
              std::uint32_t fraction) {
  const auto blend = KernelsBetween(from.picture, to.picture).blend;
  Transform(to, from, n, [&](auto* out, auto* in, std::size_t count, std::int32_t i) {
    if (i > 0) ReadRun(from.picture, from.x + i - 1, from.y, 1, &before);
    blend(out, in, before, fraction, count);
  });
}

void BlendColumns(const PixelPosition& to, const PixelPosition& from, std::int32_t n, std::int32_t rows,
                  const ColumnShears& shears) {
  constexpr std::int32_t kRows = 64;
  const auto most = static_cast<std::int32_t>(*std::max_element(shears.down, shears.down + n));
  const auto blend = gRunKernels.between[FormOf(from.picture)][FormOf(to.picture)].blendColumns;
  const std::uint8_t* in[kRows + kMostColumns + 1 + kRowsAhead];
  std::uint8_t* out[kRows + kRowsAhead];
  for (std::int32_t r = 0; r < rows; r += kRows) {
    const std::int32_t part = std::min(kRows, rows - r);
    const std::int32_t ahead = std::min(kRowsAhead, rows - r - part);
    if (!RunsInside({from.picture, from.x, from.y + r}, 1, n, part + most + 1 + ahead, in)) return;
    if (!RunsInside({to.picture, to.x, to.y + r}, 1, n, part + ahead, out)) return;
    blend(out, in, shears.down, shears.fraction, Size(part), Size(ahead), Size(n));
  }
}

void HalveRun(std::uint8_t* working, const PixelPosition& from, std::int32_t n, PixelForm through) {
  const auto halve = gRunKernels.between[FormOf(from.picture)][through].halve;
  const Clipped whole = Clip(from.picture, from.x, from.y, 2 * n);
  if (whole.count == 2 * n) return halve(working, whole.address, Size(n));
  std::uint32_t in[2 * kChunk];
  for (std::int32_t i = 0; i < n; i += kChunk) {
    const std::int32_t part = std::min(kChunk, n - i);
    halve(working + 4 * Size(i), StoredRun(from.picture, from.x + 2 * i, from.y, 2 * part, in), Size(part));
  }
}

void ReadColumns(const PixelPosition& from, std::int32_t n, std::int32_t lines, std::uint8_t* const* columns) {
  std::uint32_t scratch[kTile * kTile];
  const std::uint8_t* rows[kTile];
  StoredRuns(from, 1, n, lines, scratch, rows);
  gRunKernels.between[FormOf(from.picture)][kWorkingForm].transpose(columns, rows, Size(lines), 0, Size(n));
}

void WriteColumns(const PixelPosition& to, std::int32_t n, std::int32_t lines, const std::uint8_t* const* columns) {
  std::uint32_t scratch[kTile * kTile];
  std::uint8_t* rows[kTile];
  WritableRuns(to, 1, n, lines, scratch, rows);
  // Moves pixels as they are.
  gRunKernels.between[kWorkingForm][kWorkingForm].transpose(rows, columns, Size(n), 0, Size(lines));
  PutRuns(to, 1, n, lines, scratch, rows);
}

void ColumnsToRows(std::uint8_t* const* rows, const std::uint8_t* const* columns, PixelForm form, std::int32_t n,
                   std::int32_t lines) {
  gRunKernels.between[form][kWorkingForm].transpose(rows, columns, Size(n), 0, Size(lines));
}

void AverageRuns(std::uint8_t* const* to, PixelForm form, const std::uint8_t* const* runs, const BoxUnits& units,
                 std::int32_t count, std::int32_t n, const LMX_Picture* written) {
  const RunKernels& kernels = written ? KernelsFor(*written) : gRunKernels;
  kernels.of[form].boxes(to, runs, &units, Size(count), Size(n));
}

void ReadRuns(ColumnWalk walk, std::int32_t x, std::int32_t n, std::int32_t count, std::uint32_t* working,
              const std::uint8_t** runs) {
  StoredRuns(walk, x, n, count, working, runs);
  const auto copy = gRunKernels.between[FormOf(walk.Picture())][kWorkingForm].copy;
  for (std::int32_t i = 0; i < count; ++i, working += n) {
    copy(Bytes(working), runs[i], Size(n));
    runs[i] = Bytes(working);
  }
}

RunSums::RunSums(std::int32_t n) : n_(n) {
  constexpr std::int32_t kStep = static_cast<std::int32_t>(kBoxSumsStep);
  std::fill_n(sums_, 4 * ((n + kStep - 1) / kStep * kStep), 0);
}

void RunSums::Add(const std::uint8_t* const* runs, std::int32_t count, std::uint32_t units) {
  gRunKernels.addToBoxes(sums_, runs, Size(count), units, Size(n_));
}

void RunSums::Average(std::uint8_t* to, PixelForm form, std::uint32_t units) const {
  gRunKernels.of[form].averageBoxes(to, sums_, units, Size(n_));
}

void SumRun(const PixelPosition& from, std::int32_t n, RGBSums* sums) {
  const Clipped part = Clip(from.picture, from.x, from.y, n);
  gRunKernels.of[FormOf(from.picture)].sumRGB(sums, part.address, Size(part.count));
}

void SumRun(const PixelPosition& from, std::int32_t n, HSVSums* sums) {
  const Clipped part = Clip(from.picture, from.x, from.y, n);
  gRunKernels.of[FormOf(from.picture)].sumHSV(sums, part.address, Size(part.count));
}
