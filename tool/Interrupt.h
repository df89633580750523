// Ctrl-C: the first is remembered, so that the running method can be left at its next yield; the second ends the
// process at once.
#pragma once

namespace tool {

/// From now on. A Ctrl-C that came before, while the signal was held back, counts.
void WatchInterrupt();
bool InterruptRequested();

}  // namespace tool
