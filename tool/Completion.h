// The scripts with which shells complete the words of lmx, written from the tables of the help.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "host/Host.h"

namespace tool {

/// The shells that there are completions for.
const std::vector<std::string>& Shells();

/// Throws UsageError for another shell.
void WriteCompletion(std::ostream& out, const std::string& shell, const host::Host& plugin);

}  // namespace tool
