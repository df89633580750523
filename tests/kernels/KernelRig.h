// Runs a kernel on operands between guards, and compares the result with the pixel functions. The
// tests choose trials in order; the fuzzer chooses them by its input.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "GuardedRun.h"
#include "KernelCases.h"

/// A call of a kernel, and the places of its operands.
struct KernelTrial {
  /// Makes the arguments and operands for n pixels, in this order: the arguments; each input and
  /// its shift; the output.
  KernelTrial(const KernelCase& kernel, std::size_t n, std::size_t inPlace, Random& random);

  const KernelCase& kernel;
  KernelArguments arguments;
  std::vector<std::uint8_t> inputs[kMostInputs];
  std::size_t shifts[kMostInputs] = {};  ///< distances of the inputs from the inaccessible page, in bytes
  std::vector<std::uint8_t> output;      ///< contents before the call; empty if the kernel only writes the output
  std::size_t inPlace;                   ///< 1 + index of the input that is also the output; 0: none
  host::Flush flush = host::Flush::End;
  std::size_t shift = 0;  ///< distance of the output from the inaccessible page, in bytes
};

/// The values that `inPlace` can have for a kernel; 0 comes first.
std::vector<std::size_t> WaysInPlace(const KernelCase& kernel);

/// Owns the memory, which is used for one trial after another.
class KernelRig {
 public:
  static constexpr std::size_t kMostPixels = 1100;

  KernelRig();

  /// Describes what this table's kernel does wrong; empty if it is right.
  std::string Run(const KernelTrial& trial, const RunKernels& kernels);

 private:
  std::string RunOnce(const KernelTrial& trial, const RunKernels& kernels, std::uint8_t pattern, std::size_t moved);
  std::string Call(const KernelTrial& trial, const RunKernels& kernels, const KernelCall& call);

  GuardedRun output_;
  GuardedRun inputs_[kMostInputs];
};
