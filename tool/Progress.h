// What a terminal shows while a method runs, one line that goes away again.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace tool {

/// One call of a method. Silent unless standard error is a terminal.
class Progress {
 public:
  /// The pixels between two yields if the user asked for none: a few milliseconds of work.
  static constexpr std::int32_t kYield = 1 << 20;

  Progress(std::string method, std::int32_t yield);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// Whether anybody would see it.
  static bool IsShown();
  /// The method yielded: it did at least as many pixels since the last time as it was told.
  void Yielded();

 private:
  using Clock = std::chrono::steady_clock;

  const std::string method_;
  const double yield_;
  const bool shown_;
  double pixels_ = 0;
  bool written_ = false;
  Clock::time_point start_ = Clock::now();
  Clock::time_point lastWritten_;
};

}  // namespace tool
