// The levels of the kernels: those of the product, and variants for tests.
#pragma once

#include <string>
#include <vector>

#include "kernels/RunKernels.h"

struct Level {
  std::string name;
  void (*install)(RunKernels*);
  bool (*runsHere)();
};

/// Lowest first; each is installed on top of the levels before it. Variants count as levels: a
/// level with non-temporal stores (_nt), and AVX-512 emulated for processors without it.
const std::vector<Level>& Levels();

/// The names of all levels.
std::vector<std::string> LevelNames();

/// Whether it is a variant, "<level>_<what>", which no library selects when it is loaded.
bool IsVariant(const std::string& level);

/// Whether this processor can run the level.
bool RunsHere(const std::string& level);

/// The kernels of a level, as in a process that has selected it.
RunKernels KernelsOf(const std::string& level);

struct NamedKernels {
  std::string level;
  RunKernels kernels;
};

/// The kernels of every level that this processor can run.
std::vector<NamedKernels> LevelsHere();

/// AVX-512 from its own sources, with emulated instructions.
void InstallAvx512Emulated(RunKernels* kernels);
void InstallAvx512NonTemporalEmulated(RunKernels* kernels);
