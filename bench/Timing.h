// Measures pieces of work in turn, so that a disturbance affects all of them.
#pragma once

#include <functional>
#include <vector>

namespace bench {

/// Processor time of one repetition in seconds, of all threads. The time of other processes is not
/// included.
struct Timing {
  double median = 0;
  double low = 0;   ///< a quarter of the repetitions was faster
  double high = 0;  ///< a quarter of the repetitions was slower
};

/// How long to measure: until both `least` rounds and `seconds` are reached. After the first round,
/// no longer than `most` seconds.
struct Budget {
  int least = 5;
  double seconds = 0.15;
  double most = 10;
};

/// A piece of work, and its preparation, which is not timed.
struct Work {
  std::function<void()> run;
  std::function<void()> prepare = nullptr;
};

/// Runs all works once without timing them, then measures them round by round.
std::vector<Timing> MeasureInTurn(const std::vector<Work>& works, const Budget& budget);

/// Binds the process to the last core that it may use. Systems use that one least for their own
/// work.
void PinToOneCore();

}  // namespace bench
