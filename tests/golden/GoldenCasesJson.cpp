// Prints the cases, one JSON object per line, for tests that run them elsewhere.
#include <cstdio>
#include <exception>

#include "GoldenCases.h"

namespace {

std::string TextOf(const host::Value& value) {
  char text[40];
  if (value.Is<double>()) {
    std::snprintf(text, sizeof text, "%.17g", value.AsDouble());
  } else if (value.Is<bool>()) {
    std::snprintf(text, sizeof text, "%s", value.AsBoolean() ? "true" : "false");
  } else if (value.Is<host::Colour>()) {
    std::snprintf(text, sizeof text, "%u", static_cast<unsigned>(value.AsColour().value));
  } else {
    std::snprintf(text, sizeof text, "%d", value.AsInteger());
  }
  return text;
}

std::string TextOf(const model::StoredPicture& picture) {
  std::string words;
  for (const std::uint32_t word : picture.words) {
    char text[12];
    std::snprintf(text, sizeof text, "%08x", static_cast<unsigned>(word));
    words += text;
  }
  return std::string("{\"form\":\"") + golden::NameOf(picture.form) + "\",\"width\":" + std::to_string(picture.width) +
         ",\"height\":" + std::to_string(picture.height) + ",\"words\":\"" + words + "\"}";
}

void Write(const golden::Case& c) {
  std::string arguments;
  for (const host::Value& value : c.call.arguments) arguments += (arguments.empty() ? "" : ",") + TextOf(value);
  std::printf("{\"name\":\"%s\",\"method\":\"%s\",\"newPictures\":\"%s\",\"arguments\":[%s],\"source\":%s}\n",
              c.name.c_str(), c.call.method->name, golden::NameOf(c.newPictures), arguments.c_str(),
              c.source ? TextOf(*c.source).c_str() : "null");
}

}  // namespace

int main() {
  try {
    for (const golden::Case& c : golden::Cases()) Write(c);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "golden_cases_json: %s\n", error.what());
    return 1;
  }
}
