// The documentation and the declarations describe the same methods and arguments.
#include "tool/Documentation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "Process.h"
#include "host/Host.h"
#include "tool/Errors.h"
#include "tool/Help.h"
#include "tool/Plan.h"
#include "tool/Runner.h"
#include "tool/Values.h"

namespace {

using tool_test::Contains;

class DocumentationTest : public testing::Test {
 protected:
  DocumentationTest() { plugin_.Load(LMX_LIBRARY); }
  host::Host plugin_;
};

TEST_F(DocumentationTest, EveryMethodHasAnEntryWithItsArgumentsInTheDeclaredOrder) {
  ASSERT_FALSE(plugin_.Methods().empty());
  for (const host::Method& method : plugin_.Methods()) {
    SCOPED_TRACE(method.name);
    const tool::MethodText* text = tool::FindDocumentation(method.name);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->name, method.name);
    EXPECT_FALSE(text->summary.empty());
    EXPECT_EQ(text->summary.find('\n'), std::string::npos);
    std::vector<std::string> declared, documented;
    for (const host::Parameter& parameter : method.parameters) declared.push_back(parameter.name);
    for (const tool::ArgumentText& argument : text->arguments) {
      documented.push_back(argument.name);
      EXPECT_FALSE(argument.meaning.empty()) << argument.name;
    }
    EXPECT_EQ(documented, declared);
  }
}

TEST_F(DocumentationTest, NoEntryIsLeftOver) {
  for (const tool::MethodText& text : tool::Documentation()) {
    EXPECT_NE(plugin_.FindMethod(text.name), nullptr) << text.name;
  }
  EXPECT_EQ(tool::Documentation().size(), plugin_.Methods().size());
}

TEST_F(DocumentationTest, FallbacksAreValuesOfTheDeclaredTypeAndResultsHaveNone) {
  for (const host::Method& method : plugin_.Methods()) {
    for (const host::Parameter& parameter : method.parameters) {
      SCOPED_TRACE(method.name + " " + parameter.name);
      const tool::ArgumentText* text = tool::FindDocumentation(method.name)->Find(parameter.name);
      ASSERT_NE(text, nullptr);
      if (parameter.byRef || tool::IsPicture(parameter)) {
        EXPECT_EQ(text->fallback.text, nullptr);
      } else if (text->fallback.compute != nullptr) {
        EXPECT_EQ(parameter.type, host::Type::Integer);
        EXPECT_NE(text->fallback.text, nullptr);
      } else if (text->fallback.text != nullptr) {
        EXPECT_NO_THROW(tool::ParseValue(parameter.type, text->fallback.text));
      }
    }
  }
}

// Compared with the plug-in: it accepts a range up to its ends, and nothing outside.
TEST_F(DocumentationTest, RangesAreThoseOfThePluginAndOfTheMeaning) {
  host::Picture picture({3, 2, host::Storage::BitmapContext, {}, {}});
  picture.Fill(0);
  const auto takes = [&](const tool::MethodText& text, const std::string& argument, double number) {
    const auto whole = std::to_string(static_cast<std::int64_t>(number));
    tool::StepWords step{text.name, {}, {{argument, number == std::trunc(number) ? whole : std::to_string(number)}}};
    if (tool::TakesPicture(*plugin_.FindMethod(text.name))) step.operands.push_back("p.png");
    for (const char* other : {"width", "height", "shear", "rotation"}) {
      const tool::ArgumentText* found = text.Find(other);
      const bool free = found == nullptr || argument == other || found->range.most > 1e9;
      if (!free && found->range.least <= 1) step.assignments.push_back({other, "1"});
    }
    tool::CommandLine line;
    line.steps = {step};
    line.output = "out.png";
    try {
      tool::Runner(plugin_, 0, 1, [](const tool::CallReport&) {}).Run(tool::MakePlan(plugin_, line), picture);
      return true;
    } catch (const tool::Failure& failure) {
      const std::string hint = argument + '=' + step.assignments.front().value + " is out of range: ";
      EXPECT_NE(std::string(failure.what()).find(hint), std::string::npos) << failure.what();
      return false;
    }
  };
  int ranges = 0;
  for (const tool::MethodText& text : tool::Documentation()) {
    for (const tool::ArgumentText& argument : text.arguments) {
      const tool::Range& range = argument.range;
      if (std::isinf(range.least)) continue;
      ++ranges;
      const std::string where = text.name + " " + argument.name;
      EXPECT_NE(argument.meaning.find(tool::RangeText(range)), std::string::npos) << where << ": " << argument.meaning;
      EXPECT_EQ(takes(text, argument.name, range.least), !range.withoutLeast) << where;
      EXPECT_TRUE(takes(text, argument.name, range.least + 1)) << where;
      EXPECT_FALSE(takes(text, argument.name, range.least - 1)) << where;
      if (std::isinf(range.most)) continue;
      EXPECT_EQ(takes(text, argument.name, range.most), !range.withoutMost) << where;
      EXPECT_TRUE(takes(text, argument.name, range.most - 1)) << where;
      EXPECT_FALSE(takes(text, argument.name, range.most + 1)) << where;
    }
  }
  EXPECT_EQ(ranges, 28);
}

TEST_F(DocumentationTest, ExamplesCallTheirMethod) {
  for (const tool::MethodText& text : tool::Documentation()) {
    std::istringstream words(text.example);
    std::string program, method;
    words >> program >> method;
    EXPECT_EQ(program, "lmx");
    ASSERT_NE(plugin_.FindMethod(method), nullptr) << text.example;
    EXPECT_EQ(plugin_.FindMethod(method)->name, text.name);
    tool::StepWords step{method, {}, {}};
    for (std::string word; words >> word;) {
      const std::size_t equals = word.find('=');
      if (equals != std::string::npos) step.assignments.push_back({word.substr(0, equals), word.substr(equals + 1)});
      if (equals == std::string::npos &&
          (word.find(".jpg") != std::string::npos || word.find(".png") != std::string::npos)) {
        step.operands.push_back(word);
      }
      if (word == "-o") words >> word;
    }
    tool::CommandLine line;
    line.steps = {step};
    if (text.example.find(" -o ") != std::string::npos) line.output = "out.png";
    EXPECT_NO_THROW(tool::MakePlan(plugin_, line)) << text.example;
  }
}

TEST(Help, ShowsAMethodThatHasNoEntry) {
  const host::Method method = host::ParseDeclaration("Other(extends p as picture, weight as double) as picture");
  std::ostringstream out;
  tool::WriteMethodHelp(out, method);
  EXPECT_PRED2(Contains, out.str(), "Other(extends p as picture, weight as double) as picture");
  EXPECT_PRED2(Contains, out.str(), "(needed)");
}

}  // namespace
