// "Did you mean ...?"
#pragma once

#include <string>
#include <vector>

namespace tool {

/// A question about the name closest to what was typed, to follow a sentence; empty if none is
/// close.
std::string Suggestion(const std::string& typed, const std::vector<std::string>& names);

}  // namespace tool
