// LMX_MakeGradient, LMX_MakeDoubleGradient: a new picture with a vertical gradient of two or three
// host colours.
//
// width, height  size of the picture in pixels, at least 1
// color1 ...     from top to bottom; of three, the second fills the two rows in the middle
// Every row has one colour. Each channel, alpha included, is truncated twice: the part of the lower
// colour, and its sum with the part of the upper colour. A section of one row divides 0 by 0 and
// becomes clear.
// Errors, in this order: 35 height, 34 width (they share the stretch's messages), 6 no picture.
#include "TPQ_Gradient.h"

#include <algorithm>

#include "LMX_Convert.h"
#include "LMX_Runs.h"
#include "LMX_Yield.h"
#include "TPQ_Errors.h"

namespace {

std::uint32_t Blend(std::uint32_t upper, double upperWeight, std::uint32_t lower, double lowerWeight) {
  const double lowerPart = TruncatedToInt(lower * lowerWeight);
  return static_cast<std::uint32_t>(std::clamp(TruncatedToInt(lowerPart + upper * upperWeight), 0, 255));
}

// Rows `top` to `bottom` of the picture, from one host colour to the other.
void FillSection(const LMX_Picture& picture, std::int32_t top, std::int32_t bottom, std::uint32_t upperColor,
                 std::uint32_t lowerColor, YieldPace& pace) {
  const std::uint32_t upper = upperColor ^ 0xFF000000;
  const std::uint32_t lower = lowerColor ^ 0xFF000000;
  const double distance = bottom - top;
  for (std::int32_t y = top; y <= bottom; ++y) {
    const double upperWeight = (bottom - y) / distance;
    const double lowerWeight = (y - top) / distance;
    const auto channel = [&](int shift) {
      return Blend(upper >> shift & 0xFF, upperWeight, lower >> shift & 0xFF, lowerWeight);
    };
    const std::uint32_t pixel = LMX_Pixel::Pack(channel(24), channel(16), channel(8), channel(0));
    FillRun(picture, 0, y, picture.width, StoredPixel(picture, pixel));
    pace.YieldIfDue();
    pace.Count(1, picture.width);
  }
}

// Makes and locks the picture of a gradient. False, with the error set, when its size is wrong or
// the host refuses.
bool MakePicture(LMX_Picture& picture, int width, int height) {
  gLMX_Error = height <= 0 ? kHeightOutOfBounds : width <= 0 ? kWidthOutOfBounds : kNoError;
  if (gLMX_Error != kNoError) return false;
  picture.SetNewPicture(width, height, true);
  if (picture.Lock()) return true;
  gLMX_Error = kCantLockResult;
  return false;
}

}  // namespace

REALpictureStruct* LMX_MakeGradient(int width, int height, int color1, int color2, int yield) {
  LMX_Picture picture;
  if (!MakePicture(picture, width, height)) return nullptr;
  PrivMakeGradient(picture, width, height, static_cast<unsigned int>(color1), static_cast<unsigned int>(color2), yield);
  return picture.picture;
}

REALpictureStruct* LMX_MakeDoubleGradient(int width, int height, int color1, int color2, int color3, int yield) {
  LMX_Picture picture;
  if (!MakePicture(picture, width, height)) return nullptr;
  PrivMakeDoubleGradient(picture, width, height, static_cast<unsigned int>(color1), static_cast<unsigned int>(color2),
                         static_cast<unsigned int>(color3), yield);
  return picture.picture;
}

void PrivMakeGradient(LMX_Picture& picture, int /*width*/, int /*height*/, unsigned int color1, unsigned int color2,
                      int yield) {
  YieldPace pace(yield);
  FillSection(picture, 0, picture.height - 1, color1, color2, pace);
}

void PrivMakeDoubleGradient(LMX_Picture& picture, int /*width*/, int /*height*/, unsigned int color1,
                            unsigned int color2, unsigned int color3, int yield) {
  const std::int32_t half = picture.height / 2;
  YieldPace pace(yield);
  FillSection(picture, 0, half - 1, color1, color2, pace);
  FillSection(picture, half, picture.height - 1, color2, color3, pace);
}
