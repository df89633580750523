// Stretch, as the entry point calls it.
#pragma once

#include "LMX_Picture.h"

// Entry point.
LMX_HOST_CALLABLE REALpictureStruct* LMX_Stretch(REALpictureStruct* p, int width, int height, long yield);

/// Locks the source, makes the result and fills it. Nil with error 4 when the source cannot be
/// locked, with 34 or 35 when width or height is beyond what a pass can do, and with 0 when the
/// result cannot be made or locked.
REALpictureStruct* PrivStretch_NonVector(REALpictureStruct* p, int width, int height, long yield);

/// Both passes, through a temporary picture. Error 5, and the result as it is, when that cannot be
/// made or locked.
void PrivStretch_NonVector_NoMask(LMX_Picture& source, LMX_Picture& result, long yield);
