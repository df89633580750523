// Flips and quarter turns, as the entry point calls them.
#pragma once

#include "LMX_Picture.h"

// Entry point.
LMX_HOST_CALLABLE REALpictureStruct* LMX_FlipRotate(REALpictureStruct* p, REALboolean flip_h, REALboolean flip_v,
                                                    int rotation, int yield);

/// Locks the source; nil with error 4 when that fails. `quarter` counts clockwise quarter turns, 0
/// to 3. Of the flags 0 is false and 1 is true. With any other quarter or flag the result stays as
/// the host made it.
REALpictureStruct* PrivFlipRotate_NonVector(REALpictureStruct* p, std::uint8_t flip_h, std::uint8_t flip_v, int quarter,
                                            int yield);

/// Makes the result from a locked source; nil with error 6 when it cannot be made or locked.
REALpictureStruct* PrivFlipRotate_NoMask_NonVector(LMX_Picture& source, std::uint8_t flip_h, std::uint8_t flip_v,
                                                   int quarter, int yield);
