// Says where a process was when it crashed.
#pragma once

#include <signal.h>

#include <array>
#include <string>

namespace support {

/// While one lives, a crash writes the place that was set last. Then whoever was responsible before
/// has its turn.
class CrashReport {
 public:
  CrashReport();
  ~CrashReport() { Restore(); }
  CrashReport(const CrashReport&) = delete;
  CrashReport& operator=(const CrashReport&) = delete;

  /// Up to 180 bytes of the text are kept.
  static void SetPlace(const std::string& place);

 private:
  static constexpr std::array<int, 5> kCrashes = {SIGABRT, SIGSEGV, SIGBUS, SIGILL, SIGFPE};

  static void Restore();
  static void Report(int);

  static char text_[200];
  static std::array<struct sigaction, kCrashes.size()> before_;
};

}  // namespace support
