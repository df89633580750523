// The levels of the kernels. A new level is one line of Levels.cpp.
#pragma once

#include <string>
#include <vector>

#include "kernels/RunKernels.h"

struct Level {
  const char* name;
  void (*fill)(RunKernels*);
  bool (*runsHere)();
};

/// Lowest first; each fills in on top of those before it. What writes past the cache counts as a level of its own.
const std::vector<Level>& Levels();

/// The names of all levels.
std::vector<std::string> LevelNames();

/// Whether it is what writes past the cache.
bool IsStreaming(const std::string& level);

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
