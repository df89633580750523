// Shears, behind the entry points.
#pragma once

#include "HostInterface.h"

/// Locks the source, makes a result of `width` x `height` pixels and slants the one into the other. Nil when either is
/// not to be had; no error code says so.
REALpictureStruct* PrivShear_Frame_NonVector(REALpictureStruct* source, int width, int height, double shear,
                                             bool horizontal, int frame_color, long yield);
