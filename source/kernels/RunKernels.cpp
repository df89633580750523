// The choice of the kernels.
#include "RunKernels.h"

#include "KernelLevel.h"

RunKernels gRunKernels;

void SelectRunKernels() {
  FillPlain(&gRunKernels);
#ifdef LMX_X86
  __builtin_cpu_init();
  if (kHighestLevel >= KernelLevel::sse2) FillSse2(&gRunKernels);
  if (kHighestLevel >= KernelLevel::avx2 && __builtin_cpu_supports("avx2")) FillAvx2(&gRunKernels);
#endif
}
