// Signals. The first Ctrl-C is remembered, so that work can end in order. The second one ends the
// process at once, as does every other signal that asks for an end.
#pragma once

#include <signal.h>

#include <string>

namespace tool {

/// Starts to watch for signals. A Ctrl-C that came before, while the signal was held back, counts.
/// A file that exceeds the size limit makes its write fail.
void WatchSignals();
bool InterruptRequested();
/// For a process that must end others first: from now on every signal that asks for an end is
/// remembered like the first Ctrl-C.
void RememberEnds(bool all);
/// The remembered signal; 0: none.
int RememberedEnd();
/// Ends the process as the signal would have.
void EndBy(int end);
/// Throws Interrupted, naming the file that was being read or written.
void StopIfInterrupted(const std::string& path);

/// The file to remove when a signal ends the process; nil: none.
void RemoveOnSignal(const char* path);

/// Holds those signals back while it lives.
class SignalsHeld {
 public:
  SignalsHeld();
  ~SignalsHeld();
  SignalsHeld(const SignalsHeld&) = delete;
  SignalsHeld& operator=(const SignalsHeld&) = delete;

 private:
  sigset_t before_;
};

}  // namespace tool
