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

// A pass works on neighbouring lines side by side, since all of them share the same units. A group is one pixel of each
// of these lines; readers give the next groups, writers take one after the other.

// Lines of a column pass: a piece of a row long enough to be worth the walk from row to row.
constexpr std::int32_t kColumns = 128;

class ColumnReader {
 public:
  static constexpr std::int32_t kMostLines = kColumns;

  ColumnReader(const LMX_Picture& picture, std::int32_t x, std::int32_t lines)
      : picture_(picture), x_(x), lines_(lines), walk_(picture, 0) {}

  // The next groups, 1 to `atMost`. They stay until the next call.
  const std::uint32_t* Next(std::uint32_t /*atMost*/, std::uint32_t* count) {
    std::uint32_t* const group = groups_[turn_ ^= 1];
    ReadRun(picture_, x_, walk_.Row(), lines_, group);
    walk_.Down();
    *count = 1;
    return group;
  }
  // The group before the one that came last.
  const std::uint32_t* Before() const { return groups_[turn_ ^ 1]; }

 private:
  const LMX_Picture& picture_;
  std::int32_t x_;
  std::int32_t lines_;
  ColumnWalk walk_;
  int turn_ = 0;
  std::uint32_t groups_[2][kColumns];
};

class ColumnWriter {
 public:
  ColumnWriter(const LMX_Picture& picture, std::int32_t x, std::int32_t lines)
      : picture_(picture), x_(x), lines_(lines), walk_(picture, 0) {}

  // Where the next group goes, until it is done.
  std::uint32_t* Group() { return group_; }
  void Done() {
    WriteRun(picture_, x_, walk_.Row(), lines_, group_);
    walk_.Down();
  }
  void Finish() {}

 private:
  const LMX_Picture& picture_;
  std::int32_t x_;
  std::int32_t lines_;
  ColumnWalk walk_;
  std::uint32_t group_[kColumns];
};

// Lines of a row pass. They go through a tile, so that their pixels come and go in runs.
constexpr std::int32_t kRows = 32;
constexpr std::int32_t kTile = 64;

class RowReader {
 public:
  static constexpr std::int32_t kMostLines = kRows;

  RowReader(const LMX_Picture& picture, std::int32_t y, std::int32_t lines) : picture_(picture), y_(y), lines_(lines) {}

  const std::uint32_t* Next(std::uint32_t atMost, std::uint32_t* count) {
    if (next_ == kTile) Fill();
    *count = std::min<std::uint32_t>(atMost, kTile - next_);
    const std::uint32_t* const groups = tile_[1 + next_];
    next_ += *count;
    return groups;
  }
  const std::uint32_t* Before() const { return tile_[next_ - 1]; }

 private:
  void Fill() {
    std::copy_n(tile_[kTile], kRows, tile_[0]);
    std::uint32_t spare[kRows][kTile];
    const std::uint8_t* from[kRows];
    std::uint8_t* to[kTile];
    const std::int32_t n = std::min(kTile, picture_.width - x_);
    for (std::int32_t i = 0; i < lines_; ++i) from[i] = StoredRun(picture_, x_, y_ + i, n, spare[i]);
    for (std::int32_t i = 0; i < n; ++i) to[i] = reinterpret_cast<std::uint8_t*>(tile_[1 + i]);
    gRunKernels.transpose[FormOf(picture_)][kWorkingForm](to, from, static_cast<std::size_t>(lines_),
                                                          static_cast<std::size_t>(n));
    x_ += n;
    next_ = 0;
  }

  const LMX_Picture& picture_;
  std::int32_t y_;
  std::int32_t lines_;
  std::int32_t x_ = 0;
  std::uint32_t next_ = kTile;
  std::uint32_t tile_[1 + kTile][kRows];  // the last group of the tile before comes first
};

class RowWriter {
 public:
  RowWriter(const LMX_Picture& picture, std::int32_t y, std::int32_t lines) : picture_(picture), y_(y), lines_(lines) {}

  std::uint32_t* Group() { return tile_[inTile_]; }
  void Done() {
    if (++inTile_ == kTile) Finish();
  }

  void Finish() {
    std::uint32_t spare[kRows][kTile];
    const std::uint8_t* from[kTile];
    std::uint8_t* to[kRows];
    for (std::int32_t i = 0; i < inTile_; ++i) from[i] = reinterpret_cast<const std::uint8_t*>(tile_[i]);
    for (std::int32_t i = 0; i < lines_; ++i) to[i] = RoomForRun(picture_, x_, y_ + i, inTile_, spare[i]);
    gRunKernels.transpose[kWorkingForm][FormOf(picture_)](to, from, static_cast<std::size_t>(inTile_),
                                                          static_cast<std::size_t>(lines_));
    for (std::int32_t i = 0; i < lines_; ++i) PutRun(picture_, x_, y_ + i, inTile_, to[i], spare[i]);
    x_ += inTile_;
    inTile_ = 0;
  }

 private:
  const LMX_Picture& picture_;
  std::int32_t y_;
  std::int32_t lines_;
  std::int32_t x_ = 0;
  std::int32_t inTile_ = 0;
  std::uint32_t tile_[kTile][kRows];
};

// Makes `length` groups. The destination never takes more units than the source has, so that a line is not used up before
// its end.
template <class Reader, class Writer>
void StretchLines(Reader&& reader, Writer&& writer, const Units& units, std::int32_t length, std::size_t lines) {
  const std::uint32_t* group = nullptr;
  std::uint32_t remaining = 0;  // units of `group` that are still to be taken
  std::uint32_t count;
  for (std::int32_t i = 0; i < length; ++i) {
    if (remaining == 0) {
      group = reader.Next(1, &count);
      remaining = units.perSource;
    }
    if (remaining >= units.perDestination) {  // all from one pixel, which is its own average
      std::copy_n(group, lines, writer.Group());
      remaining -= units.perDestination;
    } else if (std::uint32_t need = units.perDestination - remaining; need <= units.perSource) {
      group = reader.Next(1, &count);
      gRunKernels.mix(writer.Group(), reader.Before(), group, need, units.perDestination, lines);
      remaining = units.perSource - need;
    } else {
      std::uint32_t sums[4 * Reader::kMostLines];
      std::fill_n(sums, 4 * lines, 0);
      gRunKernels.addCoverage(sums, group, 0, 1, remaining, lines);
      while (need >= units.perSource) {
        const std::uint32_t* const whole = reader.Next(need / units.perSource, &count);
        gRunKernels.addCoverage(sums, whole, Reader::kMostLines, count, units.perSource, lines);
        need -= count * units.perSource;
      }
      remaining = 0;
      if (need > 0) {
        group = reader.Next(1, &count);
        gRunKernels.addCoverage(sums, group, 0, 1, need, lines);
        remaining = units.perSource - need;
      }
      gRunKernels.averageCoverage(writer.Group(), sums, units.perDestination, lines);
    }
    writer.Done();
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
    const std::int32_t n = pace.BeginLines(to, std::min(Reader::kMostLines, lines - line));
    StretchLines(Reader(source, line, n), Writer(destination, line, n), units, to, static_cast<std::size_t>(n));
    line += n;
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
