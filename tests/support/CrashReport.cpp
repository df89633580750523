#include "CrashReport.h"

#include <unistd.h>

#include <cstdio>
#include <cstring>

namespace support {

char CrashReport::text_[200];
std::array<struct sigaction, CrashReport::kCrashes.size()> CrashReport::before_;

CrashReport::CrashReport() {
  struct sigaction action = {};
  action.sa_handler = Report;
  for (std::size_t i = 0; i < kCrashes.size(); ++i) sigaction(kCrashes[i], &action, &before_[i]);
}

void CrashReport::SetPlace(const std::string& place) {
  std::snprintf(text_, sizeof text_, "crash in %.180s\n", place.c_str());
}

void CrashReport::Restore() {
  for (std::size_t i = 0; i < kCrashes.size(); ++i) sigaction(kCrashes[i], &before_[i], nullptr);
}

// Returns to the faulting instruction, so that the fault repeats and the previous handler gets it.
void CrashReport::Report(int) {
  if (write(STDERR_FILENO, text_, std::strlen(text_)) < 0) _exit(1);
  Restore();
}

}  // namespace support
