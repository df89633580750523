// Runs of a picture's pixels: clipping, and the choice of the kernel by storage form.
#include "LMX_Runs.h"

#include <algorithm>

#include "kernels/RunKernels.h"

namespace {

StorageForm Form(const LMX_Picture& picture) {
  return picture.buffer ? kBufferForm : kContextForm;
}

// The part of a run that the picture holds: `count` pixels at `address`, behind `before` pixels that lie to its left.
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

}  // namespace

void ReadRun(const LMX_Picture& picture, std::int32_t x, std::int32_t y, std::int32_t n, std::uint32_t* working) {
  const Clipped part = Clip(picture, x, y, n);
  std::fill_n(working, part.before, 0);
  gRunKernels.read[Form(picture)](working + part.before, part.address, Size(part.count));
  std::fill(working + part.before + part.count, working + n, 0);
}

void WriteRun(const LMX_Picture& picture, std::int32_t x, std::int32_t y, std::int32_t n,
              const std::uint32_t* working) {
  const Clipped part = Clip(picture, x, y, n);
  gRunKernels.write[Form(picture)](part.address, working + part.before, Size(part.count));
}

void FillRun(const LMX_Picture& picture, std::int32_t x, std::int32_t y, std::int32_t n, std::uint32_t working) {
  const Clipped part = Clip(picture, x, y, n);
  std::uint8_t stored[4];
  gRunKernels.write[Form(picture)](stored, &working, 1);
  gRunKernels.fill(part.address, stored, Size(part.count));
}

void CopyRun(const PixelPosition& to, const PixelPosition& from, std::int32_t n) {
  const Clipped source = Clip(from.picture, from.x, from.y, n);
  const Clipped target = Clip(to.picture, to.x, to.y, n);
  if (source.count == n && target.count == n) {
    gRunKernels.copy[Form(from.picture)][Form(to.picture)](target.address, source.address, Size(n));
    return;
  }
  std::uint32_t working[kChunk];
  for (std::int32_t i = 0; i < n; i += kChunk) {
    const std::int32_t part = std::min(kChunk, n - i);
    ReadRun(from.picture, from.x + i, from.y, part, working);
    WriteRun(to.picture, to.x + i, to.y, part, working);
  }
}

void CopyRunMirrored(const PixelPosition& to, const PixelPosition& from, std::int32_t n) {
  const Clipped source = Clip(from.picture, from.x, from.y, n);
  const Clipped target = Clip(to.picture, to.x, to.y, n);
  if (source.count == n && target.count == n) {
    gRunKernels.copyMirrored[Form(from.picture)][Form(to.picture)](target.address, source.address, Size(n));
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
