// Signals. The first Ctrl-C is remembered, so that what runs can be left in order; the second ends
// the process at once, as every other signal does that asks for an end.
#pragma once

#include <signal.h>

#include <string>

namespace tool {

/// From now on. A Ctrl-C that came before, while the signal was held back, counts. A limit to the
/// size of files is told by the write that goes beyond it.
void WatchSignals();
bool InterruptRequested();
/// In a process that has others to end first: every signal that asks for an end is then remembered
/// as the first Ctrl-C is, and counts as one.
void RememberEnds(bool all);
/// Which signal it was that is remembered; 0: none.
int RememberedEnd();
/// Ends the process as the signal would have.
void EndBy(int end);
/// Throws Interrupted, naming the file that was being read or written.
void StopIfInterrupted(const std::string& path);

/// The file goes away when a signal ends the process; nil: none does.
void RemoveOnSignal(const char* path);

/// Holds those signals back as long as it lives.
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
