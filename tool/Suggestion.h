// "Did you mean ...?"
#pragma once

#include <string>
#include <vector>

namespace tool {

/// A question about the name that is nearest to what was typed, to follow a sentence; empty if none
/// is near.
std::string Suggestion(const std::string& typed, const std::vector<std::string>& names);

}  // namespace tool
