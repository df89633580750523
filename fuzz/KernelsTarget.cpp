// The kernels: every level that runs here, on the same operands, must do what the plain definition does, and touch
// nothing else. The choices of arguments and contents come from the input, byte by byte.

#include <algorithm>
#include <cstring>
#include <deque>
#include <string>

#include "Archive.h"
#include "Finding.h"
#include "GuardedRun.h"
#include "KernelCases.h"
#include "KernelInput.h"
#include "Levels.h"

namespace fuzz {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kLongest = 1100;
constexpr std::size_t kMostInputs = std::extent_v<decltype(::KernelCall::inputs)>;
// Whatever is not part of the operands differs between two rounds, so that it cannot matter unseen.
constexpr std::uint8_t kPatterns[] = {0x51, 0xA6};

// A call of one kernel, with the outcome that the definition gives.
class Trial {
 public:
  Trial(const KernelInput& input, Reader& rest)
      : input_(input), kernel_(KernelCases()[input.kernel % KernelCases().size()]) {
    Random random(rest.Bytes(), rest.Left());
    const std::size_t n = input.n == KernelInput::kLongRun ? input.length % (kLongest + 1) : input.n;
    arguments_ = MakeArguments(n, random);
    for (std::size_t i = 0; i < kernel_.inputs.size(); ++i) {
      inputs_[i] = Contents(kernel_.inputs[i].operand, random);
      shifts_[i] = random.Below(16);
    }
    before_.resize(SizeOf(kernel_.output, arguments_));
    if (kernel_.addsToOutput) before_ = Contents(kernel_.output, random);
    ChoosePlace();
  }

  void Run(const std::string& level, const RunKernels& kernels) const {
    for (const std::uint8_t pattern : kPatterns) RunOnce(level, kernels, pattern);
  }

 private:
  Bytes Contents(Operand operand, Random& random) const {
    Bytes bytes(SizeOf(operand, arguments_));
    MakeOperand(operand, arguments_, random, bytes.data());
    return bytes;
  }

  // What the output holds before the call; gaps in it, and whatever is not read, differ from round to round.
  Bytes Before(std::uint8_t pattern) const {
    return inPlace_ != 0 || kernel_.addsToOutput ? before_ : Bytes(before_.size(), pattern);
  }

  Bytes Expected(Bytes output) const {
    ::KernelCall call = {arguments_, output.data(), {}};
    for (std::size_t i = 0; i < kernel_.inputs.size(); ++i) call.inputs[i] = inputs_[i].data();
    kernel_.define(call);
    return output;
  }

  void ChoosePlace() {
    if (input_.inPlace == 0) return;
    std::vector<std::size_t> possible;
    for (std::size_t i = 0; i < kernel_.inputs.size(); ++i) {
      if (kernel_.inputs[i].mayBeOutput) possible.push_back(i);
    }
    if (possible.empty()) return;
    inPlace_ = 1 + possible[input_.inPlace % possible.size()];
    before_ = inputs_[inPlace_ - 1];
  }

  void* Place(GuardedRun& memory, Operand operand, const Bytes& contents, std::size_t shift,
              std::uint8_t pattern) const {
    const host::Flush flush = (input_.place & 1) != 0 ? host::Flush::Start : host::Flush::End;
    void* run = memory.Place(contents.size(), flush, shift - shift % AlignmentOf(operand), pattern);
    if (!contents.empty()) std::memcpy(run, contents.data(), contents.size());
    return run;
  }

  void RunOnce(const std::string& level, const RunKernels& kernels, std::uint8_t pattern) const {
    constexpr std::size_t kLargest = 4 * (kMostColumns + kMostGap) * (kLongest + kMostGap);
    static GuardedRun output(kLargest);
    static std::deque<GuardedRun> inputs;
    while (inputs.size() < kMostInputs) inputs.emplace_back(kLargest);
    ::KernelCall call = {arguments_, nullptr, {}};
    for (std::size_t i = 0; i < kernel_.inputs.size(); ++i) {
      if (inPlace_ == i + 1) continue;
      call.inputs[i] = Place(inputs[i], kernel_.inputs[i].operand, inputs_[i], shifts_[i], pattern);
    }
    const Bytes before = Before(pattern);
    const Bytes expected = Expected(before);
    call.output = Place(output, kernel_.output, before, input_.shift % GuardedRun::kRing, pattern);
    if (inPlace_ != 0) call.inputs[inPlace_ - 1] = call.output;

    kernel_.call(kernels, call);

    const std::string which =
        std::string(kernel_.name) + " of " + level + ", " + std::to_string(arguments_.n) + " pixels: ";
    const Bytes after = output.Bytes();
    if (after != expected) {
      const auto at = std::mismatch(after.begin(), after.end(), expected.begin()).first - after.begin();
      Report(which + "byte " + std::to_string(at) + " differs from the definition");
    }
    if (!output.RingDamage().empty()) Report(which + "wrote " + output.RingDamage());
    for (std::size_t i = 0; i < kernel_.inputs.size(); ++i) {
      if (inPlace_ == i + 1) continue;
      if (inputs[i].Bytes() != inputs_[i] || !inputs[i].RingDamage().empty()) Report(which + "wrote to an input");
    }
  }

  const KernelInput input_;
  const KernelCase& kernel_;
  KernelArguments arguments_ = {};
  Bytes inputs_[kMostInputs];
  std::size_t shifts_[kMostInputs] = {};
  Bytes before_;             // of the output
  std::size_t inPlace_ = 0;  // 1 + index of the input that is the output, or 0
};

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const std::vector<NamedKernels> levels = LevelsHere();
  fuzz::Reader reader(bytes, size);
  fuzz::KernelInput input;
  fuzz::Visit(reader, input);
  const fuzz::Trial trial(input, reader);
  for (const NamedKernels& level : levels) trial.Run(level.level, level.kernels);
  return 0;
}
