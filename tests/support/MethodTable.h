// The one catalogue of the methods. What tests, fuzzers and benchmarks know of a method stands here
// and in Operations.h, which has ordinary arguments.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Model.h"
#include "Operations.h"
#include "Random.h"

namespace support {

/// The reference model of a method. The arguments are those after the source, including the yield.
using ByModel = std::function<model::Outcome(const model::StoredPicture* source, const Arguments& arguments,
                                             const model::MakePicture& make)>;

struct Method {
  const char* name;
  bool hasSource;
  /// One letter for each argument after the source: integer, double, boolean, colour; I and D are
  /// ByRef integers and doubles.
  const char* types;
  /// One letter for each new picture, in the order in which they are made: t for a temporary
  /// picture, r for a result completed row by row, c for one completed column by column.
  const char* made;
  /// These are nil for the two methods about error codes. Those take and make no picture.
  ByModel byModel;
  Arguments (*random)(Random& random, Size source);

  bool InPlace() const { return WorksInPlace(name); }
  bool ByColumns() const;
  /// The number, from 1, of the new picture that is returned; 0: none.
  std::size_t Result() const;
};

/// All methods, in the order in which the plug-in registers them.
const std::vector<Method>& Methods();
/// The methods that have a reference model.
const std::vector<Method>& ModelledMethods();
/// Finds a method by name, with or without "LMX_". Throws std::logic_error if there is none.
const Method& FindMethod(const std::string& name);

}  // namespace support
