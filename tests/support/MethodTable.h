// The sixteen methods as tables of tests and fuzzers have them: what they take, and the
// reference model of each.
#pragma once

#include <string>
#include <vector>

#include "Model.h"
#include "host/Value.h"

namespace support {

struct Method {
  const char* name;
  bool hasSource;
  /// One letter for each argument after the source: integer, double, boolean, colour; I and D are
  /// ByRef.
  const char* types;
  /// Which of its new pictures is returned, counted from 1; 0: none.
  std::size_t result;
  /// Nil for the two methods that tell the last error, which take no picture and make none.
  model::Outcome (*define)(const model::StoredPicture* source, const std::vector<host::Value>& arguments,
                           const model::MakePicture& make);

  bool InPlace() const;
};

/// In the order in which the plug-in registers them.
const std::vector<Method>& Methods();

}  // namespace support
