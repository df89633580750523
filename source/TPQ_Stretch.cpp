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

// The boxes of a line, one destination pixel after the other. The destination never takes more units than the source has,
// so that a line is not used up before its end.
class Boxes {
 public:
  // A box begins with the source pixel in hand and has `count` of them; `advance` is how far that one moves afterwards.
  struct Box {
    std::uint32_t count;
    BoxUnits units;
    std::uint32_t advance;
  };

  explicit Boxes(const Units& units) : units_(units), remaining_(units.perSource) {}

  Box Next() {
    Box box = {1, {units_.perDestination, 0, 0}, 0};
    if (remaining_ >= units_.perDestination) {
      remaining_ -= units_.perDestination;
    } else {
      const std::uint32_t need = units_.perDestination - remaining_;
      box.count = 1 + (need + units_.perSource - 1) / units_.perSource;
      box.units = {remaining_, units_.perSource, need - (box.count - 2) * units_.perSource};
      remaining_ = units_.perSource - box.units.last;
    }
    box.advance = box.count - 1;
    if (remaining_ == 0) {
      ++box.advance;
      remaining_ = units_.perSource;
    }
    return box;
  }

  // The most source pixels that a box can have.
  std::uint32_t MostPixels() const { return 2 + units_.perDestination / units_.perSource; }

 private:
  Units units_;
  std::uint32_t remaining_;  // units of the source pixel in hand that are still to be taken
};

// Averages n pixels from up to kMostBoxRuns runs. Of one run every pixel is its own average.
void AverageRuns(const RunKernels& kernels, PixelForm from, PixelForm to, const Boxes::Box& box,
                 const std::uint8_t* const* runs, std::uint8_t* averages, std::size_t n) {
  if (box.count == 1) {
    kernels.copy[from][to](averages, *runs, n);
  } else {
    kernels.box[from][to](averages, runs, box.count, &box.units, n);
  }
}

// A pass works on neighbouring lines side by side, since all of them share the same units. A group is one pixel of each
// of these lines. Readers give windows of groups, beginning with the one that is in hand; writers take groups one by one.

// Lines of a column pass: a piece of a row, which is a group where it lies.
constexpr std::int32_t kColumns = 512;

class ColumnReader {
 public:
  static constexpr std::int32_t kMostLines = kColumns;

  ColumnReader(const LMX_Picture& picture, std::int32_t x, std::int32_t lines)
      : picture_(picture), x_(x), lines_(lines), walk_(picture, 0) {}

  PixelForm Form() const { return FormOf(picture_); }

  // The next `count` <= kMostBoxRuns groups.
  const std::uint8_t* const* Window(std::uint32_t count) {
    if (at_ + count > kMostGroups) {
      std::copy(groups_ + at_, groups_ + end_, groups_);
      end_ -= at_;
      at_ = 0;
    }
    for (; end_ < at_ + count; ++end_) {
      StoredRuns(walk_, x_, lines_, 1, spare_[read_++ % kMostBoxRuns], groups_ + end_);
    }
    return groups_ + at_;
  }
  void Advance(std::uint32_t groups) { at_ += groups; }

 private:
  static constexpr std::uint32_t kMostGroups = 2 * kMostBoxRuns;

  const LMX_Picture& picture_;
  std::int32_t x_;
  std::int32_t lines_;
  ColumnWalk walk_;
  std::uint32_t at_ = 0;
  std::uint32_t end_ = 0;
  std::uint32_t read_ = 0;
  const std::uint8_t* groups_[kMostGroups];
  std::uint32_t spare_[kMostBoxRuns][kColumns];
};

class ColumnWriter {
 public:
  ColumnWriter(const LMX_Picture& picture, std::int32_t x, std::int32_t lines)
      : picture_(picture), x_(x), lines_(lines), walk_(picture, 0) {}

  // What makes groups.
  const RunKernels& Kernels() const { return KernelsFor(picture_); }
  // Where the next group goes, until it is done.
  std::uint8_t* Group() {
    RoomForRuns(walk_, x_, lines_, 1, spare_, &group_);
    return group_;
  }
  void Done() { PutRuns(walk_, x_, lines_, 1, spare_, &group_); }
  void Finish() {}

 private:
  const LMX_Picture& picture_;
  std::int32_t x_;
  std::int32_t lines_;
  ColumnWalk walk_;
  std::uint8_t* group_ = nullptr;
  std::uint32_t spare_[kColumns];
};

// Lines of a row pass. They go through a tile, in which pixels of a column are neighbours.
constexpr std::int32_t kRows = 32;
constexpr std::int32_t kTile = 64;

class RowReader {
 public:
  static constexpr std::int32_t kMostLines = kRows;

  RowReader(const LMX_Picture& picture, std::int32_t y, std::int32_t lines) : picture_(picture), y_(y), lines_(lines) {
    for (std::uint32_t i = 0; i < kMostGroups; ++i) groups_[i] = reinterpret_cast<std::uint8_t*>(tile_[i]);
  }

  static PixelForm Form() { return kWorkingForm; }

  const std::uint8_t* const* Window(std::uint32_t count) {
    while (end_ < at_ + count) Read();
    return groups_ + at_;
  }
  void Advance(std::uint32_t groups) { at_ += groups; }

 private:
  static constexpr std::uint32_t kMostGroups = kMostBoxRuns + kTile;

  void Read() {
    const std::int32_t n = std::min(kTile, picture_.width - x_);
    std::copy(tile_[at_], tile_[end_], tile_[0]);
    end_ -= at_;
    at_ = 0;
    std::uint32_t spare[kRows * kTile];
    const std::uint8_t* from[kRows];
    StoredRuns({picture_, x_, y_}, 1, n, lines_, spare, from);
    gRunKernels.transpose[FormOf(picture_)][kWorkingForm](groups_ + end_, from, static_cast<std::size_t>(lines_), 0,
                                                          static_cast<std::size_t>(n));
    x_ += n;
    end_ += static_cast<std::uint32_t>(n);
  }

  const LMX_Picture& picture_;
  std::int32_t y_;
  std::int32_t lines_;
  std::int32_t x_ = 0;
  std::uint32_t at_ = 0;
  std::uint32_t end_ = 0;
  std::uint8_t* groups_[kMostGroups];
  std::uint32_t tile_[kMostGroups][kRows];
};

class RowWriter {
 public:
  RowWriter(const LMX_Picture& picture, std::int32_t y, std::int32_t lines) : picture_(picture), y_(y), lines_(lines) {}

  static const RunKernels& Kernels() { return gRunKernels; }
  std::uint8_t* Group() { return reinterpret_cast<std::uint8_t*>(tile_[inTile_]); }
  void Done() {
    if (++inTile_ == kTile) Finish();
  }

  void Finish() {
    std::uint32_t spare[kRows * kTile];
    const std::uint8_t* from[kTile];
    std::uint8_t* to[kRows];
    for (std::int32_t i = 0; i < inTile_; ++i) from[i] = reinterpret_cast<const std::uint8_t*>(tile_[i]);
    RoomForRuns({picture_, x_, y_}, 1, inTile_, lines_, spare, to);
    KernelsFor(picture_).transpose[kWorkingForm][kWorkingForm](to, from, static_cast<std::size_t>(inTile_), 0,
                                                               static_cast<std::size_t>(lines_));
    PutRuns({picture_, x_, y_}, 1, inTile_, lines_, spare, to);
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

// One group from more groups than a kernel takes at once.
template <class Reader>
void AverageGroups(Reader& reader, const Boxes::Box& box, PixelForm form, std::uint8_t* to, std::size_t lines) {
  std::uint32_t sums[4 * Reader::kMostLines];
  std::fill_n(sums, 4 * lines, 0);
  const auto add = [&](std::uint32_t groups, std::uint32_t unitsOfEach) {
    gRunKernels.addToBoxes[reader.Form()](sums, reader.Window(groups), groups, unitsOfEach, lines);
  };
  add(1, box.units.first);
  reader.Advance(1);
  for (std::uint32_t left = box.count - 2; left > 0;) {
    const std::uint32_t part = std::min<std::uint32_t>(left, kMostBoxRuns);
    add(part, box.units.whole);
    reader.Advance(part);
    left -= part;
  }
  add(1, box.units.last);
  gRunKernels.averageBoxes[form](to, sums, box.units.Of(box.count), lines);
  reader.Advance(box.advance - (box.count - 1));
}

// Makes `length` groups in the form of a picture.
template <class Reader, class Writer>
void StretchLines(Reader&& reader, Writer&& writer, PixelForm form, const Units& units, std::int32_t length,
                  std::size_t lines) {
  Boxes boxes(units);
  for (std::int32_t i = 0; i < length; ++i) {
    const Boxes::Box box = boxes.Next();
    if (box.count <= kMostBoxRuns) {
      AverageRuns(writer.Kernels(), reader.Form(), form, box, reader.Window(box.count), writer.Group(), lines);
      reader.Advance(box.advance);
    } else {
      AverageGroups(reader, box, form, writer.Group(), lines);
    }
    writer.Done();
  }
  writer.Finish();
}

// Rows y to y + n - 1 of the row pass, n <= kRows.
LMX_OWN_FRAME void StretchRows(const LMX_Picture& source, const LMX_Picture& destination, std::int32_t y,
                               std::int32_t n) {
  if (source.width == static_cast<std::int64_t>(destination.width) * 2) {
    for (std::int32_t i = y; i < y + n; ++i) HalveRun({destination, 0, i}, {source, 0, i}, destination.width);
    return;
  }
  StretchLines(RowReader(source, y, n), RowWriter(destination, y, n), FormOf(destination),
               UnitsFor(source.width, destination.width), destination.width, static_cast<std::size_t>(n));
}

// Columns x to x + n - 1 of the column pass, n <= kColumns.
LMX_OWN_FRAME void StretchColumns(const LMX_Picture& source, const LMX_Picture& destination, std::int32_t x,
                                  std::int32_t n) {
  StretchLines(ColumnReader(source, x, n), ColumnWriter(destination, x, n), FormOf(destination),
               UnitsFor(source.height, destination.height), destination.height, static_cast<std::size_t>(n));
}

// Whether a pass can be made; a host may have made a picture of another size.
bool IsPass(std::int32_t from, std::int32_t to) {
  return from >= 1 && to >= 1 && !IsBeyondPass(from, to);
}

// Both passes together, where nobody can see the difference: no yield shows what is complete, and no row is missing. The
// rows of the temporary picture are used as soon as they are made. False, and nothing done, where it cannot be so.
bool StretchAtOnce(const LMX_Picture& source, const LMX_Picture& temporary, const LMX_Picture& result) {
  if (!IsPass(source.width, temporary.width) || !IsPass(temporary.height, result.height) ||
      temporary.height != source.height || temporary.width != result.width || !temporary.HasEveryRow() ||
      !result.HasEveryRow()) {
    return false;
  }
  Boxes boxes(UnitsFor(temporary.height, result.height));
  if (boxes.MostPixels() > kMostBoxRuns) return false;
  const RunKernels& kernels = KernelsFor(result);
  std::int32_t made = 0;   // rows of the temporary picture
  std::int32_t first = 0;  // its row in hand
  for (std::int32_t y = 0; y < result.height; ++y) {
    const Boxes::Box box = boxes.Next();
    const std::int32_t count = static_cast<std::int32_t>(box.count);
    for (std::int32_t n; made < first + count; made += n) {
      n = std::min(kRows, temporary.height - made);
      StretchRows(source, temporary, made, n);
    }
    const std::uint8_t* rows[kMostBoxRuns];
    for (std::int32_t i = 0; i < count; ++i) rows[i] = temporary.RowAddress(first + i);
    AverageRuns(kernels, FormOf(temporary), FormOf(result), box, rows, result.RowAddress(y),
                static_cast<std::size_t>(result.width));
    first += static_cast<std::int32_t>(box.advance);
  }
  return true;
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
  if (yield <= 0 && StretchAtOnce(source, temporary, result)) return;
  Priv_StetchHorizontal(source, temporary, yield);
  Priv_StetchVertical(temporary, result, yield);
}

void Priv_StetchHorizontal(LMX_Picture& source, LMX_Picture& destination, long yield) {
  if (!IsPass(source.width, destination.width)) return;
  YieldPace pace(yield);
  for (std::int32_t y = 0; y < destination.height;) {
    const std::int32_t n = pace.BeginLines(destination.width, std::min(kRows, destination.height - y));
    StretchRows(source, destination, y, n);
    y += n;
  }
}

void Priv_StetchVertical(LMX_Picture& source, LMX_Picture& destination, long yield) {
  if (!IsPass(source.height, destination.height)) return;
  YieldPace pace(yield);
  for (std::int32_t x = 0; x < destination.width;) {
    const std::int32_t n = pace.BeginLines(destination.height, std::min(kColumns, destination.width - x));
    StretchColumns(source, destination, x, n);
    x += n;
  }
}
