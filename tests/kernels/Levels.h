// The levels of the kernels: those of the product, and their variants.
#pragma once

#include <string>
#include <vector>

#include "kernels/RunKernels.h"

struct Level {
  std::string name;
  void (*install)(RunKernels*);
  bool (*runsHere)();
};

/// Lowest first; each is installed on top of those before it. Variants count as levels of their
/// own: a level's non-temporal stores (_nt), and AVX-512 where it is emulated for processors
/// without it.
const std::vector<Level>& Levels();

/// The names of all levels.
std::vector<std::string> LevelNames();

/// Whether it is a variant, "<level>_<what>", and not what a library starts with.
bool IsVariant(const std::string& level);

/// Whether this processor can run the level.
bool RunsHere(const std::string& level);

/// The kernels of a level, as a process that selected it has them.
RunKernels KernelsOf(const std::string& level);

struct NamedKernels {
  std::string level;
  RunKernels kernels;
};

/// Those of every level that this processor can run.
std::vector<NamedKernels> LevelsHere();

/// AVX-512 from its own sources, whose instructions are emulated.
void InstallAvx512Emulated(RunKernels* kernels);
void InstallAvx512NonTemporalEmulated(RunKernels* kernels);
