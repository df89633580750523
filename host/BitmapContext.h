// Who answers the five functions through which the plug-in reads a bitmap context.
#pragma once

#include <cstddef>

#include "HostInterface.h"

namespace host {

/// What the functions answer about one context.
struct BitmapContext {
  std::size_t width = 0;
  std::size_t height = 0;
  std::size_t bitsPerPixel = 0;
  std::size_t bytesPerRow = 0;
  void* pixels = nullptr;
};

/// Describes a context; `function` is the name of the one that asks. Zeros for what is no context.
using ContextKeeper = BitmapContext (*)(CGContextRef context, const char* function);

/// From now on the functions ask this keeper. A Host installs its own; so must whoever plays the
/// host instead.
void SetContextKeeper(ContextKeeper keeper);

/// The keeper of Host: only contexts of locked pictures, and a complaint about any other.
BitmapContext DescribeContext(CGContextRef context, const char* function);

}  // namespace host
