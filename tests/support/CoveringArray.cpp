#include "CoveringArray.h"

#include <cstddef>
#include <map>
#include <set>
#include <utility>

namespace support {
namespace {

using Row = std::vector<int>;
using Choice = std::pair<std::size_t, int>;  // a factor, and the number of its choice
using Pair = std::pair<Choice, Choice>;      // the lower factor comes first

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

// The pairs of this choice with the choices that the row already has.
std::set<Pair> PairsWith(const Row& row, const Choice& choice) {
  std::set<Pair> pairs;
  for (std::size_t f = 0; f < row.size(); ++f) {
    if (row[f] == kOpen || f == choice.first) continue;
    const Choice other = {f, row[f]};
    pairs.insert(f < choice.first ? Pair{other, choice} : Pair{choice, other});
  }
  return pairs;
}

// A row that begins with a missing pair. Each other factor takes the choice that adds most missing
// pairs; among equal choices, the one that was used least.
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
