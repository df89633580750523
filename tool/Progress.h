// One line on a terminal that shows progress, and disappears at the end.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

namespace tool {

/// Shows nothing unless standard error is a terminal, and nothing after HideProgress() in this
/// process.
class StatusLine {
 public:
  StatusLine();
  ~StatusLine();
  StatusLine(const StatusLine&) = delete;
  StatusLine& operator=(const StatusLine&) = delete;

  /// Whether it is visible.
  static bool IsShown();
  /// Whether Show() would write: it waits a moment after each time.
  bool IsDue() const;
  void Show(const std::string& text);
  /// Clears the line, for other output.
  void Erase();

 private:
  using Clock = std::chrono::steady_clock;

  const bool shown_;
  bool written_ = false;
  Clock::time_point lastWritten_;
};

/// From now on, in this process.
void HideProgress();

/// One call of a method.
class Progress {
 public:
  /// Pixels between two yields if the user gave none: a few milliseconds of work.
  static constexpr std::int32_t kYield = 1 << 20;

  Progress(std::string method, std::int32_t yield);

  /// The method yielded: it made at least the given number of pixels since the last time.
  void Yielded();

 private:
  using Clock = std::chrono::steady_clock;

  const std::string method_;
  const double yield_;
  StatusLine line_;
  double pixels_ = 0;
  Clock::time_point start_ = Clock::now();
};

/// A picture that is read or written. A small one takes too little time to be shown or stopped.
class FileProgress {
 public:
  /// From this number of pixels on a picture is large.
  static constexpr std::int64_t kLarge = std::int64_t{4} << 20;

  FileProgress(const char* doing, std::string path, std::int64_t pixels);

  /// The part that is done, of all; or bytes, if all is not known. Throws Interrupted on Ctrl-C,
  /// naming the file.
  void Reached(std::int64_t done, std::int64_t all);
  void Reached(std::int64_t bytes);

 private:
  const std::string doing_;
  const std::string path_;
  const bool large_;
  StatusLine line_;
};

}  // namespace tool
