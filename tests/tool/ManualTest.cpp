// The manual page describes everything in the tables, in text that roff does not read as requests.
#include "tool/Manual.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "Process.h"
#include "tool/Documentation.h"
#include "tool/Options.h"
#include "tool/Usage.h"

namespace tool_test {
namespace {

class Manual : public testing::Test {
 protected:
  Manual() {
    plugin_.Load(LMX_LIBRARY);
    std::ostringstream out;
    tool::WriteManual(out, plugin_);
    roff_ = out.str();
  }

  // The text of the page without roff's requests.
  std::string Shown() const {
    std::string shown;
    for (std::size_t i = 0; i < roff_.size(); ++i) {
      if (roff_[i] != '\\') {
        shown += roff_[i];
      } else if (roff_.compare(i + 1, 3, "(aq") == 0) {
        shown += '\'';
        i += 3;
      } else if (roff_[i + 1] == 'f') {
        i += 2;
      } else {
        shown += roff_[++i] == '&' ? "" : std::string(1, roff_[i]);
      }
    }
    return shown;
  }

  host::Host plugin_;
  std::string roff_;
};

TEST_F(Manual, ShowsEveryCommandAndOption) {
  const std::string shown = Shown();
  for (const tool::Command& command : tool::Commands()) {
    EXPECT_TRUE(Contains(shown, std::string(".TP\nlmx ") + command.words + "\n" + command.meaning)) << command.words;
  }
  for (const tool::Option& option : tool::Options()) {
    const std::string value = option.value == nullptr ? "" : std::string(" ") + option.value;
    EXPECT_TRUE(Contains(shown, option.name + value + "\n" + option.meaning + "\n")) << option.name;
    EXPECT_TRUE(*option.letter == '\0' || Contains(shown, std::string(".TP\n") + option.letter + ", " + option.name));
  }
}

TEST_F(Manual, ShowsEveryMethodWithEveryArgument) {
  const std::string shown = Shown();
  for (const host::Method& method : plugin_.Methods()) {
    const std::size_t heading = shown.find(".SS " + method.name + "\n");
    ASSERT_NE(heading, std::string::npos) << method.name;
    const std::string section = shown.substr(heading, shown.find(".SS ", heading + 1) - heading);
    EXPECT_TRUE(Contains(section, "\n" + method.declaration + "\n")) << method.name;
    for (const host::Parameter& parameter : method.parameters) {
      EXPECT_TRUE(Contains(section, ".TP\n" + parameter.name + " " + TypeName(parameter.type) + "\n"))
          << method.name << " " << parameter.name;
    }
    EXPECT_TRUE(Contains(section, tool::FindDocumentation(method.name)->example)) << method.name;
  }
}

TEST_F(Manual, LinesThatBeginWithAPointAreInstructions) {
  std::istringstream lines(roff_);
  for (std::string line; std::getline(lines, line);) {
    EXPECT_TRUE(line.empty() || line.front() != '\'') << line;
    if (line.empty() || line.front() != '.') continue;
    const std::string macro = line.substr(1, line.find(' ') - 1);
    const char* known[] = {"\\\"", "TH", "SH", "SS", "PP", "TP", "nf", "fi", "in", "EX", "EE"};
    EXPECT_TRUE(std::find(std::begin(known), std::end(known), macro) != std::end(known)) << line;
  }
}

TEST_F(Manual, IsWhatLmxPrints) {
  EXPECT_EQ(Lmx({"man"}), (Ended{0, roff_, ""}));
  EXPECT_EQ(Lmx({"man", "more"}).status, 2);
}

}  // namespace
}  // namespace tool_test
