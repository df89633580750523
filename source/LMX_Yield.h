// When a worker hands control to the host.
#pragma once

#include <algorithm>
#include <cstdint>

#include "HostCalls.h"
#include "kernels/RunKernels.h"

/// Of a function with tiles on its stack: they are not to become part of a frame that waits while
/// the host has control, which may call again.
#define LMX_NOINLINE __attribute__((noinline))

/// Counts pixels towards the next call of REALYieldToRB. A worker says after every line, or band of
/// lines, what it has done, and asks before or after the line whether a yield is due; the lines up
/// to the next yield may be done together.
class YieldPace {
 public:
  /// `yield` pixels from one call to the next; 0 or less never calls.
  explicit YieldPace(long yield) : yield_(yield) {}

  /// Calls the host when the count has reached the pace, and starts counting anew. May leave by a
  /// host's exception.
  void YieldIfDue() {
    if (yield_ <= 0 || counted_ < yield_) return;
    counted_ = 0;
    FinishNonTemporalStores();  // the host, and threads that it wakes, may look at what is complete
    REALYieldToRB();
  }

  void Count(std::int32_t lines, std::int32_t pixelsPerLine) {
    counted_ += static_cast<std::int64_t>(lines) * pixelsPerLine;
  }

  /// How many lines of `pixelsPerLine` pixels can be done before a yield is due: 1 to `atMost`.
  std::int32_t LinesUntilDue(std::int32_t pixelsPerLine, std::int32_t atMost) const {
    if (yield_ <= 0 || pixelsPerLine == 0) return atMost;
    const std::int64_t lines = (yield_ - counted_ + pixelsPerLine - 1) / pixelsPerLine;
    return static_cast<std::int32_t>(std::min<std::int64_t>(lines, atMost));
  }

  /// The same for workers that yield before a line: yields if due, and counts the lines that it
  /// allows.
  std::int32_t BeginLines(std::int32_t pixelsPerLine, std::int32_t atMost) {
    YieldIfDue();
    const std::int32_t lines = LinesUntilDue(pixelsPerLine, atMost);
    Count(lines, pixelsPerLine);
    return lines;
  }

  /// For lines of a temporary picture, which nobody sees: how many may be done before they are
  /// reported, 1 to `atMost`; and their report, which yields before every line for which that is
  /// due. Windows stay alive: at most 2^18 pixels are done ahead, or one line.
  static std::int32_t LinesAhead(std::int32_t pixelsPerLine, std::int32_t atMost) {
    constexpr std::int32_t kPixelsAhead = 1 << 18;
    return std::clamp(kPixelsAhead / std::max(pixelsPerLine, 1), 1, atMost);
  }
  void ReportLines(std::int32_t lines, std::int32_t pixelsPerLine) {
    while (lines > 0) lines -= BeginLines(pixelsPerLine, lines);
  }

  /// For workers that yield after a line: counts the lines done, and yields if due.
  void EndLines(std::int32_t lines, std::int32_t pixelsPerLine) {
    Count(lines, pixelsPerLine);
    YieldIfDue();
  }

 private:
  std::int64_t yield_;
  std::int64_t counted_ = 0;
};
