// Every kernel of every level against the definition of one pixel: all small widths, all misalignments, in place where
// the contract allows it, between guards.
//
// A failure names the case. LMX_KERNEL_CASE="<the text between quotes>" runs this one alone, in the test that failed.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>
#include <tuple>

#include "GuardedRun.h"
#include "KernelCases.h"
#include "Levels.h"

namespace {

// One case of one kernel. Everything else follows from these.
struct Trial {
  std::size_t n;
  host::Flush flush;
  std::size_t shift;    // of the output, in bytes, from the inaccessible page
  std::size_t inPlace;  // 1 + index of the input that is the output, or 0
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

std::string Text(const KernelArguments& a) {
  char text[256];
  std::snprintf(
      text, sizeof text,
      "stride=%zu columns=%zu pitch=%zu count=%zu slope=%d before=%08x fraction=%u box={%u, %u, %u} hsv={%d, %d, %d} "
      "rgb={%d, %d, %d}",
      a.stride, a.columns, a.pitch, a.count, a.slope, a.before, a.fraction, a.box.ofRun, a.box.ofBox, a.box.left,
      a.hsv.hueShift, a.hsv.saturationScale, a.hsv.valueScale, a.rgb.red, a.rgb.green, a.rgb.blue);
  return text;
}

using Bytes = std::vector<std::uint8_t>;

std::string Hex(const Bytes& bytes, std::size_t at) {
  std::string text;
  for (std::size_t i = at; i < std::min(at + 4, bytes.size()); ++i) {
    char digits[4];
    std::snprintf(digits, sizeof digits, "%02x ", bytes[i]);
    text += digits;
  }
  return text;
}

constexpr std::size_t kMostPixels = 1100;
constexpr std::size_t kLargest = 4 * (2 * kMostColumns + kMostGap) * (kMostPixels + kMostGap);

// Runs trials of one kernel at one level.
class Rig {
 public:
  Rig(const KernelCase& kernel, const RunKernels& kernels)
      : kernel_(kernel),
        kernels_(kernels),
        output_(kLargest),
        inputs_{GuardedRun(kLargest), GuardedRun(kLargest), GuardedRun(kLargest)} {}

  /// Empty if all is well.
  std::string Run(const Trial& trial) {
    Random random(trial.seed);
    Operands operands = {MakeArguments(trial.n, random), {}, {}};
    for (std::size_t i = 0; i < kernel_.inputs.size(); ++i) {
      operands.inputs[i] = Contents(kernel_.inputs[i].operand, operands.arguments, random);
    }
    if (kernel_.addsToOutput) operands.output = Contents(kernel_.output, operands.arguments, random);
    if (trial.inPlace != 0) operands.output = operands.inputs[trial.inPlace - 1];
    // Whatever is not part of the operands differs between the two rounds, so that it cannot matter unseen.
    for (const std::uint8_t pattern : {std::uint8_t{0x51}, std::uint8_t{0xA6}}) {
      std::string trouble = RunOnce(trial, operands, random, pattern);
      if (!trouble.empty()) return trouble;
    }
    return {};
  }

 private:
  struct Operands {
    KernelArguments arguments;
    Bytes inputs[3];
    Bytes output;  // before the call, if that matters
  };

  std::string RunOnce(const Trial& trial, const Operands& operands, Random& random, std::uint8_t pattern) {
    const KernelArguments& arguments = operands.arguments;
    KernelCall call = {arguments, nullptr, {}};
    const std::size_t inputs = kernel_.inputs.size();
    for (std::size_t i = 0; i < inputs; ++i) {
      if (trial.inPlace == i + 1) continue;
      call.inputs[i] =
          Place(&inputs_[i], kernel_.inputs[i].operand, operands.inputs[i], trial, random.Below(16), pattern);
    }
    const bool reads = kernel_.addsToOutput || trial.inPlace != 0;
    const Bytes before = reads ? operands.output : Bytes(SizeOf(kernel_.output, arguments), pattern);
    call.output = Place(&output_, kernel_.output, before, trial, trial.shift, pattern);
    if (trial.inPlace != 0) call.inputs[trial.inPlace - 1] = call.output;

    const Bytes expected = Expected(arguments, operands.inputs, before);
    const std::string fault = CallKernel(call);
    if (!fault.empty()) return fault + "\n  " + Text(arguments);
    std::string trouble = Compare(expected, output_.Bytes());
    if (const std::string damage = output_.RingDamage(); !damage.empty()) trouble += "\n  wrote " + damage;
    for (std::size_t i = 0; i < inputs; ++i) {
      if (trial.inPlace != i + 1 && (inputs_[i].Bytes() != operands.inputs[i] || !inputs_[i].RingDamage().empty())) {
        trouble += "\n  changed input " + std::to_string(i);
      }
    }
    return trouble.empty() ? trouble : trouble + "\n  " + Text(arguments);
  }

  static Bytes Contents(Operand operand, const KernelArguments& arguments, Random& random) {
    Bytes bytes(SizeOf(operand, arguments));
    MakeOperand(operand, arguments, random, bytes.data());
    return bytes;
  }

  static void* Place(GuardedRun* memory, Operand operand, const Bytes& contents, const Trial& trial, std::size_t shift,
                     std::uint8_t pattern) {
    void* run = memory->Place(contents.size(), trial.flush, shift - shift % AlignmentOf(operand), pattern);
    if (!contents.empty()) std::memcpy(run, contents.data(), contents.size());
    return run;
  }

  Bytes Expected(const KernelArguments& arguments, const Bytes (&contents)[3], Bytes output) const {
    kernel_.define({arguments, output.data(), {contents[0].data(), contents[1].data(), contents[2].data()}});
    return output;
  }

  std::string CallKernel(const KernelCall& call) {
    struct Context {
      const Rig* rig;
      const KernelCall* call;
    } context = {this, &call};
    const void* fault = FaultIn(
        [](void* c) {
          const auto* k = static_cast<Context*>(c);
          k->rig->kernel_.call(k->rig->kernels_, *k->call);
        },
        &context);
    if (!fault) return {};
    std::string text = "\n  memory fault";
    const std::string atOutput = output_.Locate(fault);
    if (!atOutput.empty()) text += ", of the output " + atOutput;
    for (std::size_t i = 0; i < kernel_.inputs.size(); ++i) {
      const std::string atInput = call.inputs[i] == call.output ? "" : inputs_[i].Locate(fault);
      if (!atInput.empty()) text += ", of input " + std::to_string(i) + " " + atInput;
    }
    return text;
  }

  static std::string Compare(const Bytes& expected, const Bytes& actual) {
    if (expected == actual) return {};
    const auto differs = std::mismatch(expected.begin(), expected.end(), actual.begin()).first;
    const std::size_t at = static_cast<std::size_t>(differs - expected.begin()) / 4 * 4;
    return "\n  bytes " + std::to_string(at) + "...: expected " + Hex(expected, at) + " got " + Hex(actual, at);
  }

  const KernelCase& kernel_;
  const RunKernels& kernels_;
  GuardedRun output_;
  GuardedRun inputs_[3];
};

// Every width and shift, in place or not, each case with a seed of its own.
std::vector<Trial> Trials(const KernelCase& kernel) {
  std::vector<std::size_t> widths;
  for (std::size_t n = 0; n <= 70; ++n) widths.push_back(n);
  const std::size_t few = widths.size();
  for (const std::size_t n :
       std::vector<std::size_t>{95, 96, 97, 127, 128, 129, 255, 256, 257, 511, 512, 513, 1023, 1100}) {
    widths.push_back(n);
  }
  std::vector<std::size_t> inPlace = {0};
  for (std::size_t i = 0; i < kernel.inputs.size(); ++i) {
    if (kernel.inputs[i].mayBeOutput) inPlace.push_back(i + 1);
  }
  const std::size_t step = AlignmentOf(kernel.output);
  std::vector<Trial> trials;
  std::uint64_t seed = 0;
  for (std::size_t i = 0; i < widths.size(); ++i) {
    for (const std::size_t place : inPlace) {
      // Flush with the page behind, a width passes through all multiples of 4 by itself.
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

// Whether a lower level, where it is tested, has the very same code.
bool IsInherited(const std::string& level, const KernelCase& kernel) {
  for (const std::string& lower : LevelNames()) {
    if (lower == level) break;
    if (RunsHere(lower) && Entry(KernelsOf(lower), kernel) == Entry(KernelsOf(level), kernel)) return true;
  }
  return false;
}

// Level and index of every kernel to test. What this processor lacks is there, too: to be seen as skipped.
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

TEST_P(Kernel, EqualsItsDefinition) {
  const auto& [level, index] = GetParam();
  if (!RunsHere(level)) GTEST_SKIP() << "this processor has no " << level;
  const KernelCase& kernel = KernelCases()[index];
  const RunKernels kernels = KernelsOf(level);
  std::vector<Trial> trials = Trials(kernel);
  if (const char* only = std::getenv("LMX_KERNEL_CASE")) {
    Trial trial;
    ASSERT_TRUE(Parse(only, &trial)) << only;
    trials = {trial};
  }
  Rig rig(kernel, kernels);
  for (const Trial& trial : trials) {
    const std::string trouble = rig.Run(trial);
    ASSERT_EQ(trouble, "") << kernel.name << " of " << level << ", LMX_KERNEL_CASE=\"" << Text(trial) << "\"";
  }
}

std::string Name(const testing::TestParamInfo<Kernel::ParamType>& info) {
  const auto& [level, index] = info.param;
  return level + "_" + KernelCases()[index].name;
}

INSTANTIATE_TEST_SUITE_P(Levels, Kernel, testing::ValuesIn(LevelsAndKernels()), Name);

// The slots of a table that are not empty, apart from its name.
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

// A pair of storage forms has all kernels of pairs, and a form all of its own.
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

// What a level forgets to install is right all the same, and slow.
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

// What the plug-in will use is the highest level that runs here, whole.
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
