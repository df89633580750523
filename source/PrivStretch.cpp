// Workers of the stretch.
//
// The row pass transposes bands of rows, so that in both passes neighbouring lines lie side by side
// and share their boxes. No program sees the temporary picture. If it is well-formed it holds
// working pixels, as they read back from its storage form, so that nothing is converted twice. The
// result is different: at a yield only the columns that are due may have been written. So there are
// three orders of work:
//   - without yields, rows of the result are made as soon as the rows of the temporary picture that
//     they need are there. Only the last rows of the temporary picture are kept. The result must
//     have every row;
//   - with yields, and no more rows in the result than in the source, both passes go into the
//     temporary picture, over rows that are used up. Its columns are copied to the result when they
//     are due;
//   - otherwise, and where a box has more rows than the kernel `boxes` takes, the temporary picture
//     keeps the row pass in strips of columns. The columns are averaged when they are due.
#include "PrivStretch.h"

#include <algorithm>

#include "LMX_Runs.h"
#include "LMX_Yield.h"
#include "kernels/LMX_Boxes.h"

namespace {

constexpr std::int32_t kLongest = 65535;            // the units of a longer destination exceed 31 bits
constexpr std::int64_t kGreatestReduction = 32768;  // beyond it a source pixel is worth less than a unit

// Whether a pass can be made. The host may have made a picture of another size than was asked for.
bool IsPass(std::int32_t from, std::int32_t to) {
  return from >= 1 && to >= 1 && !IsBeyondStretch(from, to);
}

// The boxes of one direction: `from` pixels into `to` boxes.
//
// Range: ofPixel_ is at most to * 32768, and at least 1 since from <= to * 32768. ofBox_ is 32768
// less what the two divisions cut off: at most 1 if from <= to, 31 if AreSmall(), and always at
// least 16384. All units together, from * ofPixel_ and to * ofBox_, are at most 65535 * 32768,
// below 2^31.
class Boxes {
 public:
  Boxes(std::int32_t from, std::int32_t to)
      : from_(from),
        ofPixel_((static_cast<std::uint32_t>(to) << 15) / static_cast<std::uint32_t>(from)),
        ofBox_(ofPixel_ * static_cast<std::uint32_t>(from) / static_cast<std::uint32_t>(to)) {}

  /// The first pixel of a box; the boxes from there on, for a BoxWalk; and how many pixels the
  /// boxes before `box` need.
  std::int32_t First(std::int32_t box) const { return Signed(UnitsBefore(box) / ofPixel_); }
  BoxUnits From(std::int32_t box) const { return {ofPixel_, ofBox_, ofPixel_ - UnitsBefore(box) % ofPixel_}; }
  std::int32_t Needed(std::int32_t box) const { return Signed((UnitsBefore(box) + ofPixel_ - 1) / ofPixel_); }
  /// How many boxes the first `pixels` pixels fill.
  std::int32_t Of(std::int32_t pixels) const {
    return Signed(static_cast<std::uint32_t>(std::min(pixels, from_)) * ofPixel_ / ofBox_);
  }
  /// Whether no box has more pixels than the kernel `boxes` takes.
  bool AreSmall() const { return 2 + ofBox_ / ofPixel_ <= kMostBoxRuns; }

 private:
  static std::int32_t Signed(std::uint32_t n) { return static_cast<std::int32_t>(n); }
  std::uint32_t UnitsBefore(std::int32_t box) const { return static_cast<std::uint32_t>(box) * ofBox_; }

  std::int32_t from_;
  std::uint32_t ofPixel_;
  std::uint32_t ofBox_;
};

// One average of two or more runs. runs(first, count) gives those of `count` pixels, at most
// kMostBoxRuns; it is called for one part after another.
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

// -------------------------------------------------------------------------------------------- rows

// The columns of a band of rows, as runs of working pixels. kTile columns are read at a time, and
// those in use are kept.
class BandColumns {
 public:
  BandColumns(const LMX_Picture& picture, std::int32_t y, std::int32_t lines)
      : picture_(picture), y_(y), lines_(lines) {
    for (std::int32_t i = 0; i < kMost; ++i) columns_[i] = reinterpret_cast<std::uint8_t*>(tile_[i]);
  }

  std::int32_t End() const { return end_; }

  // Reads the next columns. Columns from x on stay; they are fewer than kMostBoxRuns.
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

// Stretches rows y to y + lines - 1 of a source, at most kTile, to the width and form of another
// picture. put(x, n, columns) gets columns x to x + n - 1, n <= kTile, as runs.
template <class Put>
LMX_NOINLINE void StretchRows(const LMX_Picture& source, std::int32_t y, std::int32_t lines, const Boxes& boxes,
                              const LMX_Picture& to, const Put& put) {
  BandColumns from(source, y, lines);
  std::uint32_t tile[kTile][kTile];
  std::uint8_t* columns[kTile];
  for (std::int32_t i = 0; i < kTile; ++i) columns[i] = reinterpret_cast<std::uint8_t*>(tile[i]);
  std::int32_t filled = 0;
  for (std::int32_t x = 0; x < to.width;) {
    std::int32_t n = 1;
    if (boxes.AreSmall()) {
      n = std::min({boxes.Of(from.End()), to.width, x + kTile - filled}) - x;
      if (n == 0) {
        from.Read(boxes.First(x));
        continue;
      }
      AverageRuns(columns + filled, FormOf(to), from.At(boxes.First(x)), boxes.From(x), n, lines);
    } else {
      const auto runs = [&](std::int32_t first, std::int32_t count) {
        if (from.End() < first + count) from.Read(first);
        return from.At(first);
      };
      AverageMany(boxes, x, runs, columns[filled], FormOf(to), lines);
    }
    x += n;
    filled += n;
    if (filled == kTile || x == to.width) {
      put(x - filled, filled, columns);
      filled = 0;
    }
  }
}

// Calls make(y, lines) for each band of rows of a temporary picture, and reports the band.
template <class Make>
void RowPass(const LMX_Picture& temporary, std::int32_t band, YieldPace pace, const Make& make) {
  for (std::int32_t y = 0, n; y < temporary.height; y += n) {
    n = std::min(band, temporary.height - y);
    make(y, n);
    pace.ReportLines(n, temporary.width);
  }
}

// Working pixels in the memory of a temporary picture: `rows` rows, cut into strips of `columns`
// columns. The rows of a strip are adjacent in memory, so that going down a strip does not go from
// page to page. A single strip, and the last columns, which fill no strip, stay in the rows of the
// picture.
class Strips {
 public:
  Strips(const LMX_Picture& temporary, std::int32_t columns, std::int32_t rows)
      : temporary_(temporary), columns_(columns), rows_(rows), strips_(temporary.width / columns) {}

  std::int32_t Rows() const { return rows_; }

  /// How many columns from x on are adjacent.
  std::int32_t Together(std::int32_t x) const {
    return (IsInStrip(x) ? (x / columns_ + 1) * columns_ : temporary_.width) - x;
  }

  /// The addresses of rows y to y + count - 1, from column x on.
  void Find(std::int32_t x, std::int32_t y, std::int32_t count, std::uint8_t** runs) const {
    if (strips_ == 1 || !IsInStrip(x)) return WritableRuns({temporary_, x, y}, 1, 1, count, nullptr, runs);
    // Counts rows of strips; memory holds fewer than size_t can count.
    const auto inRow = static_cast<std::size_t>(strips_);
    const std::size_t first =
        static_cast<std::size_t>(x / columns_) * static_cast<std::size_t>(rows_) + static_cast<std::size_t>(y);
    auto row = static_cast<std::int32_t>(first / inRow), at = static_cast<std::int32_t>(first % inRow);
    for (std::int32_t i = 0; i < count; ++row, at = 0) {  // a row of the picture holds strips_ of them
      std::uint8_t* const pixels = temporary_.RowAddress(row) + 4 * static_cast<std::ptrdiff_t>(x % columns_);
      for (; i < count && at < strips_; ++i, ++at) runs[i] = pixels + 4 * static_cast<std::ptrdiff_t>(at) * columns_;
    }
  }

  /// Stretches rows y to y + lines - 1 of a source into rows toY and on.
  void Make(std::int32_t toY, const LMX_Picture& source, std::int32_t y, std::int32_t lines) const {
    const PixelForm form = FormOf(temporary_);
    const std::int32_t width = temporary_.width;
    if (columns_ >= width && source.width == static_cast<std::int64_t>(width) * 2) {
      for (std::int32_t i = 0; i < lines; ++i) {
        HalveRun(temporary_.RowAddress(toY + i), {source, 0, y + i}, width, form);
      }
      return;
    }
    const auto put = [&](std::int32_t x, std::int32_t n, std::uint8_t* const* columns) {
      std::uint8_t* rows[kTile];
      for (const std::int32_t end = x + n; x < end; x += n, columns += n) {
        n = std::min(Together(x), end - x);
        Find(x, toY, lines, rows);
        ColumnsToRows(rows, columns, form, n, lines);
      }
    };
    StretchRows(source, y, lines, Boxes(source.width, width), temporary_, put);
  }

 private:
  bool IsInStrip(std::int32_t x) const { return x / columns_ < strips_; }

  const LMX_Picture& temporary_;
  std::int32_t columns_;
  std::int32_t rows_;
  std::int32_t strips_;
};

// ----------------------------------------------------------------------------------------- columns

constexpr std::int32_t kMostRows = 64;      // of columns that are made at a time
constexpr std::int32_t kMostTogether = 64;  // columns that are made together

// Columns x to x + n - 1, n <= kMostTogether: of strips, or of a picture in which rows may be
// missing.
class ColumnsOfStrips {
 public:
  ColumnsOfStrips(const Strips& strips, std::int32_t x, std::int32_t n) : strips_(strips), x_(x), n_(n) {}

  const std::uint8_t* const* Rows(std::int32_t y, std::int32_t count) {
    strips_.Find(x_, y, count, rows_);
    // Each row is in another cache line.
    for (std::int32_t i = 0; i < count; ++i) __builtin_prefetch(rows_[i] + 4 * (n_ - 1));
    return rows_;
  }

 private:
  const Strips& strips_;
  std::int32_t x_;
  std::int32_t n_;
  std::uint8_t* rows_[kMostRows];
};
class ColumnsOfPicture {
 public:
  ColumnsOfPicture(const LMX_Picture& picture, std::int32_t x, std::int32_t n) : walk_(picture, 0), x_(x), n_(n) {}

  // y never decreases.
  const std::uint8_t* const* Rows(std::int32_t y, std::int32_t count) {
    for (; y_ < y; ++y_) walk_.Next();
    ReadRuns(walk_, x_, n_, count, pixels_, rows_);
    return rows_;
  }

 private:
  ColumnWalk walk_;
  std::int32_t x_;
  std::int32_t n_;
  std::int32_t y_ = 0;
  std::uint32_t pixels_[kMostRows * kMostTogether];
  const std::uint8_t* rows_[kMostRows];
};

// Stretches columns x to x + n - 1 of a result.
template <class Columns>
LMX_NOINLINE void StretchColumns(Columns from, const Boxes& boxes, const LMX_Picture& result, std::int32_t x,
                                 std::int32_t n) {
  const PixelForm form = FormOf(result);
  std::uint32_t scratch[kMostRows * kMostTogether];
  std::uint8_t* to[kMostRows];
  ColumnWalk walk(result, 0);
  for (std::int32_t y = 0, count; y < result.height; y += count) {
    const std::int32_t first = boxes.First(y);
    count = 1;
    if (boxes.AreSmall()) count = std::min({kMostRows, result.height - y, boxes.Of(first + kMostRows) - y});
    const bool isInside = WritableRuns(walk, x, n, count, scratch, to);
    if (boxes.AreSmall()) {
      AverageRuns(to, form, from.Rows(first, boxes.Needed(y + count) - first), boxes.From(y), count, n);
    } else {
      const auto rows = [&](std::int32_t at, std::int32_t part) { return from.Rows(at, part); };
      AverageMany(boxes, y, rows, *to, form, n);
    }
    if (isInside) {
      walk.Skip(count);
    } else {
      PutRuns(walk, x, n, count, scratch, to);
    }
  }
}

// ------------------------------------------------------------------------------------- both passes

constexpr std::int32_t kKeptRows = 2 * kTile;  // of the temporary picture, when rows of the result are made at once

// The columns that are due between two yields, or as many times that as fit in a cache line.
std::int32_t StripColumns(const YieldPace& pace, std::int32_t height) {
  constexpr std::int32_t kLine = 16;
  const std::int32_t due = pace.LinesUntilDue(height, kMostTogether);
  return due * std::max(kLine / due, 1);
}

// The columns of a result, from strips.
void ColumnPass(const Strips& from, const Boxes& boxes, const LMX_Picture& result, YieldPace pace) {
  for (std::int32_t x = 0, n; x < result.width; x += n) {
    n = pace.BeginLines(result.height, std::min(kMostTogether, from.Together(x)));
    StretchColumns(ColumnsOfStrips(from, x, n), boxes, result, x, n);
  }
}

// Averages rows y to y + count - 1 of a result. Row r of the temporary picture is kept in row r %
// kept.Rows(). Without a result the averages replace rows that no later box needs.
LMX_NOINLINE void AverageRows(const Strips& kept, const Boxes& boxes, const LMX_Picture* result, std::int32_t y,
                              std::int32_t count) {
  std::uint8_t *runs[kKeptRows], *to[kTile];
  const std::int32_t first = boxes.First(y), end = boxes.Needed(y + count);
  for (std::int32_t r = first, part; r < end; r += part) {
    part = std::min(end - r, kept.Rows() - r % kept.Rows());
    kept.Find(0, r % kept.Rows(), part, runs + (r - first));
  }
  if (result) {
    for (std::int32_t i = 0; i < count; ++i) to[i] = result->RowAddress(y + i);
  } else {
    kept.Find(0, y, count, to);
  }
  AverageRuns(to, result ? FormOf(*result) : kWorkingForm, runs, boxes.From(y), count, kept.Together(0), result);
}

// Both passes, into `height` rows of a result or, without one, of `kept`. Without a result `kept`
// has all rows of the temporary picture, otherwise kKeptRows.
void StretchAtOnce(const LMX_Picture& source, const LMX_Picture& temporary, const Strips& kept, std::int32_t height,
                   const LMX_Picture* result, std::int32_t band, YieldPace pace) {
  const Boxes down(source.height, height);
  std::int32_t done = 0;
  RowPass(temporary, band, pace, [&](std::int32_t y, std::int32_t lines) {
    kept.Make(y % kept.Rows(), source, y, lines);
    for (std::int32_t n; (n = std::min({down.Of(y + lines), height, done + kTile}) - done) > 0; done += n) {
      AverageRows(kept, down, result, done, n);
    }
  });
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
  const std::int32_t band = YieldPace::LinesAhead(temporary.width, kTile);
  if (yield <= 0 && down.AreSmall() && result.HasEveryRow()) {
    const Strips kept(temporary, temporary.width, kKeptRows);
    StretchAtOnce(source, temporary, kept, result.height, &result, kTile, pace);
  } else if (down.AreSmall() && result.height <= source.height) {
    const Strips kept(temporary, temporary.width, temporary.height);
    StretchAtOnce(source, temporary, kept, result.height, nullptr, band, pace);
    ColumnPass(kept, Boxes(result.height, result.height), result, pace);
  } else {
    const Strips strips(temporary, StripColumns(pace, result.height), temporary.height);
    RowPass(temporary, band, pace, [&](std::int32_t y, std::int32_t lines) { strips.Make(y, source, y, lines); });
    ColumnPass(strips, down, result, pace);
  }
}

void Priv_StetchHorizontal(LMX_Picture& source, LMX_Picture& destination, long yield) {
  if (!IsPass(source.width, destination.width)) return;
  const Boxes boxes(source.width, destination.width);
  const std::int32_t band = YieldPace::LinesAhead(destination.width, kTile);
  RowPass(destination, band, YieldPace(yield), [&](std::int32_t y, std::int32_t lines) {
    StretchRows(source, y, lines, boxes, destination, [&](std::int32_t x, std::int32_t n, auto* columns) {
      WriteColumns({destination, x, y}, n, lines, columns);
    });
  });
}

void Priv_StetchVertical(LMX_Picture& source, LMX_Picture& destination, long yield) {
  if (!IsPass(source.height, destination.height)) return;
  const Boxes boxes(source.height, destination.height);
  YieldPace pace(yield);
  for (std::int32_t x = 0, n; x < destination.width; x += n) {
    n = pace.BeginLines(destination.height, std::min(kMostTogether, destination.width - x));
    StretchColumns(ColumnsOfPicture(source, x, n), boxes, destination, x, n);
  }
}
