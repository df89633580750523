// LMX_Stretch: the source resampled to another size, as a new picture.
//
// width, height  size of the result in pixels, 1 to 65535, and at least 1/32768 of the source's
// Rows are resampled into a temporary picture, then its columns into the result, both by a box
// filter. With S and D as the lengths of source and destination, a source pixel is worth u =
// floor(D * 32768 / S) units. A destination pixel takes b = floor(u * S / D) of them, in turn; its
// channels are the sums divided by b, truncated. Units left over at the end of a line are not used.
// Errors, in this order: 35 height, 34 width, 2 source nil, 4 source not lockable, 35 and 34 again
// for sizes beyond the bounds above, 5 no temporary picture (the result comes untouched). Nil with
// code 0 when there is no result.
#include "TPQ_Stretch.h"

#include "PrivStretch.h"
#include "TPQ_Errors.h"

REALpictureStruct* LMX_Stretch(REALpictureStruct* p, int width, int height, long yield) {
  gLMX_Error = height <= 0 ? kHeightOutOfBounds : width <= 0 ? kWidthOutOfBounds : !p ? kSourceIsNil : kNoError;
  if (gLMX_Error != kNoError) return nullptr;
  return PrivStretch_NonVector(p, width, height, yield);
}

REALpictureStruct* PrivStretch_NonVector(REALpictureStruct* p, int width, int height, long yield) {
  LMX_Picture source(p);
  if (!source.Lock()) {
    gLMX_Error = kCantLockSource;
    return nullptr;
  }
  if (IsBeyondStretch(source.height, height)) {
    gLMX_Error = kHeightOutOfBounds;
    return nullptr;
  }
  if (IsBeyondStretch(source.width, width)) {
    gLMX_Error = kWidthOutOfBounds;
    return nullptr;
  }
  LMX_Picture result;
  result.SetNewPicture(width, height, true);
  if (!result.Lock()) return nullptr;
  PrivStretch_NonVector_NoMask(source, result, yield);
  return result.picture;
}

void PrivStretch_NonVector_NoMask(LMX_Picture& source, LMX_Picture& result, long yield) {
  LMX_Picture temporary;
  if (source.width > 0) temporary.SetNewPicture(result.width, source.height, false);
  if (!temporary.Lock()) {
    gLMX_Error = kCantLockIntermediate;
    return;
  }
  Priv_StretchThrough(temporary, source, result, yield);
}
