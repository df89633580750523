// The kernels in WebAssembly's 128 bits: those of SSE2, over the operations in emmintrin.h here.
#include "kernels/Vector_sse2.h"
//
#include "kernels/RunKernels_wide.h"

void InstallWasm(RunKernels* kernels) {
  InstallKernels(kernels);
  kernels->level = "wasm";
}
