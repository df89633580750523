// `lmx info`: what picture files are, without any method.
#pragma once

#include "CommandLine.h"

namespace tool {

/// Prints a line for each file: format, size as seen, transparency, orientation and bytes; or an
/// object of JSON. Files that cannot be read are listed at the end. Throws Failure for those,
/// UsageError, and Interrupted on Ctrl-C.
void ShowInfo(const CommandLine& line);

}  // namespace tool
