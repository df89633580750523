#include "Notes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>

#include "Documentation.h"
#include "Values.h"

namespace tool {
namespace {

double NumberOf(const host::Value& value) {
  return value.Is<double>() ? value.AsDouble() : value.AsInteger();
}

void AddCutNumbers(std::vector<std::string>& notes, const Step& step, const MethodText& text) {
  for (std::size_t i = 0; i < step.given.size(); ++i) {
    const ArgumentText* argument = text.Find(step.method->parameters[i].name);
    if (!step.given[i] || argument == nullptr || argument->multiplesOf == 0) continue;
    const double given = NumberOf(*step.given[i]);
    const double cut = std::trunc(given / argument->multiplesOf) * argument->multiplesOf + 0.0;
    if (std::isnan(given) || cut == given) continue;
    notes.push_back("note: " + argument->name + "=" + ReadableText(*step.given[i]) + " counts as " +
                    ReadableText(host::Value(cut)) + " in " + text.name);
  }
}

// The pixels from `start` to `start` + `size`, of `all`.
struct Range {
  Range(std::int64_t start, std::int64_t size, std::int64_t all)
      : first(std::clamp<std::int64_t>(start, 0, all - 1)), last(std::clamp<std::int64_t>(start + size, 0, all - 1)) {}
  std::int64_t Count() const { return std::max<std::int64_t>(last - first + 1, 0); }

  std::int64_t first, last;
};

// The plug-in adds in 32 bits.
void AddWrappedSums(std::vector<std::string>& notes, const Step& step, const std::vector<host::Value>& arguments,
                    const host::Picture& picture) {
  constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
  std::map<std::string, std::int64_t> numbers;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (arguments[i].Is<std::int32_t>()) numbers[step.method->parameters[i].name] = arguments[i].AsInteger();
  }
  if (picture.Width() == 0 || picture.Height() == 0) return;
  const Range columns(numbers["left"], numbers["width"], picture.Width());
  const Range rows(numbers["top"], numbers["height"], picture.Height());
  if (columns.Count() * rows.Count() * 255 <= kMost) return;

  std::array<std::int64_t, 3> sums{};
  const std::vector<std::uint32_t> pixels = picture.Straight();
  for (std::int64_t y = rows.first; y <= rows.last; ++y) {
    for (std::int64_t x = columns.first; x <= columns.last; ++x) {
      const std::uint32_t pixel = pixels[static_cast<std::size_t>(y * picture.Width() + x)];
      for (std::size_t i = 0; i < sums.size(); ++i) sums[i] += pixel >> (16 - 8 * i) & 0xFF;
    }
  }
  constexpr std::array<const char*, 3> kNames = {"red", "green", "blue"};
  for (std::size_t i = 0; i < sums.size(); ++i) {
    if (sums[i] <= kMost) continue;
    notes.push_back("warning: " + std::string(kNames[i]) + " adds up to " + std::to_string(sums[i]) + ", and " +
                    step.method->name + " counts to " + std::to_string(kMost) +
                    " only: the result is wrong. Measure smaller parts, or Stretch the picture first");
  }
}

}  // namespace

std::vector<std::string> NotesOn(const Step& step, const std::vector<host::Value>& arguments,
                                 const host::Picture& picture) {
  std::vector<std::string> notes;
  const MethodText* text = FindDocumentation(step.method->name);
  if (text == nullptr) return notes;
  AddCutNumbers(notes, step, *text);
  if (text->addsColours && picture) AddWrappedSums(notes, step, arguments, picture);
  return notes;
}

std::string OutOfRange(const Step& step) {
  std::string hints;
  const MethodText* text = FindDocumentation(step.method->name);
  for (std::size_t i = 0; text != nullptr && i < step.given.size(); ++i) {
    const ArgumentText* argument = text->Find(step.method->parameters[i].name);
    const bool isNumber = step.given[i] && (step.given[i]->Is<double>() || step.given[i]->Is<std::int32_t>());
    if (!isNumber || argument == nullptr || argument->range.Contains(NumberOf(*step.given[i]))) continue;
    hints += "; " + step.typed[i] + " is out of range: " + RangeText(argument->range);
  }
  return hints;
}

}  // namespace tool
