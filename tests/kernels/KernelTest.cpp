// Compares every kernel of every level with the pixel functions: all small widths, all
// misalignments, in place where the contract allows it, between guards.
//
// A failure names the case. LMX_KERNEL_CASE="<the text between quotes>" runs only this case in the
// test that failed. A part of such a text runs all cases that contain it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>
#include <tuple>

#include "KernelCases.h"
#include "KernelRig.h"
#include "Levels.h"

namespace {

// One case of one kernel. It determines everything else.
struct Trial {
  std::size_t n;
  host::Flush flush;
  std::size_t shift;    // distance of the output from the inaccessible page, in bytes
  std::size_t inPlace;  // 1 + index of the input that is also the output; 0: none
  std::uint64_t seed;
};

std::string Text(const Trial& trial) {
  char text[128];
  std::snprintf(text, sizeof text, "n=%zu flush=%s shift=%zu inplace=%zu seed=%llu", trial.n,
                trial.flush == host::Flush::End ? "end" : "start", trial.shift, trial.inPlace,
                static_cast<unsigned long long>(trial.seed));
  return text;
}

bool Parse(const char* text, Trial* trial) {
  char flush[8] = {};
  unsigned long long seed = 0;
  if (std::sscanf(text, "n=%zu flush=%7s shift=%zu inplace=%zu seed=%llu", &trial->n, flush, &trial->shift,
                  &trial->inPlace, &seed) != 5) {
    return false;
  }
  trial->flush = std::strcmp(flush, "end") == 0 ? host::Flush::End : host::Flush::Start;
  trial->seed = seed;
  return true;
}

// Every width and shift, in place or not. Each case has a seed of its own.
std::vector<Trial> Trials(const KernelCase& kernel) {
  std::vector<std::size_t> widths;
  for (std::size_t n = 0; n <= 70; ++n) widths.push_back(n);
  const std::size_t few = widths.size();
  for (const std::size_t n :
       std::vector<std::size_t>{95, 96, 97, 127, 128, 129, 255, 256, 257, 511, 512, 513, 1023, 1100}) {
    widths.push_back(n);
  }
  const std::vector<std::size_t> inPlace = WaysInPlace(kernel);
  const std::size_t step = AlignmentOf(kernel.output);
  std::vector<Trial> trials;
  std::uint64_t seed = 0;
  for (std::size_t i = 0; i < widths.size(); ++i) {
    for (const std::size_t place : inPlace) {
      // With an end fixed at the page after it, the start takes all multiples of 4 as the width
      // changes.
      for (std::size_t shift = 0; shift < (i < few ? 8 : 4); shift += step) {
        trials.push_back({widths[i], host::Flush::End, shift, place, ++seed});
      }
      for (std::size_t shift = 0; shift < (i < few ? 64 : 8); shift += step) {
        trials.push_back({widths[i], host::Flush::Start, shift, place, ++seed});
      }
    }
  }
  return trials;
}

void* Entry(const RunKernels& kernels, const KernelCase& kernel) {
  void* entry = nullptr;
  std::memcpy(&entry, reinterpret_cast<const char*>(&kernels) + kernel.slot, sizeof entry);
  return entry;
}

// Whether a lower level that is tested has the same function.
bool IsInherited(const std::string& level, const KernelCase& kernel) {
  for (const std::string& lower : LevelNames()) {
    if (lower == level) break;
    if (RunsHere(lower) && Entry(KernelsOf(lower), kernel) == Entry(KernelsOf(level), kernel)) return true;
  }
  return false;
}

// The level and the index of every kernel to test. Levels that this processor lacks are included,
// so that their tests are reported as skipped.
std::vector<std::tuple<std::string, std::size_t>> LevelsAndKernels() {
  std::vector<std::tuple<std::string, std::size_t>> all;
  for (const std::string& level : LevelNames()) {
    for (std::size_t i = 0; i < KernelCases().size(); ++i) {
      if (!RunsHere(level) || !IsInherited(level, KernelCases()[i])) all.emplace_back(level, i);
    }
  }
  return all;
}

class Kernel : public testing::TestWithParam<std::tuple<std::string, std::size_t>> {};

TEST_P(Kernel, EqualsThePixelFunctions) {
  const auto& [level, index] = GetParam();
  if (!RunsHere(level)) GTEST_SKIP() << "this processor has no " << level;
  const KernelCase& kernel = KernelCases()[index];
  const RunKernels kernels = KernelsOf(level);
  std::vector<Trial> trials = Trials(kernel);
  if (const char* only = std::getenv("LMX_KERNEL_CASE")) {
    Trial trial;
    if (Parse(only, &trial)) trials = {trial};
    const auto isOther = [only](const Trial& t) { return Text(t).find(only) == std::string::npos; };
    trials.erase(std::remove_if(trials.begin(), trials.end(), isOther), trials.end());
    ASSERT_FALSE(trials.empty()) << only;
  }
  KernelRig rig;
  for (const Trial& trial : trials) {
    Random random(trial.seed);
    KernelTrial made(kernel, trial.n, trial.inPlace, random);
    made.flush = trial.flush;
    made.shift = trial.shift;
    const std::string trouble = rig.Run(made, kernels);
    ASSERT_EQ(trouble, "") << kernel.name << " of " << level << ", LMX_KERNEL_CASE=\"" << Text(trial) << "\"";
  }
}

std::string Name(const testing::TestParamInfo<Kernel::ParamType>& info) {
  const auto& [level, index] = info.param;
  return level + "_" + KernelCases()[index].name;
}

INSTANTIATE_TEST_SUITE_P(Levels, Kernel, testing::ValuesIn(LevelsAndKernels()), Name);

// The non-empty slots of a table, without its name.
std::set<std::size_t> SlotsOf(const RunKernels& kernels) {
  std::set<std::size_t> slots;
  for (std::size_t slot = 0; slot < sizeof(RunKernels); slot += sizeof(void*)) {
    void* entry = nullptr;
    std::memcpy(&entry, reinterpret_cast<const char*>(&kernels) + slot, sizeof entry);
    if (entry) slots.insert(slot);
  }
  slots.erase(offsetof(RunKernels, level));
  return slots;
}

TEST(KernelTable, HasItsNameAndOneCaseForEveryKernelAtEveryLevel) {
  std::set<std::size_t> slots;
  for (const KernelCase& kernel : KernelCases()) slots.insert(kernel.slot);
  EXPECT_EQ(slots.size(), KernelCases().size());
  for (const std::string& level : LevelNames()) {
    if (!RunsHere(level)) continue;
    const RunKernels kernels = KernelsOf(level);
    EXPECT_EQ(kernels.level, level.substr(0, level.find('_')));
    EXPECT_EQ(SlotsOf(kernels), slots) << level;
  }
}

// A pair of storage forms has all kernels of pairs; a form has all kernels of forms.
TEST(KernelTable, IsWholeForStorageForms) {
  const RunKernels kernels = KernelsOf("plain");
  const std::set<std::size_t> slots = SlotsOf(kernels);
  const auto expectWhole = [&](const auto& part) {
    const auto begin =
        static_cast<std::size_t>(reinterpret_cast<const char*>(&part) - reinterpret_cast<const char*>(&kernels));
    for (std::size_t slot = begin; slot < begin + sizeof part; slot += sizeof(void*)) EXPECT_TRUE(slots.count(slot));
  };
  for (const PixelForm form : {kContextForm, kBufferForm}) {
    for (const PixelForm to : {kContextForm, kBufferForm}) expectWhole(kernels.between[form][to]);
    expectWhole(kernels.of[form]);
  }
}

// A kernel that a level forgets to install is correct but slow, so no other test notices.
TEST(KernelTable, EveryLevelBringsEveryKernelOfItsOwn) {
  std::string below = "plain";
  for (const std::string& level : LevelNames()) {
    const bool isNonTemporal = level.find("_nt") != std::string::npos;
    if (!RunsHere(level) || level == "plain" || isNonTemporal) continue;
    const RunKernels own = KernelsOf(level), lower = KernelsOf(below);
    for (const KernelCase& kernel : KernelCases()) {
      const auto slot = [&](const RunKernels& kernels) {
        return reinterpret_cast<const char*>(&kernels) + kernel.slot;
      };
      EXPECT_NE(std::memcmp(slot(own), slot(lower), sizeof(void*)), 0) << kernel.name << " of " << level;
    }
    if (!IsVariant(level)) below = level;
  }
}

// The plug-in uses the highest level that this processor has, with all its kernels.
TEST(KernelTable, SelectedTablesAreThoseOfTheHighestLevelThatRunsHere) {
  RunKernels kernels = KernelsOf("plain"), nonTemporal = kernels;
  for (const std::string& level : LevelNames()) {
    if (!RunsHere(level)) continue;
    if (!IsVariant(level)) kernels = KernelsOf(level);
    if (level == std::string(kernels.level) + "_nt") nonTemporal = KernelsOf(level);
  }
  SelectRunKernels();
  EXPECT_EQ(std::memcmp(&gRunKernels, &kernels, sizeof kernels), 0) << kernels.level;
  EXPECT_EQ(std::memcmp(&gNonTemporalKernels, &nonTemporal, sizeof nonTemporal), 0) << nonTemporal.level;
}

}  // namespace
