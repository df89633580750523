// Workers of the stretch.
//
// The row pass turns bands of rows into runs of columns, so that in both passes neighbouring lines lie side by side and share
// their boxes. The temporary picture is nobody's business. As long as it is a well-formed one, it holds working pixels, as
// they come back from its storage form: nothing is converted twice. The column pass writes a result, in which only the
// columns may be touched that are due at a yield:
//   - without yields both passes go together: rows of the result are made from rows of the temporary picture that were just
//     made, of which it keeps the last ones only;
//   - with yields, and columns that do not grow, both passes go together likewise, but into the temporary picture itself,
//     whose rows are free by then. Its columns are written to the result when they are due;
//   - otherwise the columns are averaged when they are due.
#include "PrivStretch.h"

#include <algorithm>

#include "LMX_Runs.h"
#include "LMX_Yield.h"
#include "kernels/LMX_Boxes.h"

namespace {

constexpr std::int32_t kLongest = 65535;            // the units of a longer destination overflow
constexpr std::int64_t kGreatestReduction = 32768;  // beyond, a source pixel is worth no unit at all

// Whether a pass can be made; a host may have made a picture of another size.
bool IsPass(std::int32_t from, std::int32_t to) {
  return from >= 1 && to >= 1 && !IsBeyondStretch(from, to);
}

// The boxes of one direction, `to` of them. All products of a pixel, or a box, and its units are below 2^31.
class Boxes {
 public:
  Boxes(std::int32_t from, std::int32_t to)
      : from_(from),
        ofPixel_((static_cast<std::uint32_t>(to) << 15) / static_cast<std::uint32_t>(from)),
        ofBox_(ofPixel_ * static_cast<std::uint32_t>(from) / static_cast<std::uint32_t>(to)) {}

  /// The first pixel of a box, the units from there on, and how many pixels it takes to make the boxes before another one.
  std::int32_t First(std::int32_t box) const { return Signed(UnitsBefore(box) / ofPixel_); }
  BoxUnits From(std::int32_t box) const { return {ofPixel_, ofBox_, ofPixel_ - UnitsBefore(box) % ofPixel_}; }
  std::int32_t Needed(std::int32_t box) const { return Signed((UnitsBefore(box) + ofPixel_ - 1) / ofPixel_); }
  /// How many boxes the first pixels make.
  std::int32_t Of(std::int32_t pixels) const {
    return Signed(static_cast<std::uint32_t>(std::min(pixels, from_)) * ofPixel_ / ofBox_);
  }
  /// Whether no box has more pixels than a kernel takes at a time.
  bool AreSmall() const { return 2 + ofBox_ / ofPixel_ <= kMostBoxRuns; }

 private:
  static std::int32_t Signed(std::uint32_t n) { return static_cast<std::int32_t>(n); }
  std::uint32_t UnitsBefore(std::int32_t box) const { return static_cast<std::uint32_t>(box) * ofBox_; }

  std::int32_t from_;
  std::uint32_t ofPixel_;
  std::uint32_t ofBox_;
};

// One average of any number of runs: runs(first, count) gives those of `count` pixels, at most kMostBoxRuns, one part after
// another.
template <class Runs>
void AverageMany(const Boxes& boxes, std::int32_t box, const Runs& runs, std::uint8_t* to, PixelForm form,
                 std::int32_t n) {
  const BoxUnits units = boxes.From(box);
  const Box one = BoxWalk(units).Next();
  RunSums sums(n);
  std::int32_t at = boxes.First(box);
  const std::int32_t last = at + static_cast<std::int32_t>(one.count) - 1;
  sums.Add(runs(at++, 1), 1, one.first);
  for (std::int32_t part; at < last; at += part) {
    part = std::min<std::int32_t>(kMostBoxRuns, last - at);
    sums.Add(runs(at, part), part, units.ofRun);
  }
  sums.Add(runs(last, 1), 1, one.last);
  sums.Average(to, form, units.ofBox);
}

// --------------------------------------------------------------------------------------------------------------- rows

// The columns of a band of rows, as runs of working pixels: those that are in use, read kTile at a time.
class BandColumns {
 public:
  BandColumns(const LMX_Picture& picture, std::int32_t y, std::int32_t lines)
      : picture_(picture), y_(y), lines_(lines) {
    for (std::int32_t i = 0; i < kMost; ++i) columns_[i] = reinterpret_cast<std::uint8_t*>(tile_[i]);
  }

  std::int32_t End() const { return end_; }

  // Reads on; columns from x on stay, fewer than kMostBoxRuns.
  void Read(std::int32_t x) {
    std::copy(tile_[x - begin_], tile_[end_ - begin_], tile_[0]);
    begin_ = x;
    const std::int32_t n = std::min(kTile, picture_.width - end_);
    ReadColumns({picture_, end_, y_}, n, lines_, columns_ + (end_ - begin_));
    end_ += n;
  }

  const std::uint8_t* const* At(std::int32_t x) const { return columns_ + (x - begin_); }

 private:
  static constexpr std::int32_t kMost = static_cast<std::int32_t>(kMostBoxRuns) + kTile;

  const LMX_Picture& picture_;
  std::int32_t y_;
  std::int32_t lines_;
  std::int32_t begin_ = 0;
  std::int32_t end_ = 0;
  std::uint8_t* columns_[kMost];
  std::uint32_t tile_[kMost][kTile];
};

// Rows of a source, `lines` of them from y on, at most kTile, as rows of a temporary picture from `toY` on. `kept` is the
// form in which it keeps its pixels, its own one or kWorkingForm.
LMX_OWN_FRAME void StretchRows(const LMX_Picture& source, std::int32_t y, std::int32_t lines, const Boxes& boxes,
                               const LMX_Picture& temporary, std::int32_t toY, PixelForm kept) {
  const PixelForm form = FormOf(temporary);
  if (kept == kWorkingForm && source.width == static_cast<std::int64_t>(temporary.width) * 2) {
    for (std::int32_t i = 0; i < lines; ++i) {
      HalveRun(temporary.RowAddress(toY + i), {source, 0, y + i}, temporary.width, form);
    }
    return;
  }
  BandColumns from(source, y, lines);
  std::uint32_t tile[kTile][kTile];
  std::uint8_t* columns[kTile];
  for (std::int32_t i = 0; i < kTile; ++i) columns[i] = reinterpret_cast<std::uint8_t*>(tile[i]);
  std::int32_t filled = 0;
  for (std::int32_t x = 0; x < temporary.width;) {
    std::int32_t n = 1;
    if (boxes.AreSmall()) {
      n = std::min({boxes.Of(from.End()), temporary.width, x + kTile - filled}) - x;
      if (n == 0) {
        from.Read(boxes.First(x));
        continue;
      }
      AverageRuns(columns + filled, form, from.At(boxes.First(x)), boxes.From(x), n, lines);
    } else {
      const auto runs = [&](std::int32_t first, std::int32_t count) {
        if (from.End() < first + count) from.Read(first);
        return from.At(first);
      };
      AverageMany(boxes, x, runs, columns[filled], form, lines);
    }
    x += n;
    filled += n;
    if (filled == kTile || x == temporary.width) {
      WriteColumns({temporary, x - filled, toY}, filled, lines, columns, kept);
      filled = 0;
    }
  }
}

void RowPass(const LMX_Picture& source, const LMX_Picture& temporary, PixelForm kept, YieldPace pace) {
  const Boxes boxes(source.width, temporary.width);
  const std::int32_t band = YieldPace::LinesAhead(temporary.width, kTile);
  for (std::int32_t y = 0, n; y < temporary.height; y += n) {
    n = std::min(band, temporary.height - y);
    StretchRows(source, y, n, boxes, temporary, y, kept);
    pace.ReportLines(n, temporary.width);
  }
}

// ------------------------------------------------------------------------------------------------------------- columns

constexpr std::int32_t kMostRows = 64;     // of a strip, that are made at a time
constexpr std::int32_t kWideStrip = 512;   // columns
constexpr std::int32_t kNarrowStrip = 16;  // where rows may be missing, so that they go through buffers
static_assert(kWideStrip <= RunSums::kMostSums);

// Columns x to x + n - 1 of a result. `isWhole` says that both pictures hold all that is walked along; otherwise n is at
// most kNarrowStrip.
LMX_OWN_FRAME void StretchColumns(const LMX_Picture& temporary, PixelForm kept, const Boxes& boxes,
                                  const LMX_Picture& result, std::int32_t x, std::int32_t n, bool isWhole) {
  const PixelForm form = FormOf(result);
  std::uint32_t spareFrom[kMostRows * kNarrowStrip], spareTo[kMostRows * kNarrowStrip];
  const std::uint8_t* runs[kMostRows];
  std::uint8_t* to[kMostRows];
  ColumnWalk fromWalk(temporary, 0), toWalk(result, 0);
  const auto read = [&](ColumnWalk& walk, std::int32_t count) {
    ReadRuns(walk, x, n, count, kept, spareFrom, runs);
    // Each of them is another line of the cache.
    for (std::int32_t i = 0; i < count; ++i) __builtin_prefetch(runs[i] + 4 * (n - 1));
    return runs;
  };
  for (std::int32_t y = 0, count; y < result.height; y += count) {
    const std::int32_t first = boxes.First(y);
    count = 1;
    if (boxes.AreSmall()) count = std::min({kMostRows, result.height - y, boxes.Of(first + kMostRows) - y});
    RoomForRuns(toWalk, x, n, count, spareTo, to);
    ColumnWalk walk = fromWalk;
    if (boxes.AreSmall()) {
      AverageRuns(to, form, read(walk, boxes.Needed(y + count) - first), boxes.From(y), count, n);
    } else {
      AverageMany(
          boxes, y, [&](std::int32_t, std::int32_t part) { return read(walk, part); }, *to, form, n);
    }
    const std::int32_t steps = boxes.First(y + count) - first;
    if (isWhole) {
      toWalk.Skip(count);
      if (steps > 0) fromWalk.Skip(steps);
    } else {
      PutRuns(toWalk, x, n, count, spareTo, to);
      for (std::int32_t i = 0; i < steps; ++i) fromWalk.Next();
    }
  }
}

void ColumnPass(const LMX_Picture& temporary, PixelForm kept, const Boxes& boxes, const LMX_Picture& result,
                YieldPace pace) {
  const bool isWhole = kept == kWorkingForm && result.HasEveryRow();
  for (std::int32_t x = 0, n; x < result.width; x += n) {
    n = pace.BeginLines(result.height, std::min(isWhole ? kWideStrip : kNarrowStrip, result.width - x));
    StretchColumns(temporary, kept, boxes, result, x, n, isWhole);
  }
}

// ---------------------------------------------------------------------------------------------------------- both passes

// Rows of the temporary picture that are kept while rows are made of them, kTile at a time.
constexpr std::int32_t kKeptRows = 2 * kTile;

// Rows of a picture from rows of the temporary one, of which row r is kept in row r % keptRows.
LMX_OWN_FRAME void AverageRows(const LMX_Picture& temporary, std::int32_t keptRows, const Boxes& boxes,
                               const LMX_Picture& to, PixelForm form, std::int32_t y, std::int32_t count) {
  const std::uint8_t* runs[kKeptRows];
  std::uint8_t* rows[kTile];
  const std::int32_t first = boxes.First(y), end = boxes.Needed(y + count);
  for (std::int32_t r = first; r < end; ++r) runs[r - first] = temporary.RowAddress(r % keptRows);
  for (std::int32_t i = 0; i < count; ++i) rows[i] = to.RowAddress(y + i);
  AverageRuns(rows, form, runs, boxes.From(y), count, to.width, &to);
}

// Both passes, into `height` rows of a picture: that may be the temporary one, which keeps every row then. `band` rows are
// made at a time; keptRows is a multiple of it, or every row.
void StretchAtOnce(const LMX_Picture& source, const LMX_Picture& temporary, std::int32_t band, std::int32_t keptRows,
                   const LMX_Picture& to, PixelForm form, std::int32_t height, YieldPace pace) {
  const Boxes across(source.width, temporary.width), down(source.height, height);
  std::int32_t made = 0;
  for (std::int32_t y = 0; y < height;) {
    const std::int32_t count = std::min({down.Of(made), height, y + kTile}) - y;
    if (count > 0) {
      AverageRows(temporary, keptRows, down, to, form, y, count);
      y += count;
    } else {
      const std::int32_t lines = std::min(band, temporary.height - made);
      StretchRows(source, made, lines, across, temporary, made % keptRows, kWorkingForm);
      made += lines;
      pace.ReportLines(lines, temporary.width);
    }
  }
  pace.ReportLines(temporary.height - made, temporary.width);
}

}  // namespace

bool IsBeyondStretch(std::int32_t from, std::int32_t to) {
  return to > kLongest || from > to * kGreatestReduction;
}

void Priv_StretchThrough(LMX_Picture& temporary, LMX_Picture& source, LMX_Picture& result, long yield) {
  if (!IsPass(source.width, temporary.width) || !IsPass(temporary.height, result.height) ||
      temporary.height != source.height || temporary.width != result.width || !temporary.HasEveryRow()) {
    Priv_StetchHorizontal(source, temporary, yield);
    Priv_StetchVertical(temporary, result, yield);
    return;
  }
  const Boxes down(source.height, result.height);
  const YieldPace pace(yield);
  if (yield <= 0 && down.AreSmall() && result.HasEveryRow()) {
    StretchAtOnce(source, temporary, kTile, kKeptRows, result, FormOf(result), result.height, pace);
  } else if (down.AreSmall() && result.height <= source.height) {
    StretchAtOnce(source, temporary, YieldPace::LinesAhead(temporary.width, kTile), source.height, temporary,
                  kWorkingForm, result.height, pace);
    ColumnPass(temporary, kWorkingForm, Boxes(result.height, result.height), result, pace);
  } else {
    RowPass(source, temporary, kWorkingForm, pace);
    ColumnPass(temporary, kWorkingForm, down, result, pace);
  }
}

void Priv_StetchHorizontal(LMX_Picture& source, LMX_Picture& destination, long yield) {
  if (IsPass(source.width, destination.width)) RowPass(source, destination, FormOf(destination), YieldPace(yield));
}

void Priv_StetchVertical(LMX_Picture& source, LMX_Picture& destination, long yield) {
  if (!IsPass(source.height, destination.height)) return;
  ColumnPass(source, FormOf(source), Boxes(source.height, destination.height), destination, YieldPace(yield));
}
