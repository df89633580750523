// Times of pieces of work, measured in turn so that whatever disturbs one disturbs all.
#pragma once

#include <functional>
#include <vector>

namespace bench {

/// Seconds of processor time that one repetition took, of all threads; what other processes took is
/// not in it.
struct Timing {
  double median = 0;
  double low = 0;   ///< a quarter of the repetitions was faster
  double high = 0;  ///< a quarter was slower
};

/// How long to go on: until both `least` rounds and `seconds` are reached, but after one round no
/// longer than `most` seconds.
struct Budget {
  int least = 5;
  double seconds = 0.15;
  double most = 10;
};

/// A piece of work, and what is done before each time it is, without being timed.
struct Work {
  std::function<void()> run;
  std::function<void()> prepare = nullptr;
};

/// Does all works once without looking, then round by round, each in its turn.
std::vector<Timing> MeasureInTurn(const std::vector<Work>& works, const Budget& budget);

/// Keeps the process on one of the cores that it may use: the last, which systems use least for
/// their own work.
void PinToOneCore();

}  // namespace bench
