// The module "LMX": its registration, and the entry points of its sixteen methods.
//
// Every method sets gLMX_Error at entry, so that it tells about this call only, and returns nil (or nothing) on failure.
// A `REALpictureStruct*` argument may be nil, which is error 2; it stays the caller's. A returned picture is the
// caller's from then on. `yield` is the number of pixels after which the host may handle events; 0 or less means never.
// Integers are 32-bit on every ABI, also where the type is long.
#pragma once

#include "HostCalls.h"

/// Registers the module with the host.
void RegisterModule();

LMX_HOST_CALLABLE int LMX_GetLastError();
LMX_HOST_CALLABLE REALstringStruct* LMX_GetErrorMessage(int errorCode);

LMX_HOST_CALLABLE REALpictureStruct* LMX_AdjustHSV(REALpictureStruct* p, int left, int top, int width, int height,
                                                   double hue_degrees, double saturation_factor,
                                                   double brightness_factor, bool negative, long yield);
LMX_HOST_CALLABLE void LMX_AdjustHSV_InPlace(REALpictureStruct* p, int left, int top, int width, int height,
                                             double hue_degrees, double saturation_factor, double brightness_factor,
                                             bool negative, long yield);
LMX_HOST_CALLABLE void LMX_GetAverageHSV(REALpictureStruct* p, int left, int top, int width, int height,
                                         double* hue_degrees, double* saturation, double* brightness, long yield);

LMX_HOST_CALLABLE REALpictureStruct* LMX_AdjustRGB(REALpictureStruct* p, int left, int top, int width, int height,
                                                   int red_delta, int green_delta, int blue_delta, long yield);
LMX_HOST_CALLABLE void LMX_AdjustRGB_InPlace(REALpictureStruct* p, int left, int top, int width, int height,
                                             int red_delta, int green_delta, int blue_delta, long yield);
LMX_HOST_CALLABLE void LMX_GetAverageRGB(REALpictureStruct* p, int left, int top, int width, int height, int* red,
                                         int* green, int* blue, long yield);

LMX_HOST_CALLABLE REALpictureStruct* LMX_FlipRotate(REALpictureStruct* p, bool flip_h, bool flip_v, int rotation,
                                                    int yield);
LMX_HOST_CALLABLE REALpictureStruct* LMX_FreeRotateByShear_Frame(REALpictureStruct* p, double rotation,
                                                                 unsigned int frame_color, int yield);

LMX_HOST_CALLABLE REALpictureStruct* LMX_MakeGradient(int width, int height, int color1, int color2, int yield);
LMX_HOST_CALLABLE REALpictureStruct* LMX_MakeDoubleGradient(int width, int height, int color1, int color2, int color3,
                                                            int yield);

LMX_HOST_CALLABLE REALpictureStruct* LMX_ShearHorizontal_Frame(REALpictureStruct* p, int width, int height,
                                                               double shear, unsigned int frame_color, long yield);
LMX_HOST_CALLABLE REALpictureStruct* LMX_ShearVertical_Frame(REALpictureStruct* p, int width, int height, double shear,
                                                             unsigned int frame_color, long yield);
LMX_HOST_CALLABLE REALpictureStruct* LMX_Stretch(REALpictureStruct* p, int width, int height, long yield);
LMX_HOST_CALLABLE REALpictureStruct* LMX_Trim(REALpictureStruct* p, long left, long top, long width, long height,
                                              unsigned long frame_color, long yield);
