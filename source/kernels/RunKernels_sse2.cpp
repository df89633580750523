// The kernels in SSE2, which every supported x86 processor has.
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
