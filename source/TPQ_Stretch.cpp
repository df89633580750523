// LMX_Stretch: the source resampled to another size, as a new picture.
//
// width, height  size of the result in pixels, 1 to 65535, and at least 1/32768 of the source's
// Rows are resampled into a temporary picture, then its columns into the result, both with a box filter: a source pixel
// is worth floor(D * 32768 / S) units, where S and D are the source's and the destination's length, a destination pixel
// takes floor(units * S / D) units of them in turn, and its channels are the sums divided by that, truncated. The units
// that are left over at the end of a line are not used.
// Errors, in this order: 35 height, 34 width, 2 source nil, 4 source not lockable, 35 and 34 again for sizes beyond the
// bounds above, 5 no temporary picture (the result comes untouched). No result gives nil with code 0.
#include "TPQ_Stretch.h"

#include <algorithm>

#include "LMX_Runs.h"
#include "LMX_Yield.h"
#include "TPQ_Errors.h"
#include "kernels/RunKernels.h"

namespace {

constexpr std::int32_t kLongest = 65535;            // the units of a longer destination overflow
constexpr std::int64_t kGreatestReduction = 32768;  // beyond, a source pixel is worth no unit at all

bool IsBeyondPass(std::int32_t from, std::int32_t to) {
  return to > kLongest || from > to * kGreatestReduction;
}

// What one source pixel is worth, and what one destination pixel takes.
struct Units {
  std::uint32_t perSource;
  std::uint32_t perDestination;
};

Units UnitsFor(std::int32_t from, std::int32_t to) {
  const std::uint32_t perSource = (static_cast<std::uint32_t>(to) << 15) / static_cast<std::uint32_t>(from);
  return {perSource, perSource * static_cast<std::uint32_t>(from) / static_cast<std::uint32_t>(to)};
}

// A pass works on up to kLanes neighbouring lines side by side, since all of them share the same units. Readers give the
// next pixel of each line, writers take one for each.

class ColumnReader {
 public:
  ColumnReader(const LMX_Picture& picture, std::int32_t x, std::int32_t lanes)
      : picture_(picture), x_(x), lanes_(lanes), walk_(picture, 0) {}

  const std::uint32_t* Next() {
    ReadRun(picture_, x_, walk_.Row(), lanes_, pixels_);
    walk_.Down();
    return pixels_;
  }

 private:
  const LMX_Picture& picture_;
  std::int32_t x_;
  std::int32_t lanes_;
  ColumnWalk walk_;
  std::uint32_t pixels_[kLanes];
};

class ColumnWriter {
 public:
  ColumnWriter(const LMX_Picture& picture, std::int32_t x, std::int32_t lanes)
      : picture_(picture), x_(x), lanes_(lanes), walk_(picture, 0) {}

  void Put(const std::uint32_t* pixels) {
    WriteRun(picture_, x_, walk_.Row(), lanes_, pixels);
    walk_.Down();
  }
  void Finish() {}

 private:
  const LMX_Picture& picture_;
  std::int32_t x_;
  std::int32_t lanes_;
  ColumnWalk walk_;
};

// Rows pass through a tile, so that their pixels come and go in runs.
constexpr std::int32_t kTile = 64;

class RowReader {
 public:
  RowReader(const LMX_Picture& picture, std::int32_t y, std::int32_t lanes) : picture_(picture), y_(y), lanes_(lanes) {}

  const std::uint32_t* Next() {
    const std::int32_t inTile = x_++ % kTile;
    if (inTile == 0) Fill();
    return groups_ + inTile * kLanes;
  }

 private:
  void Fill() {
    std::uint32_t runs[kLanes * kTile] = {};
    for (std::int32_t lane = 0; lane < lanes_; ++lane) {
      ReadRun(picture_, x_ - 1, y_ + lane, kTile, runs + lane * kTile);
    }
    gRunKernels.scatterLanes(groups_, runs, kTile, kTile);
  }

  const LMX_Picture& picture_;
  std::int32_t y_;
  std::int32_t lanes_;
  std::int32_t x_ = 0;
  std::uint32_t groups_[kTile * kLanes];
};

class RowWriter {
 public:
  RowWriter(const LMX_Picture& picture, std::int32_t y, std::int32_t lanes) : picture_(picture), y_(y), lanes_(lanes) {}

  void Put(const std::uint32_t* pixels) {
    std::copy_n(pixels, kLanes, groups_ + inTile_ * kLanes);
    if (++inTile_ == kTile) Finish();
  }

  void Finish() {
    std::uint32_t runs[kLanes * kTile];
    gRunKernels.gatherLanes(runs, kTile, groups_, static_cast<std::size_t>(inTile_));
    for (std::int32_t lane = 0; lane < lanes_; ++lane) {
      WriteRun(picture_, x_, y_ + lane, inTile_, runs + lane * kTile);
    }
    x_ += inTile_;
    inTile_ = 0;
  }

 private:
  const LMX_Picture& picture_;
  std::int32_t y_;
  std::int32_t lanes_;
  std::int32_t x_ = 0;
  std::int32_t inTile_ = 0;
  std::uint32_t groups_[kTile * kLanes];
};

// The destination never takes more units than the source has, so that a line is not used up before its end.
template <class Reader, class Writer>
void StretchLines(Reader&& reader, Writer&& writer, const Units& units, std::int32_t length, std::size_t lanes) {
  const std::uint32_t* pixels = nullptr;
  std::uint32_t remaining = 0;  // units of `pixels` that are still to be taken
  for (std::int32_t i = 0; i < length; ++i) {
    CoverageSums sums = {};
    for (std::uint32_t need = units.perDestination; need > 0;) {
      if (remaining == 0) {
        pixels = reader.Next();
        remaining = units.perSource;
      }
      const std::uint32_t take = std::min(remaining, need);
      gRunKernels.addCoverage(&sums, pixels, take, lanes);
      remaining -= take;
      need -= take;
    }
    std::uint32_t averages[kLanes] = {};
    gRunKernels.averageCoverage(averages, &sums, units.perDestination, lanes);
    writer.Put(averages);
  }
  writer.Finish();
}

template <class Reader, class Writer>
void Pass(const LMX_Picture& source, const LMX_Picture& destination, std::int32_t from, std::int32_t to,
          std::int32_t lines, long yield) {
  if (from < 1 || to < 1 || IsBeyondPass(from, to)) return;  // a host that made a picture of another size
  const Units units = UnitsFor(from, to);
  YieldPace pace(yield);
  for (std::int32_t line = 0; line < lines;) {
    const std::int32_t lanes = pace.BeginLines(to, std::min(kLanes, lines - line));
    StretchLines(Reader(source, line, lanes), Writer(destination, line, lanes), units, to,
                 static_cast<std::size_t>(lanes));
    line += lanes;
  }
}

}  // namespace

REALpictureStruct* LMX_Stretch(REALpictureStruct* p, int width, int height, long yield) {
  gLMX_Error = height <= 0 ? kHeightOutOfBounds : width <= 0 ? kWidthOutOfBounds : !p ? kSourceIsNil : kNoError;
  if (gLMX_Error != kNoError) return nullptr;
  return PrivStretch_NonVector(p, width, height, yield);
}

REALpictureStruct* PrivStretch_NonVector(REALpictureStruct* p, int width, int height, long yield) {
  LMX_Picture source(p);
  if (!source.Lock()) {
    gLMX_Error = kCantLockSource;
    return nullptr;
  }
  if (IsBeyondPass(source.height, height)) {
    gLMX_Error = kHeightOutOfBounds;
    return nullptr;
  }
  if (IsBeyondPass(source.width, width)) {
    gLMX_Error = kWidthOutOfBounds;
    return nullptr;
  }
  LMX_Picture result;
  result.SetNewPicture(width, height, true);
  if (!result.Lock()) return nullptr;
  PrivStretch_NonVector_NoMask(source, result, yield);
  return result.picture;
}

void PrivStretch_NonVector_NoMask(LMX_Picture& source, LMX_Picture& result, long yield) {
  LMX_Picture temporary;
  if (source.width > 0) temporary.SetNewPicture(result.width, source.height, false);
  if (!temporary.Lock()) {
    gLMX_Error = kCantLockIntermediate;
    return;
  }
  Priv_StetchHorizontal(source, temporary, yield);
  Priv_StetchVertical(temporary, result, yield);
}

void Priv_StetchHorizontal(LMX_Picture& source, LMX_Picture& destination, long yield) {
  Pass<RowReader, RowWriter>(source, destination, source.width, destination.width, destination.height, yield);
}

void Priv_StetchVertical(LMX_Picture& source, LMX_Picture& destination, long yield) {
  Pass<ColumnReader, ColumnWriter>(source, destination, source.height, destination.height, destination.width, yield);
}
