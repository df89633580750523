// The work of a command line on each picture: where it is read from, and where the result is
// written.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "CommandLine.h"
#include "Encode.h"

namespace tool {

struct Job {
  std::optional<std::string> source;
  std::optional<std::string> output;
  Encoding encoding;
};

/// Whether the name stands for one file for each picture: a folder, or a pattern with `{name}`. A
/// folder is a name that ends in `/`, or an existing folder whose name is not that of a picture.
bool NamesSeveral(const std::string& output);

/// How the one picture is written. Throws UsageError for an option that does not suit the file.
Encoding EncodingOf(const CommandLine& line);

/// One job for each source, in their order, or one without a source. A result in a folder keeps the
/// name of its picture, with another extension for another format. Throws UsageError for options
/// that suit no file, for two results with one name, and for a result that would replace a picture
/// before it is read.
std::vector<Job> MakeJobs(const CommandLine& line, const std::vector<std::string>& sources);

/// Makes the folder that the name ends in, if it is missing. Throws Failure.
void MakeFolder(const std::string& output);

}  // namespace tool
