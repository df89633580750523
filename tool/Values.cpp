#include "Values.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <optional>
#include <system_error>

#include "Errors.h"

namespace tool {
namespace {

[[noreturn]] void Refuse(const std::string& text, const char* expected) {
  throw UsageError("`" + text + "` is not " + expected);
}

// All of the text, or nothing.
template <class Number, class... Format>
std::optional<Number> Parse(const char* begin, const char* end, Format... format) {
  Number number{};
  const auto [stop, error] = std::from_chars(begin, end, number, format...);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

host::Value ParseInteger(const std::string& text) {
  const auto number = Parse<std::int32_t>(text.data(), text.data() + text.size());
  if (!number) Refuse(text, "a whole number from -2147483648 to 2147483647");
  return *number;
}

host::Value ParseDouble(const std::string& text) {
  const auto number = Parse<double>(text.data(), text.data() + text.size());
  if (!number) Refuse(text, "a number such as 1, -0.5, 1e3, inf or nan");
  return *number;
}

host::Value ParseBoolean(const std::string& text) {
  for (const char* word : {"true", "yes", "1"}) {
    if (host::SameName(text, word)) return true;
  }
  for (const char* word : {"false", "no", "0"}) {
    if (host::SameName(text, word)) return false;
  }
  Refuse(text, "true or false (yes or no, 1 or 0)");
}

std::string EightDigits(std::uint32_t number) {
  std::array<char, 16> buffer{};
  std::snprintf(buffer.data(), buffer.size(), "%08X", static_cast<unsigned>(number));
  return buffer.data();
}

// On the web the last two of eight digits are alpha; for the host they are the transparency.
[[noreturn]] void AskForTransparency(const std::string& text, std::uint32_t digits) {
  const std::string end = text.substr(7);
  throw UsageError("`" + text + "` has two meanings: write &c" + EightDigits(digits) + " if " + end +
                   " is the transparency (00 opaque), or &c" + EightDigits(digits ^ 0xFF) + " if it is alpha");
}

host::Value ParseColour(const std::string& text) {
  const bool web = !text.empty() && text[0] == '#';
  const std::string sign = web ? "#" : text.substr(0, 2);
  const std::size_t count = text.size() - sign.size();
  const auto number = Parse<std::uint32_t>(text.data() + sign.size(), text.data() + text.size(), 16);
  if (number && web && count == 3) {
    const std::uint32_t red = *number >> 8, green = *number >> 4 & 0xF, blue = *number & 0xF;
    return host::Colour{0x11 * (red << 16 | green << 8 | blue)};
  }
  if (number && count == 6 && (web || host::SameName(sign, "&c"))) return host::Colour{*number};
  if (number && count == 8 && host::SameName(sign, "&c")) return host::Colour{*number << 24 | *number >> 8};
  if (number && count == 8 && host::SameName(sign, "&h")) return host::Colour{*number};
  if (number && count == 8 && web) AskForTransparency(text, *number);
  Refuse(text, "a colour: #rrggbb, #rgb, &cRRGGBB, &cRRGGBBTT or &hTTRRGGBB, TT from 00 (opaque) to FF (clear)");
}

std::string DoubleText(double number, std::optional<int> digits = std::nullopt) {
  std::array<char, 64> buffer{};
  char* const begin = buffer.data();
  char* const end = begin + buffer.size();
  const auto result = digits ? std::to_chars(begin, end, number, std::chars_format::general, *digits)
                             : std::to_chars(begin, end, number);
  return std::string(begin, result.ptr);
}

std::string ColourText(host::Colour colour) {
  return "&h" + EightDigits(colour.value);
}

}  // namespace

host::Value ParseValue(host::Type type, const std::string& text) {
  switch (type) {
    case host::Type::Integer:
      return ParseInteger(text);
    case host::Type::Double:
      return ParseDouble(text);
    case host::Type::Boolean:
      return ParseBoolean(text);
    case host::Type::Colour:
      return ParseColour(text);
    case host::Type::String:
      return text;
    case host::Type::Picture:
    case host::Type::None:
      break;
  }
  Refuse(text, "a value that lmx can pass on");
}

std::string ReadableText(const host::Value& value) {
  if (value.Is<std::string>()) return value.AsText();
  if (!value.Is<double>()) return ProgramText(value);
  return std::isnan(value.AsDouble()) ? "NaN" : DoubleText(value.AsDouble(), 6);
}

std::string JsonText(const std::string& text) {
  std::string json = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') json += '\\';
    if (static_cast<unsigned char>(c) >= ' ') {
      json += c;
    } else {
      std::array<char, 8> escape{};
      std::snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned>(static_cast<unsigned char>(c)));
      json += escape.data();
    }
  }
  return json + '"';
}

std::string JsonText(const host::Value& value) {
  if (value.IsNil() || (value.Is<double>() && !std::isfinite(value.AsDouble()))) return "null";
  if (value.Is<double>()) return DoubleText(value.AsDouble());
  if (value.Is<bool>()) return value.AsBoolean() ? "true" : "false";
  if (value.Is<std::int32_t>()) return std::to_string(value.AsInteger());
  return JsonText(ReadableText(value));
}

std::string ProgramText(const host::Value& value) {
  if (value.IsNil()) return "Nil";
  if (value.Is<std::int32_t>()) return std::to_string(value.AsInteger());
  if (value.Is<bool>()) return value.AsBoolean() ? "True" : "False";
  if (value.Is<host::Colour>()) return ColourText(value.AsColour());
  if (value.Is<std::string>()) return '"' + value.AsText() + '"';
  if (value.Is<host::Picture>()) return "picture";
  const std::string number = DoubleText(value.AsDouble());
  return number.find_first_of(".ein") == std::string::npos ? number + ".0" : number;
}

}  // namespace tool
