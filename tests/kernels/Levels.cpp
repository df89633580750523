#include "Levels.h"

#include <algorithm>

#ifdef LMX_X86
namespace {

bool HasAvx2() {
  return __builtin_cpu_supports("avx2") != 0;
}
bool HasAvx512() {
  return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw");
}

}  // namespace
#endif

const std::vector<Level>& Levels() {
  static const std::vector<Level> levels = {
      {"plain", FillPlain, [] { return true; }},
#ifdef LMX_X86
      {"sse2", FillSse2, [] { return true; }},
      {"sse2_streaming", StreamSse2, [] { return true; }},
      {"avx2", FillAvx2, HasAvx2},
      {"avx2_streaming", StreamAvx2, HasAvx2},
      {"avx512", FillAvx512, HasAvx512},
      {"avx512_streaming", StreamAvx512, HasAvx512},
#endif
#ifdef LMX_EMULATED_AVX512
      {"avx512_emulated", FillAvx512Emulated, HasAvx2},
      {"avx512_emulated_streaming", StreamAvx512Emulated, HasAvx2},
#endif
  };
  return levels;
}

std::vector<std::string> LevelNames() {
  std::vector<std::string> names;
  for (const Level& level : Levels()) names.emplace_back(level.name);
  return names;
}

bool IsVariant(const std::string& level) {
  return level.find('_') != std::string::npos;
}

bool RunsHere(const std::string& level) {
  return std::any_of(Levels().begin(), Levels().end(), [&](const Level& l) { return level == l.name && l.runsHere(); });
}

RunKernels KernelsOf(const std::string& level) {
  RunKernels kernels = {};
  for (const Level& l : Levels()) {
    if (l.runsHere()) l.fill(&kernels);  // filling in takes the level's instructions, too
    if (level == l.name) break;
  }
  return kernels;
}

std::vector<NamedKernels> LevelsHere() {
  std::vector<NamedKernels> levels;
  for (const std::string& level : LevelNames()) {
    if (RunsHere(level)) levels.push_back({level, KernelsOf(level)});
  }
  return levels;
}
