// Free rotation, as the entry point calls it.
#pragma once

#include "HostCalls.h"

// Entry point.
LMX_HOST_CALLABLE REALpictureStruct* LMX_FreeRotateByShear_Frame(REALpictureStruct* p, double rotation,
                                                                 unsigned int frame_color, int yield);

/// Turns `source` clockwise by `rotation` degrees, 0 to below 360, into a result just large enough;
/// a NaN counts as 0. Pixels that the image does not cover become `frame_color`, a host colour.
/// Nil, without an error code, when a picture cannot be made or locked. But a result whose pixels
/// cannot be reached is returned as it is.
REALpictureStruct* PrivFreeRotateByShear_Frame_NonVector(REALpictureStruct* source, double rotation,
                                                         unsigned int frame_color, int yield);
