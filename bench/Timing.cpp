#include "Timing.h"

#include <sched.h>
#include <time.h>

#include <algorithm>
#include <chrono>

namespace bench {
namespace {

double ProcessorSeconds() {
  timespec now;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

Timing Summary(std::vector<double> seconds) {
  std::sort(seconds.begin(), seconds.end());
  const std::size_t last = seconds.size() - 1;
  return {seconds[seconds.size() / 2], seconds[last / 4], seconds[last - last / 4]};
}

}  // namespace

std::vector<Timing> MeasureInTurn(const std::vector<Work>& works, const Budget& budget) {
  using Clock = std::chrono::steady_clock;
  std::vector<std::vector<double>> seconds(works.size());
  const Clock::time_point start = Clock::now();
  const auto elapsed = [&] { return std::chrono::duration<double>(Clock::now() - start).count(); };
  const auto enough = [&](int rounds) {
    return (rounds >= budget.least && elapsed() >= budget.seconds) || (rounds > 0 && elapsed() >= budget.most);
  };
  for (int rounds = -1; !enough(rounds); ++rounds) {
    for (std::size_t i = 0; i < works.size(); ++i) {
      if (works[i].prepare) works[i].prepare();
      const double before = ProcessorSeconds();
      works[i].run();
      if (rounds >= 0) seconds[i].push_back(ProcessorSeconds() - before);
    }
  }
  std::vector<Timing> timings(works.size());
  std::transform(seconds.begin(), seconds.end(), timings.begin(), Summary);
  return timings;
}

void PinToOneCore() {
  cpu_set_t allowed;
  if (sched_getaffinity(0, sizeof allowed, &allowed) != 0) return;
  for (std::size_t core = CPU_SETSIZE; core-- > 0;) {
    if (!CPU_ISSET(core, &allowed)) continue;
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(core, &one);
    sched_setaffinity(0, sizeof one, &one);
    return;
  }
}

}  // namespace bench
