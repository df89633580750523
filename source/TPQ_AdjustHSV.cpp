// LMX_AdjustHSV, LMX_AdjustHSV_InPlace: turn the hue and scale saturation and brightness in a
// rectangle, into a new picture or in place. LMX_GetAverageHSV: hue, saturation and brightness of a
// rectangle.
//
// left, top, width, height  the selection, in pixels; its far ends are included (see Selection)
// hue_degrees               -360 to 360, both excluded; a NaN blackens all pixels with a saturation
// saturation_factor,        0 to below 1000, cut to whole numbers: 0.9 acts as 0, 1.9 as 1. A NaN
//   brightness_factor       acts as 0
// negative                  every pixel of the picture, selected or not, becomes its colour
//                           negative, fully transparent; a bitmap context keeps no colour there and
//                           becomes all zero. Any byte but 0 is true
// The average's results, each nil to leave it out:
// hue_degrees               hue of the mean colour in degrees, 0 to below 360; -1 for black, NaN
//                           for another grey
// saturation                mean of the pixels' saturations, 0 to 1
// brightness                mean of the pixels' largest channels / 256, 0 to 255/256
// On failure they stay as they are. The sums of colours are 32 bits wide and wrap beyond 8,421,504
// pixels of 255.
// Errors of the adjustments, in this order: 2 source nil, 43 hue, 44 saturation, 45 brightness, 4
// source not lockable, 38 selection, 6 no result. Errors of the average: 2, 4, 38 (also of a
// picture without pixels).
#include "TPQ_AdjustHSV.h"

#include <algorithm>
#include <cmath>

#include "LMX_Convert.h"
#include "LMX_Runs.h"
#include "LMX_Selection.h"
#include "LMX_Yield.h"
#include "TPQ_Errors.h"

namespace {

bool IsFactor(double factor) {
  return !(factor < 0.0 || factor >= 1000.0);
}

// Sets the error. A NaN is accepted.
bool AcceptsAdjustment(const REALpictureStruct* p, double hue, double saturation, double brightness) {
  gLMX_Error = !p                              ? kSourceIsNil
               : hue <= -360.0 || hue >= 360.0 ? kDegreesOutOfBounds
               : !IsFactor(saturation)         ? kSaturationOutOfBounds
               : !IsFactor(brightness)         ? kBrightnessOutOfBounds
                                               : kNoError;
  return gLMX_Error == kNoError;
}

// The lowest byte of a boolean argument: all but 0 is true.
bool IsTrue(REALboolean boolean) {
  return static_cast<std::uint8_t>(boolean) != 0;
}

// The whole part of a factor, in 1/1024. A NaN wraps to 0. A negative factor would give 0 as well.
std::int32_t Scale(double factor) {
  return std::max(WrappedToInt(static_cast<std::int64_t>(TruncatedToInt(factor)) * 1024), 0);
}

// Columns x0 to x1 - 1 of a row. `by` is nil where nothing is adjusted.
void AdjustColumns(const LMX_Picture& source, const LMX_Picture& destination, std::int32_t y, std::int32_t x0,
                   std::int32_t x1, const HSVAdjustment* by, bool negative) {
  const PixelPosition from = {source, x0, y}, to = {destination, x0, y};
  const std::int32_t n = x1 - x0;
  if (negative) {
    NegateRun(to, from, n, by);
  } else if (by) {
    AdjustRun(to, from, n, *by);
  } else {
    CopyRun(to, from, n);
  }
}

// The hue of a colour in degrees, in doubles: -1 for black, NaN for another grey.
double HueOf(std::int32_t red, std::int32_t green, std::int32_t blue) {
  const std::int32_t max = std::max({red, green, blue});
  if (max == 0) return -1.0;
  const double distance = static_cast<double>(max) - std::min({red, green, blue});
  double hue;
  if (red == max) {
    hue = (static_cast<double>(green) - blue) / distance;
  } else if (green == max) {
    hue = (static_cast<double>(blue) - red) / distance + 2.0;
  } else {
    hue = (static_cast<double>(red) - green) / distance + 4.0;
  }
  hue *= 60.0;
  return hue < 0 ? hue + 360.0 : hue;
}

}  // namespace

REALpictureStruct* LMX_AdjustHSV(REALpictureStruct* p, int left, int top, int width, int height, double hue_degrees,
                                 double saturation_factor, double brightness_factor, REALboolean negative, long yield) {
  if (!AcceptsAdjustment(p, hue_degrees, saturation_factor, brightness_factor)) return nullptr;
  LMX_Picture source(p);
  if (!source.Lock()) {
    gLMX_Error = kCantLockSource;
    return nullptr;
  }
  if (!Selection(source, left, top, width, height).IsValid()) {
    gLMX_Error = kInvalidSelection;
    return nullptr;
  }
  LMX_Picture result;
  result.SetNewPicture(source.width, source.height, true);
  if (!result.Lock()) {
    gLMX_Error = kCantLockResult;
    return nullptr;
  }
  PrivAdjustHSV(source, result, left, top, width, height, hue_degrees, saturation_factor, brightness_factor,
                IsTrue(negative), yield);
  return result.picture;
}

void LMX_AdjustHSV_InPlace(REALpictureStruct* p, int left, int top, int width, int height, double hue_degrees,
                           double saturation_factor, double brightness_factor, REALboolean negative, long yield) {
  if (!AcceptsAdjustment(p, hue_degrees, saturation_factor, brightness_factor)) return;
  LMX_Picture source(p);
  if (!source.Lock()) {
    gLMX_Error = kCantLockSource;
    return;
  }
  if (!Selection(source, left, top, width, height).IsValid()) {
    gLMX_Error = kInvalidSelection;
    return;
  }
  PrivAdjustHSV(source, source, left, top, width, height, hue_degrees, saturation_factor, brightness_factor,
                IsTrue(negative), yield);
}

void PrivAdjustHSV(LMX_Picture& source, LMX_Picture& destination, int left, int top, int width, int height,
                   double hue_degrees, double saturation_factor, double brightness_factor, bool negative, long yield) {
  const HSVAdjustment by = {TruncatedToInt(std::floor(hue_degrees * 1024.0 / 60.0)), Scale(saturation_factor),
                            Scale(brightness_factor)};
  const Selection selection(source, left, top, width, height);
  const std::int32_t end = destination.width;
  YieldPace pace(yield);
  for (std::int32_t y = 0; y < destination.height; ++y) {
    if (selection.HasRow(y)) {
      AdjustColumns(source, destination, y, 0, selection.x0, nullptr, negative);
      AdjustColumns(source, destination, y, selection.x0, selection.x1 + 1, &by, negative);
      AdjustColumns(source, destination, y, selection.x1 + 1, end, nullptr, negative);
    } else {
      AdjustColumns(source, destination, y, 0, end, nullptr, negative);
    }
    pace.EndLines(1, end);
  }
}

void LMX_GetAverageHSV(REALpictureStruct* p, int left, int top, int width, int height, double* hue_degrees,
                       double* saturation, double* brightness, long yield) {
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
  PrivGetAverageHSV(source, left, top, width, height, hue_degrees, saturation, brightness, yield);
}

void PrivGetAverageHSV(LMX_Picture& source, int left, int top, int width, int height, double* hue_degrees,
                       double* saturation, double* brightness, long yield) {
  const Selection selection(source, left, top, width, height);
  HSVSums sums = {};
  YieldPace pace(yield);
  for (std::int32_t y = selection.y0; y <= selection.y1; ++y) {
    SumRun({source, selection.x0, y}, selection.Width(), &sums);
    pace.EndLines(1, selection.Width());
  }
  const double hue = HueOf(selection.Mean(sums.rgb.red), selection.Mean(sums.rgb.green), selection.Mean(sums.rgb.blue));
  if (hue_degrees) *hue_degrees = hue;
  if (saturation) *saturation = sums.saturation / selection.Count();
  if (brightness) *brightness = sums.brightness / selection.Count();
}
