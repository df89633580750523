// Usage texts besides the options. Help and manual page print them; commands are completed and
// suggested from them.
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

/// What holds for all pictures and arguments. Text to type is in `backticks`.
const std::vector<std::string>& Paragraphs();

struct ExitStatus {
  int status = 0;
  const char* meaning = "";
};

const std::vector<ExitStatus>& ExitStatuses();

}  // namespace tool
