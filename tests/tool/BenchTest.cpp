// `lmx bench` prints a line for each operation, whatever the times are.
#include <gtest/gtest.h>

#include <regex>
#include <set>

#include "Files.h"
#include "Process.h"

namespace tool_test {
namespace {

using BenchTest = FileTest;

// Operations that represent all methods on pictures, and those that make a picture.
const std::vector<std::string> kSome = {"flip horizontal", "turn 90",     "shear vertical 0.3", "rotate 30",
                                        "stretch 1/2",     "trim border", "HSV in place",       "RGB",
                                        "average RGB",     "average HSV", "gradient",           "double gradient"};

// The names of the operations in matching lines: the first group of the pattern. Lines that do not
// match are failures.
std::set<std::string> OperationsIn(const std::vector<std::string>& lines, const std::regex& shape) {
  std::set<std::string> names;
  for (const std::string& line : lines) {
    std::smatch match;
    if (!std::regex_match(line, match, shape)) {
      ADD_FAILURE() << line;
      continue;
    }
    EXPECT_TRUE(names.insert(match[1]).second) << "twice: " << match[1];
    EXPECT_GT(std::stod(match[2]), 0) << line;
    EXPECT_GT(std::stod(match[3]), 0) << line;
    EXPECT_GT(std::stod(match[4]), 0) << line;
  }
  return names;
}

TEST_F(BenchTest, TellsNanosecondsAndMultiplesForEveryOperation) {
  const Ended ended = Lmx({"bench", Given("photo.png", OpaqueImage(64, 48)), "--storage=buffer", "--yield=500"});
  EXPECT_EQ(ended.status, 0) << ended.error;
  std::vector<std::string> lines = Lines(ended.out);
  ASSERT_GE(lines.size(), 2 + kSome.size());
  const std::string bits = sizeof(void*) == 4 ? "32-bit" : "64-bit";
  const std::regex head("64 x 48 pixels, buffer, " + bits +
                        R"(, \w+( level)?; memcpy takes [0-9]+\.[0-9]{3} ns per pixel)");
  EXPECT_TRUE(std::regex_match(lines[0], head)) << lines[0];
  EXPECT_EQ(lines[1], "operation             ns per pixel   x memcpy   x with a yield every 500 pixels");
  lines.erase(lines.begin(), lines.begin() + 2);
  const std::set<std::string> names =
      OperationsIn(lines, std::regex(R"((\S+(?: \S+)*) +([0-9]+\.[0-9]{3}) +([0-9]+\.[0-9]{2}) +([0-9]+\.[0-9]{2}))"));
  for (const std::string& name : kSome) EXPECT_EQ(names.count(name), 1u) << name;
}

TEST_F(BenchTest, WorksOnTheSmallestPictureAndForScripts) {
  const Ended ended = Lmx({"bench", Given("dot.png", {1, 1, {0x80FF0000}}), "--json"});
  EXPECT_EQ(ended.status, 0) << ended.error;
  const std::regex shape(
      R"re(\{"operation":"([^"]+)","nanoseconds":([0-9.]+),"yielding":([0-9.]+),"memcpy":([0-9.]+)\})re");
  const std::set<std::string> names = OperationsIn(Lines(ended.out), shape);
  for (const std::string& name : kSome) EXPECT_EQ(names.count(name), 1u) << name;
}

TEST_F(BenchTest, NeedsAPictureThatCanBeRead) {
  const Ended ended = Lmx({"bench", Path("missing.png")});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.out, "");
  EXPECT_PRED2(Contains, ended.error, "missing.png");
}

}  // namespace
}  // namespace tool_test
