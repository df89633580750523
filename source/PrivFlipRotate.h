// Workers of flips and quarter turns: each copies a whole picture, exactly.
//
// Both pictures are locked, and the result has the source's size, swapped for 90 and 270 degrees. The name says what
// happens first to last: mirrored left-right (H) or top-bottom (V) or both, then turned clockwise. The host may handle
// events before a row of the result, once `yield` pixels have been written.
#pragma once

#include "LMX_Picture.h"

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
