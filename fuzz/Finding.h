// How a target reports a finding.
#pragma once

#include <string>

namespace fuzz {

/// Prints the finding and ends the process with SIGABRT, which fuzzers treat as a crash.
[[noreturn]] void Report(const std::string& finding);

/// From now on, a failed assertion of GoogleTest is a finding.
void ReportFailedAssertions();

}  // namespace fuzz
