// `lmx info`: what picture files are, without any method.
#pragma once

#include "CommandLine.h"

namespace tool {

/// A line for each file on standard output: its format, the size that it is seen in, whether it is
/// translucent, how the camera was held, and its bytes; or an object of JSON. Files that cannot be
/// read are told at the end. Throws Failure for those, UsageError, and Interrupted on Ctrl-C.
void ShowInfo(const CommandLine& line);

}  // namespace tool
