// A command line that calls methods: reads the pictures, runs the plan on each, writes the results
// and reports.
#pragma once

#include "CommandLine.h"
#include "host/Host.h"

namespace tool {

/// The plug-in is loaded. Throws UsageError before anything is read or written; Failure,
/// Interrupted.
void RunMethods(host::Host& plugin, const CommandLine& line);

}  // namespace tool
