#include "Interrupt.h"

#include <signal.h>

namespace tool {
namespace {

volatile sig_atomic_t requested = 0;

void Remember(int) {
  requested = 1;
}

}  // namespace

void WatchInterrupt() {
  struct sigaction action = {};
  action.sa_handler = Remember;
  action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART;
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, nullptr);
  sigset_t interrupt;
  sigemptyset(&interrupt);
  sigaddset(&interrupt, SIGINT);
  sigprocmask(SIG_UNBLOCK, &interrupt, nullptr);
}

bool InterruptRequested() {
  return requested != 0;
}

}  // namespace tool
