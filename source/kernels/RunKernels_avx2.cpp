// The kernels in AVX2.
#include "Vector_avx2.h"
//
#include "RunKernels_wide.h"

void FillAvx2(RunKernels* kernels) {
  FillWide(kernels);
  kernels->level = "avx2";
}

void StreamAvx2(RunKernels* kernels) {
  FillAllWrites<Streamed>(kernels);
}
