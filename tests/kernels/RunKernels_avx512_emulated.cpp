// The kernels in AVX-512, from the same source, for processors that do not have it.
#include "EmulatedAvx512.h"
//
#include "Levels.h"

#define FillAvx512 FillAvx512Emulated
#define StreamAvx512 StreamAvx512Emulated
#include "kernels/RunKernels_avx512.cpp"
