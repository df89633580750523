// LMX_Trim: a rectangle of the source, which may reach outside it, as a new picture.
//
// left, top      source coordinates of the result's top left pixel, of any value
// width, height  size of the result in pixels, at least 1; left + width - 1 and top + height - 1
//                fit in 32 bits
// frame_color    colour of the pixels outside the source. They are always fully transparent, so
//                that the colour survives in buffer pictures only
// yield          accepted and not used
// Errors, in this order: 2 source nil, 4 source not lockable, 39 rectangle, 6 no result.
#include "TPQ_Trim.h"

#include <algorithm>

#include "LMX_Convert.h"
#include "LMX_Runs.h"
#include "TPQ_Errors.h"

namespace {

bool IsTrimArea(std::int64_t start, std::int64_t size) {
  return size >= 1 && FitsInt(start + size - 1);
}

}  // namespace

REALpictureStruct* LMX_Trim(REALpictureStruct* p, long left, long top, long width, long height,
                            unsigned long frame_color, long /*yield*/) {
  gLMX_Error = p ? kNoError : kSourceIsNil;
  if (!p) return nullptr;
  LMX_Picture source(p);
  if (!source.Lock()) {
    gLMX_Error = kCantLockSource;
    return nullptr;
  }
  if (!IsTrimArea(left, width) || !IsTrimArea(top, height)) {
    gLMX_Error = kInvalidTrimArea;
    return nullptr;
  }
  LMX_Picture result;
  result.SetNewPicture(width, height, true);
  if (!result.Lock()) {
    gLMX_Error = kCantLockResult;
    return nullptr;
  }

  // The result's columns `begin` to `end` - 1 have a source pixel. All sums are in 64 bits.
  const auto inResult = [&result](std::int64_t x) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(x, 0, result.width));
  };
  const std::int32_t begin = inResult(-static_cast<std::int64_t>(left));
  const std::int32_t end = std::max(begin, inResult(static_cast<std::int64_t>(source.width) - left));
  const std::uint32_t frame = StoredPixel(result, static_cast<std::uint32_t>(frame_color) & 0xFFFFFF);
  for (std::int32_t y = 0; y < result.height; ++y) {
    const std::int64_t sourceRow = static_cast<std::int64_t>(top) + y;
    if (sourceRow < 0 || sourceRow >= source.height) {
      FillRun(result, 0, y, result.width, frame);
      continue;
    }
    FillRun(result, 0, y, begin, frame);
    const PixelPosition from = {source, static_cast<std::int32_t>(left + begin), static_cast<std::int32_t>(sourceRow)};
    CopyRun({result, begin, y}, from, end - begin);
    FillRun(result, end, y, result.width - end, frame);
  }
  return result.picture;
}
