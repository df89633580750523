// The kernels. Every level that this processor has runs on the same operands. It must compute what
// the pixel functions compute, and touch nothing else. The input's bytes choose arguments and
// contents.

#include <string>

#include "Archive.h"
#include "Finding.h"
#include "KernelInput.h"
#include "KernelRig.h"
#include "Levels.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const std::vector<NamedKernels> levels = LevelsHere();
  static KernelRig rig;
  fuzz::Reader reader(bytes, size);
  fuzz::KernelInput input;
  fuzz::Visit(reader, input);

  const bool isLong = input.n == fuzz::KernelInput::kLongRun;
  const std::size_t n = isLong ? input.length % (KernelRig::kMostPixels + 1) : input.n;
  const KernelCase& kernel = KernelCases()[input.kernel % KernelCases().size()];
  const std::vector<std::size_t> ways = WaysInPlace(kernel);
  const bool inPlace = input.inPlace != 0 && ways.size() > 1;
  Random random(reader.Bytes(), reader.Left());
  KernelTrial trial(kernel, n, inPlace ? ways[1 + input.inPlace % (ways.size() - 1)] : 0, random);
  trial.flush = (input.place & 1) != 0 ? host::Flush::Start : host::Flush::End;
  trial.shift = input.shift % GuardedRun::kRing;
  for (const NamedKernels& level : levels) {
    const std::string trouble = rig.Run(trial, level.kernels);
    if (!trouble.empty())
      fuzz::Report(kernel.name + (" of " + level.level) + ", " + std::to_string(n) + " pixels: " + trouble);
  }
  return 0;
}
