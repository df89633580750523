// RGB adjustment and average.
#pragma once

#include "HostCalls.h"

// Entry points.
LMX_HOST_CALLABLE REALpictureStruct* LMX_AdjustRGB(REALpictureStruct* p, int left, int top, int width, int height,
                                                   int red_delta, int green_delta, int blue_delta, long yield);
LMX_HOST_CALLABLE void LMX_AdjustRGB_InPlace(REALpictureStruct* p, int left, int top, int width, int height,
                                             int red_delta, int green_delta, int blue_delta, long yield);
LMX_HOST_CALLABLE void LMX_GetAverageRGB(REALpictureStruct* p, int left, int top, int width, int height, int* red,
                                         int* green, int* blue, long yield);
