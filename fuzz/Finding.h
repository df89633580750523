// How a target says that it has found something.
#pragma once

#include <string>

namespace fuzz {

/// Tells what was found and ends the process with SIGABRT, which fuzzers take for a crash.
[[noreturn]] void Report(const std::string& finding);

/// From now on, a failed assertion of GoogleTest is a finding.
void ReportFailedAssertions();

}  // namespace fuzz
