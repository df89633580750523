// The kernels in SSE2, which every x86 processor that we run on has.
#include "Vector_sse2.h"
//
#include "RunKernels_wide.h"

void FillSse2(RunKernels* kernels) {
  FillWide(kernels);
  kernels->level = "sse2";
}

void StreamSse2(RunKernels* kernels) {
  FillAllWrites<Streamed>(kernels);
}
