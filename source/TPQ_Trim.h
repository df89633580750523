// Trim.
#pragma once

#include "HostCalls.h"

// Entry point.
LMX_HOST_CALLABLE REALpictureStruct* LMX_Trim(REALpictureStruct* p, long left, long top, long width, long height,
                                              unsigned long frame_color, long yield);
