#include "InputCall.h"

#include "Finding.h"
#include "support/FaultyCall.h"

namespace fuzz {
namespace {

using host::Picture;
using host::Service;
using host::Value;
using support::FaultKind;
using support::HostFault;

constexpr double kOldestVersion = 2011.04;

bool Is(const HostFault& fault, FaultKind kind, Service service) {
  return fault.kind == kind && fault.service == service;
}

// A service that is missing and one that fails have the same effect at the first call.
bool Lacks(const HostFault& fault, Service service) {
  return Is(fault, FaultKind::Withhold, service) || (Is(fault, FaultKind::Fail, service) && fault.n == 1);
}

bool ThrowsAtOnce(const HostFault& fault, Service service) {
  return Is(fault, FaultKind::Throw, service) && fault.n == 1;
}

void Require(bool holds, const char* what) {
  if (!holds) Report(what);
}

host::Options OptionsOf(const MethodInput& input) {
  host::Options options;
  options.version = HostVersion(input);
  options.throwComplaints = false;  // the callers check them
  return options;
}

// ------------------------------------------------------------------------------------------ a call

std::optional<int> CheckMethod(host::Host& host, const MethodInput& input) {
  const std::optional<int> code =
      support::CheckFaultyCall(host, {MethodOf(input), Arguments(input)}, SettingOf(input), HostFaultOf(input.fault));
  const Value next = host.Call("MakeGradient", {1, 1, host::Colour{}, host::Colour{}, 0}).result;
  Require(next.Is<Picture>() && host.Complaints().empty(), "the next call fails");
  return code;
}

// ---------------------------------------------------------------------------------------- messages

void CheckMessage(host::Host& host, const MethodInput& input) {
  host.ResetCounts();
  const Value codeBefore = host.Call("GetLastError", {}).result;
  const int code = Arguments(input)[0].AsInteger();
  const HostFault fault = HostFaultOf(input.fault);
  support::Inject(fault, host);
  Value text;
  bool thrown = false;
  try {
    text = host.Call("GetErrorMessage", {code}).result;
  } catch (const host::Thrown&) {
    thrown = true;
  }
  host.ClearFaults();
  Require(thrown == ThrowsAtOnce(fault, Service::BuildString), "an exception was lost, or came from nowhere");
  Require(text.IsNil() == (thrown || Lacks(fault, Service::BuildString)), "a text, or none");
  Require(text.IsNil() || text.AsText() == model::ErrorMessage(code), "another text");
  Require(host.Call("GetLastError", {}).result == codeBefore, "the code has changed");
  Require(host.Leaks().empty() && host.Complaints().empty(), "a text was lost");
}

// Asking for the code must not change it.
int CheckLastError(host::Host& host) {
  const Value code = host.Call("GetLastError", {}).result;
  Require(host.Call("GetLastError", {}).result == code, "the code is gone when it has been read");
  return code.AsInteger();
}

// ----------------------------------------------------------------------------------------- loading

// The service whose exception leaves the plug-in's entry.
std::optional<Service> LoadThrower(const HostFault& fault, bool recent) {
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
  if (MethodOf(input).byModel) return CheckMethod(host, input);
  if (*MethodOf(input).types != '\0') CheckMessage(host, input);
  return CheckLastError(host);
}

void CheckInputCall(const MethodInput& input) {
  host::Host host(OptionsOf(input));
  host.Load(support::LibraryPath());
  CheckCallIn(host, input);
}

bool ConcernsLoading(const MethodInput& input) {
  if (HostVersion(input) != kOldestVersion) return true;
  const HostFault fault = HostFaultOf(input.fault);
  const Service service = fault.service;
  const bool onlyThen = service == Service::RegisterPluginVersion || service == Service::GetClassRef ||
                        service == Service::GetRBVersion || service == Service::RegisterModule ||
                        service == Service::MessageBox;
  return onlyThen && fault.kind != FaultKind::None && fault.kind != FaultKind::ConstructorThrows;
}

void CheckLoad(const MethodInput& input) {
  const HostFault fault = HostFaultOf(input.fault);
  const bool recent = !Lacks(fault, Service::GetRBVersion) && HostVersion(input) >= kOldestVersion;
  const std::optional<Service> expected = LoadThrower(fault, recent);
  host::Host host(OptionsOf(input));
  const bool mustWork = fault.service == Service::RegisterPluginVersion && fault.kind != FaultKind::Throw;
  if (!mustWork) support::Inject(fault, host);
  std::optional<Service> thrower;
  try {
    host.Load(support::LibraryPath());
  } catch (const host::Thrown& thrown) {
    thrower = thrown.service();
  }
  Require(thrower == expected, "an exception was lost, or came from nowhere");
  // The host may show a box without a text.
  const bool noText = !recent && Lacks(fault, Service::BuildString);
  Require(host.Complaints().size() == (noText ? 1 : 0), "a breach of the contract, or none where one must be");
  const bool registers = recent && !thrower && !Lacks(fault, Service::RegisterModule);
  Require((host.Module() != nullptr) == registers, "the module is registered, or is not");
  const bool tells = !recent && !noText && !thrower && !Lacks(fault, Service::MessageBox);
  Require(host.messageBoxes.size() == (tells ? 1 : 0), "a message, or none");
  if (!registers) return;
  Require(host.Methods().size() == Methods().size(), "not all methods are registered");
  host.ClearFaults();  // of all services, not only the one that is called
  const Value made = host.Call("MakeGradient", {1, 1, host::Colour{}, host::Colour{}, 0}).result;
  const int code = host.Call("GetLastError", {}).result.AsInteger();
  const bool hasClass = !Lacks(fault, Service::GetClassRef);
  Require(made.Is<Picture>() == hasClass && code == (hasClass ? 0 : 6), "pictures without a class, or none with it");
}

}  // namespace fuzz
