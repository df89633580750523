// LMX_ShearHorizontal, LMX_ShearVertical: the source slanted, as a new picture.
//
// width, height  size of the result in pixels; the slanted image is centred in it
// shear          displacement from one row (column) to the next in pixels, -1 to 1; a NaN is 0
// frame_color    host colour around the image; slanted edges are blended with it unless it is
//                opaque
// Errors, in this order: 33 shear, 2 source nil. Nil with code 0 when the source or the result
// cannot be locked, and for a size below 1.
#include "TPQ_Shear.h"

#include "LMX_Picture.h"
#include "PrivShear.h"
#include "TPQ_Errors.h"

namespace {

bool AcceptsShear(const REALpictureStruct* p, double shear) {
  gLMX_Error = shear > 1.0 || shear < -1.0 ? kShearOutOfBounds : !p ? kSourceIsNil : kNoError;
  return gLMX_Error == kNoError;
}

}  // namespace

REALpictureStruct* LMX_ShearHorizontal_Frame(REALpictureStruct* p, int width, int height, double shear,
                                             unsigned int frame_color, long yield) {
  if (!AcceptsShear(p, shear)) return nullptr;
  return PrivShear_Frame_NonVector(p, width, height, shear, true, static_cast<int>(frame_color), yield);
}

REALpictureStruct* LMX_ShearVertical_Frame(REALpictureStruct* p, int width, int height, double shear,
                                           unsigned int frame_color, long yield) {
  if (!AcceptsShear(p, shear)) return nullptr;
  return PrivShear_Frame_NonVector(p, width, height, shear, false, static_cast<int>(frame_color), yield);
}

REALpictureStruct* PrivShear_Frame_NonVector(REALpictureStruct* source, int width, int height, double shear,
                                             bool horizontal, int frame_color, long yield) {
  LMX_Picture picture(source);
  if (!picture.Lock()) return nullptr;
  LMX_Picture result;
  result.SetNewPicture(width, height, true);
  if (!result.Lock()) return nullptr;
  const auto worker = horizontal ? Priv_ShearHorizontal : Priv_ShearVertical;
  worker(picture, result, shear, static_cast<unsigned int>(frame_color), yield);
  return result.picture;
}
