// LMX_FlipRotate: the source mirrored, then turned clockwise by quarter turns, as a new picture.
//
// flip_h, flip_v  mirror left-right, top-bottom; this comes first
// rotation        degrees, -89 to 359, cut to a multiple of 90 towards zero: -89 to 89 do not turn
// Every result pixel is one source pixel, read from one storage form and written in the other.
// Errors, in this order: 31 rotation, 2 source nil, 4 source not lockable, 6 no result (also of an empty source).
#include "TPQ_FlipRotate.h"

#include "PrivFlipRotate.h"
#include "TPQ_Errors.h"

namespace {

using Worker = void(LMX_Picture& source, LMX_Picture& result, long yield);

Worker* WorkerFor(int quarter, bool flip_h, bool flip_v) {
  struct Flips {
    Worker* none;
    Worker* h;
    Worker* v;
    Worker* both;
  };
  static constexpr Flips kTurns[4] = {
      {Priv_Rotate0, Priv_Rotate0_H, Priv_Rotate0_V, Priv_Rotate0_HV},
      {Priv_Rotate90, Priv_Rotate90_H, Priv_Rotate90_V, Priv_Rotate90_HV},
      {Priv_Rotate180, Priv_Rotate180_H, Priv_Rotate180_V, Priv_Rotate180_HV},
      {Priv_Rotate270, Priv_Rotate270_H, Priv_Rotate270_V, Priv_Rotate270_HV},
  };
  const Flips& turn = kTurns[quarter];
  if (flip_h) return flip_v ? turn.both : turn.h;
  return flip_v ? turn.v : turn.none;
}

}  // namespace

REALpictureStruct* LMX_FlipRotate(REALpictureStruct* p, bool flip_h, bool flip_v, int rotation, int yield) {
  gLMX_Error = rotation < -89 || rotation > 359 ? kRotationOutOfBounds : !p ? kSourceIsNil : kNoError;
  if (gLMX_Error != kNoError) return nullptr;
  return PrivFlipRotate_NonVector(p, flip_h, flip_v, rotation / 90, yield);
}

REALpictureStruct* PrivFlipRotate_NonVector(REALpictureStruct* p, bool flip_h, bool flip_v, int quarter, int yield) {
  LMX_Picture source(p);
  if (!source.Lock()) {
    gLMX_Error = kCantLockSource;
    return nullptr;
  }
  return PrivFlipRotate_NoMask_NonVector(source, flip_h, flip_v, quarter, yield);
}

REALpictureStruct* PrivFlipRotate_NoMask_NonVector(LMX_Picture& source, bool flip_h, bool flip_v, int quarter,
                                                   int yield) {
  const bool onItsSide = quarter % 2 != 0;
  LMX_Picture result;
  result.SetNewPicture(onItsSide ? source.height : source.width, onItsSide ? source.width : source.height, true);
  if (!result.Lock()) {
    gLMX_Error = kCantLockResult;
    return nullptr;
  }
  if (quarter >= 0 && quarter <= 3) WorkerFor(quarter, flip_h, flip_v)(source, result, yield);
  return result.picture;
}
