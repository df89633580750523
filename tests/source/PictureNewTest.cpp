// New pictures of the wrapper: the steps of their creation, where each can fail, and who owns what
// then.
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "FakeHost.h"
#include "LMX_Picture.h"

namespace {

using Calls = std::vector<std::string>;

const Calls kCreated = {
    "CreateInstance(picture class)",
    "REALLoadObjectMethod(new, Constructor(width as integer, height as integer))",
    "Constructor(new, 3, 2)",
    "lockPictureDescription(new)",
};

Calls CreatedAnd(const Calls& more) {
  Calls calls = kCreated;
  calls.insert(calls.end(), more.begin(), more.end());
  return calls;
}

class NewPictureTest : public testing::Test {
 protected:
  void SetUp() override {
    fake::StartPlugin();
    fake::TheHost().newPicture = fresh_.Handle();
    fresh_.picture.name = "new";
    old_.picture.name = "old";
  }

  const Calls& HostCalls() const { return fake::TheHost().calls; }

  fake::Context fresh_{3, 2};
  fake::Buffer old_{5, 4};
};

TEST_F(NewPictureTest, ThatIsKeptStaysTheCallers) {
  {
    LMX_Picture picture;
    picture.SetNewPicture(3, 2, true);
    EXPECT_FALSE(picture.unlockOnRelease);
    EXPECT_TRUE(picture.Lock());
  }
  EXPECT_EQ(HostCalls(), CreatedAnd({"unlockPictureDescription(new)"}));
}

TEST_F(NewPictureTest, ThatIsNotKeptGoesWithTheWrapper) {
  {
    LMX_Picture picture;
    picture.SetNewPicture(3, 2, false);
    EXPECT_TRUE(picture.unlockOnRelease);
    EXPECT_TRUE(picture.Lock());
  }
  EXPECT_EQ(HostCalls(), CreatedAnd({"unlockPictureDescription(new)", "REALUnlockObject(new)"}));
}

TEST_F(NewPictureTest, ThatCannotBeLockedIsReleasedAllTheSame) {
  fresh_.picture.data = nullptr;
  {
    LMX_Picture picture;
    picture.SetNewPicture(3, 2, false);
    EXPECT_FALSE(picture.Lock());
  }
  EXPECT_EQ(HostCalls(), CreatedAnd({"unlockPictureDescription(new)", "REALUnlockObject(new)"}));
}

TEST_F(NewPictureTest, ReplacesTheOldOne) {
  LMX_Picture picture(old_.Handle());
  ASSERT_TRUE(picture.Lock());
  fake::TheHost().calls.clear();
  picture.SetNewPicture(3, 2, true);
  Calls expected = kCreated;
  expected.insert(expected.begin(), "unlockPictureDescription(old)");
  EXPECT_EQ(HostCalls(), expected);
  EXPECT_EQ(picture.picture, fresh_.Handle());
  EXPECT_FALSE(picture.locked);
  EXPECT_EQ(picture.width, 0);
  EXPECT_EQ(picture.height, 0);
  EXPECT_EQ(picture.bitsPerPixel, 0u);
  EXPECT_EQ(picture.bytesPerRow, 0u);
  EXPECT_EQ(picture.buffer, nullptr);
  ASSERT_TRUE(picture.Lock());
  EXPECT_EQ(picture.buffer, nullptr);
  EXPECT_EQ(picture.data, fresh_.Pixel(0, 0));
}

TEST_F(NewPictureTest, ThatIsKeptAfterOneThatWasNotIsNotGivenUp) {
  {
    LMX_Picture picture;
    picture.SetNewPicture(3, 2, false);
    picture.Release();
    fake::TheHost().calls.clear();
    picture.SetNewPicture(3, 2, true);
  }
  EXPECT_EQ(HostCalls(), CreatedAnd({"unlockPictureDescription(new)"}));
}

TEST_F(NewPictureTest, HasAtLeastOnePixel) {
  for (const long size : {0L, -1L, static_cast<long>(INT_MIN)}) {
    SCOPED_TRACE(size);
    LMX_Picture picture(old_.Handle());
    fake::TheHost().calls.clear();
    EXPECT_FALSE(picture.SetNewPicture(size, 2, true));
    EXPECT_EQ(HostCalls(), Calls({"unlockPictureDescription(old)"}));
    EXPECT_EQ(picture.picture, nullptr);
    EXPECT_FALSE(picture.SetNewPicture(3, size, true));
    EXPECT_FALSE(picture.Lock());
    EXPECT_EQ(HostCalls(), Calls({"unlockPictureDescription(old)"}));
  }
}

TEST_F(NewPictureTest, NeedsTheClass) {
  gPictureClassRef = nullptr;
  LMX_Picture picture;
  EXPECT_FALSE(picture.SetNewPicture(3, 2, true));
  EXPECT_EQ(HostCalls(), Calls());
  EXPECT_EQ(picture.picture, nullptr);
  EXPECT_FALSE(picture.Lock());
}

TEST_F(NewPictureTest, SizesArriveUnchanged) {
  LMX_Picture picture;
  picture.SetNewPicture(INT_MAX, 1, true);
  picture.SetNewPicture(1, INT_MAX, true);
  const Calls& calls = HostCalls();
  ASSERT_EQ(calls.size(), 9u);
  EXPECT_EQ(calls[2], "Constructor(new, 2147483647, 1)");
  EXPECT_EQ(calls[7], "Constructor(new, 1, 2147483647)");
}

}  // namespace
