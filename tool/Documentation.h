// What the methods and their arguments mean, for people, and which arguments may be left out. One
// entry for every method that the plug-in registers and for every argument of it; what can be
// called, and how, is not said here but by the declarations.
#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

/// The argument that says how often a method yields; lmx's option sets it in every step.
constexpr std::string_view kYieldArgument = "yield";

/// What a value that is left out can depend on.
struct Situation {
  int width = 0;  ///< of the picture; 0 without one
  int height = 0;
  std::map<std::string, double> numbers;  ///< the numbers that the user gave, by argument
};

/// The value of an argument that is left out.
struct Fallback {
  const char* text = nullptr;  ///< as users write it; in words, if it is computed; nil: the argument is needed
  std::int32_t (*compute)(const Situation& situation) = nullptr;
};

/// The numbers that a method takes.
struct Range {
  double least = -std::numeric_limits<double>::infinity();
  double most = std::numeric_limits<double>::infinity();
  bool withoutLeast = false;
  bool withoutMost = false;

  /// What is no number is in no range.
  bool Contains(double number) const;
};

/// In the words that the meaning of an argument has, too.
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
