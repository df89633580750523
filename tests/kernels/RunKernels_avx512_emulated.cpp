// The kernels in AVX-512, from the same sources, for processors that do not have it.
#include "EmulatedAvx512.h"
//
#include "kernels/Vector_avx512.h"
//
#include "Levels.h"
#include "kernels/RunKernels_wide.h"

void FillAvx512Emulated(RunKernels* kernels) {
  FillWide(kernels);
  kernels->level = "avx512";
}

void StreamAvx512Emulated(RunKernels* kernels) {
  FillAllWrites<Streamed>(kernels);
}
