// The outcome of a method call in which one service fails, throws or is missing, as the reference
// model predicts it.
#pragma once

#include <cstddef>
#include <optional>

#include "PluginTest.h"

namespace support {

enum class FaultKind {
  None,
  Fail,               ///< the nth call of a service does nothing
  Throw,              ///< the nth call of a service throws
  Withhold,           ///< the service is missing
  ConstructorThrows,  ///< the constructor of the nth new picture throws
  ProgramThrows,      ///< the program throws at the nth yield
};

/// The fault that the host shows in one call.
struct HostFault {
  FaultKind kind = FaultKind::None;
  host::Service service = {};
  int n = 1;  ///< which call, counted from 1
};

struct Expectation {
  model::Outcome outcome;                ///< of an interrupted call: what was done until then
  std::optional<host::Service> thrower;  ///< the service whose exception leaves the method
  std::size_t leaks = 0;                 ///< objects that nobody can release any more
  std::size_t unconstructed = 0;         ///< of the leaks, those whose constructor has not run
};

Expectation Expect(const MethodCall& call, const Setting& setting, const HostFault& fault);

}  // namespace support
