// Hints about a call: numbers that counted as others, and what may have caused a failure.
#pragma once

#include <string>
#include <vector>

#include "Plan.h"

namespace tool {

/// One sentence for each number that counts as another one, and for sums that were too large for
/// the method.
std::vector<std::string> NotesOn(const Step& step, const std::vector<host::Value>& arguments,
                                 const host::Picture& picture);

/// What may have caused a failure: each given number that the method does not take, and the range
/// that it takes.
std::string OutOfRange(const Step& step);

}  // namespace tool
