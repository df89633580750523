// Ordinary arguments of every method for a picture of any size, for some methods several sets.
// Tests, fuzzers and benchmarks use them.
#pragma once

#include <string>
#include <vector>

#include "host/Value.h"

namespace support {

using Arguments = std::vector<host::Value>;

struct Size {
  int width, height;
};

/// The number of result pixels per source pixel.
struct Ratio {
  int result = 1, source = 1;
};

/// A method with arguments that depend only on a size and a colour.
struct Operation {
  const char* name;
  const char* method;
  bool measured;  ///< by the benchmarks: the most frequent uses, on whole pictures
  /// The arguments after the source, without the yield. A method without a source makes a picture
  /// of the size `result`.
  Arguments (*arguments)(Size source, Size result, host::Colour colour);
  Ratio across = {}, down = {};

  /// The approximate size of the result, and a source size that gives about that result.
  Size ResultOf(Size source) const;
  Size SourceOf(Size result) const;
};

/// Whether a method changes its source.
bool WorksInPlace(const std::string& method);

/// All operations, method by method.
const std::vector<Operation>& Operations();
/// Finds an operation by name. Throws std::logic_error if there is none.
const Operation& OperationNamed(const std::string& name);

}  // namespace support
