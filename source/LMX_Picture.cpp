// Locking, and the creation of new pictures.
#include "LMX_Picture.h"

#include <algorithm>

// Weak: the library also loads in a process without CoreGraphics, whose pictures are buffers.
#if defined(__APPLE__)
#define LMX_FROM_HOST_PROCESS __attribute__((weak_import))
#else
#define LMX_FROM_HOST_PROCESS __attribute__((weak, visibility("default")))
#endif

extern "C" {
LMX_FROM_HOST_PROCESS std::size_t CGBitmapContextGetWidth(CGContextRef context);
LMX_FROM_HOST_PROCESS std::size_t CGBitmapContextGetHeight(CGContextRef context);
LMX_FROM_HOST_PROCESS std::size_t CGBitmapContextGetBitsPerPixel(CGContextRef context);
LMX_FROM_HOST_PROCESS std::size_t CGBitmapContextGetBytesPerRow(CGContextRef context);
LMX_FROM_HOST_PROCESS void* CGBitmapContextGetData(CGContextRef context);
}

namespace {

bool BitmapContextsAreKnown() {
  return CGBitmapContextGetWidth && CGBitmapContextGetHeight && CGBitmapContextGetBitsPerPixel &&
         CGBitmapContextGetBytesPerRow && CGBitmapContextGetData;
}

}  // namespace

bool LMX_Picture::Lock() {
  if (locked || !picture) return false;
  if (description.pictureType == kPictureTypeBuffer) {
    buffer = static_cast<REALpictureBuffer*>(description.pictureData);
    bitsPerPixel = 32;
    bytesPerPixel = 4;
    if (buffer) {
      width = std::max(buffer->width, 0);
      bytesPerRow = static_cast<std::int32_t>(static_cast<std::uint32_t>(width) * 4);
      height = std::max(buffer->height, 0);
    }
  } else if (description.pictureType == kPictureTypeBitmapContext) {
    const auto context = static_cast<CGContextRef>(description.pictureData);
    if (!context || !BitmapContextsAreKnown()) return false;
    width = std::max(static_cast<std::int32_t>(CGBitmapContextGetWidth(context)), 0);
    height = std::max(static_cast<std::int32_t>(CGBitmapContextGetHeight(context)), 0);
    bitsPerPixel = static_cast<std::uint32_t>(CGBitmapContextGetBitsPerPixel(context));
    bytesPerRow = static_cast<std::int32_t>(CGBitmapContextGetBytesPerRow(context));
    data = static_cast<std::uint8_t*>(CGBitmapContextGetData(context));
    bytesPerPixel = bitsPerPixel == 32 ? 4 : 0;
    if (!data && width > 0 && height > 0) {
      ForgetPixels();
      return false;
    }
  } else {
    return false;
  }
  locked = true;
  return true;
}

bool LMX_Picture::SetNewPicture(long newWidth, long newHeight, bool keep) {
  Release();
  if (newWidth < 1 || newHeight < 1) return false;
  REALobjectStruct* const object = REALnewInstance(gPictureClassRef);
  if (!object) return false;
  void* const constructor = REALLoadObjectMethod(object, "Constructor(width as integer, height as integer)");
  if (!constructor) return false;
  reinterpret_cast<HostPictureConstructor*>(constructor)(object, static_cast<int>(newWidth),
                                                         static_cast<int>(newHeight));
  Hold(reinterpret_cast<REALpictureStruct*>(object));
  unlockOnRelease = !keep;
  return false;
}
