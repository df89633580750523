// LMX_FlipRotate: mirrors the source, then turns it clockwise by quarter turns, into a new picture.
//
// flip_h, flip_v  mirror left-right, top-bottom. A byte that is neither 0 nor 1 is neither false
//                 nor true: the result stays as the host made it
// rotation        degrees, -89 to 359, cut to a multiple of 90 towards zero: -89 to 89 do not turn
// Every result pixel is one source pixel, read from one storage form and written in the other.
// Errors, in this order: 31 rotation, 2 source nil, 4 source not lockable, 6 no result (also of an
// empty source).
#include "TPQ_FlipRotate.h"

#include "PrivFlipRotate.h"
#include "TPQ_Errors.h"

namespace {

using Worker = void(LMX_Picture& source, LMX_Picture& result, long yield);

// The worker for quarters 0 to 3 and flags that are exactly false or true; nil for any other.
Worker* WorkerFor(int quarter, std::uint8_t flip_h, std::uint8_t flip_v) {
  static constexpr Worker* kWorkers[4][2][2] = {
      {{Priv_Rotate0, Priv_Rotate0_V}, {Priv_Rotate0_H, Priv_Rotate0_HV}},
      {{Priv_Rotate90, Priv_Rotate90_V}, {Priv_Rotate90_H, Priv_Rotate90_HV}},
      {{Priv_Rotate180, Priv_Rotate180_V}, {Priv_Rotate180_H, Priv_Rotate180_HV}},
      {{Priv_Rotate270, Priv_Rotate270_V}, {Priv_Rotate270_H, Priv_Rotate270_HV}},
  };
  return quarter >= 0 && quarter <= 3 && flip_h <= 1 && flip_v <= 1 ? kWorkers[quarter][flip_h][flip_v] : nullptr;
}

}  // namespace

REALpictureStruct* LMX_FlipRotate(REALpictureStruct* p, REALboolean flip_h, REALboolean flip_v, int rotation,
                                  int yield) {
  gLMX_Error = rotation < -89 || rotation > 359 ? kRotationOutOfBounds : !p ? kSourceIsNil : kNoError;
  if (gLMX_Error != kNoError) return nullptr;
  return PrivFlipRotate_NonVector(p, static_cast<std::uint8_t>(flip_h), static_cast<std::uint8_t>(flip_v),
                                  rotation / 90, yield);
}

REALpictureStruct* PrivFlipRotate_NonVector(REALpictureStruct* p, std::uint8_t flip_h, std::uint8_t flip_v, int quarter,
                                            int yield) {
  LMX_Picture source(p);
  if (!source.Lock()) {
    gLMX_Error = kCantLockSource;
    return nullptr;
  }
  return PrivFlipRotate_NoMask_NonVector(source, flip_h, flip_v, quarter, yield);
}

REALpictureStruct* PrivFlipRotate_NoMask_NonVector(LMX_Picture& source, std::uint8_t flip_h, std::uint8_t flip_v,
                                                   int quarter, int yield) {
  const bool onItsSide = quarter == 1 || quarter == 3;
  LMX_Picture result;
  result.SetNewPicture(onItsSide ? source.height : source.width, onItsSide ? source.width : source.height, true);
  if (!result.Lock()) {
    gLMX_Error = kCantLockResult;
    return nullptr;
  }
  if (Worker* const worker = WorkerFor(quarter, flip_h, flip_v)) worker(source, result, yield);
  return result.picture;
}
