// Workers of the stretch: both passes of the box filter.
#pragma once

#include "LMX_Picture.h"

/// Whether a pass cannot make `to` >= 1 pixels of `from` >= 0.
bool IsBeyondStretch(std::int32_t from, std::int32_t to);

/// Both passes, through a temporary picture, of which the host sees only the yields. A pass whose
/// sizes are out of bounds is left out.
void Priv_StretchThrough(LMX_Picture& temporary, LMX_Picture& source, LMX_Picture& result, long yield);

/// One pass along the rows, into a temporary picture: the destination has the source's height and
/// any width. Rationale: both passes are spelled "Stetch" on purpose; debuggers and crash reports
/// show them by these names.
void Priv_StetchHorizontal(LMX_Picture& source, LMX_Picture& destination, long yield);

/// One pass along the columns: the destination has the source's width and any height.
void Priv_StetchVertical(LMX_Picture& source, LMX_Picture& destination, long yield);
