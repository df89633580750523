// Workers of flips and quarter turns. Rows that stay rows are copied one by one. Columns that
// become rows are transposed in tiles, so that both pictures are read and written by cache lines.
// Half turns and three-quarter turns are flips and quarter turns by other names.
#include "PrivFlipRotate.h"

#include <algorithm>

#include "LMX_Runs.h"
#include "LMX_Yield.h"

namespace {

enum class Order { kForward, kBackward };

// Pixel (x, y) of the result is (x or W - 1 - x, y or H - 1 - y) of the source, whose size is W x
// H.
void CopyRows(const LMX_Picture& source, const LMX_Picture& result, Order columns, Order rows, long yield) {
  const std::int32_t n = result.width;
  YieldPace pace(yield);
  for (std::int32_t y = 0; y < result.height; ++y) {
    pace.BeginLines(n, 1);
    const PixelPosition to = {result, 0, y};
    const std::int32_t sourceRow = rows == Order::kForward ? y : source.height - 1 - y;
    if (columns == Order::kForward) {
      CopyRun(to, {source, 0, sourceRow}, n);
    } else {
      CopyRunMirrored(to, {source, source.width - n, sourceRow}, n);
    }
  }
}

// The order of the source's columns and rows in a turned picture, and the order in which its rows
// are made.
struct Turn {
  Order columns;
  Order rows;
  Order resultRows;
};

// Turns `lines` columns of the source into rows of the result. Column `firstColumn` becomes row
// `firstRow`, its right neighbour the row `rowStep` (1 or -1) further, and so on.
void TurnColumns(const LMX_Picture& source, const LMX_Picture& result, std::int32_t firstColumn, std::int32_t firstRow,
                 std::int32_t rowStep, std::int32_t lines, Order rows) {
  const ColumnWalk walk =
      rows == Order::kForward ? ColumnWalk(source, 0) : ColumnWalk(source, source.height - 1, ColumnWalk::kUp);
  TransposeRuns({result, 0, firstRow}, rowStep, walk, firstColumn, lines, result.width);
}

void TurnPicture(const LMX_Picture& source, const LMX_Picture& result, const Turn& turn, long yield) {
  YieldPace pace(yield);
  for (std::int32_t done = 0; done < result.height;) {
    const std::int32_t lines = pace.BeginLines(result.width, std::min(kMostTurned, result.height - done));
    const std::int32_t top = turn.resultRows == Order::kForward ? done : result.height - done - lines;
    if (turn.columns == Order::kForward) {
      TurnColumns(source, result, top, top, 1, lines, turn.rows);
    } else {
      TurnColumns(source, result, source.width - top - lines, top + lines - 1, -1, lines, turn.rows);
    }
    done += lines;
  }
}

}  // namespace

void Priv_Rotate0(LMX_Picture& source, LMX_Picture& result, long yield) {
  CopyRows(source, result, Order::kForward, Order::kForward, yield);
}

void Priv_Rotate0_H(LMX_Picture& source, LMX_Picture& result, long yield) {
  CopyRows(source, result, Order::kBackward, Order::kForward, yield);
}

void Priv_Rotate0_V(LMX_Picture& source, LMX_Picture& result, long yield) {
  CopyRows(source, result, Order::kForward, Order::kBackward, yield);
}

void Priv_Rotate0_HV(LMX_Picture& source, LMX_Picture& result, long yield) {
  CopyRows(source, result, Order::kBackward, Order::kBackward, yield);
}

/// Rationale: this is the one worker that makes the result's rows from the last to the first, which
/// the host sees at a yield.
void Priv_Rotate90(LMX_Picture& source, LMX_Picture& result, long yield) {
  TurnPicture(source, result, {Order::kForward, Order::kBackward, Order::kBackward}, yield);
}

void Priv_Rotate90_H(LMX_Picture& source, LMX_Picture& result, long yield) {
  TurnPicture(source, result, {Order::kBackward, Order::kBackward, Order::kForward}, yield);
}

void Priv_Rotate90_V(LMX_Picture& source, LMX_Picture& result, long yield) {
  TurnPicture(source, result, {Order::kForward, Order::kForward, Order::kForward}, yield);
}

void Priv_Rotate90_HV(LMX_Picture& source, LMX_Picture& result, long yield) {
  TurnPicture(source, result, {Order::kBackward, Order::kForward, Order::kForward}, yield);
}

void Priv_Rotate180(LMX_Picture& source, LMX_Picture& result, long yield) {
  Priv_Rotate0_HV(source, result, yield);
}
void Priv_Rotate180_H(LMX_Picture& source, LMX_Picture& result, long yield) {
  Priv_Rotate0_V(source, result, yield);
}
void Priv_Rotate180_V(LMX_Picture& source, LMX_Picture& result, long yield) {
  Priv_Rotate0_H(source, result, yield);
}
void Priv_Rotate180_HV(LMX_Picture& source, LMX_Picture& result, long yield) {
  Priv_Rotate0(source, result, yield);
}
void Priv_Rotate270(LMX_Picture& source, LMX_Picture& result, long yield) {
  Priv_Rotate90_HV(source, result, yield);
}
void Priv_Rotate270_H(LMX_Picture& source, LMX_Picture& result, long yield) {
  Priv_Rotate90_V(source, result, yield);
}
void Priv_Rotate270_V(LMX_Picture& source, LMX_Picture& result, long yield) {
  Priv_Rotate90_H(source, result, yield);
}
void Priv_Rotate270_HV(LMX_Picture& source, LMX_Picture& result, long yield) {
  Priv_Rotate90(source, result, yield);
}

TurnedRows::TurnedRows(LMX_Picture& source, LMX_Picture& turned, int quarter, long yield)
    : source_(source),
      turned_(turned),
      quarter_(quarter),
      isWhole_(!source.HasEveryRow() || !turned.HasEveryRow() || !turned.HasRowsOfItsOwn()) {
  static constexpr decltype(&Priv_Rotate0) kTurns[] = {Priv_Rotate0, Priv_Rotate90, Priv_Rotate180, Priv_Rotate270};
  if (isWhole_) {
    kTurns[quarter](source, turned, yield);
  } else {
    YieldPace(yield).ReportLines(turned.height, turned.width);
  }
}

void TurnedRows::MakeBand(std::int32_t y) {
  const bool onItsSide = quarter_ % 2 != 0;
  constexpr std::int32_t kTogether = 32;
  const std::int32_t most = onItsSide ? YieldPace::LinesAhead(turned_.width, kTogether) : 1;
  const std::int32_t n = std::min(most, turned_.height - y);
  const std::int32_t width = turned_.width;
  begin_ = y;
  end_ = y + n;
  switch (quarter_) {
    case 0:
      return CopyRun({turned_, 0, 0}, {source_, 0, y}, width);
    case 1:
      return TurnColumns(source_, turned_, y, 0, 1, n, Order::kBackward);
    case 2:
      return CopyRunMirrored({turned_, 0, 0}, {source_, source_.width - width, source_.height - 1 - y}, width);
    default:
      return TurnColumns(source_, turned_, source_.width - y - n, n - 1, -1, n, Order::kForward);
  }
}
