// What users should know about a call that went well.
#pragma once

#include <string>
#include <vector>

#include "Plan.h"

namespace tool {

/// A sentence each: numbers that the user gave and that count as others, and sums that were too
/// large for the method.
std::vector<std::string> NotesOn(const Step& step, const std::vector<host::Value>& arguments,
                                 const host::Picture& picture);

/// What a failure may come from: the numbers that the user gave and the method does not take, each
/// with what it takes.
std::string OutOfRange(const Step& step);

}  // namespace tool
