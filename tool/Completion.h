// What a shell needs to complete the words of a call of lmx, written from the tables that its help
// shows.
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
