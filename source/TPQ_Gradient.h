// Gradients, as the entry points call them.
#pragma once

#include "LMX_Picture.h"

// Entry points.
LMX_HOST_CALLABLE REALpictureStruct* LMX_MakeGradient(int width, int height, int color1, int color2, int yield);
LMX_HOST_CALLABLE REALpictureStruct* LMX_MakeDoubleGradient(int width, int height, int color1, int color2, int color3,
                                                            int yield);

/// Fill a locked picture of any size; `width` and `height` are not used. Colours are host colours.
/// The host may handle events after a row, once `yield` pixels have been written before that row.
void PrivMakeGradient(LMX_Picture& picture, int width, int height, unsigned int color1, unsigned int color2, int yield);
void PrivMakeDoubleGradient(LMX_Picture& picture, int width, int height, unsigned int color1, unsigned int color2,
                            unsigned int color3, int yield);
