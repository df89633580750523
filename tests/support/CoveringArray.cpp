#include "CoveringArray.h"

#include <cstddef>
#include <map>
#include <set>
#include <utility>

namespace support {
namespace {

using Row = std::vector<int>;
using Choice = std::pair<std::size_t, int>;  // the factor, and which of its choices
using Pair = std::pair<Choice, Choice>;      // the factor of the first is the lower one

constexpr int kOpen = -1;

std::set<Pair> AllPairs(const std::vector<int>& counts) {
  std::set<Pair> pairs;
  for (std::size_t g = 0; g < counts.size(); ++g) {
    for (std::size_t f = 0; f < g; ++f) {
      for (int a = 0; a < counts[f]; ++a) {
        for (int b = 0; b < counts[g]; ++b) pairs.insert({{f, a}, {g, b}});
      }
    }
  }
  return pairs;
}

// The pairs that a choice makes with what stands in a row.
std::set<Pair> PairsWith(const Row& row, const Choice& choice) {
  std::set<Pair> pairs;
  for (std::size_t f = 0; f < row.size(); ++f) {
    if (row[f] == kOpen || f == choice.first) continue;
    const Choice other = {f, row[f]};
    pairs.insert(f < choice.first ? Pair{other, choice} : Pair{choice, other});
  }
  return pairs;
}

// A row that begins with a pair which no row has; then each factor makes the choice that adds most
// pairs of that kind, of equal ones the choice that was made least often.
Row GreedyRow(const std::vector<int>& counts, const std::set<Pair>& missing, std::map<Choice, int>& uses) {
  Row row(counts.size(), kOpen);
  const auto [first, second] = *missing.begin();
  row[first.first] = first.second;
  row[second.first] = second.second;
  for (std::size_t f = 0; f < counts.size(); ++f) {
    if (row[f] != kOpen) continue;
    std::pair<int, int> best = {-1, 0};
    for (int choice = 0; choice < counts[f]; ++choice) {
      int added = 0;
      for (const Pair& pair : PairsWith(row, {f, choice})) added += static_cast<int>(missing.count(pair));
      const std::pair<int, int> merit = {added, -uses[{f, choice}]};
      if (row[f] != kOpen && merit <= best) continue;
      best = merit;
      row[f] = choice;
    }
  }
  return row;
}

}  // namespace

std::vector<std::vector<int>> CoveringArray(const std::vector<int>& counts, std::vector<std::vector<int>> first) {
  std::set<Pair> missing = AllPairs(counts);
  std::map<Choice, int> uses;
  std::vector<Row> rows = std::move(first);
  const auto count = [&](const Row& row) {
    for (std::size_t f = 0; f < row.size(); ++f) {
      ++uses[{f, row[f]}];
      for (const Pair& pair : PairsWith(row, {f, row[f]})) missing.erase(pair);
    }
  };
  for (const Row& row : rows) count(row);
  while (!missing.empty()) {
    rows.push_back(GreedyRow(counts, missing, uses));
    count(rows.back());
  }
  return rows;
}

}  // namespace support
