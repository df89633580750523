// LMX_AdjustRGB, LMX_AdjustRGB_InPlace: add an amount to each colour of a rectangle, into a new
// picture or in place. LMX_GetAverageRGB: the mean colour of a rectangle.
//
// left, top, width, height  the selection, in pixels; its far ends are included (see Selection)
// red_delta ...             -255 to 255; sums are clamped to 0 to 255, alpha stays
// red, green, blue          the means, 0 to 255, truncated; nil to leave one out. On failure they
//                           stay as they are
// All pixels of the copy pass both conversions, selected or not; in place only those of selected
// rows. Sums are 32 bits wide and wrap beyond 8,421,504 pixels of 255.
// Errors of the adjustments, in this order: 2 source nil, 40 red, 41 green, 42 blue, 4 source not
// lockable, 38 selection, 6 no result. Errors of the average: 2, 4, 38 (also of a picture without
// pixels).
#include "TPQ_AdjustRGB.h"

#include "LMX_Runs.h"
#include "LMX_Selection.h"
#include "LMX_Yield.h"
#include "TPQ_Errors.h"

namespace {

bool IsDelta(int delta) {
  return delta >= -255 && delta <= 255;
}

// Sets the error.
bool AcceptsDeltas(const REALpictureStruct* p, const RGBAdjustment& by) {
  gLMX_Error = !p                   ? kSourceIsNil
               : !IsDelta(by.red)   ? kRedOutOfBounds
               : !IsDelta(by.green) ? kGreenOutOfBounds
               : !IsDelta(by.blue)  ? kBlueOutOfBounds
                                    : kNoError;
  return gLMX_Error == kNoError;
}

// One selected row, from one picture to another or in place.
void AdjustRow(const LMX_Picture& source, const LMX_Picture& destination, std::int32_t y, const Selection& selection,
               const RGBAdjustment& by) {
  CopyRun({destination, 0, y}, {source, 0, y}, selection.x0);
  AdjustRun({destination, selection.x0, y}, {source, selection.x0, y}, selection.Width(), by);
  const std::int32_t rest = selection.x1 + 1;
  CopyRun({destination, rest, y}, {source, rest, y}, destination.width - rest);
}

RGBSums SumSelection(const LMX_Picture& source, const Selection& selection, long yield) {
  RGBSums sums = {};
  YieldPace pace(yield);
  for (std::int32_t y = selection.y0; y <= selection.y1; ++y) {
    SumRun({source, selection.x0, y}, selection.Width(), &sums);
    pace.EndLines(1, selection.Width());
  }
  return sums;
}

}  // namespace

REALpictureStruct* LMX_AdjustRGB(REALpictureStruct* p, int left, int top, int width, int height, int red_delta,
                                 int green_delta, int blue_delta, long yield) {
  const RGBAdjustment by = {red_delta, green_delta, blue_delta};
  if (!AcceptsDeltas(p, by)) return nullptr;
  LMX_Picture source(p);
  if (!source.Lock()) {
    gLMX_Error = kCantLockSource;
    return nullptr;
  }
  const Selection selection(source, left, top, width, height);
  if (!selection.IsValid()) {
    gLMX_Error = kInvalidSelection;
    return nullptr;
  }
  LMX_Picture result;
  result.SetNewPicture(source.width, source.height, true);
  if (!result.Lock()) {
    gLMX_Error = kCantLockResult;
    return nullptr;
  }
  YieldPace pace(yield);
  for (std::int32_t y = 0; y < result.height; ++y) {
    if (selection.HasRow(y)) {
      AdjustRow(source, result, y, selection, by);
    } else {
      CopyRun({result, 0, y}, {source, 0, y}, result.width);
    }
    pace.EndLines(1, result.width);
  }
  return result.picture;
}

void LMX_AdjustRGB_InPlace(REALpictureStruct* p, int left, int top, int width, int height, int red_delta,
                           int green_delta, int blue_delta, long yield) {
  const RGBAdjustment by = {red_delta, green_delta, blue_delta};
  if (!AcceptsDeltas(p, by)) return;
  LMX_Picture source(p);
  if (!source.Lock()) {
    gLMX_Error = kCantLockSource;
    return;
  }
  const Selection selection(source, left, top, width, height);
  if (!selection.IsValid()) {
    gLMX_Error = kInvalidSelection;
    return;
  }
  if (selection.IsEmpty()) return;
  YieldPace pace(yield);
  for (std::int32_t y = selection.y0; y <= selection.y1; ++y) {
    AdjustRow(source, source, y, selection, by);
    pace.EndLines(1, source.width);
  }
}

void LMX_GetAverageRGB(REALpictureStruct* p, int left, int top, int width, int height, int* red, int* green, int* blue,
                       long yield) {
  gLMX_Error = p ? kNoError : kSourceIsNil;
  if (!p) return;
  LMX_Picture source(p);
  if (!source.Lock()) {
    gLMX_Error = kCantLockSource;
    return;
  }
  const Selection selection(source, left, top, width, height);
  if (!selection.IsValid() || selection.IsEmpty()) {
    gLMX_Error = kInvalidSelection;
    return;
  }
  const RGBSums sums = SumSelection(source, selection, yield);
  if (red) *red = selection.Mean(sums.red);
  if (green) *green = selection.Mean(sums.green);
  if (blue) *blue = selection.Mean(sums.blue);
}
