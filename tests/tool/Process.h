// Runs lmx as a process.
#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

namespace tool_test {

struct Surroundings {
  bool terminal = false;          ///< standard error is a terminal
  bool pendingInterrupt = false;  ///< Ctrl-C was pressed before the program could notice
  std::string input;              ///< standard input, as far as a pipe holds it
  /// Done beside the running program, before its output is read; standard input stays open as long.
  std::function<void(pid_t lmx, int input)> started;
  long largestFile = -1;  ///< bytes that a file may have, as if the disk were full then; -1: any number
};

struct Ended {
  int status = -1;  ///< the exit status; -1 after a signal
  std::string out;
  std::string error;
};

/// Does this in a process of its own and returns what waitpid() says of its end. Left by an
/// exception, it exits with 99.
int InChild(const std::function<void()>& action);

/// Runs lmx with these arguments, to its end.
Ended Lmx(const std::vector<std::string>& arguments, Surroundings surroundings = {});

}  // namespace tool_test
