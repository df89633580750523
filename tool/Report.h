// The report of a call: lines for people, one JSON object for scripts.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

#include "Plan.h"

namespace tool {

/// A call that was made.
struct CallReport {
  std::string picture;  ///< the file, where there are several
  std::string method;
  std::string program;  ///< the call as a program writes it
  std::int32_t error = 0;
  std::string message;
  double milliseconds = 0;
  int width = 0;  ///< of the picture that the call returned, changed or measured; 0: there is none
  int height = 0;
  std::vector<std::pair<std::string, host::Value>> results;  ///< by name; empty after a failure
  std::vector<std::string> notes;
};

/// `source` is the program's variable for the method's picture.
std::string ProgramCall(const host::Method& method, const std::vector<host::Value>& arguments,
                        const std::string& source);

enum class ReportStyle {
  Results,  ///< what the call measured, if anything
  Verbose,  ///< the call, how it went, and what it measured
  Json,     ///< everything, on one line
};

void Write(std::ostream& out, const CallReport& report, ReportStyle style);

}  // namespace tool
