// What is done with each picture of a command line: where it comes from, and where the result goes.
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

/// Whether the name stands for as many files as there are pictures: a folder, or a pattern with
/// `{name}`. A folder is a name that ends in `/`, or that of a folder that exists and does not look
/// like a picture's.
bool NamesSeveral(const std::string& output);

/// How the one picture is written. Throws UsageError for an option that does not suit the file.
Encoding EncodingOf(const CommandLine& line);

/// One job for each source, in their order, or one without a source. In a folder a picture keeps
/// its name, with another extension where it gets another format. Throws UsageError for options
/// that suit no file, for two pictures that would be written to one file, and for one that would be
/// written over another that is still to be read.
std::vector<Job> MakeJobs(const CommandLine& line, const std::vector<std::string>& sources);

/// Makes the folder that the name ends in, if it is missing. Throws Failure.
void MakeFolder(const std::string& output);

}  // namespace tool
