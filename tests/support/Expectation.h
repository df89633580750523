// What must come of a call of a method in which one service fails, throws or is missing, told by
// the reference model.
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
  ConstructorThrows,  ///< that of the nth new picture
  ProgramThrows,      ///< at the nth yield
};

/// What the host gets wrong in one call.
struct HostFault {
  FaultKind kind = FaultKind::None;
  host::Service service = {};
  int n = 1;  ///< counted from 1
};

struct Expectation {
  model::Outcome outcome;                ///< of a call that is left, as far as it came
  std::optional<host::Service> thrower;  ///< whose exception leaves the method
  std::size_t leaks = 0;                 ///< objects that nobody can give up any more
  std::size_t unconstructed = 0;         ///< of these, those whose constructor has not run
};

Expectation Expect(const MethodCall& call, const Setting& setting, const HostFault& fault);

}  // namespace support
