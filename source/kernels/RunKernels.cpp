// The levels of the kernels, and the choice among them.
#include "RunKernels.h"

RunKernels gRunKernels;
RunKernels gStreamingKernels;

namespace {

bool RunsEverywhere() {
  return true;
}
#ifdef LMX_X86
bool HasAvx2() {
  return __builtin_cpu_supports("avx2") != 0;
}
bool HasAvx512() {
  return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw");
}
#endif

}  // namespace

// clang-format off
const LevelKernels kLevelKernels[kKernelLevels] = {
    {"plain", FillPlain, nullptr, RunsEverywhere},
#ifdef LMX_X86
    {"sse2", FillSse2, StreamSse2, RunsEverywhere},
    {"avx2", FillAvx2, StreamAvx2, HasAvx2},
    {"avx512", FillAvx512, StreamAvx512, HasAvx512},
#endif
#ifdef __wasm_simd128__
    {"wasm", FillWasm, nullptr, RunsEverywhere},
#endif
};
// clang-format on

void SelectRunKernels() {
#ifdef LMX_X86
  __builtin_cpu_init();
#endif
  for (int i = 0; i <= static_cast<int>(kHighestLevel); ++i) {
    const LevelKernels& level = kLevelKernels[i];
    if (level.name == nullptr || !level.runsHere()) continue;
    level.fill(&gRunKernels);
    level.fill(&gStreamingKernels);
    if (level.stream != nullptr) level.stream(&gStreamingKernels);
  }
}
