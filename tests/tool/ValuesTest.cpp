// Values as users write them: valid ones are understood, and all others are refused.
#include "tool/Values.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/support/Thrown.h"
#include "tool/Errors.h"

namespace {

using host::Type;
using tool::ParseValue;

void ExpectRefused(Type type, const std::vector<std::string>& texts) {
  for (const std::string& text : texts) {
    EXPECT_THROW(ParseValue(type, text), tool::UsageError) << host::TypeName(type) << " `" << text << "`";
  }
}

TEST(Values, IntegersAreWholeAndHave32Bits) {
  EXPECT_EQ(ParseValue(Type::Integer, "0").AsInteger(), 0);
  EXPECT_EQ(ParseValue(Type::Integer, "-17").AsInteger(), -17);
  EXPECT_EQ(ParseValue(Type::Integer, "2147483647").AsInteger(), std::numeric_limits<std::int32_t>::max());
  EXPECT_EQ(ParseValue(Type::Integer, "-2147483648").AsInteger(), std::numeric_limits<std::int32_t>::min());
  ExpectRefused(Type::Integer, {"", " ", "1 ", " 1", "1.0", "1e3", "0x10", "2147483648", "-2147483649", "abc", "--1",
                                "+-1", "12px", "true"});
}

TEST(Values, DoublesIncludeTheSpecialOnes) {
  EXPECT_EQ(ParseValue(Type::Double, "1").AsDouble(), 1.0);
  EXPECT_EQ(ParseValue(Type::Double, "-0.5").AsDouble(), -0.5);
  EXPECT_EQ(ParseValue(Type::Double, "1e3").AsDouble(), 1000.0);
  EXPECT_EQ(ParseValue(Type::Double, "359.99").AsDouble(), 359.99);
  EXPECT_EQ(ParseValue(Type::Double, "inf").AsDouble(), std::numeric_limits<double>::infinity());
  EXPECT_EQ(ParseValue(Type::Double, "-inf").AsDouble(), -std::numeric_limits<double>::infinity());
  EXPECT_TRUE(std::isnan(ParseValue(Type::Double, "nan").AsDouble()));
  EXPECT_TRUE(std::isnan(ParseValue(Type::Double, "NaN").AsDouble()));
  ExpectRefused(Type::Double, {"", "1,5", "1.5 ", "0x10", "1e999", "one", "1.5deg"});
}

TEST(Values, BooleansHaveThreePairsOfWords) {
  for (const char* text : {"true", "yes", "1", "True", "YES"}) {
    EXPECT_TRUE(ParseValue(Type::Boolean, text).AsBoolean()) << text;
  }
  for (const char* text : {"false", "no", "0", "False", "NO"}) {
    EXPECT_FALSE(ParseValue(Type::Boolean, text).AsBoolean()) << text;
  }
  ExpectRefused(Type::Boolean, {"", "2", "-1", "on", "t", "true ", "y"});
}

TEST(Values, ColoursHaveTheFormsOfTheWebAndOfPrograms) {
  EXPECT_EQ(ParseValue(Type::Colour, "#12abEF").AsColour(), host::Colour{0x0012ABEF});
  EXPECT_EQ(ParseValue(Type::Colour, "#1aF").AsColour(), host::Colour{0x0011AAFF});
  EXPECT_EQ(ParseValue(Type::Colour, "&c12abEF").AsColour(), host::Colour{0x0012ABEF});
  EXPECT_EQ(ParseValue(Type::Colour, "&c12abef40").AsColour(), host::Colour{0x4012ABEF});
  EXPECT_EQ(ParseValue(Type::Colour, "&C000000ff").AsColour(), host::Colour{0xFF000000});
  EXPECT_EQ(ParseValue(Type::Colour, "&h4012ABEF").AsColour(), host::Colour{0x4012ABEF});
  EXPECT_EQ(ParseValue(Type::Colour, "&Hff000000").AsColour(), host::Colour{0xFF000000});
  ExpectRefused(Type::Colour,
                {"",        "#",      "&",         "&c",         "&h",         "#12",      "#1234",      "#12g",
                 "#-12",    "&c123",  "&c1234567", "&x123456",   "#12345",     "#1234567", "#123456789", "#12345g",
                 "#-12345", "123456", "&h123456",  "&h-1234567", "&h0x123456", "red",      "# 12345",    "#12345 "});
}

// Some read eight digits as a colour with alpha, others as one with transparency.
TEST(Values, ColoursThatHaveTwoMeaningsAreAskedAbout) {
  EXPECT_EQ(ThrownBy<tool::UsageError>([] { ParseValue(Type::Colour, "#12abEF40"); }),
            "`#12abEF40` has two meanings: write &c12ABEF40 if 40 is the transparency (00 opaque), or &c12ABEFBF if it "
            "is alpha");
}

TEST(Values, TextsForPeopleAndScripts) {
  EXPECT_EQ(tool::ReadableText(1.0 / 3), "0.333333");
  EXPECT_EQ(tool::ReadableText(std::nan("")), "NaN");
  EXPECT_EQ(tool::ReadableText(host::Value("plain \"text\"")), "plain \"text\"");
  EXPECT_EQ(tool::JsonText(host::Value(1.0 / 3)), "0.3333333333333333");
  EXPECT_EQ(tool::JsonText(host::Value(std::nan(""))), "null");
  EXPECT_EQ(tool::JsonText(host::Value(std::numeric_limits<double>::infinity())), "null");
  EXPECT_EQ(tool::JsonText(host::Value(-5)), "-5");
  EXPECT_EQ(tool::JsonText(host::Value(true)), "true");
  EXPECT_EQ(tool::JsonText(std::string("a\"b\\c\n")), R"("a\"b\\c\u000a")");
}

TEST(Values, TextsOfPrograms) {
  EXPECT_EQ(tool::ProgramText(true), "True");
  EXPECT_EQ(tool::ProgramText(-3), "-3");
  EXPECT_EQ(tool::ProgramText(60.0), "60.0");
  EXPECT_EQ(tool::ProgramText(0.25), "0.25");
  EXPECT_EQ(tool::ProgramText(host::Colour{0xFF000000}), "&hFF000000");
  EXPECT_EQ(tool::ProgramText(host::Value("x")), "\"x\"");
}

}  // namespace
