#include "Suggestion.h"

#include <algorithm>
#include <cctype>
#include <cstddef>

namespace tool {
namespace {

constexpr std::size_t kLongest = 64;  // names have fewer characters

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

// How many characters must be inserted, removed or replaced to turn one text into the other.
std::size_t Distance(const std::string& a, const std::string& b) {
  std::vector<std::vector<std::size_t>> cost(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
  for (std::size_t i = 0; i <= a.size(); ++i) {
    for (std::size_t j = 0; j <= b.size(); ++j) {
      if (i == 0 || j == 0) {
        cost[i][j] = i + j;
        continue;
      }
      const std::size_t replaced = cost[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      cost[i][j] = std::min({cost[i - 1][j] + 1, cost[i][j - 1] + 1, replaced});
    }
  }
  return cost[a.size()][b.size()];
}

}  // namespace

std::string Suggestion(const std::string& typed, const std::vector<std::string>& names) {
  if (typed.size() > kLongest) return "";
  std::size_t nearest = typed.size() / 3 + 1;  // further away is another word
  std::string found;
  for (const std::string& name : names) {
    const std::size_t distance = Distance(Lower(typed), Lower(name));
    if (distance >= nearest + (found.empty() ? 1 : 0)) continue;
    nearest = distance;
    found = name;
  }
  return found.empty() ? "" : "; did you mean `" + found + "`?";
}

}  // namespace tool
