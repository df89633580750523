// A library capped at a level runs this level, and the plug-in runs the highest level of this
// processor. The test reads the table of the loaded library, which is not exported.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "Levels.h"
#include "host/HiddenSymbol.h"
#include "host/Host.h"

namespace {

// The level that a library selected when the host loaded it.
std::string LevelOf(const std::string& file) {
  host::Host host;
  host.Load(file);
  const void* const kernels = host::HiddenSymbol(file, "gRunKernels");
  return kernels == nullptr ? "no table" : static_cast<const RunKernels*>(kernels)->level;
}

// The highest level up to `cap` that runs here.
std::string HighestUpTo(const std::string& cap) {
  std::string highest;
  for (const std::string& level : LevelNames()) {
    if (RunsHere(level) && !IsVariant(level)) highest = level;
    if (level == cap) break;
  }
  return highest;
}

std::vector<std::string> Caps() {
  std::vector<std::string> names = LevelNames();
  names.erase(std::remove_if(names.begin(), names.end(), IsVariant), names.end());
  return names;
}

class CappedLibrary : public testing::TestWithParam<std::string> {};

TEST_P(CappedLibrary, RunsTheHighestLevelUpToItsCap) {
  const std::string level = LevelOf(LMX_CAPPED_FILES + GetParam() + ".so");
  EXPECT_EQ(level, HighestUpTo(GetParam()));
  if (!RunsHere(GetParam())) GTEST_SKIP() << "this processor has no " << GetParam() << "; " << level << " ran instead";
}

INSTANTIATE_TEST_SUITE_P(Levels, CappedLibrary, testing::ValuesIn(Caps()), [](const auto& cap) { return cap.param; });

// LMX_EXPECTED_LEVEL names the level where the caller knows the processor.
TEST(LoadedLibrary, RunsTheHighestLevelWithoutACap) {
  const char* const expected = std::getenv("LMX_EXPECTED_LEVEL");
  EXPECT_EQ(LevelOf(LMX_LIBRARY_FILE), expected ? expected : HighestUpTo(""));
}

}  // namespace
