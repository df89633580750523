// SSE2 on WebAssembly: SIMDe has every intrinsic in the instructions of WebAssembly's 128 bits. The compiler's own header
// of this name is for x86 alone.
#pragma once

#define SIMDE_ENABLE_NATIVE_ALIASES
#include <simde/x86/sse2.h>
