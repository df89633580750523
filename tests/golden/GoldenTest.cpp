// Compares complete results with their hashes in hashes.txt, which are the same for every ABI,
// compiler and instruction set, and with the reference model, so that every hash has an independent
// check. scripts/golden rewrites the file.
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "GoldenCases.h"

namespace {

using golden::Case;
using golden::Line;

std::string MethodOf(const std::string& name) {
  return name.substr(0, name.find(':'));
}

std::vector<std::string> Methods() {
  std::vector<std::string> methods;
  std::set<std::string> seen;
  for (const Case& c : golden::Cases()) {
    if (seen.insert(MethodOf(c.name)).second) methods.push_back(MethodOf(c.name));
  }
  return methods;
}

std::map<std::string, std::string> Hashes() {
  std::map<std::string, std::string> hashes;
  for (const Line& line : golden::ReadHashes()) hashes[line.name] = line.result;
  return hashes;
}

class Golden : public testing::TestWithParam<std::string> {};

TEST_P(Golden, HashesAreThoseOfTheFile) {
  host::Host host;
  host.Load(support::LibraryPath());
  std::map<std::string, std::string> hashes = Hashes();
  for (const Case& c : golden::Cases()) {
    if (MethodOf(c.name) != GetParam()) continue;
    EXPECT_EQ(golden::ResultOfPlugin(host, c), hashes[c.name]) << c.name << ": plug-in, file";
  }
}

TEST_P(Golden, HashesAreThoseOfTheModel) {
  std::map<std::string, std::string> hashes = Hashes();
  for (const Case& c : golden::Cases()) {
    if (MethodOf(c.name) != GetParam()) continue;
    EXPECT_EQ(golden::ResultByModel(c), hashes[c.name]) << c.name << ": model, file";
  }
}

INSTANTIATE_TEST_SUITE_P(Methods, Golden, testing::ValuesIn(Methods()),
                         [](const testing::TestParamInfo<std::string>& method) { return method.param; });

TEST(GoldenFile, ListsEveryCaseOnceInOrderAndNothingElse) {
  const std::vector<Case> cases = golden::Cases();
  const std::vector<Line> lines = golden::ReadHashes();
  for (std::size_t i = 0; i < std::min(cases.size(), lines.size()); ++i) {
    ASSERT_EQ(lines[i].name, cases[i].name) << "line " << i + 1 << ", comments left out";
  }
  EXPECT_EQ(lines.size(), cases.size());
}

TEST(GoldenFile, CoversEveryMethodThatWorksOnPictures) {
  host::Host host;
  host.Load(support::LibraryPath());
  std::set<std::string> covered;
  for (const Case& c : golden::Cases()) covered.insert(c.call.method->name);
  for (const host::Method& method : host.Methods()) {
    const bool reports = method.name == "LMX_GetLastError" || method.name == "LMX_GetErrorMessage";
    EXPECT_EQ(covered.count(method.name) == 1, !reports) << method.name;
  }
}

// If all cases gave the same result, the hashes would prove nothing.
TEST(GoldenFile, HashesOfDifferentArgumentsDiffer) {
  std::map<std::string, std::set<std::string>> results;
  std::map<std::string, int> counts;
  for (const Line& line : golden::ReadHashes()) {
    results[MethodOf(line.name)].insert(line.result);
    ++counts[MethodOf(line.name)];
  }
  for (const auto& [method, count] : counts) {
    EXPECT_GE(3 * results[method].size(), static_cast<std::size_t>(count)) << method;
  }
}

}  // namespace
