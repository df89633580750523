// Runs lmx as a process.
#pragma once

#include <sys/types.h>

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace tool_test {

struct Surroundings {
  bool terminal = false;          ///< standard error is a terminal
  bool pendingInterrupt = false;  ///< Ctrl-C was pressed before the program could notice it
  std::string input;              ///< standard input; must fit into a pipe
  /// Runs while the program runs, before its output is read. Standard input stays open until it
  /// returns.
  std::function<void(pid_t lmx, int input)> started;
  long largestFile = -1;  ///< the largest file in bytes, as if the disk were full then; -1: any size
};

struct Ended {
  int status = -1;  ///< the exit status; -1 after a signal
  std::string out;
  std::string error;
};
bool operator==(const Ended& a, const Ended& b);
void PrintTo(const Ended& ended, std::ostream* out);

/// Calls the function in a process of its own and returns the status of waitpid(). That process
/// exits with 99 after an exception, and with 1 after a failed check.
int InChild(const std::function<void()>& action);

/// Runs lmx with these arguments until it ends.
Ended Lmx(const std::vector<std::string>& arguments, Surroundings surroundings = {});

/// Patterns for texts that lmx writes.
bool Contains(const std::string& text, const std::string& part);
bool StartsWith(const std::string& text, const std::string& start);
std::vector<std::string> Lines(const std::string& text);

}  // namespace tool_test
