#include "Runner.h"

#include <chrono>
#include <utility>

#include "Documentation.h"
#include "Errors.h"
#include "Interrupt.h"
#include "Notes.h"
#include "Progress.h"

namespace tool {
namespace {

[[noreturn]] void Stop(const host::Method& method) {
  throw Interrupted("stopped in " + method.name);
}

// How often this call yields.
std::int32_t YieldOf(const host::Method& method, const std::vector<host::Value>& arguments) {
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (host::SameName(method.parameters[i].name, kYieldArgument)) return arguments[i].AsInteger();
  }
  return 0;
}

void AddResults(CallReport& report, const host::Method& method, const host::Outcome& outcome) {
  if (!outcome.result.IsNil() && !outcome.result.Is<host::Picture>()) report.results.emplace_back("", outcome.result);
  for (std::size_t i = 0; i < outcome.arguments.size(); ++i) {
    if (method.parameters[i].byRef) report.results.emplace_back(method.parameters[i].name, outcome.arguments[i]);
  }
}

// The arguments of a call that does not count: it gets a copy of a picture that it would change.
std::vector<host::Value> ArgumentsToWaste(const host::Method& method, std::vector<host::Value> arguments) {
  if (!ChangesPicture(method)) return arguments;
  for (host::Value& argument : arguments) {
    if (!argument.Is<host::Picture>()) continue;
    const host::Picture original = argument.AsPicture();
    host::Picture copy(original.Shape());
    copy.SetStoredPixels(original.StoredPixels());
    argument = host::Value(copy);
  }
  return arguments;
}

}  // namespace

Runner::Runner(host::Host& plugin, std::optional<std::int32_t> yield, std::int32_t repeat,
               std::function<void(const CallReport&)> tell)
    : plugin_(plugin),
      yield_(yield.value_or(StatusLine::IsShown() ? Progress::kYield : 0)),
      repeat_(repeat),
      tell_(std::move(tell)) {}

Runner::~Runner() {
  plugin_.onYield = nullptr;
}

std::string Runner::MessageOf(std::int32_t error) {
  return plugin_.Call("GetErrorMessage", {error}).result.AsText();
}

host::Picture Runner::RunStep(const Step& step, const host::Picture& picture) {
  using Clock = std::chrono::steady_clock;
  const host::Method& method = *step.method;
  const std::vector<host::Value> arguments = CompleteArguments(step, picture, yield_);
  CallReport report;
  report.method = method.name;
  report.program = ProgramCall(method, arguments, variable_);

  host::Outcome outcome;
  {
    Progress progress(method.name, YieldOf(method, arguments));
    plugin_.onYield = [&] {
      if (InterruptRequested()) Stop(method);
      progress.Yielded();
    };
    for (std::int32_t i = 1; i < repeat_; ++i) plugin_.Call(method.name, ArgumentsToWaste(method, arguments));
    const Clock::time_point start = Clock::now();
    outcome = plugin_.Call(method.name, arguments);
    report.milliseconds = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
  }
  report.error = plugin_.Call("GetLastError", {}).result.AsInteger();
  report.message = MessageOf(report.error);
  const bool returnsPicture = method.result == host::Type::Picture;
  const bool failed = report.error != 0 || (returnsPicture && outcome.result.IsNil());
  host::Picture left = returnsPicture ? outcome.result.AsPicture() : picture;
  if (!failed && left) {
    report.width = left.Width();
    report.height = left.Height();
  }
  if (!failed) {
    AddResults(report, method, outcome);
    report.notes = NotesOn(step, arguments, picture);
  }
  tell_(report);
  if (report.error != 0) {
    throw Failure(method.name + ": " + report.message + " (error " + std::to_string(report.error) + ")" +
                  OutOfRange(step));
  }
  const std::string reason = failed ? OutOfRange(step) : "";
  if (failed) {
    throw Failure(method.name + " returned no picture, without an error code" +
                  (reason.empty() ? ": there may be no memory" : reason));
  }
  if (returnsPicture) variable_ = "result";
  return left;
}

host::Picture Runner::Run(const Plan& plan, host::Picture picture) {
  variable_ = "p";
  for (const Step& step : plan.steps) {
    picture = RunStep(step, picture);
    if (InterruptRequested()) Stop(*step.method);
  }
  return picture;
}

}  // namespace tool
