// The calls that a command line asks for, checked against the declarations before anything happens.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "CommandLine.h"
#include "host/Host.h"

namespace tool {

/// One call to come.
struct Step {
  const host::Method* method = nullptr;
  /// By parameter; empty where the user gave none, and for pictures and results.
  std::vector<std::optional<host::Value>> given;
  /// By parameter, too: the words of the command line.
  std::vector<std::string> typed;
};

struct Plan {
  std::vector<Step> steps;
  std::vector<std::string> sources;  ///< the picture files, each of which the first step gets in turn
};

bool TakesPicture(const host::Method& method);
bool IsPicture(const host::Parameter& parameter);
/// Whether the method changes its picture, and neither returns nor stores anything.
bool ChangesPicture(const host::Method& method);

/// Without LMX_, as users may write it.
std::string ShortName(const std::string& method);

/// A sentence about a method that does not exist.
std::string NoMethod(const host::Host& plugin, const std::string& name);

/// Throws UsageError for anything that does not fit; it names the word and shows the declaration.
Plan MakePlan(const host::Host& plugin, const CommandLine& line);

/// The step's arguments in their order, with the picture and the default values.
std::vector<host::Value> CompleteArguments(const Step& step, const host::Picture& picture, std::int32_t yield);

}  // namespace tool
