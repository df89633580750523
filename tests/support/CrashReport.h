// Tells where a process was when it crashed.
#pragma once

#include <signal.h>

#include <array>
#include <string>

namespace support {

/// While an object lives, a crash prints the place that was set last. Then the previous signal
/// handler runs.
class CrashReport {
 public:
  CrashReport();
  ~CrashReport() { Restore(); }
  CrashReport(const CrashReport&) = delete;
  CrashReport& operator=(const CrashReport&) = delete;

  /// Keeps up to 180 bytes of the text.
  static void SetPlace(const std::string& place);

 private:
  static constexpr std::array<int, 5> kCrashes = {SIGABRT, SIGSEGV, SIGBUS, SIGILL, SIGFPE};

  static void Restore();
  static void Report(int);

  static char text_[200];
  static std::array<struct sigaction, kCrashes.size()> before_;
};

}  // namespace support
