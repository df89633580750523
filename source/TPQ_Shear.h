// Shears, as the entry points call them.
#pragma once

#include "HostCalls.h"

// Entry points.
LMX_HOST_CALLABLE REALpictureStruct* LMX_ShearHorizontal_Frame(REALpictureStruct* p, int width, int height,
                                                               double shear, unsigned int frame_color, long yield);
LMX_HOST_CALLABLE REALpictureStruct* LMX_ShearVertical_Frame(REALpictureStruct* p, int width, int height, double shear,
                                                             unsigned int frame_color, long yield);

/// Locks the source, makes a result of `width` x `height` pixels and slants the one into the other.
/// Nil when either is not to be had; no error code says so.
REALpictureStruct* PrivShear_Frame_NonVector(REALpictureStruct* source, int width, int height, double shear,
                                             bool horizontal, int frame_color, long yield);
