// The levels of the kernels, and the choice among them.
#include "RunKernels.h"

RunKernels gRunKernels;
RunKernels gNonTemporalKernels;

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
    {"plain", InstallPlain, nullptr, RunsEverywhere},
#ifdef LMX_X86
    {"sse2", InstallSse2, InstallSse2NonTemporal, RunsEverywhere},
    {"avx2", InstallAvx2, InstallAvx2NonTemporal, HasAvx2},
    {"avx512", InstallAvx512, InstallAvx512NonTemporal, HasAvx512},
#endif
#ifdef __wasm_simd128__
    {"wasm", InstallWasm, nullptr, RunsEverywhere},
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
    level.install(&gRunKernels);
    level.install(&gNonTemporalKernels);
    if (level.installNonTemporal != nullptr) level.installNonTemporal(&gNonTemporalKernels);
  }
}
