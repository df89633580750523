// Workers of flips and quarter turns: each copies a whole picture, exactly.
//
// Both pictures are locked, and the result has the source's size, swapped for 90 and 270 degrees.
// The name says what happens first to last: mirrored left-right (H) or top-bottom (V) or both, then
// turned clockwise. The host may handle events before a row of the result, once `yield` pixels have
// been written.
#pragma once

#include "LMX_Picture.h"

/// A turned picture that nobody sees, made as it is read: a locked temporary picture holds a band
/// of its rows at a time. Where rows are missing, it is made as a whole, and read where it is.
class TurnedRows {
 public:
  /// `quarter` counts clockwise quarter turns, 0 to 3. Yields as the worker of that name does.
  TurnedRows(LMX_Picture& source, LMX_Picture& turned, int quarter, long yield);

  const LMX_Picture& Picture() const { return turned_; }

  /// The row of the picture in which row y is now.
  std::int32_t RowOf(std::int32_t y) {
    if (isWhole_) return y;
    if (y < begin_ || y >= end_) MakeBand(y);
    return y - begin_;
  }

 private:
  void MakeBand(std::int32_t y);

  const LMX_Picture& source_;
  const LMX_Picture& turned_;
  int quarter_;
  bool isWhole_;
  std::int32_t begin_ = 0;  // of the band
  std::int32_t end_ = 0;
};

void Priv_Rotate0(LMX_Picture& source, LMX_Picture& result, long yield);
void Priv_Rotate0_H(LMX_Picture& source, LMX_Picture& result, long yield);
void Priv_Rotate0_V(LMX_Picture& source, LMX_Picture& result, long yield);
void Priv_Rotate0_HV(LMX_Picture& source, LMX_Picture& result, long yield);
void Priv_Rotate90(LMX_Picture& source, LMX_Picture& result, long yield);
void Priv_Rotate90_H(LMX_Picture& source, LMX_Picture& result, long yield);
void Priv_Rotate90_V(LMX_Picture& source, LMX_Picture& result, long yield);
void Priv_Rotate90_HV(LMX_Picture& source, LMX_Picture& result, long yield);
void Priv_Rotate180(LMX_Picture& source, LMX_Picture& result, long yield);
void Priv_Rotate180_H(LMX_Picture& source, LMX_Picture& result, long yield);
void Priv_Rotate180_V(LMX_Picture& source, LMX_Picture& result, long yield);
void Priv_Rotate180_HV(LMX_Picture& source, LMX_Picture& result, long yield);
void Priv_Rotate270(LMX_Picture& source, LMX_Picture& result, long yield);
void Priv_Rotate270_H(LMX_Picture& source, LMX_Picture& result, long yield);
void Priv_Rotate270_V(LMX_Picture& source, LMX_Picture& result, long yield);
void Priv_Rotate270_HV(LMX_Picture& source, LMX_Picture& result, long yield);
