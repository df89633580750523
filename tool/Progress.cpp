#include "Progress.h"

#include <unistd.h>

#include <cstdio>
#include <utility>

namespace tool {
namespace {

constexpr std::chrono::milliseconds kPause(100);  // between two lines
constexpr const char* kEraseLine = "\r\x1b[K";

}  // namespace

Progress::Progress(std::string method, std::int32_t yield)
    : method_(std::move(method)), yield_(yield), shown_(IsShown()) {}

Progress::~Progress() {
  if (written_) std::fputs(kEraseLine, stderr);
}

bool Progress::IsShown() {
  return isatty(STDERR_FILENO) != 0;
}

void Progress::Yielded() {
  pixels_ += yield_;
  const Clock::time_point now = Clock::now();
  if (!shown_ || (written_ && now - lastWritten_ < kPause)) return;
  const double seconds = std::chrono::duration<double>(now - start_).count();
  std::fprintf(stderr, "%s%s: over %.1f megapixels in %.1f s (Ctrl-C stops)", kEraseLine, method_.c_str(),
               pixels_ / 1e6, seconds);
  std::fflush(stderr);
  written_ = true;
  lastWritten_ = now;
}

}  // namespace tool
