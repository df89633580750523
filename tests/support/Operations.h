// Every method with ordinary arguments for a picture of any size, some methods several times.
// Tests, fuzzers and benchmarks take them from here.
#pragma once

#include <string>
#include <vector>

#include "host/Value.h"

namespace support {

using Arguments = std::vector<host::Value>;

struct Size {
  int width, height;
};

/// How many result pixels a number of source pixels becomes.
struct Ratio {
  int result = 1, source = 1;
};

/// A method with arguments that depend on nothing but a size and a colour.
struct Operation {
  const char* name;
  const char* method;
  bool measured;  ///< by the benchmarks: what programs do most, on whole pictures
  /// After the source, and before the yield. A method without a source makes a picture of `result`.
  Arguments (*arguments)(Size source, Size result, host::Colour colour);
  Ratio across = {}, down = {};

  /// The size of a result, about, and of a source that gives about that result.
  Size ResultOf(Size source) const;
  Size SourceOf(Size result) const;
};

/// Whether a method changes its source.
bool WorksInPlace(const std::string& method);

/// All operations, method by method.
const std::vector<Operation>& Operations();
/// Throws std::logic_error if there is none of that name.
const Operation& OperationNamed(const std::string& name);

}  // namespace support
