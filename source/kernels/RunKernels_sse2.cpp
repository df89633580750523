// The kernels in SSE2, which every x86 processor that we run on has.
#include "Vector_sse2.h"
//
#include "RunKernels_wide.h"

void InstallSse2(RunKernels* kernels) {
  InstallKernels(kernels);
  kernels->level = "sse2";
}

void InstallSse2NonTemporal(RunKernels* kernels) {
  InstallNonTemporal(kernels);
}
