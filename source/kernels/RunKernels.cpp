// The choice of the kernels.
#include "RunKernels.h"

#include "KernelLevel.h"

RunKernels gRunKernels;
RunKernels gStreamingKernels;

void SelectRunKernels() {
  FillPlain(&gRunKernels);
  FillPlain(&gStreamingKernels);
#ifdef LMX_X86
  const auto use = [](void (*fill)(RunKernels*), void (*stream)(RunKernels*)) {
    fill(&gRunKernels);
    fill(&gStreamingKernels);
    stream(&gStreamingKernels);
  };
  __builtin_cpu_init();
  if (kHighestLevel >= KernelLevel::sse2) use(FillSse2, StreamSse2);
  if (kHighestLevel >= KernelLevel::avx2 && __builtin_cpu_supports("avx2")) use(FillAvx2, StreamAvx2);
  const bool hasAvx512 = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw");
  if (kHighestLevel >= KernelLevel::avx512 && hasAvx512) use(FillAvx512, StreamAvx512);
#endif
}
