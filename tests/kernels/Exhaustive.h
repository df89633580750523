// Shared by the tests over whole domains.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "Levels.h"

using Pixels = std::vector<std::uint32_t>;

/// In the longest domains, kernel_tests takes every 61st value; kernel_domains takes all of them.
#ifdef LMX_WHOLE_DOMAINS
constexpr std::uint32_t kDomainStep = 1;
#else
constexpr std::uint32_t kDomainStep = 61;
#endif

/// Whether two runs are equal. A difference is a failure that names the pixel.
inline bool SameRun(const Pixels& inputs, const Pixels& expected, const Pixels& actual, const std::string& level) {
  for (std::size_t i = 0; i < expected.size(); ++i) {
    if (expected[i] == actual[i]) continue;
    ADD_FAILURE() << level << ", pixel " << std::hex << inputs[i] << ": expected " << expected[i] << ", got "
                  << actual[i];
    return false;
  }
  return true;
}

inline std::uint8_t* Bytes(Pixels& run) {
  return reinterpret_cast<std::uint8_t*>(run.data());
}
inline const std::uint8_t* Bytes(const Pixels& run) {
  return reinterpret_cast<const std::uint8_t*>(run.data());
}

/// Collects the pixels of a domain into runs. Compares the result of every level for a run with the
/// plain arithmetic for each pixel: apply(kernels, out, in), expect(pixel).
template <class Apply, class Expect>
class Domain {
 public:
  Domain(Apply apply, Expect expect) : apply_(apply), expect_(expect), levels_(LevelsHere()) {}
  ~Domain() { Flush(); }
  Domain(const Domain&) = delete;
  Domain& operator=(const Domain&) = delete;

  /// False after a failure: the caller can stop.
  bool Add(std::uint32_t pixel) {
    inputs_.push_back(pixel);
    if (inputs_.size() == kRun) Flush();
    return good_;
  }

 private:
  // Odd, so that every part of a domain comes to every lane of a vector.
  static constexpr std::size_t kRun = 4093;

  void Flush() {
    Pixels expected(inputs_.size()), actual(inputs_.size());
    for (std::size_t i = 0; i < inputs_.size(); ++i) expected[i] = expect_(inputs_[i]);
    for (const NamedKernels& level : levels_) {
      if (!good_) break;
      apply_(level.kernels, actual, inputs_);
      good_ = SameRun(inputs_, expected, actual, level.level);
    }
    inputs_.clear();
  }

  Apply apply_;
  Expect expect_;
  std::vector<NamedKernels> levels_;
  Pixels inputs_;
  bool good_ = true;
};
