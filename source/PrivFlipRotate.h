// Workers of flips and quarter turns. Each copies a whole picture, exactly.
//
// Both pictures are locked, and the result has the source's size, swapped for 90 and 270 degrees.
// The picture is first mirrored, left-right (H) or top-bottom (V) or both, and then turned
// clockwise by the degrees in the name. The host may handle events before a row of the result, once
// `yield` pixels have been written.
#pragma once

#include "LMX_Picture.h"

/// A turned temporary picture, made while it is read: the locked picture `turned` holds a band of
/// its rows at a time. If a row of either picture is missing, or rows overlap, the turned picture
/// is made whole instead.
class TurnedRows {
 public:
  /// `quarter` counts clockwise quarter turns, 0 to 3. Yields as Priv_Rotate0 to Priv_Rotate270 do.
  TurnedRows(LMX_Picture& source, LMX_Picture& turned, int quarter, long yield);

  const LMX_Picture& Picture() const { return turned_; }

  /// The row of Picture() that holds row y of the turned picture.
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
