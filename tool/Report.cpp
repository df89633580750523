#include "Report.h"

#include <cstdio>
#include <ostream>

#include "Values.h"

namespace tool {
namespace {

std::string Fixed(double number) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.3f", number);
  return buffer;
}

// Of each line, where there are several pictures.
std::string PictureBefore(const CallReport& report) {
  return report.picture.empty() ? "" : report.picture + ": ";
}

void WriteResults(std::ostream& out, const CallReport& report) {
  std::string separator = PictureBefore(report);
  for (const auto& [name, value] : report.results) {
    out << separator;
    if (!name.empty()) out << name << " = ";
    out << ReadableText(value);
    separator = ", ";
  }
  if (!report.results.empty()) out << '\n';
}

void WriteVerbose(std::ostream& out, const CallReport& report) {
  out << PictureBefore(report) << report.program << "\n  error " << report.error << " (" << report.message << ")";
  if (report.width != 0) out << ", " << report.width << " x " << report.height << " pixels";
  out << ", " << Fixed(report.milliseconds) << " ms\n";
}

void WriteJson(std::ostream& out, const CallReport& report) {
  const auto sizeText = [](int size) { return size == 0 ? std::string("null") : std::to_string(size); };
  out << '{';
  if (!report.picture.empty()) out << "\"picture\":" << JsonText(report.picture) << ',';
  out << "\"method\":" << JsonText(report.method) << ",\"call\":" << JsonText(report.program)
      << ",\"error\":" << report.error << ",\"message\":" << JsonText(report.message)
      << ",\"milliseconds\":" << Fixed(report.milliseconds) << ",\"width\":" << sizeText(report.width)
      << ",\"height\":" << sizeText(report.height) << ",\"results\":{";
  const char* separator = "";
  for (const auto& [name, value] : report.results) {
    out << separator << JsonText(name.empty() ? "result" : name) << ':' << JsonText(value);
    separator = ",";
  }
  out << "}}\n";
}

}  // namespace

std::string ProgramCall(const host::Method& method, const std::vector<host::Value>& arguments,
                        const std::string& source) {
  std::string list;
  std::size_t first = 0;
  std::string call = method.result == host::Type::None ? "" : "result = ";
  if (!method.parameters.empty() && method.parameters.front().extends) {
    call += source + '.';
    first = 1;
  }
  for (std::size_t i = first; i < arguments.size(); ++i) {
    const host::Parameter& parameter = method.parameters[i];
    if (i > first) list += ", ";
    if (parameter.byRef) {
      list += parameter.name;
    } else {
      list += IsPicture(parameter) ? source : ProgramText(arguments[i]);
    }
  }
  return call + method.name + '(' + list + ')';
}

void Write(std::ostream& out, const CallReport& report, ReportStyle style) {
  if (style == ReportStyle::Json) return WriteJson(out, report);
  if (style == ReportStyle::Verbose) WriteVerbose(out, report);
  WriteResults(out, report);
}

}  // namespace tool
