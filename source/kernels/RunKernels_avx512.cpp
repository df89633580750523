// The kernels in AVX-512 (F and BW).
#include "Vector_avx512.h"
//
#include "RunKernels_wide.h"

void FillAvx512(RunKernels* kernels) {
  FillWide(kernels);
  kernels->level = "avx512";
}

void StreamAvx512(RunKernels* kernels) {
  FillAllWrites<Streamed>(kernels);
}
