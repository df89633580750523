// HSV adjustment and average, as the entry points call them.
#pragma once

#include "LMX_Picture.h"

// Entry points.
LMX_HOST_CALLABLE REALpictureStruct* LMX_AdjustHSV(REALpictureStruct* p, int left, int top, int width, int height,
                                                   double hue_degrees, double saturation_factor,
                                                   double brightness_factor, REALboolean negative, long yield);
LMX_HOST_CALLABLE void LMX_AdjustHSV_InPlace(REALpictureStruct* p, int left, int top, int width, int height,
                                             double hue_degrees, double saturation_factor, double brightness_factor,
                                             REALboolean negative, long yield);
LMX_HOST_CALLABLE void LMX_GetAverageHSV(REALpictureStruct* p, int left, int top, int width, int height,
                                         double* hue_degrees, double* saturation, double* brightness, long yield);

/// Adjusts the selection of a locked source, and copies the rest, into a locked destination of the
/// same size, which may be the source. The caller has tested the arguments and the selection. The
/// host may handle events after a row, once `yield` pixels have been written.
void PrivAdjustHSV(LMX_Picture& source, LMX_Picture& destination, int left, int top, int width, int height,
                   double hue_degrees, double saturation_factor, double brightness_factor, bool negative, long yield);

/// Measures the selection of a locked source that has pixels. A nil pointer leaves that result out.
/// The host may handle events after a row, once `yield` pixels have been read.
void PrivGetAverageHSV(LMX_Picture& source, int left, int top, int width, int height, double* hue_degrees,
                       double* saturation, double* brightness, long yield);
