// The five functions through which the plug-in reads a bitmap context. The process exports them, as
// the host's framework does; a test can leave out any of them. A context of a Host is valid while
// its picture is locked.
#include "BitmapContext.h"

#include <string>

#include "HostState.h"

namespace host {
namespace {

ContextKeeper gKeeper = DescribeContext;

// Passes sizes on unchanged, negative ones too.
std::size_t Reported(int value) {
  return static_cast<std::size_t>(static_cast<std::ptrdiff_t>(value));
}

}  // namespace

void SetContextKeeper(ContextKeeper keeper) {
  gKeeper = keeper;
}

BitmapContext DescribeContext(CGContextRef context, const char* function) {
  const ObjectTable& table = Table();
  if (const PictureObject* picture = table.FindContext(context)) {
    const PictureMemory& memory = *picture->memory;
    const PictureShape& shape = memory.Shape();
    return {Reported(shape.width), Reported(shape.height), Reported(shape.defects.bitsPerPixel),
            Reported(memory.BytesPerRow()), memory.ContextPixels()};
  }
  if (HostState::current != nullptr) {
    HostState::current->Complain(std::string(function) + " called with " + table.Describe(context) +
                                 ", which is no context of a locked picture");
  }
  return {};
}

}  // namespace host

#define LMX_HOST_EXPORT extern "C" __attribute__((visibility("default"), used))

LMX_HOST_EXPORT std::size_t CGBitmapContextGetWidth(CGContextRef context) {
  return host::gKeeper(context, __func__).width;
}

LMX_HOST_EXPORT std::size_t CGBitmapContextGetHeight(CGContextRef context) {
  return host::gKeeper(context, __func__).height;
}

LMX_HOST_EXPORT std::size_t CGBitmapContextGetBitsPerPixel(CGContextRef context) {
  return host::gKeeper(context, __func__).bitsPerPixel;
}

LMX_HOST_EXPORT std::size_t CGBitmapContextGetBytesPerRow(CGContextRef context) {
  return host::gKeeper(context, __func__).bytesPerRow;
}

LMX_HOST_EXPORT void* CGBitmapContextGetData(CGContextRef context) {
  return host::gKeeper(context, __func__).pixels;
}
