// The result of a case as text.
#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "GoldenCases.h"
#include "support/Pictures.h"

namespace golden {

using host::Picture;
using host::Value;
using model::Outcome;
using model::StoredPicture;

namespace {

std::string TextOf(const Picture& picture) {
  if (!picture) return "nil";
  char text[64];
  std::snprintf(text, sizeof text, "%dx%d:%016" PRIx64, picture.Width(), picture.Height(), picture.Hash());
  return text;
}

std::string TextOf(const StoredPicture& picture) {
  return TextOf(support::ToHost(picture, {}));
}

std::string TextOf(double number) {
  if (std::isnan(number)) return "nan";
  std::uint64_t bits;
  std::memcpy(&bits, &number, sizeof bits);
  char text[32];
  std::snprintf(text, sizeof text, "%016" PRIx64, bits);
  return text;
}

template <class Number>
std::string TextOf(const std::array<Number, 3>& means) {
  using std::to_string;
  std::string text;
  for (const Number mean : means) {
    if (!text.empty()) text += ",";
    if constexpr (std::is_same_v<Number, double>) {
      text += TextOf(mean);
    } else {
      text += to_string(mean);
    }
  }
  return text;
}

std::string TextOf(int code, std::size_t yields, const std::string& result) {
  return "code=" + std::to_string(code) + " yields=" + std::to_string(yields) + " " + result;
}

// The result of a call: a new picture, averages, or else the changed source.
std::string TextOf(const host::Outcome& outcome, const host::Method& method, const Picture& source) {
  if (method.result == host::Type::Picture) return TextOf(outcome.result.AsPicture());
  std::vector<Value> means;
  for (std::size_t i = 0; i < method.parameters.size(); ++i) {
    if (method.parameters[i].byRef) means.push_back(outcome.arguments[i]);
  }
  if (means.empty()) return TextOf(source);
  if (means[0].Is<double>()) {
    return TextOf(std::array<double, 3>{means[0].AsDouble(), means[1].AsDouble(), means[2].AsDouble()});
  }
  return TextOf(std::array<int, 3>{means[0].AsInteger(), means[1].AsInteger(), means[2].AsInteger()});
}

}  // namespace

std::string ResultOfPlugin(host::Host& host, const Case& c) {
  host.newPictures.storage = c.newPictures;
  host.ResetCounts();
  std::vector<Value> arguments = c.call.arguments;
  Picture source;
  if (c.source) {
    source = support::ToHost(*c.source, {});
    arguments.insert(arguments.begin(), Value(source));
  }
  const host::Outcome outcome = host.Call(c.call.method->name, arguments);
  const int code = host.Call("GetLastError", {}).result.AsInteger();
  const auto yields = static_cast<std::size_t>(host.Calls(host::Service::YieldToRB));
  return TextOf(code, yields, TextOf(outcome, *host.FindMethod(c.call.method->name), source));
}

std::string ResultByModel(const Case& c) {
  const Outcome outcome = c.call.ByModel(c.source, [&](std::size_t, int width, int height) {
    return StoredPicture(c.newPictures, width, height, host::kUnwritten);
  });
  const std::string result = outcome.meanHsv       ? TextOf(*outcome.meanHsv)
                             : outcome.meanRgb     ? TextOf(*outcome.meanRgb)
                             : outcome.changed     ? TextOf(*outcome.changed)
                             : outcome.result == 0 ? TextOf(Picture())
                                                   : TextOf(outcome.made.at(outcome.result - 1));
  return TextOf(outcome.code, outcome.yields.size(), result);
}

std::vector<Line> ReadHashes() {
  std::ifstream file(LMX_GOLDEN_FILE);
  if (!file) throw std::runtime_error(std::string("cannot read ") + LMX_GOLDEN_FILE);
  std::vector<Line> lines;
  for (std::string text; std::getline(file, text);) {
    if (text.empty() || text[0] == '#') continue;
    const std::size_t blank = text.find(' ');
    if (blank == std::string::npos) throw std::runtime_error("not a line of hashes: " + text);
    lines.push_back({text.substr(0, blank), text.substr(blank + 1)});
  }
  return lines;
}

}  // namespace golden
