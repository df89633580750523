// When a worker hands control to the host.
#pragma once

#include <algorithm>
#include <cstdint>

#include "HostCalls.h"
#include "kernels/RunKernels.h"

/// Keeps functions with large stack buffers out of line, so that the buffers are not alive during a
/// yield, where the host may call us again.
#define LMX_NOINLINE __attribute__((noinline))

/// Counts pixels towards the next call of REALYieldToRB. A worker counts every line, or band of
/// lines, and asks before or after it whether a yield is due. The lines up to the next yield may be
/// made together.
class YieldPace {
 public:
  /// `yield` pixels from one call to the next; 0 or less never calls.
  explicit YieldPace(long yield) : yield_(yield) {}

  /// Calls the host when the count has reached `yield`, and starts counting anew. An exception of
  /// the host may pass.
  void YieldIfDue() {
    if (yield_ <= 0 || counted_ < yield_) return;
    counted_ = 0;
    FinishNonTemporalStores();  // the host, and threads that it wakes, may look at what is complete
    REALYieldToRB();
  }

  void Count(std::int32_t lines, std::int32_t pixelsPerLine) {
    counted_ += static_cast<std::int64_t>(lines) * pixelsPerLine;
  }

  /// How many lines of `pixelsPerLine` pixels can be made before a yield is due: 1 to `atMost`.
  std::int32_t LinesUntilDue(std::int32_t pixelsPerLine, std::int32_t atMost) const {
    if (yield_ <= 0 || pixelsPerLine == 0) return atMost;
    const std::int64_t lines = (yield_ - counted_ + pixelsPerLine - 1) / pixelsPerLine;
    return static_cast<std::int32_t>(std::min<std::int64_t>(lines, atMost));
  }

  /// For workers that yield before a line: yields if due, and counts the lines that may follow.
  std::int32_t BeginLines(std::int32_t pixelsPerLine, std::int32_t atMost) {
    YieldIfDue();
    const std::int32_t lines = LinesUntilDue(pixelsPerLine, atMost);
    Count(lines, pixelsPerLine);
    return lines;
  }

  /// For lines of temporary pictures, which no program sees. LinesAhead tells how many may be made
  /// before they are reported, 1 to `atMost`: at most 2^18 pixels, or one line, so that windows
  /// stay alive. ReportLines counts them line by line, and yields where that is due.
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
