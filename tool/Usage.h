// What lmx tells of itself beside its options: the help and the manual page print these, and the
// commands are completed and suggested.
#pragma once

#include <string>
#include <vector>

namespace tool {

/// One way to call lmx.
struct Command {
  const char* name = "";   ///< empty: the call of a method
  const char* words = "";  ///< all after `lmx`
  const char* meaning = "";
};

/// In the order of the help.
const std::vector<Command>& Commands();

/// What holds for all pictures and arguments; in `backticks` what is typed.
const std::vector<std::string>& Paragraphs();

struct ExitStatus {
  int status = 0;
  const char* meaning = "";
};

const std::vector<ExitStatus>& ExitStatuses();

}  // namespace tool
