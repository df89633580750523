// The command line as the user wrote it: words sorted into steps and options. What methods and
// arguments there are is not known here.
//
//   lmx [option...] METHOD [picture...] [name=value...] [+ METHOD [name=value...]]...
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Encode.h"
#include "host/Picture.h"

namespace tool {

/// name=value
struct Assignment {
  std::string name;
  std::string value;
};

/// The words between two `+`.
struct StepWords {
  std::string method;                 ///< or a command of lmx itself, such as `list`
  std::vector<std::string> operands;  ///< words that are no assignments
  std::vector<Assignment> assignments;
};

struct CommandLine {
  std::vector<StepWords> steps;
  std::optional<std::string> output;
  std::optional<std::string> plugin;
  std::optional<std::int32_t> yield;
  std::int32_t repeat = 1;
  std::optional<std::int32_t> jobs;
  std::optional<std::int32_t> tolerance;
  std::optional<Format> format;
  std::optional<std::int32_t> compression;
  std::optional<std::int32_t> quality;
  host::Storage storage = host::Storage::BitmapContext;
  bool opaque = false;
  bool json = false;
  bool verbose = false;
  bool help = false;
  bool version = false;
};

/// Throws UsageError for an unknown option, an option without its value, and a `+` with nothing on
/// one side.
CommandLine ParseCommandLine(const std::vector<std::string>& words);

}  // namespace tool
