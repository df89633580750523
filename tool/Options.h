// The options of lmx. The command line, the help, the manual page and the completions read this
// table, and nothing else knows an option.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "CommandLine.h"

namespace tool {

struct Option {
  const char* letter = "";         ///< the short form with its dash; empty: none
  const char* name = "";           ///< with its dashes
  const char* value = nullptr;     ///< what stands for the value in texts, FILE if it is a path; nil: takes none
  std::vector<const char*> words;  ///< the values, where they are few; otherwise empty
  std::string meaning;
  /// Takes the value, empty without one, into the command line; `name` is as it was typed. Throws
  /// UsageError.
  void (*apply)(CommandLine& line, const std::string& name, const std::string& value) = nullptr;

  bool TakesFile() const { return value != nullptr && std::string_view(value) == "FILE"; }
};

/// In the order of the help.
const std::vector<Option>& Options();
/// By its name or its letter; nil: there is none.
const Option* FindOption(std::string_view name);

}  // namespace tool
