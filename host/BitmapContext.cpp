// The five functions through which the plug-in reads a bitmap context. The process exports them, as the host's
// framework would; a test can leave out any. A context is good while its picture is locked.

#include <cstddef>
#include <string>

#include "HostState.h"

namespace host {
namespace {

const PictureMemory* ContextMemory(CGContextRef context, const char* function) {
  const ObjectTable& table = ObjectTable::Instance();
  if (const PictureObject* picture = table.FindContext(context)) return picture->memory.get();
  if (HostState::current != nullptr) {
    HostState::current->Complain(std::string(function) + " called with " + table.Describe(context) +
                                 ", which is no context of a locked picture");
  }
  return nullptr;
}

// Sizes are reported as they are, negative ones too.
std::size_t Reported(int value) {
  return static_cast<std::size_t>(static_cast<std::ptrdiff_t>(value));
}

}  // namespace

void LinkBitmapContext() {}

}  // namespace host

#define LMX_HOST_EXPORT extern "C" __attribute__((visibility("default"), used))

LMX_HOST_EXPORT std::size_t CGBitmapContextGetWidth(CGContextRef context) {
  const auto* memory = host::ContextMemory(context, __func__);
  return memory == nullptr ? 0 : host::Reported(memory->Shape().width);
}

LMX_HOST_EXPORT std::size_t CGBitmapContextGetHeight(CGContextRef context) {
  const auto* memory = host::ContextMemory(context, __func__);
  return memory == nullptr ? 0 : host::Reported(memory->Shape().height);
}

LMX_HOST_EXPORT std::size_t CGBitmapContextGetBitsPerPixel(CGContextRef context) {
  const auto* memory = host::ContextMemory(context, __func__);
  return memory == nullptr ? 0 : host::Reported(memory->Shape().defects.bitsPerPixel);
}

LMX_HOST_EXPORT std::size_t CGBitmapContextGetBytesPerRow(CGContextRef context) {
  const auto* memory = host::ContextMemory(context, __func__);
  return memory == nullptr ? 0 : host::Reported(memory->BytesPerRow());
}

LMX_HOST_EXPORT void* CGBitmapContextGetData(CGContextRef context) {
  const auto* memory = host::ContextMemory(context, __func__);
  return memory == nullptr ? nullptr : memory->ContextPixels();
}
