// The kernels in AVX-512 (F and BW).
#include "Vector_avx512.h"
//
#include "RunKernels_wide.h"

void InstallAvx512(RunKernels* kernels) {
  InstallKernels(kernels);
  kernels->level = "avx512";
}

void InstallAvx512NonTemporal(RunKernels* kernels) {
  InstallNonTemporal(kernels);
}
