#include "Options.h"

#include <limits>

#include "Errors.h"
#include "Values.h"
#include "host/Declaration.h"

namespace tool {
namespace {

host::Storage ParseStorage(const std::string& text) {
  if (text == "context") return host::Storage::BitmapContext;
  if (text == "buffer") return host::Storage::Buffer;
  throw UsageError("--storage is `context` or `buffer`, not `" + text + "`");
}

Format ParseFormat(const std::string& text) {
  if (host::SameName(text, "png")) return Format::Png;
  if (host::SameName(text, "jpeg") || host::SameName(text, "jpg")) return Format::Jpeg;
  throw UsageError("--format is `png` or `jpeg`, not `" + text + "`");
}

std::int32_t ParseNumber(const std::string& option, const std::string& text) {
  try {
    return ParseValue(host::Type::Integer, text).AsInteger();
  } catch (const UsageError& error) {
    throw UsageError(option + ": " + error.what());
  }
}

std::int32_t ParseNumber(const std::string& option, const std::string& text, int least, int most) {
  const std::int32_t number = ParseNumber(option, text);
  if (number < least || number > most) {
    throw UsageError(option + " is " + std::to_string(least) + " to " + std::to_string(most) + ", not `" + text + "`");
  }
  return number;
}

constexpr int kMostJobs = 1024;
constexpr int kMostTolerance = 255;

using Text = std::string;

// How methods are called and pictures are written.
std::vector<Option> CallOptions() {
  const Encoding standard;
  return {
      {"-o",
       "--output",
       "FILE",
       {},
       "the file of the result; its old content stays if anything fails",
       [](CommandLine& line, const Text&, const Text& value) { line.output = value; }},
      {"-j",
       "--jobs",
       "N",
       {},
       "of several pictures, work on N at once; default: the number of processors. Each of them needs memory",
       [](CommandLine& line, const Text& name, const Text& value) {
         line.jobs = ParseNumber(name, value, 1, kMostJobs);
       }},
      {"",
       "--storage",
       "FORM",
       {"context", "buffer"},
       "how the host keeps pictures: context (default) or buffer",
       [](CommandLine& line, const Text&, const Text& value) { line.storage = ParseStorage(value); }},
      {"",
       "--yield",
       "N",
       {},
       "let methods yield to the host every N pixels; Ctrl-C stops them there. On a terminal lmx lets them yield by "
       "itself",
       [](CommandLine& line, const Text& name, const Text& value) { line.yield = ParseNumber(name, value); }},
      {"",
       "--repeat",
       "N",
       {},
       "call each method N times; only the last call, a warm one, counts and is timed",
       [](CommandLine& line, const Text& name, const Text& value) {
         line.repeat = ParseNumber(name, value, 1, std::numeric_limits<std::int32_t>::max());
       }},
      {"",
       "--format",
       "FORMAT",
       {"png", "jpeg"},
       "png or jpeg, if the name of the file does not say it",
       [](CommandLine& line, const Text&, const Text& value) { line.format = ParseFormat(value); }},
      {"",
       "--compression",
       "N",
       {},
       "of a PNG, 0 to 9: 0 is fastest, 9 gives small files slowly; default: " + std::to_string(standard.compression),
       [](CommandLine& line, const Text& name, const Text& value) {
         line.compression = ParseNumber(name, value, Encoding::kLeastCompression, Encoding::kMostCompression);
       }},
      {"",
       "--quality",
       "N",
       {},
       "of a JPEG, 1 to 100; default: " + std::to_string(standard.quality) + ". Clear pixels become white",
       [](CommandLine& line, const Text& name, const Text& value) {
         line.quality = ParseNumber(name, value, Encoding::kLeastQuality, Encoding::kMostQuality);
       }},
  };
}

std::vector<Option> OtherOptions() {
  return {
      {"",
       "--tolerance",
       "N",
       {},
       "of compare, 0 to 255: pixels are the same up to this difference of a channel; default: 0",
       [](CommandLine& line, const Text& name, const Text& value) {
         line.tolerance = ParseNumber(name, value, 0, kMostTolerance);
       }},
      {"",
       "--opaque",
       nullptr,
       {},
       "write the colours without their transparency",
       [](CommandLine& line, const Text&, const Text&) { line.opaque = true; }},
      {"-v",
       "--verbose",
       nullptr,
       {},
       "show each call as a program would write it, its error code, size and time",
       [](CommandLine& line, const Text&, const Text&) { line.verbose = true; }},
      {"",
       "--json",
       nullptr,
       {},
       "the same and the measured values for scripts, one object per call and line",
       [](CommandLine& line, const Text&, const Text&) { line.json = true; }},
      {"",
       "--plugin",
       "FILE",
       {},
       "the library; default: libLMX.so beside lmx, or as both are installed",
       [](CommandLine& line, const Text&, const Text& value) { line.plugin = value; }},
      {"-h",
       "--help",
       nullptr,
       {},
       "shows the commands and these options",
       [](CommandLine& line, const Text&, const Text&) { line.help = true; }},
      {"",
       "--version",
       nullptr,
       {},
       "the version of lmx",
       [](CommandLine& line, const Text&, const Text&) { line.version = true; }},
  };
}

}  // namespace

const std::vector<Option>& Options() {
  static const std::vector<Option> table = [] {
    std::vector<Option> all = CallOptions();
    const std::vector<Option> others = OtherOptions();
    all.insert(all.end(), others.begin(), others.end());
    return all;
  }();
  return table;
}

const Option* FindOption(std::string_view name) {
  for (const Option& option : Options()) {
    if (name == option.name || (!name.empty() && name == option.letter)) return &option;
  }
  return nullptr;
}

}  // namespace tool
