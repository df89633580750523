// Texts as users and plug-ins write them. The first byte selects the kind of text: a command line,
// one word per line, which is run on a small picture if it is valid; the value of an argument; or a
// declaration.

#include <algorithm>
#include <cmath>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "Finding.h"
#include "host/Declaration.h"
#include "host/Host.h"
#include "support/PluginTest.h"
#include "tool/CommandLine.h"
#include "tool/Errors.h"
#include "tool/Plan.h"
#include "tool/Report.h"
#include "tool/Runner.h"
#include "tool/Values.h"

namespace fuzz {
namespace {

constexpr std::int64_t kMostNewPixels = 1 << 14;

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

host::Picture SmallPicture(host::Storage storage) {
  host::Picture picture({7, 5, storage, {}, {}});
  picture.Fill(0x40306090);
  return picture;
}

void RefuseLargePictures(int, host::PictureShape& shape) {
  if (std::int64_t{shape.width} * shape.height <= kMostNewPixels) return;
  shape.width = shape.height = 0;  // making them takes long, even if they cannot be locked
  shape.defects.nilData = true;
}

bool IsOneLine(const std::string& text) {
  return !text.empty() && text.find('\n') == text.size() - 1;
}

// Does what lmx does, without its files.
void CarryOut(const tool::CommandLine& line) {
  host::Options options;
  options.newPictures.storage = line.storage;
  host::Host plugin(options);
  plugin.newPictures.change = RefuseLargePictures;
  plugin.Load(support::LibraryPath());
  const tool::Plan plan = tool::MakePlan(plugin, line);
  const auto tell = [](const tool::CallReport& report) {
    for (const auto style : {tool::ReportStyle::Results, tool::ReportStyle::Verbose, tool::ReportStyle::Json}) {
      std::ostringstream text;
      tool::Write(text, report, style);
      if (style == tool::ReportStyle::Json && !IsOneLine(text.str())) Report("a report in JSON is not one line");
    }
  };
  tool::Runner runner(plugin, line.yield, 1, tell);
  runner.Run(plan, plan.sources.empty() ? host::Picture() : SmallPicture(line.storage));
  if (!plugin.Leaks().empty()) Report("a run left objects without an owner");
}

void CheckCommandLine(const std::string& text) {
  try {
    CarryOut(tool::ParseCommandLine(Lines(text)));
  } catch (const tool::UsageError&) {
  } catch (const tool::Failure&) {
  }
}

bool Same(const host::Value& a, const host::Value& b) {
  const bool noNumbers = a.Is<double>() && b.Is<double>() && std::isnan(a.AsDouble()) && std::isnan(b.AsDouble());
  return noNumbers || a == b;
}

// If a value can be read, lmx can write it, for programs and for scripts, and read it back
// unchanged.
void CheckValue(host::Type type, const std::string& text) {
  host::Value value;
  try {
    value = tool::ParseValue(type, text);
  } catch (const tool::UsageError&) {
    return;
  }
  tool::ReadableText(value);
  const std::string json = tool::JsonText(value);
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' '; };
  if (std::any_of(json.begin(), json.end(), isControl)) Report("a control character in JSON");
  if (type == host::Type::String) return;
  if (!Same(tool::ParseValue(type, tool::ProgramText(value)), value)) Report("a value is not what a program has");
  const bool hasJson = type == host::Type::Integer || (type == host::Type::Double && json != "null");
  if (hasJson && !Same(tool::ParseValue(type, json), value)) Report("a number is not what a script has");
}

// If a declaration can be parsed, it keeps its text, and every name in it is a part of the text.
void CheckDeclaration(const std::string& text) {
  host::Method method;
  try {
    method = host::ParseDeclaration(text);
  } catch (const host::Error&) {
    return;
  }
  bool whole = method.declaration == text && text.find(method.name) != std::string::npos;
  for (const host::Parameter& parameter : method.parameters) {
    whole = whole && !parameter.name.empty() && text.find(parameter.name) != std::string::npos;
  }
  if (!whole) Report("a declaration of other words");
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  host::Host::KeepLoaded(support::LibraryPath());
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  if (size == 0) return 0;
  const std::string text(reinterpret_cast<const char*>(bytes) + 1, size - 1);
  static const std::map<char, host::Type> values = {{'i', host::Type::Integer},
                                                    {'d', host::Type::Double},
                                                    {'b', host::Type::Boolean},
                                                    {'c', host::Type::Colour},
                                                    {'s', host::Type::String}};
  const auto type = values.find(static_cast<char>(bytes[0]));
  if (type != values.end()) {
    fuzz::CheckValue(type->second, text);
  } else if (bytes[0] == '(') {
    fuzz::CheckDeclaration(text);
  } else {
    fuzz::CheckCommandLine(text);
  }
  return 0;
}
