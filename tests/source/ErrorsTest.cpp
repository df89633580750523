// The debug message, which no method of the module shows.
#include "TPQ_Errors.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "LinkedTest.h"

namespace {

class DebugMessageTest : public LinkedTest {
 protected:
  void TearDown() override {
    std::fill(std::begin(gLMX_DebugMessage), std::end(gLMX_DebugMessage), '\0');
    LinkedTest::TearDown();
  }

  // The text of the message box.
  std::string Message() {
    REALstringStruct* const text = LMX_GetDebugMessage();
    host_.messageBoxes.clear();
    REALMessageBox(text);
    REALUnlockObject(reinterpret_cast<REALobjectStruct*>(text));
    return host_.messageBoxes.at(0);
  }
};

TEST_F(DebugMessageTest, IsEmptyUntilSomethingWritesIt) {
  static_assert(sizeof gLMX_DebugMessage == 4096);
  for (const char byte : gLMX_DebugMessage) ASSERT_EQ(byte, '\0');
  EXPECT_EQ(Message(), "");
}

TEST_F(DebugMessageTest, EndsAtItsZero) {
  std::strcpy(gLMX_DebugMessage, "row 7\nof 9");
  EXPECT_EQ(Message(), "row 7\nof 9");
}

TEST_F(DebugMessageTest, MayFillItsRoom) {
  const std::string longest(4095, 'x');
  std::strcpy(gLMX_DebugMessage, longest.c_str());
  EXPECT_EQ(Message(), longest);
}

TEST_F(DebugMessageTest, IsNilWhenTheHostHasNoText) {
  host_.FailAt(host::Service::BuildString, 1);
  EXPECT_EQ(LMX_GetDebugMessage(), nullptr);
}

TEST_F(DebugMessageTest, LeavesTheErrorAlone) {
  gLMX_Error = kInvalidTrimArea;
  Message();
  EXPECT_EQ(gLMX_Error, 39);
  gLMX_Error = kNoError;
}

}  // namespace
