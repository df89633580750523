// The options of lmx: the only list of them. Command line, help, manual page and completions read
// this table.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "CommandLine.h"

namespace tool {

struct Option {
  const char* letter = "";         ///< the short form with its dash; empty: none
  const char* name = "";           ///< with its dashes
  const char* value = nullptr;     ///< the name of the value in texts, FILE for a path; nil: no value
  std::vector<const char*> words;  ///< all values, if they are few; otherwise empty
  std::string meaning;
  /// Puts the value, or an empty one, into the command line; `name` is as it was typed. Throws
  /// UsageError.
  void (*apply)(CommandLine& line, const std::string& name, const std::string& value) = nullptr;

  bool TakesFile() const { return value != nullptr && std::string_view(value) == "FILE"; }
};

/// In the order of the help.
const std::vector<Option>& Options();
/// By its name or its letter; nil: there is none.
const Option* FindOption(std::string_view name);

}  // namespace tool
