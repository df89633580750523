// Workers of the shears: the source slanted and placed, centred, in a result of any size.
//
// Both pictures are locked; neither worker can fail. `shear` is in pixels per line; a NaN counts as
// 0. Result pixels that the slanted source does not cover become `frame_color`, a host colour. The
// host may handle events before a line of the result, once `yield` pixels have been written.
#pragma once

#include "LMX_Picture.h"
#include "LMX_Region.h"
#include "PrivFlipRotate.h"

/// Moves every row sideways; a positive shear moves upper rows to the right of lower ones.
void Priv_ShearHorizontal(LMX_Picture& source, LMX_Picture& result, double shear, unsigned int frame_color, long yield);

/// Moves every column up or down; a positive shear moves left columns below right ones.
void Priv_ShearVertical(LMX_Picture& source, LMX_Picture& result, double shear, unsigned int frame_color, long yield);

/// The same as steps of a rotation. `image` is where the image lies in the source, and on return
/// where it lies in the result. Only the image is read. Of a temporary result only the image and
/// its margin are written, and its lines may be made before they are reported.
void ShearImageHorizontal(TurnedRows& source, LMX_Picture& result, double shear, unsigned int frame_color, long yield,
                          ImageRegion& image);
void ShearImageHorizontal(LMX_Picture& source, LMX_Picture& result, double shear, unsigned int frame_color, long yield,
                          ImageRegion& image);
void ShearImageVertical(LMX_Picture& source, LMX_Picture& result, double shear, unsigned int frame_color, long yield,
                        ImageRegion& image);
