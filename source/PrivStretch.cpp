// Workers of the stretch.
//
// The row pass turns bands of rows into runs of columns, so that in both passes neighbouring lines
// lie side by side and share their boxes. The temporary picture is nobody's business. As long as it
// is a well-formed one, it holds working pixels, as they come back from its storage form: nothing
// is converted twice. The column pass writes a result, in which only the columns may be touched
// that are due at a yield:
//   - without yields both passes go together: rows of the result are made from rows of the
//     temporary picture that were just made, of which it keeps the last ones only;
//   - with yields, and columns that do not grow, both passes go together likewise, but into the
//     temporary picture itself, whose rows are free by then. Its columns are written to the result
//     when they are due;
//   - otherwise the columns are averaged when they are due, from strips in which the temporary
//     picture keeps them.
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

// The boxes of one direction, `to` of them. All products of a pixel, or a box, and its units are
// below 2^31.
class Boxes {
 public:
  Boxes(std::int32_t from, std::int32_t to)
      : from_(from),
        ofPixel_((static_cast<std::uint32_t>(to) << 15) / static_cast<std::uint32_t>(from)),
        ofBox_(ofPixel_ * static_cast<std::uint32_t>(from) / static_cast<std::uint32_t>(to)) {}

  /// The first pixel of a box, the units from there on, and how many pixels it takes to make the
  /// boxes before another one.
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

// One average of any number of runs: runs(first, count) gives those of `count` pixels, at most
// kMostBoxRuns, one part after another.
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

// The columns of a band of rows, as runs of working pixels: those that are in use, read kTile at a
// time.
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

// Rows y to y + lines - 1 of a source, at most kTile, as rows of another picture's width and form:
// put(x, n, columns) gets columns x to x + n - 1 of them, n <= kTile, as runs.
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

// Calls make(y, lines) for every `band` rows of a temporary picture.
template <class Make>
void RowPass(const LMX_Picture& temporary, std::int32_t band, YieldPace pace, const Make& make) {
  for (std::int32_t y = 0, n; y < temporary.height; y += n) {
    n = std::min(band, temporary.height - y);
    make(y, n);
    pace.ReportLines(n, temporary.width);
  }
}

// Working pixels in the memory of a temporary picture: `rows` rows, in strips of `columns` columns.
// The rows of a strip follow each other, so that going down a strip is not going from page to page.
// Columns that fill no strip stay where a picture has them, as do those of a single strip.
class Strips {
 public:
  Strips(const LMX_Picture& temporary, std::int32_t columns, std::int32_t rows)
      : temporary_(temporary), columns_(columns), rows_(rows), strips_(temporary.width / columns) {}

  std::int32_t Rows() const { return rows_; }

  /// How many columns lie together from column x on.
  std::int32_t Together(std::int32_t x) const {
    return (IsInStrip(x) ? (x / columns_ + 1) * columns_ : temporary_.width) - x;
  }

  /// Finds rows y to y + count - 1, from column x on.
  void Find(std::int32_t x, std::int32_t y, std::int32_t count, std::uint8_t** runs) const {
    if (strips_ == 1 || !IsInStrip(x)) return RoomForRuns({temporary_, x, y}, 1, 1, count, nullptr, runs);
    // Counted in the strips' rows, of which memory has no more than it can address.
    const auto inRow = static_cast<std::size_t>(strips_);
    const std::size_t first =
        static_cast<std::size_t>(x / columns_) * static_cast<std::size_t>(rows_) + static_cast<std::size_t>(y);
    auto row = static_cast<std::int32_t>(first / inRow), at = static_cast<std::int32_t>(first % inRow);
    for (std::int32_t i = 0; i < count; ++row, at = 0) {  // strips_ rows lie in a row of the picture
      std::uint8_t* const pixels = temporary_.RowAddress(row) + 4 * static_cast<std::ptrdiff_t>(x % columns_);
      for (; i < count && at < strips_; ++i, ++at) runs[i] = pixels + 4 * static_cast<std::ptrdiff_t>(at) * columns_;
    }
  }

  /// Makes `lines` rows from row toY on of those of a source from row y on.
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

constexpr std::int32_t kMostRows = 64;      // that are made of columns at a time
constexpr std::int32_t kMostTogether = 64;  // that are made together

// Columns x to x + n - 1, n <= kMostTogether, of strips; and of a picture, in which rows may be
// missing.
class ColumnsOfStrips {
 public:
  ColumnsOfStrips(const Strips& strips, std::int32_t x, std::int32_t n) : strips_(strips), x_(x), n_(n) {}

  const std::uint8_t* const* Rows(std::int32_t y, std::int32_t count) {
    strips_.Find(x_, y, count, rows_);
    // Each of them is another line of the cache.
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

// Columns x to x + n - 1 of a result.
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
    const bool isInside = RoomForRuns(walk, x, n, count, scratch, to);
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

constexpr std::int32_t kKeptRows = 2 * kTile;  // of the temporary picture, while rows of the result are made of them

// A line of the cache at least, and what is due between two yields once or several times.
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

// Rows y to y + count - 1 of a result, from rows of the temporary picture, of which row r is kept
// in row r % kept.Rows(). Without a result they take the place of rows that no later one needs.
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

// Both passes, into `height` rows of a result, or of the memory in which rows are kept: all of them
// then, otherwise 2 * kTile.
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
