// Workers of the shears. A line is a row (ShearRows) or a column (ShearStrip and what it calls).
//
// A shear moves lines along themselves, each by one step more than its neighbour. The place of a
// line is a 16.16 position. Its whole part places the line's pixels. Its fraction f blends each
// pixel with the one before it: the one before has the weight f, the pixel 65535 - f. At the edge,
// an opaque frame takes the colour of the image pixel and lends its alpha only, so that it does not
// tint the edge. Lines are placed in whole pixels across their direction.
//
// Rounding: Place() rounds the step and the slanted length down, and half the difference of lengths
// towards 0; LineAt() rounds the position down, also below 0; BlendRun and BlendColumns truncate
// (LMX_Pixel::Blend); EdgePixel() shifts.
//
// Positions are computed in 64 bits: a length, or a number of lines times a step, is below 2^31 *
// 65536. A line that lies wholly before the result is all frame.
#include "PrivShear.h"

#include <algorithm>
#include <cmath>

#include "LMX_Convert.h"
#include "LMX_Region.h"
#include "LMX_Runs.h"
#include "LMX_Yield.h"
#include "kernels/RunKernels.h"

namespace {

struct Frame {
  Frame(unsigned int color, const LMX_Picture& result)
      : pixel(color ^ 0xFF000000), stored(StoredPixel(result, pixel)) {}

  // The frame's part in the blend with a pixel at the edge of the image.
  std::uint32_t Beside(std::uint32_t imagePixel) const {
    return LMX_Pixel::Alpha(pixel) == 255 ? 0xFF000000 | imagePixel : pixel;
  }

  std::uint32_t pixel;
  std::uint32_t stored;  // as the result stores it
};

// One line of the source, placed in a line of the result. Image pixels are at `begin` to `end` - 1;
// the source's pixel `first` is at `begin`. If the image is cut off at the start, its pixel before
// `first` takes the frame's part in the blend.
struct Line {
  std::int32_t begin = 0;
  std::int32_t end = 0;
  std::int32_t first = 0;
  bool cut = false;
  std::uint32_t fraction = 0;

  // Whether any pixel of the line shows, if only as a part of the edge pixel.
  bool Shows() const { return begin < end || (cut && fraction > 0); }

  // The first source pixel that is needed.
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

// Where the source's lines come to lie in the result.
struct Placement {
  std::int32_t begin;      // result lines before this one are frame
  std::int32_t end;        // and so are the lines from this one on
  std::int32_t firstLine;  // the source line at `begin`
  std::int64_t offset;     // its 16.16 position along itself
  std::int32_t step;       // how much less the offset of each following line is

  // Places a source line of which only the pixels of `span` are taken; those outside are clear.
  Line LineOf(std::int32_t line, const LineSpan& span, std::int32_t resultLength) const {
    const std::int64_t moved = static_cast<std::int64_t>(line - firstLine) * step;
    Line at =
        LineAt(offset - moved + static_cast<std::int64_t>(span.begin) * 65536, span.end - span.begin, resultLength);
    at.first += span.begin;
    return at;
  }

  // Where an image lies after the shear.
  ImageRegion Sheared(ImageRegion image, ImageRegion::Axis along) const {
    const double perLine = step / 65536.0;
    image.Shear(along, static_cast<double>(offset) / 65536.0 + perLine * firstLine, perLine, begin - firstLine);
    return image;
  }
};

// Centres `lines` lines of `length` pixels in a result. If the difference is odd, the extra pixel
// is at the end. A positive shear leaves the last line displaced by one step, a negative one leaves
// the first line at 0.
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

// The pixel after the last one of the image, mixed with the frame. Rationale: it shifts right by 16
// where interior pixels divide by 65535. The results differ, and this one is right here. The
// largest sum, 255 * 65535, has 24 bits.
std::uint32_t EdgePixel(std::uint32_t last, std::uint32_t fraction, const Frame& frame) {
  const std::uint32_t beside = frame.Beside(last);
  const auto mix = [fraction](std::uint32_t image, std::uint32_t other) {
    return (image * fraction + other * (65535 - fraction)) >> 16;
  };
  return LMX_Pixel::Pack(
      mix(LMX_Pixel::Alpha(last), LMX_Pixel::Alpha(beside)), mix(LMX_Pixel::Red(last), LMX_Pixel::Red(beside)),
      mix(LMX_Pixel::Green(last), LMX_Pixel::Green(beside)), mix(LMX_Pixel::Blue(last), LMX_Pixel::Blue(beside)));
}

// -------------------------------------------------------------------------------------------- rows

// Writes the span `written` of a row of the result.
void ShearRow(const LMX_Picture& source, std::int32_t sourceRow, const LMX_Picture& result, std::int32_t y,
              const Line& line, const LineSpan& written, const Frame& frame) {
  FillRun(result, written.begin, y, line.begin - written.begin, frame.stored);
  const std::int32_t shown = line.end - line.begin;
  if (shown > 0) {
    const std::uint32_t origin = ReadOnePixel({source, line.Origin(), sourceRow});
    const std::uint32_t before = line.cut ? origin : frame.Beside(origin);
    BlendRun({result, line.begin, y}, {source, line.first, sourceRow}, shown, before, line.fraction);
  }
  std::int32_t x = line.end;
  if (line.fraction > 0 && x < result.width) {
    const std::uint32_t last = ReadOnePixel({source, line.first + shown - 1, sourceRow});
    WriteOnePixel({result, x++, y}, EdgePixel(last, line.fraction, frame));
  }
  FillRun(result, x, y, written.end - x, frame.stored);
}

// Whether only the image of a result has to be written: the result is temporary, its frame is
// clear, and its rows are all there and do not overlap.
bool IsSparse(const LMX_Picture& result, const Frame& frame) {
  return result.unlockOnRelease && frame.pixel == 0 && result.HasEveryRow() && result.HasRowsOfItsOwn();
}

// rowOf(y) is the row of `source` that holds source row y. `image` is where the image lies in the
// source, and on return where it lies in the result.
template <class RowOf>
void ShearRows(const LMX_Picture& source, RowOf rowOf, const LMX_Picture& result, double shear,
               unsigned int frame_color, long yield, ImageRegion& image) {
  const Placement at = Place(source.width, source.height, result.width, result.height, shear);
  const Frame frame(frame_color, result);
  const bool isSparse = IsSparse(result, frame);
  const ImageRegion sheared = isSparse ? at.Sheared(image, ImageRegion::kAlongRows) : ImageRegion(result);
  YieldPace pace(yield);
  for (std::int32_t y = 0; y < result.height; ++y) {
    pace.BeginLines(result.width, 1);
    const LineSpan written = isSparse
                                 ? sheared.Along(ImageRegion::kAlongRows, y, y, ImageRegion::kWritten, result.width)
                                 : LineSpan{0, result.width};
    if (y < at.begin || y >= at.end) {
      FillRun(result, written.begin, y, written.end - written.begin, frame.stored);
      continue;
    }
    const std::int32_t from = at.firstLine + (y - at.begin);
    const LineSpan read = image.Along(ImageRegion::kAlongRows, from, from, ImageRegion::kRead, source.width);
    ShearRow(source, rowOf(from), result, y, at.LineOf(from, read, result.width), written, frame);
  }
  image = sheared;
}

// ----------------------------------------------------------------------------------------- columns

// The pixel at `y` of a result column; read(i) gives pixel i of the source column.
template <class Read>
std::uint32_t PixelAt(const Line& line, std::int32_t y, const Frame& frame, Read read) {
  const std::int32_t i = line.first + (y - line.begin);
  if (y >= line.begin && y < line.end) {
    const std::uint32_t pixel = read(i);
    const bool isFirst = y == line.begin && !line.cut;
    return LMX_Pixel::Blend(pixel, isFirst ? frame.Beside(pixel) : read(i - 1), line.fraction);
  }
  return y == line.end && line.fraction > 0 ? EdgePixel(read(i - 1), line.fraction, frame) : frame.pixel;
}

// Neighbouring columns of a result, and the source columns that they come from.
struct Strip {
  PixelPosition from;  // its first column; rows count from 0
  PixelPosition to;
  const Frame& frame;
  Line lines[kMostColumns];

  // Pixel `y` of a column, in pictures that have every row.
  std::uint32_t PixelAt(std::int32_t column, std::int32_t y) const {
    return ::PixelAt(lines[column], y, frame, [&](std::int32_t i) {
      return ReadOnePixel({from.picture, from.x + column, i});
    });
  }

  // Blends rows y to y + rows - 1 of n columns. All these pixels are image, and so are those above
  // them in the source.
  void Blend(std::int32_t first, std::int32_t n, std::int32_t y, std::int32_t rows) const {
    const auto shift = [&](std::int32_t i) { return lines[first + i].first - lines[first + i].begin; };
    std::int32_t least = shift(0);
    for (std::int32_t i = 1; i < n; ++i) least = std::min(least, shift(i));
    ColumnShears shears;
    for (std::int32_t i = 0; i < n; ++i) {
      shears.down[i] = static_cast<std::uint32_t>(shift(i) - least);
      shears.fraction[i] = lines[first + i].fraction;
    }
    BlendColumns({to.picture, to.x + first, y}, {from.picture, from.x + first, y + least - 1}, n, rows, shears);
  }
};

void ShearStrip(const Strip& strip, std::int32_t first, std::int32_t n, std::int32_t top, std::int32_t bottom);

// Rows at the edge, in which some columns are image and others are frame. Makes each half of the
// columns by itself; a few columns are made pixel by pixel.
void ShearHalves(const Strip& strip, std::int32_t first, std::int32_t n, std::int32_t top, std::int32_t bottom) {
  constexpr std::int32_t kFew = 4;
  if (n > kFew) {
    ShearStrip(strip, first, n / 2, top, bottom);
    ShearStrip(strip, first + n / 2, n - n / 2, top, bottom);
    return;
  }
  for (std::int32_t y = top; y < bottom; ++y) {
    for (std::int32_t i = first; i < first + n; ++i) {
      WriteOnePixel({strip.to.picture, strip.to.x + i, y}, strip.PixelAt(i, y));
    }
  }
}

// Rows `top` to `bottom` - 1 of n columns of a strip.
void ShearStrip(const Strip& strip, std::int32_t first, std::int32_t n, std::int32_t top, std::int32_t bottom) {
  // In rows `image` to `imageEnd` - 1 some columns show the image. In rows `inside` to `insideEnd`
  // - 1 all columns blend two pixels of the image.
  std::int32_t image = bottom, imageEnd = top, inside = top, insideEnd = bottom;
  for (const Line* line = strip.lines + first; line < strip.lines + first + n; ++line) {
    inside = std::max(inside, line->cut ? line->begin : line->begin + 1);
    insideEnd = std::min(insideEnd, line->end);
    if (!line->Shows()) continue;
    image = std::min(image, std::max(line->begin, top));
    imageEnd = std::max(imageEnd, std::min(line->end + 1, bottom));
  }
  image = std::min(image, imageEnd);
  FillRuns({strip.to.picture, strip.to.x + first, top}, n, image - top, strip.frame.stored);
  if (inside < insideEnd) {
    ShearHalves(strip, first, n, image, inside);
    strip.Blend(first, n, inside, insideEnd - inside);
    ShearHalves(strip, first, n, insideEnd, imageEnd);
  } else {
    ShearHalves(strip, first, n, image, imageEnd);
  }
  FillRuns({strip.to.picture, strip.to.x + first, imageEnd}, n, bottom - imageEnd, strip.frame.stored);
}

// One column of pictures in which rows may be missing. The source is walked from the column's own
// first row.
void WalkColumn(const PixelPosition& from, const PixelPosition& to, const Line& line, const Frame& frame) {
  std::int32_t last = line.Origin();  // where the walk ends
  for (ColumnWalk walk(from.picture, last); last < from.picture.height - 1; ++last) {
    walk.Next();
    if (walk.Row() == last) break;
  }
  ColumnWalk walk(to.picture, 0);
  for (std::int32_t y = 0; y < to.picture.height; ++y, walk.Next()) {
    const auto read = [&](std::int32_t i) { return ReadOnePixel({from.picture, from.x, std::min(i, last)}); };
    WriteOnePixel({to.picture, to.x, walk.Row()}, PixelAt(line, y, frame, read));
  }
}

// Rows `written` of columns x to x + n - 1 of the result, which are all frame or all not. A source
// row that is near the image in one column is read in all columns. So pixels are read that no pass
// wrote. What they become lies as far from the image, where the next pass reads nothing.
LMX_NOINLINE void ShearColumns(const LMX_Picture& source, const ImageRegion& image, const LMX_Picture& result,
                               std::int32_t x, std::int32_t n, const LineSpan& written, const Placement& at,
                               const Frame& frame, bool hasEveryRow) {
  const std::int32_t from = at.firstLine + (x - at.begin);
  const LineSpan read = image.Along(ImageRegion::kAlongColumns, from, from + n - 1, ImageRegion::kRead, source.height);
  Strip strip = {{source, from, 0}, {result, x, 0}, frame, {}};
  for (std::int32_t i = 0; i < n && x >= at.begin && x < at.end; ++i) {
    strip.lines[i] = at.LineOf(from + i, read, result.height);
  }
  if (hasEveryRow) return ShearStrip(strip, 0, n, written.begin, written.end);
  for (std::int32_t i = 0; i < n; ++i) WalkColumn({source, from + i, 0}, {result, x + i, 0}, strip.lines[i], frame);
}

}  // namespace

void Priv_ShearHorizontal(LMX_Picture& source, LMX_Picture& result, double shear, unsigned int frame_color,
                          long yield) {
  ImageRegion image(source);
  ShearImageHorizontal(source, result, shear, frame_color, yield, image);
}

void Priv_ShearVertical(LMX_Picture& source, LMX_Picture& result, double shear, unsigned int frame_color, long yield) {
  ImageRegion image(source);
  ShearImageVertical(source, result, shear, frame_color, yield, image);
}

void ShearImageHorizontal(TurnedRows& source, LMX_Picture& result, double shear, unsigned int frame_color, long yield,
                          ImageRegion& image) {
  const auto rowOf = [&](std::int32_t y) { return source.RowOf(y); };
  ShearRows(source.Picture(), rowOf, result, shear, frame_color, yield, image);
}

void ShearImageHorizontal(LMX_Picture& source, LMX_Picture& result, double shear, unsigned int frame_color, long yield,
                          ImageRegion& image) {
  const auto rowOf = [](std::int32_t y) { return y; };
  ShearRows(source, rowOf, result, shear, frame_color, yield, image);
}

void ShearImageVertical(LMX_Picture& source, LMX_Picture& result, double shear, unsigned int frame_color, long yield,
                        ImageRegion& image) {
  const Placement at = Place(source.height, source.width, result.height, result.width, shear);
  const Frame frame(frame_color, result);
  const bool isTemporary = result.unlockOnRelease;
  const bool isSparse = IsSparse(result, frame);
  const ImageRegion sheared = isSparse ? at.Sheared(image, ImageRegion::kAlongColumns) : ImageRegion(result);
  const bool hasEveryRow = source.HasEveryRow() && result.HasEveryRow();
  // Columns that are made together may read unwritten pixels beside the image. In a temporary
  // result that is written whole, all pixels are read again. So its columns are made one by one.
  const std::int32_t mostColumns = isTemporary && !isSparse ? 1 : kMostColumns;
  YieldPace pace(yield);
  for (std::int32_t x = 0; x < result.width;) {
    const std::int32_t regionEnd = x < at.begin ? at.begin : x < at.end ? at.end : result.width;
    const std::int32_t most = std::min(mostColumns, regionEnd - x);
    const std::int32_t n =
        isTemporary ? YieldPace::LinesAhead(result.height, most) : pace.BeginLines(result.height, most);
    const LineSpan written =
        isSparse ? sheared.Along(ImageRegion::kAlongColumns, x, x + n - 1, ImageRegion::kWritten, result.height)
                 : LineSpan{0, result.height};
    ShearColumns(source, image, result, x, n, written, at, frame, hasEveryRow);
    if (isTemporary) pace.ReportLines(n, result.height);
    x += n;
  }
  image = sheared;
}
