#include "FaultyCall.h"

#include <algorithm>
#include <cmath>

#include "Expectation.h"
#include "Finding.h"
#include "support/Pictures.h"

namespace fuzz {
namespace {

using host::Picture;
using host::Service;
using host::Value;
using model::Fault;
using model::StoredPicture;

constexpr double kOldestVersion = 2011.04;
constexpr int kCodes[] = {0, 2, 4, 5, 6, 31, 33, 34, 35, 38, 39, 40, 41, 42, 43, 44, 45};

bool Is(const FaultInput& fault, FaultKind kind, Service service) {
  return KindOf(fault) == kind && ServiceOf(fault) == service;
}

// Failing and missing come to the same at the first call.
bool Lacks(const FaultInput& fault, Service service) {
  return Is(fault, FaultKind::Withhold, service) || (Is(fault, FaultKind::Fail, service) && fault.at == 0);
}

bool ThrowsAtOnce(const FaultInput& fault, Service service) {
  return Is(fault, FaultKind::Throw, service) && fault.at == 0;
}

void Inject(const FaultInput& fault, host::Host& host) {
  const Service service = ServiceOf(fault);
  if (service == Service::RegisterPluginVersion && KindOf(fault) != FaultKind::Throw) return;  // which must work
  if (KindOf(fault) == FaultKind::Fail) host.FailAt(service, fault.at + 1);
  if (KindOf(fault) == FaultKind::Throw) host.ThrowAt(service, fault.at + 1);
  if (KindOf(fault) == FaultKind::Withhold) host.Withhold(service);
}

bool Same(const Value& a, const Value& b) {
  if (!a.Is<double>() || !b.Is<double>()) return a == b;
  const double x = a.AsDouble();
  const double y = b.AsDouble();
  return (x == y && std::signbit(x) == std::signbit(y)) || (std::isnan(x) && std::isnan(y));
}

void Require(bool holds, const char* what) {
  if (!holds) Report(what);
}

void RequireSame(const StoredPicture& expected, const Picture& got, const char* which) {
  const std::string difference = support::Difference(expected, support::FromHost(got));
  if (!difference.empty()) Report(std::string(which) + " is " + difference);
}

host::Options OptionsOf(const MethodInput& input) {
  host::Options options;
  options.version = HostVersion(input);
  options.throwComplaints = false;  // they are judged here
  return options;
}

// ------------------------------------------------------------------------------------------ a call

class FaultyCall {
 public:
  FaultyCall(host::Host& host, const MethodInput& input)
      : host_(host),
        input_(input),
        method_(MethodOf(input)),
        setting_(SettingOf(input)),
        arguments_(Arguments(input)) {}

  std::optional<int> Check() {
    host_.newPictures.change = [this](int ordinal, host::PictureShape& shape) { ShapeNewPicture(ordinal, shape); };
    if (method_.hasSource && setting_.source) MakeSource();
    Call();
    CheckBooks();
    CheckFailureGivesNothing();
    if (!HasDefects(input_)) CheckExpectation();
    CheckNextCall();
    return thrower_ ? std::nullopt : std::optional(code_);
  }

 private:
  void ShapeNewPicture(int ordinal, host::PictureShape& shape) {
    const auto index = static_cast<std::size_t>(ordinal) - 1;
    if (KindOf(input_.fault) == FaultKind::ConstructorThrows && index == input_.fault.at) {
      throw host::Thrown(Service::NewInstance);
    }
    support::NewShapes(setting_)(ordinal, shape);
    if (index < MethodInput::kNewPictures) Spoil(input_.newPictures[index], shape);
  }

  void MakeSource() {
    const StoredPicture& value = *setting_.source;
    host::PictureShape shape = {value.width, value.height, value.form, setting_.layout,
                                support::DefectsFor(value.fault, value.form, setting_.variant)};
    shape.defects.nilRows.assign(value.missingRows.begin(), value.missingRows.end());
    const host::PictureShape proper = shape;
    Spoil(input_.sourcePicture, shape);
    if (shape.height != proper.height) shape.defects.nilRows.clear();
    source_ = Picture(shape);
    const bool hasPixels = shape.defects.bitsPerPixel == 32 && !shape.defects.nilPixels;
    if (hasPixels && shape.width == proper.width && shape.height == proper.height) {
      source_.SetStoredPixels(value.words);
    }
    before_ = source_.TakeSnapshot();
  }

  void Call() {
    host_.ResetCounts();
    Inject(input_.fault, host_);
    std::vector<Value> arguments = arguments_;
    if (method_.hasSource) arguments.insert(arguments.begin(), Value(source_));
    after_ = arguments_;
    try {
      host::Outcome outcome = host_.Call(method_.name, arguments);
      result_ = outcome.result;
      after_.assign(outcome.arguments.begin() + (method_.hasSource ? 1 : 0), outcome.arguments.end());
    } catch (const host::Thrown& thrown) {
      thrower_ = thrown.service();
    }
    yields_ = static_cast<std::size_t>(host_.Calls(Service::YieldToRB));
    host_.ClearFaults();
    code_ = host_.Call("GetLastError", {}).result.AsInteger();
  }

  void CheckBooks() {
    const bool keepsLocks = Is(input_.fault, FaultKind::Withhold, Service::UnlockPictureDescription);
    for (const std::string& complaint : host_.Complaints()) {
      if (!keepsLocks || complaint.find("goes while it is locked") == std::string::npos) Report(complaint);
    }
    for (const host::LiveObject& leak : host_.Leaks()) {
      Require(leak.kind == std::string("picture") && leak.references == 1 && leak.locks == 0, "a lost lock or text");
      ++leaks_;
    }
    host_.DropLeaks();
    if (source_) {
      Require(source_.Locks() == 0 && source_.PluginReferences() == 0, "the source is still held");
      Require(source_.PaddingIntact(), "written between the source's rows");
      const bool mayChange = method_.InPlace() && code_ == 0;
      Require(mayChange || source_.TakeSnapshot() == before_, "the source has changed");
    }
    if (!result_.Is<Picture>()) return;
    const Picture picture = result_.AsPicture();
    result_ = picture;  // the only other reference
    Require(picture.PluginReferences() == 0 && picture.Locks() == 0, "the result is still held");
    Require(picture.PaddingIntact(), "written between the result's rows");
  }

  // A stretch that found no room between its passes gives the result all the same.
  void CheckFailureGivesNothing() {
    const bool failed = code_ != 0 || thrower_;
    Require(!result_.Is<Picture>() || !failed || (code_ == 5 && !thrower_), "a result and a code");
    const auto isSame = [](const Value& a, const Value& b) { return Same(a, b); };
    const bool same = std::equal(after_.begin(), after_.end(), arguments_.begin(), arguments_.end(), isSame);
    Require(!failed || same, "a failed call has changed a variable of the caller");
    const auto* code = std::find(std::begin(kCodes), std::end(kCodes), code_);
    Require(code != std::end(kCodes), "a code that no method gives");
  }

  void CheckExpectation() {
    const Expectation expected = Expect(input_, setting_, arguments_);
    Require(thrower_ == expected.thrower, "an exception of a service was lost, or came from nowhere");
    Require(leaks_ == expected.leaks, "more or fewer objects without an owner than must be");
    if (thrower_) return CheckLeftCall(expected);
    const model::Outcome& outcome = expected.outcome;
    if (code_ != outcome.code) Report("the code is " + std::to_string(code_) + ", not " + std::to_string(outcome.code));
    Require(yields_ == outcome.yields.size(), "more or fewer yields than must be");
    Require(result_.IsNil() == (outcome.result == 0), "nil, or not nil");
    if (!result_.IsNil()) {
      const StoredPicture& made = outcome.made[outcome.result - 1];
      if (made.fault == Fault::None) RequireSame(made, result_.AsPicture(), "the result");
    }
    if (source_ && setting_.source->fault == Fault::None) {
      RequireSame(outcome.changed.value_or(*setting_.source), source_, "the source");
    }
    CheckMeans(outcome);
  }

  void CheckMeans(const model::Outcome& outcome) {
    for (std::size_t i = 0; i < 3 && (outcome.meanHsv || outcome.meanRgb); ++i) {
      const std::size_t mean = 4 + i;  // after the rectangle
      if (after_[mean].IsNil()) continue;
      const Value expected = outcome.meanHsv ? Value((*outcome.meanHsv)[i]) : Value((*outcome.meanRgb)[i]);
      Require(Same(after_[mean], expected), "a mean is wrong");
    }
  }

  // In place, the rows before the yield that threw are done, and no others.
  void CheckLeftCall(const Expectation& expected) {
    Require(code_ == 0, "the code of a method that an exception left is not that of its arguments");
    if (*thrower_ == Service::YieldToRB) Require(yields_ == expected.yieldsDone, "a yield after one that threw");
    if (!method_.InPlace() || *thrower_ != Service::YieldToRB) return;
    const model::Outcome whole = method_.byModel(&*setting_.source, arguments_, nullptr);
    StoredPicture partly = *setting_.source;
    const auto rows = static_cast<std::size_t>(whole.yields[expected.yieldsDone - 1].linesDone);
    const auto done = static_cast<std::ptrdiff_t>(rows * static_cast<std::size_t>(partly.width));
    std::copy_n(whole.changed->words.begin(), done, partly.words.begin());
    RequireSame(partly, source_, "the source of a call that was left");
  }

  void CheckNextCall() {
    host_.newPictures.change = nullptr;
    host_.ClearComplaints();
    const Value next = host_.Call("MakeGradient", {1, 1, host::Colour{}, host::Colour{}, 0}).result;
    Require(next.Is<Picture>() && host_.Complaints().empty(), "the next call fails");
  }

  host::Host& host_;
  const MethodInput& input_;
  const Method& method_;
  const support::Setting setting_;
  const std::vector<Value> arguments_;

  Picture source_;
  host::Snapshot before_;
  Value result_;
  std::vector<Value> after_;  // the arguments after the source
  std::optional<Service> thrower_;
  std::size_t yields_ = 0;
  std::size_t leaks_ = 0;
  int code_ = 0;
};

// ---------------------------------------------------------------------------------------- messages

void CheckMessage(host::Host& host, const MethodInput& input) {
  host.ResetCounts();
  const Value codeBefore = host.Call("GetLastError", {}).result;
  const int code = Arguments(input)[0].AsInteger();
  Inject(input.fault, host);
  Value text;
  bool thrown = false;
  try {
    text = host.Call("GetErrorMessage", {code}).result;
  } catch (const host::Thrown&) {
    thrown = true;
  }
  host.ClearFaults();
  Require(thrown == ThrowsAtOnce(input.fault, Service::BuildString), "an exception was lost, or came from nowhere");
  Require(text.IsNil() == (thrown || Lacks(input.fault, Service::BuildString)), "a text, or none");
  Require(text.IsNil() || text.AsText() == model::ErrorMessage(code), "another text");
  Require(host.Call("GetLastError", {}).result == codeBefore, "the code has changed");
  Require(host.Leaks().empty() && host.Complaints().empty(), "a text was lost");
}

// Asking for the code does not change it.
int CheckLastError(host::Host& host) {
  const Value code = host.Call("GetLastError", {}).result;
  Require(host.Call("GetLastError", {}).result == code, "the code is gone when it has been read");
  return code.AsInteger();
}

// ----------------------------------------------------------------------------------------- loading

// Which service's exception leaves the plug-in's entry.
std::optional<Service> LoadThrower(const FaultInput& fault, bool recent) {
  for (const Service service : {Service::RegisterPluginVersion, Service::GetClassRef, Service::GetRBVersion}) {
    if (ThrowsAtOnce(fault, service)) return service;
  }
  for (const Service service : {Service::BuildString, Service::MessageBox}) {
    if (!recent && ThrowsAtOnce(fault, service)) return service;
  }
  if (recent && ThrowsAtOnce(fault, Service::RegisterModule)) return Service::RegisterModule;
  return {};
}

}  // namespace

std::optional<int> CheckCallIn(host::Host& host, const MethodInput& input) {
  if (MethodOf(input).byModel) return FaultyCall(host, input).Check();
  if (*MethodOf(input).types != '\0') CheckMessage(host, input);
  return CheckLastError(host);
}

void CheckFaultyCall(const MethodInput& input) {
  host::Host host(OptionsOf(input));
  host.Load(support::LibraryPath());
  CheckCallIn(host, input);
}

bool ConcernsLoading(const MethodInput& input) {
  if (HostVersion(input) != kOldestVersion) return true;
  const Service service = ServiceOf(input.fault);
  const bool onlyThen = service == Service::RegisterPluginVersion || service == Service::GetClassRef ||
                        service == Service::GetRBVersion || service == Service::RegisterModule ||
                        service == Service::MessageBox;
  return onlyThen && KindOf(input.fault) != FaultKind::None && KindOf(input.fault) != FaultKind::ConstructorThrows;
}

void CheckLoad(const MethodInput& input) {
  const FaultInput& fault = input.fault;
  const bool recent = !Lacks(fault, Service::GetRBVersion) && HostVersion(input) >= kOldestVersion;
  const std::optional<Service> expected = LoadThrower(fault, recent);
  host::Host host(OptionsOf(input));
  Inject(fault, host);
  std::optional<Service> thrower;
  try {
    host.Load(support::LibraryPath());
  } catch (const host::Thrown& thrown) {
    thrower = thrown.service();
  }
  Require(thrower == expected, "an exception was lost, or came from nowhere");
  // A box without a text is up to the host.
  const bool noText = !recent && Lacks(fault, Service::BuildString);
  Require(host.Complaints().size() == (noText ? 1 : 0), "a breach of the contract, or none where one must be");
  const bool registers = recent && !thrower && !Lacks(fault, Service::RegisterModule);
  Require((host.Module() != nullptr) == registers, "the module is registered, or is not");
  const bool tells = !recent && !noText && !thrower && !Lacks(fault, Service::MessageBox);
  Require(host.messageBoxes.size() == (tells ? 1 : 0), "a message, or none");
  if (!registers) return;
  Require(host.Methods().size() == Methods().size(), "not all methods are registered");
  host.ClearFaults();  // which may be of other services
  const Value made = host.Call("MakeGradient", {1, 1, host::Colour{}, host::Colour{}, 0}).result;
  const int code = host.Call("GetLastError", {}).result.AsInteger();
  const bool hasClass = !Lacks(fault, Service::GetClassRef);
  Require(made.Is<Picture>() == hasClass && code == (hasClass ? 0 : 6), "pictures without a class, or none with it");
}

}  // namespace fuzz
