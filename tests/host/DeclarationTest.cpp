#include <gtest/gtest.h>

#include "host/Declaration.h"
#include "host/Value.h"
#include "tests/support/Thrown.h"

namespace {

using host::Method;
using host::ParseDeclaration;
using host::Type;

TEST(Declaration, ReadsEveryPart) {
  const Method method = ParseDeclaration(
      "Cut(extends p as picture, left as integer,ByRef mean as double, frame_color as color,a as boolean, t as string) "
      "as picture");
  EXPECT_EQ(method.name, "Cut");
  EXPECT_EQ(method.result, Type::Picture);
  ASSERT_EQ(method.parameters.size(), 6u);
  const Type types[] = {Type::Picture, Type::Integer, Type::Double, Type::Colour, Type::Boolean, Type::String};
  const char* names[] = {"p", "left", "mean", "frame_color", "a", "t"};
  for (std::size_t i = 0; i < 6; ++i) {
    EXPECT_EQ(method.parameters[i].type, types[i]) << i;
    EXPECT_EQ(method.parameters[i].name, names[i]) << i;
    EXPECT_EQ(method.parameters[i].extends, i == 0) << i;
    EXPECT_EQ(method.parameters[i].byRef, i == 2) << i;
  }
}

TEST(Declaration, NeedsNoParametersAndNoResult) {
  const Method method = ParseDeclaration("Do()");
  EXPECT_TRUE(method.parameters.empty());
  EXPECT_EQ(method.result, Type::None);
  EXPECT_EQ(ParseDeclaration("Count( ) AS Integer ").result, Type::Integer);
}

TEST(Declaration, IgnoresCaseOfWordsAndSuperfluousBlanks) {
  const Method method =
      ParseDeclaration("  Do ( EXTENDS p As PICTURE ,BYREF n\tas Integer,byval m as double )as Color");
  ASSERT_EQ(method.parameters.size(), 3u);
  EXPECT_TRUE(method.parameters[0].extends);
  EXPECT_TRUE(method.parameters[1].byRef);
  EXPECT_FALSE(method.parameters[2].byRef);
  EXPECT_EQ(method.result, Type::Colour);
}

TEST(Declaration, RefusesWhatIsNone) {
  for (const char* text : {"",
                           "Do",
                           "Do(",
                           "Do)",
                           "(a as integer)",
                           "1Do()",
                           "Do(a)",
                           "Do(a as)",
                           "Do(a as integer",
                           "Do(a as integer,)",
                           "Do(,a as integer)",
                           "Do(a as integer b as integer)",
                           "Do(a integer)",
                           "Do(a as number)",
                           "Do(a as integers)",
                           "Do() as",
                           "Do() as number",
                           "Do() integer",
                           "Do() as integer x",
                           "Do() as integer,",
                           "Do(a as integer, extends b as picture)",
                           "Do(a as integer, A as double)",
                           "Do(ByRef p as picture)",
                           "Do(ByRef t as string)",
                           "Do(ByRef ByRef a as integer)",
                           "Do(as as integer)",
                           "Do(a asinteger)",
                           "Do[]"}) {
    EXPECT_THROW(ParseDeclaration(text), host::Error) << text;
  }
}

TEST(Declaration, ErrorTellsThePlace) {
  EXPECT_EQ(ThrownBy<host::Error>([] { ParseDeclaration("Do(a as integer b)"); }),
            "malformed declaration \"Do(a as integer b)\": expected `)` at character 17");
}

}  // namespace
