// What must come of a call in which one service fails, throws or is missing, told by the
// reference model.
#pragma once

#include <cstddef>
#include <optional>

#include "MethodInput.h"

namespace fuzz {

struct Expectation {
  model::Outcome outcome;                ///< of the call if it returns
  std::optional<host::Service> thrower;  ///< whose exception leaves the method
  std::size_t yieldsDone = 0;            ///< by a method that is left; the last one threw if the yield did
  std::size_t leaks = 0;                 ///< objects that nobody can give up any more
};

/// Of a method that the reference model has, without defects.
Expectation Expect(const MethodInput& input, const support::Setting& setting,
                   const std::vector<host::Value>& arguments);

}  // namespace fuzz
