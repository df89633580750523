// Flips, quarter turns, stretch and trim.

#include <algorithm>
#include <limits>

#include "ModelParts.h"

namespace model {
namespace {

// A picture seen as lines: its rows, or its columns.
template <class Picture>
class Lines {
 public:
  Lines(Picture& picture, bool columns) : picture_(picture), columns_(columns), down_(picture, 0, 1) {}

  int Count() const { return columns_ ? picture_.width : picture_.height; }
  int Length() const { return columns_ ? picture_.height : picture_.width; }
  std::uint32_t Read(int line, int i) const {
    return columns_ ? picture_.Read(line, down_.RowAfter(i)) : picture_.Read(i, line);
  }
  void Write(int line, int i, std::uint32_t pixel) const {
    columns_ ? picture_.Write(line, down_.RowAfter(i), pixel) : picture_.Write(i, line, pixel);
  }

 private:
  Picture& picture_;
  bool columns_;
  ColumnWalk down_;
};

// Coverage of one destination pixel after the other by the source pixels of a line.
void StretchLine(const Lines<const StoredPicture>& source, const Lines<StoredPicture>& destination, int line) {
  const std::int32_t S = source.Length();
  const std::int32_t D = destination.Length();
  const std::int32_t unitsPerSource = D * 32768 / S;
  const std::int32_t unitsPerDest = unitsPerSource * S / D;
  std::int32_t remaining = 0;
  std::int32_t consumed = 0;
  std::uint32_t current = 0;
  for (int i = 0; i < D; ++i) {
    std::int32_t need = unitsPerDest;
    std::uint32_t alpha = 0, red = 0, green = 0, blue = 0;
    while (need >= 1) {
      if (consumed >= S && remaining < 1) break;
      if (remaining < 1) {
        current = source.Read(line, consumed);
        remaining = unitsPerSource;
        ++consumed;
      }
      const std::int32_t take = std::min(remaining, need);
      remaining -= take;
      need -= take;
      alpha += Alpha(current) * static_cast<std::uint32_t>(take);
      red += Red(current) * static_cast<std::uint32_t>(take);
      green += Green(current) * static_cast<std::uint32_t>(take);
      blue += Blue(current) * static_cast<std::uint32_t>(take);
    }
    const auto units = static_cast<std::uint32_t>(unitsPerDest);
    destination.Write(line, i, Pack(alpha / units, red / units, green / units, blue / units));
  }
}

void StretchPass(const StoredPicture& source, StoredPicture& destination, bool columns, Pass pass) {
  const Lines<const StoredPicture> from(source, columns);
  const Lines<StoredPicture> to(destination, columns);
  for (int line = 0; line < to.Count(); ++line) {
    pass.BeforeLine(line, to.Length());
    StretchLine(from, to, line);
  }
}

// Beyond these sizes the units of coverage become 0, or overflow.
bool StretchIsTooFar(int from, int to) {
  return to > 65535 || std::int64_t{from} > std::int64_t{32768} * to;
}

}  // namespace

void FlipRotatePass(const StoredPicture& source, StoredPicture& result, bool flipH, bool flipV, int quarter,
                    Outcome& outcome, int yield, std::size_t writing) {
  const int W = source.width;
  const int H = source.height;
  const auto mirrored = [&](int x, int y) { return source.Read(flipH ? W - 1 - x : x, flipV ? H - 1 - y : y); };
  const bool bothOrNone = flipH == flipV;
  const bool bottomUp = bothOrNone && quarter == (flipH ? 3 : 1);
  const bool down = (quarter == 3) != flipV;
  const ColumnWalk walk(source, down ? 0 : H - 1, down ? 1 : -1);
  Pass pass(outcome, yield, writing, bottomUp ? Order::BottomUp : Order::TopDown, {writing});
  for (int line = 0; line < result.height; ++line) {
    pass.BeforeLine(line, result.width);
    const int y = bottomUp ? result.height - 1 - line : line;
    // A turned row is a column of the mirrored picture: y from the left going up, or y from the
    // right going down.
    const int mirroredColumn = quarter == 1 ? y : W - 1 - y;
    const int column = flipH ? W - 1 - mirroredColumn : mirroredColumn;
    for (int x = 0; x < result.width; ++x) {
      std::uint32_t pixel = 0;
      if (quarter == 0) pixel = mirrored(x, y);
      if (quarter == 2) pixel = mirrored(W - 1 - x, H - 1 - y);
      if (quarter == 1 || quarter == 3) pixel = source.Read(column, walk.RowAfter(x));
      result.Write(x, y, pixel);
    }
  }
}

Outcome FlipRotate(const StoredPicture* source, std::uint8_t flipH, std::uint8_t flipV, int rotation, int yield,
                   const MakePicture& make) {
  if (rotation < -89 || rotation > 359) return Failure(31);
  if (source == nullptr) return Failure(2);
  if (source->fault != Fault::None) return Failure(4);
  const int quarter = rotation / 90;
  const bool swapped = quarter == 1 || quarter == 3;
  Outcome outcome;
  StoredPicture* result =
      MakeResult(outcome, swapped ? source->height : source->width, swapped ? source->width : source->height, make);
  if (result == nullptr) {
    outcome.code = 6;
    return outcome;
  }
  outcome.result = 1;
  const bool eachIsFalseOrTrue = flipH <= 1 && flipV <= 1;
  if (eachIsFalseOrTrue) FlipRotatePass(*source, *result, flipH == 1, flipV == 1, quarter, outcome, yield, 1);
  return outcome;
}

Outcome Stretch(const StoredPicture* source, int width, int height, int yield, const MakePicture& make) {
  if (height <= 0) return Failure(35);
  if (width <= 0) return Failure(34);
  if (source == nullptr) return Failure(2);
  if (source->fault != Fault::None) return Failure(4);
  if (StretchIsTooFar(source->height, height)) return Failure(35);
  if (StretchIsTooFar(source->width, width)) return Failure(34);

  Outcome outcome;
  StoredPicture* result = MakeResult(outcome, width, height, make);
  if (result == nullptr) return outcome;
  outcome.result = 1;
  StoredPicture* temporary = source->width == 0 ? nullptr : MakeTemporary(outcome, result->width, source->height, make);
  if (temporary == nullptr) {
    outcome.code = 5;
    return outcome;
  }
  if (temporary->height == 0) return outcome;  // a host out of memory may make one of 0 x 0
  StretchPass(*source, *temporary, false, Pass(outcome, yield, 2, Order::TopDown, {1, 2}));
  StretchPass(*temporary, *result, true, Pass(outcome, yield, 1, Order::LeftRight, {1, 2}));
  return outcome;
}

Outcome Trim(const StoredPicture* source, const Rectangle& area, std::uint32_t frameColour, int /*yield*/,
             const MakePicture& make) {
  if (source == nullptr) return Failure(2);
  if (source->fault != Fault::None) return Failure(4);
  constexpr std::int64_t kLast = std::numeric_limits<std::int32_t>::max();
  if (area.width < 1 || area.height < 1) return Failure(39);
  if (std::int64_t{area.left} + area.width - 1 > kLast || std::int64_t{area.top} + area.height - 1 > kLast) {
    return Failure(39);
  }
  Outcome outcome;
  StoredPicture* result = MakeResult(outcome, area.width, area.height, make);
  if (result == nullptr) {
    outcome.code = 6;
    return outcome;
  }
  for (int r = 0; r < result->height; ++r) {
    for (int c = 0; c < result->width; ++c) {
      const int x = area.left + c;
      const int y = area.top + r;
      const bool inside = x >= 0 && x < source->width && y >= 0 && y < source->height;
      result->Write(c, r, inside ? source->Read(x, y) : frameColour & 0xFFFFFF);
    }
  }
  outcome.result = 1;
  return outcome;
}

}  // namespace model
