// Shears, as the entry points call them.
#pragma once

#include "HostCalls.h"

// Entry points.
LMX_HOST_CALLABLE REALpictureStruct* LMX_ShearHorizontal_Frame(REALpictureStruct* p, int width, int height,
                                                               double shear, unsigned int frame_color, long yield);
LMX_HOST_CALLABLE REALpictureStruct* LMX_ShearVertical_Frame(REALpictureStruct* p, int width, int height, double shear,
                                                             unsigned int frame_color, long yield);

/// Locks the source, and shears it into a new result of `width` x `height` pixels. Nil, without an
/// error code, when either cannot be made or locked.
REALpictureStruct* PrivShear_Frame_NonVector(REALpictureStruct* source, int width, int height, double shear,
                                             bool horizontal, int frame_color, long yield);
