// What a terminal shows while something takes long, one line that goes away again.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

namespace tool {

/// Silent unless standard error is a terminal, and in a process that HideProgress() was called in.
class StatusLine {
 public:
  StatusLine();
  ~StatusLine();
  StatusLine(const StatusLine&) = delete;
  StatusLine& operator=(const StatusLine&) = delete;

  /// Whether anybody would see it.
  static bool IsShown();
  /// Whether Show() would write: not so shortly after the last time.
  bool IsDue() const;
  void Show(const std::string& text);
  /// Makes room for other lines.
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
  /// The pixels between two yields if the user asked for none: a few milliseconds of work.
  static constexpr std::int32_t kYield = 1 << 20;

  Progress(std::string method, std::int32_t yield);

  /// The method yielded: it did at least as many pixels since the last time as it was told.
  void Yielded();

 private:
  using Clock = std::chrono::steady_clock;

  const std::string method_;
  const double yield_;
  StatusLine line_;
  double pixels_ = 0;
  Clock::time_point start_ = Clock::now();
};

/// A picture on its way from or to a file. A small one is on it too shortly to be shown or stopped.
class FileProgress {
 public:
  /// So many pixels are a large picture.
  static constexpr std::int64_t kLarge = std::int64_t{4} << 20;

  FileProgress(const char* doing, std::string path, std::int64_t pixels);

  /// So much of all is done, or so many bytes of a number that is not known. Throws Interrupted on
  /// Ctrl-C, naming the file.
  void Reached(std::int64_t done, std::int64_t all);
  void Reached(std::int64_t bytes);

 private:
  const std::string doing_;
  const std::string path_;
  const bool large_;
  StatusLine line_;
};

}  // namespace tool
