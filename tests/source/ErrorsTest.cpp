// The debug message, which no method of the module shows.
#include "TPQ_Errors.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "FakeHost.h"

namespace {

class DebugMessageTest : public testing::Test {
 protected:
  void SetUp() override {
    fake::Reset();
    fake::TheHost().string = &string_;
  }
  void TearDown() override { std::fill(std::begin(gLMX_DebugMessage), std::end(gLMX_DebugMessage), '\0'); }

  REALstringStruct string_ = {"left from before"};
};

TEST_F(DebugMessageTest, IsEmptyUntilSomethingWritesIt) {
  static_assert(sizeof gLMX_DebugMessage == 4096);
  for (const char byte : gLMX_DebugMessage) ASSERT_EQ(byte, '\0');
  EXPECT_EQ(LMX_GetDebugMessage(), &string_);
  EXPECT_EQ(string_.text, "");
}

TEST_F(DebugMessageTest, EndsAtItsZero) {
  std::strcpy(gLMX_DebugMessage, "row 7\nof 9");
  EXPECT_EQ(LMX_GetDebugMessage(), &string_);
  EXPECT_EQ(string_.text, "row 7\nof 9");
  EXPECT_EQ(fake::TheHost().calls.back(), "REALBuildString(10)");
}

TEST_F(DebugMessageTest, MayFillItsRoom) {
  const std::string longest(4095, 'x');
  std::strcpy(gLMX_DebugMessage, longest.c_str());
  LMX_GetDebugMessage();
  EXPECT_EQ(string_.text, longest);
}

TEST_F(DebugMessageTest, IsNilWhenTheHostHasNoText) {
  fake::TheHost().string = nullptr;
  EXPECT_EQ(LMX_GetDebugMessage(), nullptr);
}

TEST_F(DebugMessageTest, LeavesTheErrorAlone) {
  gLMX_Error = kInvalidTrimArea;
  LMX_GetDebugMessage();
  EXPECT_EQ(gLMX_Error, 39);
  gLMX_Error = kNoError;
}

}  // namespace
