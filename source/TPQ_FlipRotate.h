// Flips and quarter turns, behind the entry point.
#pragma once

#include "LMX_Picture.h"

// Entry point.
LMX_HOST_CALLABLE REALpictureStruct* LMX_FlipRotate(REALpictureStruct* p, bool flip_h, bool flip_v, int rotation,
                                                    int yield);

/// Locks the source; nil with error 4 when that fails. `quarter` counts clockwise quarter turns, 0 to 3.
REALpictureStruct* PrivFlipRotate_NonVector(REALpictureStruct* p, bool flip_h, bool flip_v, int quarter, int yield);

/// Makes the result from a locked source; nil with error 6 when there is none to be had.
REALpictureStruct* PrivFlipRotate_NoMask_NonVector(LMX_Picture& source, bool flip_h, bool flip_v, int quarter,
                                                   int yield);
