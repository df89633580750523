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

/// Describes a context. `function` is the name of the function that asks. The answer is all zeros
/// if the pointer is no context.
using ContextKeeper = BitmapContext (*)(CGContextRef context, const char* function);

/// Makes the functions ask this keeper from now on. A Host installs its own keeper; a program that
/// plays the host itself must install one, too.
void SetContextKeeper(ContextKeeper keeper);

/// The keeper of Host. It knows the contexts of locked pictures and complains about any other.
BitmapContext DescribeContext(CGContextRef context, const char* function);

}  // namespace host
