#include "Levels.h"

#include <algorithm>

namespace {

std::vector<Level> MakeLevels() {
  std::vector<Level> levels;
  for (const auto& [name, install, installNonTemporal, runsHere] : kLevelKernels) {
    if (name == nullptr) continue;
    levels.push_back({name, install, runsHere});
    if (installNonTemporal != nullptr) levels.push_back({std::string(name) + "_nt", installNonTemporal, runsHere});
  }
#ifdef LMX_EMULATED_AVX512
  const auto runsHere = kLevelKernels[static_cast<int>(KernelLevel::avx2)].runsHere;
  levels.push_back({"avx512_emulated", InstallAvx512Emulated, runsHere});
  levels.push_back({"avx512_emulated_nt", InstallAvx512NonTemporalEmulated, runsHere});
#endif
  return levels;
}

}  // namespace

const std::vector<Level>& Levels() {
  static const std::vector<Level> levels = MakeLevels();
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
    if (l.runsHere()) l.install(&kernels);  // the compiler may use the level's instructions in it
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
