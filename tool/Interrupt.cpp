#include "Interrupt.h"

#include <unistd.h>

#include "Errors.h"

namespace tool {
namespace {

constexpr int kEnds[] = {SIGINT, SIGTERM, SIGHUP};

volatile sig_atomic_t requested = 0;  // the signal
volatile sig_atomic_t allRemembered = 0;
const char* volatile temporary = nullptr;

sigset_t Ends() {
  sigset_t set;
  sigemptyset(&set);
  for (const int end : kEnds) sigaddset(&set, end);
  return set;
}

// What it raises arrives when this returns.
void Handle(int end) {
  if (requested == 0 && (end == SIGINT || allRemembered != 0)) {
    requested = end;
    return;
  }
  if (temporary != nullptr) unlink(temporary);
  EndBy(end);
}

}  // namespace

void WatchSignals() {
  signal(SIGXFSZ, SIG_IGN);
  struct sigaction action = {};
  action.sa_handler = Handle;
  action.sa_mask = Ends();
  for (const int end : kEnds) {
    struct sigaction before = {};
    sigaction(end, nullptr, &before);
    if (before.sa_handler != SIG_IGN) sigaction(end, &action, nullptr);
  }
  const sigset_t ends = Ends();
  sigprocmask(SIG_UNBLOCK, &ends, nullptr);
}

bool InterruptRequested() {
  return requested != 0;
}

void RememberEnds(bool all) {
  allRemembered = all ? 1 : 0;
}

int RememberedEnd() {
  return requested;
}

void EndBy(int end) {
  signal(end, SIG_DFL);
  raise(end);
}

void StopIfInterrupted(const std::string& path) {
  if (InterruptRequested()) throw Interrupted("stopped at " + path);
}

void RemoveOnSignal(const char* path) {
  temporary = path;
}

SignalsHeld::SignalsHeld() : before_() {
  const sigset_t ends = Ends();
  sigprocmask(SIG_BLOCK, &ends, &before_);
}

SignalsHeld::~SignalsHeld() {
  sigprocmask(SIG_SETMASK, &before_, nullptr);
}

}  // namespace tool
