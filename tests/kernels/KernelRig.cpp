#include "KernelRig.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kLargest = 4 * (2 * kMostColumns + kMostGap) * (KernelRig::kMostPixels + kMostGap);

std::string Text(const KernelArguments& a) {
  char text[256];
  std::snprintf(text, sizeof text,
                "\n  stride=%zu columns=%zu pitch=%zu count=%zu slope=%d before=%08x fraction=%u box={%u, %u, %u} "
                "hsv={%d, %d, %d} rgb={%d, %d, %d}",
                a.stride, a.columns, a.pitch, a.count, a.slope, a.before, a.fraction, a.box.ofRun, a.box.ofBox,
                a.box.left, a.hsv.hueShift, a.hsv.saturationScale, a.hsv.valueScale, a.rgb.red, a.rgb.green,
                a.rgb.blue);
  return text;
}

std::string Hex(const Bytes& bytes, std::size_t at) {
  std::string text;
  for (std::size_t i = at; i < std::min(at + 4, bytes.size()); ++i) {
    char digits[4];
    std::snprintf(digits, sizeof digits, "%02x ", bytes[i]);
    text += digits;
  }
  return text;
}

std::string Compare(const Bytes& expected, const Bytes& actual) {
  if (expected == actual) return {};
  const auto differs = std::mismatch(expected.begin(), expected.end(), actual.begin()).first;
  const std::size_t at = static_cast<std::size_t>(differs - expected.begin()) / 4 * 4;
  return "\n  bytes " + std::to_string(at) + "...: expected " + Hex(expected, at) + " got " + Hex(actual, at);
}

Bytes Contents(Operand operand, const KernelArguments& arguments, Random& random) {
  Bytes bytes(SizeOf(operand, arguments));
  MakeOperand(operand, arguments, random, bytes.data());
  return bytes;
}

Bytes Expected(const KernelTrial& trial, Bytes output) {
  const auto& inputs = trial.inputs;
  trial.kernel.expect({trial.arguments, output.data(), {inputs[0].data(), inputs[1].data()}});
  return output;
}

}  // namespace

KernelTrial::KernelTrial(const KernelCase& ofKernel, std::size_t n, std::size_t place, Random& random)
    : kernel(ofKernel), arguments(MakeArguments(n, random)), inPlace(place) {
  for (std::size_t i = 0; i < kernel.inputs.size(); ++i) {
    inputs[i] = Contents(kernel.inputs[i].operand, arguments, random);
    shifts[i] = random.Below(16);
  }
  if (kernel.addsToOutput) output = Contents(kernel.output, arguments, random);
  if (inPlace != 0) output = inputs[inPlace - 1];
}

std::vector<std::size_t> WaysInPlace(const KernelCase& kernel) {
  std::vector<std::size_t> ways = {0};
  for (std::size_t i = 0; i < kernel.inputs.size(); ++i) {
    if (kernel.inputs[i].mayBeOutput) ways.push_back(i + 1);
  }
  return ways;
}

KernelRig::KernelRig() : output_(kLargest), inputs_{GuardedRun(kLargest), GuardedRun(kLargest)} {}

std::string KernelRig::Run(const KernelTrial& trial, const RunKernels& kernels) {
  // The two rounds differ in everything but the operands: in the bytes around them, and in their
  // places.
  std::string trouble = RunOnce(trial, kernels, 0x51, 0);
  if (trouble.empty()) trouble = RunOnce(trial, kernels, 0xA6, 5);
  return trouble.empty() ? trouble : trouble + Text(trial.arguments);
}

std::string KernelRig::RunOnce(const KernelTrial& trial, const RunKernels& kernels, std::uint8_t pattern,
                               std::size_t moved) {
  const auto place = [&](GuardedRun* memory, Operand operand, const Bytes& contents, std::size_t shift) {
    void* run = memory->Place(contents.size(), trial.flush, shift - shift % AlignmentOf(operand), pattern);
    if (!contents.empty()) std::memcpy(run, contents.data(), contents.size());
    return run;
  };
  const std::size_t inputs = trial.kernel.inputs.size();
  KernelCall call = {trial.arguments, nullptr, {}};
  for (std::size_t i = 0; i < inputs; ++i) {
    if (trial.inPlace == i + 1) continue;
    call.inputs[i] =
        place(&inputs_[i], trial.kernel.inputs[i].operand, trial.inputs[i], (trial.shifts[i] + moved) % 16);
  }
  const bool reads = trial.kernel.addsToOutput || trial.inPlace != 0;
  const Bytes before = reads ? trial.output : Bytes(SizeOf(trial.kernel.output, trial.arguments), pattern);
  call.output = place(&output_, trial.kernel.output, before, trial.shift);
  if (trial.inPlace != 0) call.inputs[trial.inPlace - 1] = call.output;

  std::string trouble = Call(trial, kernels, call);
  if (!trouble.empty()) return trouble;
  trouble = Compare(Expected(trial, before), output_.Bytes());
  if (const std::string damage = output_.RingDamage(); !damage.empty()) trouble += "\n  wrote " + damage;
  for (std::size_t i = 0; i < inputs; ++i) {
    if (trial.inPlace != i + 1 && (inputs_[i].Bytes() != trial.inputs[i] || !inputs_[i].RingDamage().empty())) {
      trouble += "\n  changed input " + std::to_string(i);
    }
  }
  return trouble;
}

std::string KernelRig::Call(const KernelTrial& trial, const RunKernels& kernels, const KernelCall& call) {
  struct Context {
    const KernelTrial& trial;
    const RunKernels& kernels;
    const KernelCall& call;
  } context = {trial, kernels, call};
  const void* fault = FaultIn(
      [](void* c) {
        const auto* k = static_cast<Context*>(c);
        k->trial.kernel.call(k->kernels, k->call);
      },
      &context);
  if (fault == nullptr) return {};
  std::string text = "\n  memory fault";
  const std::string atOutput = output_.Locate(fault);
  if (!atOutput.empty()) text += ", of the output " + atOutput;
  for (std::size_t i = 0; i < trial.kernel.inputs.size(); ++i) {
    const std::string atInput = call.inputs[i] == call.output ? "" : inputs_[i].Locate(fault);
    if (!atInput.empty()) text += ", of input " + std::to_string(i) + " " + atInput;
  }
  return text;
}
