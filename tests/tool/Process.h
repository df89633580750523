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
bool operator==(const Ended& a, const Ended& b);
void PrintTo(const Ended& ended, std::ostream* out);

/// Does this in a process of its own and returns what waitpid() says of its end. Left by an
/// exception, it exits with 99, and after a failed check with 1.
int InChild(const std::function<void()>& action);

/// Runs lmx with these arguments, to its end.
Ended Lmx(const std::vector<std::string>& arguments, Surroundings surroundings = {});

/// What is looked for in texts that lmx writes.
bool Contains(const std::string& text, const std::string& part);
bool StartsWith(const std::string& text, const std::string& start);
std::vector<std::string> Lines(const std::string& text);

}  // namespace tool_test
