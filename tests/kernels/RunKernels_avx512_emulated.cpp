// The AVX-512 kernels from the same source, for processors that do not have AVX-512.
#include "EmulatedAvx512.h"
//
#include "Levels.h"

#define InstallAvx512 InstallAvx512Emulated
#define InstallAvx512NonTemporal InstallAvx512NonTemporalEmulated
#include "kernels/RunKernels_avx512.cpp"
