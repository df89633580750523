// The one catalogue of the methods: what tests, fuzzers and benchmarks know of a method
// stands here, and in Operations.h, which has its ordinary arguments.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Model.h"
#include "Operations.h"
#include "Random.h"

namespace support {

/// The reference model of a method. Arguments are those after the source, the yield included.
using ByModel = std::function<model::Outcome(const model::StoredPicture* source, const Arguments& arguments,
                                             const model::MakePicture& make)>;

struct Method {
  const char* name;
  bool hasSource;
  /// One letter for each argument after the source: integer, double, boolean, colour; I and D are
  /// ByRef.
  const char* types;
  /// One letter for each new picture, in the order in which they are made: t, a temporary one; the
  /// result is r if it is completed row by row, and c if column by column.
  const char* made;
  /// These are nil for the two methods that tell the last error, which take no picture and make
  /// none.
  ByModel byModel;
  Arguments (*random)(Random& random, Size source);

  bool InPlace() const { return WorksInPlace(name); }
  bool ByColumns() const;
  /// The number of the new picture that is returned, from 1; 0: none.
  std::size_t Result() const;
};

/// In the order in which the plug-in registers them.
const std::vector<Method>& Methods();
/// Those that the reference model has.
const std::vector<Method>& ModelledMethods();
/// By its name, with or without "LMX_". Throws std::logic_error if there is none.
const Method& FindMethod(const std::string& name);

}  // namespace support
