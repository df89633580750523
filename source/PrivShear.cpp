// Workers of the shears.
//
// A shear moves lines (rows, or columns) along themselves, each by one step more than its neighbour. Where a line lies
// is a 16.16 position: its whole part places the line's pixels, its fraction f blends each of them with the one before,
// with weights 65535 - f and f. Towards the frame, an opaque frame lends its alpha only, so that it does not tint the
// image's edge. Across themselves lines are placed in whole pixels.
//
// Positions are computed in 64 bits, so that they hold for every size. A line that lies wholly before the result is all
// frame.
#include "PrivShear.h"

#include <algorithm>
#include <cmath>

#include "LMX_Convert.h"
#include "LMX_Runs.h"
#include "LMX_Yield.h"
#include "kernels/RunKernels.h"

namespace {

struct Frame {
  Frame(unsigned int color, const LMX_Picture& result)
      : pixel(color ^ 0xFF000000), stored(StoredPixel(result, pixel)) {}

  // What a pixel at the image's edge is blended with.
  std::uint32_t Beside(std::uint32_t imagePixel) const {
    return LMX_Pixel::Alpha(pixel) == 255 ? 0xFF000000 | imagePixel : pixel;
  }

  std::uint32_t pixel;
  std::uint32_t stored;  // as the result stores it
};

// Where the source's lines come to lie in the result.
struct Placement {
  std::int32_t begin;      // result lines before this one are frame
  std::int32_t end;        // and so are the lines from this one on
  std::int32_t firstLine;  // the source line at `begin`
  std::int64_t offset;     // its 16.16 position along itself
  std::int32_t step;       // how much less the offset of each following line is
};

// Centres `lines` lines of `length` pixels in a result of the other size. A surplus or deficit that is odd has the
// extra pixel at the end. A positive shear leaves the last line displaced by one step, a negative one starts at 0.
Placement Place(std::int32_t length, std::int32_t lines, std::int32_t resultLength, std::int32_t resultLines,
                double shear) {
  if (std::isnan(shear)) shear = 0;
  const std::int32_t step = TruncatedToInt(std::floor(shear * 65536.0));
  const std::int64_t natural = static_cast<std::int64_t>(std::floor(length + lines * std::fabs(shear)));
  Placement placement;
  placement.begin = resultLines > lines ? (resultLines - lines) / 2 : 0;
  placement.end = resultLines > lines ? placement.begin + lines : resultLines;
  placement.firstLine = resultLines < lines ? (lines - resultLines) / 2 : 0;
  placement.step = step;
  placement.offset = (resultLength - natural) / 2 * 65536 + static_cast<std::int64_t>(step > 0 ? lines : 0) * step -
                     static_cast<std::int64_t>(step) * placement.firstLine;
  return placement;
}

// One line of the source in one line of the result: the image's pixels are `begin` to `end` - 1 there, and its pixel
// `first` is the one at `begin`. Where the image is cut off at the start, its pixel before `first` takes the frame's
// part in the blend.
struct Line {
  std::int32_t begin = 0;
  std::int32_t end = 0;
  std::int32_t first = 0;
  bool cut = false;
  std::uint32_t fraction = 0;

  // Whether any pixel of the line shows, be it only the last one's share in the edge.
  bool Shows() const { return begin < end || (cut && fraction > 0); }

  // The first pixel of the source that is needed.
  std::int32_t Origin() const { return cut ? first - 1 : first; }
};

Line LineAt(std::int64_t offset, std::int32_t length, std::int32_t resultLength) {
  const std::int64_t whole = offset >> 16;  // rounds down, also below 0
  Line line;
  if (length < 1 || whole < -static_cast<std::int64_t>(length)) return line;
  line.begin = static_cast<std::int32_t>(std::clamp<std::int64_t>(whole, 0, resultLength));
  line.end = static_cast<std::int32_t>(std::clamp<std::int64_t>(whole + length, line.begin, resultLength));
  line.first = static_cast<std::int32_t>(std::max<std::int64_t>(-whole, 0));
  line.cut = offset < 0;
  line.fraction = static_cast<std::uint32_t>(offset & 0xFFFF);
  return line;
}

// The pixel behind the image's last one, which shares it with the frame. It shifts where the others divide.
std::uint32_t EdgePixel(std::uint32_t last, std::uint32_t fraction, const Frame& frame) {
  const std::uint32_t beside = frame.Beside(last);
  const auto mix = [fraction](std::uint32_t image, std::uint32_t other) {
    return (image * fraction + other * (65535 - fraction)) >> 16;
  };
  return LMX_Pixel::Pack(
      mix(LMX_Pixel::Alpha(last), LMX_Pixel::Alpha(beside)), mix(LMX_Pixel::Red(last), LMX_Pixel::Red(beside)),
      mix(LMX_Pixel::Green(last), LMX_Pixel::Green(beside)), mix(LMX_Pixel::Blue(last), LMX_Pixel::Blue(beside)));
}

// ------------------------------------------------------------------------------------------------------------- rows

void ShearRow(const LMX_Picture& source, std::int32_t sourceRow, const LMX_Picture& result, std::int32_t y,
              const Line& line, const Frame& frame) {
  FillRun(result, 0, y, line.begin, frame.stored);
  const std::int32_t shown = line.end - line.begin;
  if (shown > 0) {
    std::uint32_t before;
    ReadRun(source, line.Origin(), sourceRow, 1, &before);
    if (!line.cut) before = frame.Beside(before);
    BlendRun({result, line.begin, y}, {source, line.first, sourceRow}, shown, before, line.fraction);
  }
  std::int32_t x = line.end;
  if (line.fraction > 0 && x < result.width) {
    std::uint32_t last;
    ReadRun(source, line.first + shown - 1, sourceRow, 1, &last);
    FillRun(result, x++, y, 1, StoredPixel(result, EdgePixel(last, line.fraction, frame)));
  }
  FillRun(result, x, y, result.width - x, frame.stored);
}

// ---------------------------------------------------------------------------------------------------------- columns

void FillColumns(const LMX_Picture& result, std::int32_t x, std::int32_t columns, const Frame& frame) {
  ColumnWalk walk(result, 0);
  for (std::int32_t y = 0; y < result.height; ++y, walk.Next()) FillRun(result, x, walk.Row(), columns, frame.stored);
}

// Neighbouring columns are turned into runs, kRows rows at a time, and blended along themselves. As they are displaced by
// up to a pixel each against each other, a piece of kRows rows of the result needs up to kRows + kColumns + 1 rows of the
// source, and what is read ahead is less than kRows.
constexpr std::int32_t kColumns = 64;
constexpr std::int32_t kRows = 64;
constexpr std::int32_t kRowsKept = 256;
constexpr std::int32_t kApart = 16;  // between rings, so that their rows do not compete for the same lines of the cache
static_assert(kRowsKept % kRows == 0 && kRowsKept >= 3 * kRows + kColumns);

// Columns of a picture as runs of stored pixels: rings of the last kRowsKept rows.
class ColumnRuns {
 public:
  // Reading starts at row `first`.
  ColumnRuns(const LMX_Picture& picture, std::int32_t x, std::int32_t columns, std::int32_t first)
      : picture_(picture), x_(x), columns_(columns), first_(first), next_(first), walk_(picture, first) {}

  // Reads on until row `last` is there.
  void ReadTo(std::int32_t last) {
    while (next_ <= last) Read();
  }

  // Row `r` of a column. Rows follow behind it in the ring, up to its end.
  const std::uint8_t* At(std::int32_t column, std::int32_t r) const {
    return reinterpret_cast<const std::uint8_t*>(rings_[column] + Place(r));
  }
  std::int32_t UpToEnd(std::int32_t r) const { return kRowsKept - Place(r); }
  // The same pixel as a working one.
  std::uint32_t PixelAt(std::int32_t column, std::int32_t r) const { return picture_.ReadPixel(At(column, r)); }

 private:
  std::int32_t Place(std::int32_t r) const { return (r - first_) % kRowsKept; }

  void Read() {
    std::uint32_t spare[kRows * kColumns];
    const std::uint8_t* from[kRows];
    std::uint8_t* to[kColumns];
    StoredRuns(walk_, x_, columns_, kRows, spare, from);
    for (std::int32_t i = 0; i < columns_; ++i) to[i] = reinterpret_cast<std::uint8_t*>(rings_[i] + Place(next_));
    gRunKernels.transpose[kWorkingForm][kWorkingForm](to, from, kRows, static_cast<std::size_t>(columns_));
    next_ += kRows;
  }

  const LMX_Picture& picture_;
  std::int32_t x_;
  std::int32_t columns_;
  std::int32_t first_;
  std::int32_t next_;  // the row that is read next
  ColumnWalk walk_;
  std::uint32_t rings_[kColumns][kRowsKept + kApart];
};

// Rows y to y + n - 1 of one column of the result, as it stores them.
void ShearPiece(const LMX_Picture& source, const ColumnRuns& runs, const LMX_Picture& result, std::int32_t column,
                const Line& line, std::int32_t y, std::int32_t n, const Frame& frame, std::uint32_t* pixels) {
  const std::int32_t begin = std::clamp(line.begin, y, y + n);
  const std::int32_t end = std::clamp(line.end, y, y + n);
  const std::int32_t shift = line.first - line.begin;  // from rows of the result to rows of the source
  std::fill_n(pixels, begin - y, frame.stored);
  for (std::int32_t at = begin; at < end;) {
    const std::int32_t r = at + shift;
    const std::int32_t part = std::min(end - at, runs.UpToEnd(r));
    const std::uint32_t before =
        at == line.begin && !line.cut ? frame.Beside(runs.PixelAt(column, r)) : runs.PixelAt(column, r - 1);
    gRunKernels.blend[FormOf(source)][FormOf(result)](reinterpret_cast<std::uint8_t*>(pixels + (at - y)),
                                                      runs.At(column, r), before, line.fraction,
                                                      static_cast<std::size_t>(part));
    at += part;
  }
  std::fill(pixels + (end - y), pixels + n, frame.stored);
  if (line.fraction > 0 && line.end >= y && line.end < y + n) {
    pixels[line.end - y] =
        StoredPixel(result, EdgePixel(runs.PixelAt(column, line.end + shift - 1), line.fraction, frame));
  }
}

// Makes columns x to x + columns - 1 of the result from the same number of the source's, from `sourceX` on.
LMX_OWN_FRAME void ShearColumns(const LMX_Picture& source, std::int32_t sourceX, const LMX_Picture& result,
                                std::int32_t x, std::int32_t columns, const Line* lines, const Frame& frame) {
  // Rows of the result that are not all frame, the first row of the source that is needed, and how far the rows of the
  // source are behind those of the result at most.
  std::int32_t top = result.height;
  std::int32_t bottom = 0;
  std::int32_t origin = source.height;
  std::int32_t shift = -result.height;
  for (const Line* line = lines; line < lines + columns; ++line) {
    if (!line->Shows()) continue;
    top = std::min(top, line->begin);
    bottom = std::max(bottom, std::min(line->end + 1, result.height));
    origin = std::min(origin, line->Origin());
    shift = std::max(shift, line->first - line->begin);
  }
  if (bottom == 0) return FillColumns(result, x, columns, frame);

  ColumnWalk walk(result, 0);
  const auto fillRows = [&](std::int32_t from, std::int32_t to) {
    for (std::int32_t y = from; y < to; ++y, walk.Next()) FillRun(result, x, walk.Row(), columns, frame.stored);
  };
  fillRows(0, top);
  ColumnRuns runs(source, sourceX, columns, origin);
  std::uint32_t pieces[kColumns][kRows];
  std::uint32_t spare[kRows * kColumns];
  const std::uint8_t* from[kColumns];
  std::uint8_t* to[kRows];
  for (std::int32_t i = 0; i < columns; ++i) from[i] = reinterpret_cast<const std::uint8_t*>(pieces[i]);
  for (std::int32_t y = top; y < bottom; y += kRows) {
    const std::int32_t n = std::min(kRows, bottom - y);
    runs.ReadTo(y + n - 1 + shift);
    for (std::int32_t i = 0; i < columns; ++i) {
      ShearPiece(source, runs, result, i, lines[i], y, n, frame, pieces[i]);
    }
    RoomForRuns(walk, x, columns, n, spare, to);
    KernelsFor(result).transpose[kWorkingForm][kWorkingForm](to, from, static_cast<std::size_t>(columns),
                                                             static_cast<std::size_t>(n));
    PutRuns(walk, x, columns, n, spare, to);
  }
  fillRows(bottom, result.height);
}

}  // namespace

void Priv_ShearHorizontal(LMX_Picture& source, LMX_Picture& result, double shear, unsigned int frame_color,
                          long yield) {
  const Placement at = Place(source.width, source.height, result.width, result.height, shear);
  const Frame frame(frame_color, result);
  YieldPace pace(yield);
  std::int64_t offset = at.offset;
  for (std::int32_t y = 0; y < result.height; ++y) {
    pace.BeginLines(result.width, 1);
    if (y < at.begin || y >= at.end) {
      FillRun(result, 0, y, result.width, frame.stored);
    } else {
      const Line line = LineAt(offset, source.width, result.width);
      ShearRow(source, at.firstLine + (y - at.begin), result, y, line, frame);
      offset -= at.step;
    }
  }
}

void Priv_ShearVertical(LMX_Picture& source, LMX_Picture& result, double shear, unsigned int frame_color, long yield) {
  const Placement at = Place(source.height, source.width, result.height, result.width, shear);
  const Frame frame(frame_color, result);
  // Where rows are missing, each column has to be walked from its own first row.
  const std::int32_t widest = source.HasEveryRow() ? kColumns : 1;
  YieldPace pace(yield);
  std::int64_t offset = at.offset;
  for (std::int32_t x = 0; x < result.width;) {
    const std::int32_t regionEnd = x < at.begin ? at.begin : x < at.end ? at.end : result.width;
    const std::int32_t columns = pace.BeginLines(result.height, std::min(widest, regionEnd - x));
    if (x < at.begin || x >= at.end) {
      FillColumns(result, x, columns, frame);
    } else {
      Line lines[kColumns];
      for (std::int32_t i = 0; i < columns; ++i, offset -= at.step) {
        lines[i] = LineAt(offset, source.height, result.height);
      }
      ShearColumns(source, at.firstLine + (x - at.begin), result, x, columns, lines, frame);
    }
    x += columns;
  }
}
