#include "Plan.h"

#include <algorithm>

#include "Documentation.h"
#include "Errors.h"
#include "Job.h"
#include "Suggestion.h"
#include "Usage.h"
#include "Values.h"

namespace tool {
namespace {

[[noreturn]] void Refuse(const host::Method& method, const std::string& what) {
  throw UsageError(what + "\n  " + method.declaration);
}

const host::Method& MethodOf(const host::Host& plugin, const StepWords& words) {
  const host::Method* method = plugin.FindMethod(words.method);
  if (method == nullptr) throw UsageError(NoMethod(plugin, words.method));
  return *method;
}

const ArgumentText* TextOf(const host::Method& method, const host::Parameter& parameter) {
  const MethodText* text = FindDocumentation(method.name);
  return text == nullptr ? nullptr : text->Find(parameter.name);
}

void Assign(Step& step, const Assignment& assignment) {
  const host::Method& method = *step.method;
  const auto found = std::find_if(method.parameters.begin(), method.parameters.end(),
                                  [&](const host::Parameter& p) { return host::SameName(p.name, assignment.name); });
  if (found == method.parameters.end()) {
    std::vector<std::string> names;
    for (const host::Parameter& p : method.parameters) {
      if (!IsPicture(p) && !p.byRef) names.push_back(p.name);
    }
    Refuse(method, method.name + " has no argument `" + assignment.name + "`" + Suggestion(assignment.name, names));
  }
  if (IsPicture(*found)) Refuse(method, "`" + found->name + "` is the picture: give its file, without a name");
  if (found->byRef) Refuse(method, "`" + found->name + "` is a result: it cannot be given");
  const auto index = static_cast<std::size_t>(found - method.parameters.begin());
  std::optional<host::Value>& place = step.given[index];
  if (place) Refuse(method, "the argument `" + found->name + "` is given twice");
  step.typed[index] = assignment.name + '=' + assignment.value;
  try {
    place = ParseValue(found->type, assignment.value);
  } catch (const UsageError& error) {
    Refuse(method, "the argument `" + assignment.name + "`: " + error.what());
  }
}

Step MakeStep(const host::Method& method, const StepWords& words) {
  const std::size_t count = method.parameters.size();
  Step step{&method, std::vector<std::optional<host::Value>>(count), std::vector<std::string>(count)};
  for (const Assignment& assignment : words.assignments) Assign(step, assignment);
  for (std::size_t i = 0; i < method.parameters.size(); ++i) {
    const host::Parameter& parameter = method.parameters[i];
    if (step.given[i] || parameter.byRef || IsPicture(parameter)) continue;
    const ArgumentText* text = TextOf(method, parameter);
    if (text == nullptr || text->fallback.text == nullptr) {
      Refuse(method, method.name + " needs the argument `" + parameter.name + "`");
    }
  }
  return step;
}

// The picture of the first step comes from a file, and that of any other from the step before.
void CheckOperands(const host::Method& method, const StepWords& words, bool first, bool havePicture, bool several) {
  const bool wanted = TakesPicture(method);
  if (!wanted && !first) {
    Refuse(method, method.name + " takes no picture, so it can only be the first step");
  }
  const std::size_t expected = wanted && first ? 1 : 0;
  if (words.operands.size() > expected && (expected == 0 || !several)) {
    const char* why = !wanted  ? " takes no picture"
                      : !first ? " gets its picture from the step before it"
                               : " takes one picture for this -o (arguments are given as name=value, and several "
                                 "pictures need -o folder/ or -o '{name}-new.png')";
    Refuse(method, "what is `" + words.operands[expected] + "`? " + method.name + why);
  }
  if (words.operands.size() < expected) Refuse(method, method.name + " needs a picture file");
  if (wanted && !first && !havePicture) Refuse(method, "the step before " + method.name + " leaves no picture");
}

bool HasResults(const host::Method& method) {
  return std::any_of(method.parameters.begin(), method.parameters.end(),
                     [](const host::Parameter& parameter) { return parameter.byRef; });
}

// A chain that ends in a measurement needs no file: its numbers are the result.
void CheckOutput(const CommandLine& line, const Plan& plan, bool havePicture, bool newPixels) {
  if (newPixels && !line.output && !HasResults(*plan.steps.back().method))
    throw UsageError(plan.sources.size() > 1 ? "where shall the pictures go? Give a folder: -o results/"
                                             : "where shall the picture go? Give a file: -o result.png");
  if (line.output && !havePicture) throw UsageError("there will be no picture for -o " + *line.output);
}

// A number that the user gave, for other arguments that depend on it.
void AddNumber(Situation& situation, const host::Parameter& parameter, const host::Value& value) {
  if (value.Is<std::int32_t>()) situation.numbers[parameter.name] = value.AsInteger();
  if (value.Is<double>()) situation.numbers[parameter.name] = value.AsDouble();
}

host::Value ValueOf(const Fallback& fallback, host::Type type, const Situation& situation) {
  if (fallback.compute != nullptr) return fallback.compute(situation);
  return ParseValue(type, fallback.text);
}

host::Value InitialResult(host::Type type) {
  switch (type) {
    case host::Type::Double:
      return 0.0;
    case host::Type::Boolean:
      return false;
    case host::Type::Colour:
      return host::Colour{};
    default:
      return std::int32_t{0};
  }
}

}  // namespace

bool IsPicture(const host::Parameter& parameter) {
  return parameter.type == host::Type::Picture;
}

bool TakesPicture(const host::Method& method) {
  return !method.parameters.empty() && IsPicture(method.parameters.front());
}

bool ChangesPicture(const host::Method& method) {
  return TakesPicture(method) && method.result == host::Type::None && !HasResults(method);
}

std::string ShortName(const std::string& method) {
  return host::SameName(method.substr(0, 4), "LMX_") ? method.substr(4) : method;
}

std::string NoMethod(const host::Host& plugin, const std::string& name) {
  std::vector<std::string> names;
  for (const Command& command : Commands()) {
    if (*command.name != '\0') names.emplace_back(command.name);
  }
  for (const host::Method& method : plugin.Methods()) names.push_back(ShortName(method.name));
  return "there is no method `" + name + "`; `lmx list` shows them" + Suggestion(ShortName(name), names);
}

Plan MakePlan(const host::Host& plugin, const CommandLine& line) {
  Plan plan;
  bool havePicture = false, newPixels = false;
  const bool several = !line.output || NamesSeveral(*line.output);
  for (const StepWords& words : line.steps) {
    const bool first = plan.steps.empty();
    const host::Method& method = MethodOf(plugin, words);
    CheckOperands(method, words, first, havePicture, several);
    if (first) plan.sources = words.operands;
    plan.steps.push_back(MakeStep(method, words));
    havePicture = TakesPicture(method) || method.result == host::Type::Picture;
    newPixels = newPixels || method.result == host::Type::Picture || ChangesPicture(method);
  }
  CheckOutput(line, plan, havePicture, newPixels);
  return plan;
}

std::vector<host::Value> CompleteArguments(const Step& step, const host::Picture& picture, std::int32_t yield) {
  const std::vector<host::Parameter>& parameters = step.method->parameters;
  Situation situation;
  if (picture) situation = {picture.Width(), picture.Height(), {}};
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    if (step.given[i]) AddNumber(situation, parameters[i], *step.given[i]);
  }
  std::vector<host::Value> values;
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    const host::Parameter& parameter = parameters[i];
    if (step.given[i]) {
      values.push_back(*step.given[i]);
    } else if (IsPicture(parameter)) {
      values.emplace_back(picture);
    } else if (parameter.byRef) {
      values.push_back(InitialResult(parameter.type));
    } else if (host::SameName(parameter.name, kYieldArgument)) {
      values.emplace_back(yield);
    } else {
      values.push_back(ValueOf(TextOf(*step.method, parameter)->fallback, parameter.type, situation));
    }
  }
  return values;
}

}  // namespace tool
