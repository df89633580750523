#include "Job.h"

#include <unistd.h>

#include <filesystem>
#include <map>

#include "Errors.h"
#include "File.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

constexpr const char* kName = "{name}";
constexpr const char* kExtension = "{ext}";

bool Contains(const std::string& text, const char* part) {
  return text.find(part) != std::string::npos;
}

bool EndsInSlash(const std::string& path) {
  return !path.empty() && path.back() == '/';
}

bool IsFolder(const std::string& path) {
  std::error_code ignored;
  return EndsInSlash(path) || (!FormatOf(path) && fs::is_directory(path, ignored));
}

// A file must not have the extension of another format.
Format FormatFor(const std::string& output, std::optional<Format> wanted) {
  const std::optional<Format> named = FormatOf(output);
  if (named && wanted && *named != *wanted)
    throw UsageError("--format asks for another format than the name " + output);
  if (!named && !wanted && fs::path(output).has_extension()) {
    throw UsageError("lmx writes PNG and JPEG files: " + output + " needs a name that ends in .png or .jpg");
  }
  return wanted.value_or(named.value_or(Format::Png));
}

Encoding EncodingFor(const std::string& output, const CommandLine& line) {
  if (output == kStandardStream && isatty(STDOUT_FILENO) != 0) {
    throw UsageError("standard output is a terminal: give a file or a pipe");
  }
  Encoding encoding;
  encoding.format = FormatFor(output, line.format);
  encoding.compression = line.compression.value_or(encoding.compression);
  encoding.quality = line.quality.value_or(encoding.quality);
  return encoding;
}

// An option for a format that no file has.
void CheckOptions(const CommandLine& line, const std::vector<Job>& jobs) {
  bool png = false, jpeg = false;
  for (const Job& job : jobs) (job.encoding.format == Format::Png ? png : jpeg) = true;
  const std::string& first = *jobs.front().output;
  if (line.quality && !jpeg) throw UsageError("--quality is for JPEG files, and " + first + " is a PNG");
  if (line.compression && !png) throw UsageError("--compression is for PNG files, and " + first + " is a JPEG");
}

// The format of the source, if lmx writes it.
std::string ExtensionFor(const fs::path& source, std::optional<Format> wanted) {
  const std::optional<Format> own = FormatOf(source.string());
  if (wanted && own != wanted) return *wanted == Format::Png ? ".png" : ".jpg";
  return own ? source.extension().string() : ".png";
}

void ReplaceAll(std::string& text, const std::string& what, const std::string& with) {
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size()) {
    text.replace(at, what.size(), with);
  }
}

std::string OutputFor(const CommandLine& line, const std::optional<std::string>& source) {
  std::string output = *line.output;
  if (!NamesSeveral(output)) return output;
  if (!source) throw UsageError("-o " + output + " takes its names from picture files, and there is none");
  if (source == kStandardStream) throw UsageError("-o " + output + ": standard input has no name; give a file");
  const fs::path path(*source);
  const std::string extension = ExtensionFor(path, line.format);
  if (IsFolder(output)) return (fs::path(output) / path.stem()).string() + extension;
  ReplaceAll(output, kExtension, extension.substr(1));
  ReplaceAll(output, kName, path.stem().string());
  return output;
}

// Compares files, not their names.
std::string Identity(const std::string& path) {
  std::error_code error;
  const fs::path identity = fs::weakly_canonical(path, error);
  return error ? path : identity.string();
}

void CheckFiles(const std::vector<Job>& jobs) {
  std::map<std::string, const Job*> written;
  for (const Job& job : jobs) {
    const auto [place, isNew] = written.emplace(Identity(*job.output), &job);
    if (!isNew) {
      throw UsageError(*place->second->source + " and " + *job.source + " would both be written to " + *job.output);
    }
  }
  for (const Job& job : jobs) {
    const auto found = written.find(Identity(*job.source));
    if (found == written.end() || found->second == &job) continue;
    throw UsageError(*found->second->source + " would be written over " + *job.source + ", which is read, too");
  }
}

}  // namespace

bool NamesSeveral(const std::string& output) {
  return IsFolder(output) || Contains(output, kName);
}

Encoding EncodingOf(const CommandLine& line) {
  return MakeJobs(line, {}).front().encoding;
}

std::vector<Job> MakeJobs(const CommandLine& line, const std::vector<std::string>& sources) {
  std::vector<Job> jobs(sources.empty() ? 1 : sources.size());
  for (std::size_t i = 0; i < sources.size(); ++i) {
    jobs[i].source = sources[i];
    if (sources.size() > 1 && sources[i] == kStandardStream) {
      throw UsageError("standard input is one picture, and comes alone: leave out - or the other files");
    }
  }
  if (!line.output) return jobs;
  for (Job& job : jobs) {
    job.output = OutputFor(line, job.source);
    job.encoding = EncodingFor(*job.output, line);
  }
  CheckOptions(line, jobs);
  if (jobs.size() > 1) CheckFiles(jobs);
  return jobs;
}

void MakeFolder(const std::string& output) {
  if (!EndsInSlash(output)) return;
  std::error_code error;
  fs::create_directory(fs::path(output).parent_path(), error);
  if (error) throw Failure(output + ": cannot make the folder: " + error.message());
}

}  // namespace tool
