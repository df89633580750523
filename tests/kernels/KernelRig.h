// Runs a kernel on operands between guards, and compares what it did with the pixel functions. The
// tests choose trials in order, the fuzzer by its input.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "GuardedRun.h"
#include "KernelCases.h"

/// A call of a kernel, and where its operands lie.
struct KernelTrial {
  /// Makes arguments and operands for n pixels, in this order: the arguments, each input and its
  /// shift, the output.
  KernelTrial(const KernelCase& kernel, std::size_t n, std::size_t inPlace, Random& random);

  const KernelCase& kernel;
  KernelArguments arguments;
  std::vector<std::uint8_t> inputs[3];
  std::size_t shifts[3] = {};        ///< of the inputs, in bytes, from the inaccessible page
  std::vector<std::uint8_t> output;  ///< before the call; empty if the kernel only writes it
  std::size_t inPlace;               ///< 1 + index of the input that is the output, or 0
  host::Flush flush = host::Flush::End;
  std::size_t shift = 0;  ///< of the output
};

/// The choices that `inPlace` has for a kernel; 0 comes first.
std::vector<std::size_t> WaysInPlace(const KernelCase& kernel);

/// Has the memory for one trial after another.
class KernelRig {
 public:
  static constexpr std::size_t kMostPixels = 1100;

  KernelRig();

  /// What the kernel of this table does wrong; empty if all is well.
  std::string Run(const KernelTrial& trial, const RunKernels& kernels);

 private:
  std::string RunOnce(const KernelTrial& trial, const RunKernels& kernels, std::uint8_t pattern, std::size_t moved);
  std::string Call(const KernelTrial& trial, const RunKernels& kernels, const KernelCall& call);

  GuardedRun output_;
  GuardedRun inputs_[3];
};
