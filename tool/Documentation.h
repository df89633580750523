// The meaning of methods and arguments, for people, and the default values of arguments. There is
// one entry for every registered method and each of its arguments. The declarations say what can be
// called, and how.
#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

/// The argument that says how often a method yields; lmx's option sets it in every step
/// that does not give it.
constexpr std::string_view kYieldArgument = "yield";

/// What a default value can depend on.
struct Situation {
  int width = 0;  ///< of the picture; 0 without one
  int height = 0;
  std::map<std::string, double> numbers;  ///< the numbers that the user gave, by argument
};

/// The default value of an argument.
struct Fallback {
  const char* text = nullptr;  ///< as users write it; in words, if it is computed; nil: no default
  std::int32_t (*compute)(const Situation& situation) = nullptr;
};

/// The numbers that a method takes.
struct Range {
  double least = -std::numeric_limits<double>::infinity();
  double most = std::numeric_limits<double>::infinity();
  bool withoutLeast = false;
  bool withoutMost = false;

  /// Anything that is not a number is in no range.
  bool Contains(double number) const;
};

/// The range as a text, in the words that the meanings of arguments use.
std::string RangeText(const Range& range);

struct ArgumentText {
  std::string name;
  std::string meaning;
  Fallback fallback;
  int multiplesOf = 0;  ///< numbers are cut to multiples of this, towards 0; 0: they are not
  Range range = {};     ///< which the plug-in checks
};

struct MethodText {
  std::string name;
  std::string summary;  ///< one line without a full stop
  std::string details;
  std::vector<ArgumentText> arguments;
  std::string example;
  bool addsColours = false;  ///< of the selection, in 32 bits

  const ArgumentText* Find(std::string_view argument) const;
};

const std::vector<MethodText>& Documentation();
/// Nil for a method that has no entry.
const MethodText* FindDocumentation(std::string_view method);

}  // namespace tool
