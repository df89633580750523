#include "Progress.h"

#include <unistd.h>

#include <cstdio>
#include <utility>

#include "Interrupt.h"

namespace tool {
namespace {

constexpr std::chrono::milliseconds kPause(100);  // between two lines
constexpr const char* kEraseLine = "\r\x1b[K";

bool hidden = false;

}  // namespace

StatusLine::StatusLine() : shown_(IsShown()) {}

StatusLine::~StatusLine() {
  Erase();
}

bool StatusLine::IsShown() {
  return !hidden && isatty(STDERR_FILENO) != 0;
}

bool StatusLine::IsDue() const {
  return shown_ && (!written_ || Clock::now() - lastWritten_ >= kPause);
}

void StatusLine::Show(const std::string& text) {
  if (!IsDue()) return;
  std::fprintf(stderr, "%s%s (Ctrl-C stops)", kEraseLine, text.c_str());
  std::fflush(stderr);
  written_ = true;
  lastWritten_ = Clock::now();
}

void StatusLine::Erase() {
  if (written_) std::fputs(kEraseLine, stderr);
  written_ = false;
}

void HideProgress() {
  hidden = true;
}

Progress::Progress(std::string method, std::int32_t yield) : method_(std::move(method)), yield_(yield) {}

void Progress::Yielded() {
  pixels_ += yield_;
  if (!line_.IsDue()) return;
  const double seconds = std::chrono::duration<double>(Clock::now() - start_).count();
  char text[128];
  std::snprintf(text, sizeof text, ": over %.1f megapixels in %.1f s", pixels_ / 1e6, seconds);
  line_.Show(method_ + text);
}

FileProgress::FileProgress(const char* doing, std::string path, std::int64_t pixels)
    : doing_(doing), path_(std::move(path)), large_(pixels >= kLarge) {}

void FileProgress::Reached(std::int64_t done, std::int64_t all) {
  if (!large_) return;
  StopIfInterrupted(path_);
  if (!line_.IsDue()) return;
  line_.Show(doing_ + ' ' + path_ + ": " + std::to_string(100 * done / all) + " %");
}

void FileProgress::Reached(std::int64_t bytes) {
  if (!large_) return;
  StopIfInterrupted(path_);
  if (!line_.IsDue()) return;
  line_.Show(doing_ + ' ' + path_ + ": " + std::to_string(bytes / 1000) + " kB");
}

}  // namespace tool
