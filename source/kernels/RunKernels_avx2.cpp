// The kernels in AVX2.
#include "Vector_avx2.h"
//
#include "RunKernels_wide.h"

void InstallAvx2(RunKernels* kernels) {
  InstallKernels(kernels);
  kernels->level = "avx2";
}

void InstallAvx2NonTemporal(RunKernels* kernels) {
  InstallNonTemporal(kernels);
}
