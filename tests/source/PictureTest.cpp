// The picture wrapper: what it holds, what locking makes known, and what it gives back.
#include "LMX_Picture.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "FakeHost.h"

namespace {

using Calls = std::vector<std::string>;

const Calls kLocked = {"lockPictureDescription(picture)"};
const Calls kLockedAndUnlocked = {"lockPictureDescription(picture)", "unlockPictureDescription(picture)"};

class PictureTest : public testing::Test {
 protected:
  void SetUp() override { fake::Reset(); }
};

void ExpectNoPixels(const LMX_Picture& picture) {
  EXPECT_FALSE(picture.locked);
  EXPECT_EQ(picture.width, 0);
  EXPECT_EQ(picture.height, 0);
  EXPECT_EQ(picture.bitsPerPixel, 0u);
  EXPECT_EQ(picture.bytesPerPixel, 0u);
  EXPECT_EQ(picture.bytesPerRow, 0u);
  EXPECT_EQ(picture.data, nullptr);
  EXPECT_EQ(picture.buffer, nullptr);
}

TEST_F(PictureTest, LacksTheFirstAnInnerOrTheLastRow) {
  constexpr std::int32_t kRows = 5;
  for (std::int32_t missing = -1; missing < kRows; ++missing) {
    fake::Buffer buffer(2, kRows);
    if (missing >= 0) buffer.MakeRowNil(missing);
    LMX_Picture picture(buffer.Handle());
    ASSERT_TRUE(picture.Lock());
    EXPECT_EQ(picture.HasEveryRow(), missing < 0) << missing;
    buffer.Record().rowTable = 0;
    EXPECT_FALSE(picture.HasEveryRow());
  }
}

TEST_F(PictureTest, HasRowsOfItsOwnUnlessTheyOverlap) {
  for (const auto& [bytesPerRow, height, isSo] :
       {std::tuple(12, 2, true), std::tuple(11, 2, false), std::tuple(-12, 2, true), std::tuple(-11, 2, false),
        std::tuple(0, 2, false), std::tuple(0, 1, true), std::tuple(13, 2, true)}) {
    fake::Context context(3, 2);
    context.context.bytesPerRow = static_cast<std::size_t>(static_cast<std::ptrdiff_t>(bytesPerRow));
    context.context.height = static_cast<std::size_t>(height);
    LMX_Picture picture(context.Handle());
    ASSERT_TRUE(picture.Lock());
    EXPECT_EQ(picture.HasRowsOfItsOwn(), isSo) << bytesPerRow << " bytes, " << height << " rows";
    EXPECT_TRUE(picture.HasEveryRow());
  }
}

TEST_F(PictureTest, IsEmptyAtFirst) {
  {
    LMX_Picture picture;
    EXPECT_EQ(picture.picture, nullptr);
    EXPECT_EQ(picture.description.pictureType, 0u);
    EXPECT_EQ(picture.description.pictureData, nullptr);
    EXPECT_FALSE(picture.unlockOnRelease);
    ExpectNoPixels(picture);
    EXPECT_FALSE(picture.Lock());
  }
  EXPECT_EQ(fake::TheHost().calls, Calls());
}

TEST_F(PictureTest, OfNilIsEmpty) {
  {
    LMX_Picture picture(nullptr);
    EXPECT_EQ(picture.picture, nullptr);
    EXPECT_FALSE(picture.Lock());
    ExpectNoPixels(picture);
  }
  EXPECT_EQ(fake::TheHost().calls, Calls());
}

TEST_F(PictureTest, HoldsUsableTypes) {
  for (const std::uint32_t type : {8u, 10u}) {
    fake::Reset();
    int somewhere = 0;
    REALpictureStruct handle = {"picture", type, &somewhere};
    {
      LMX_Picture picture(&handle);
      EXPECT_EQ(picture.picture, &handle);
      EXPECT_EQ(picture.description.pictureType, type);
      EXPECT_EQ(picture.description.pictureData, &somewhere);
      EXPECT_FALSE(picture.unlockOnRelease);
      ExpectNoPixels(picture);
      EXPECT_EQ(fake::TheHost().calls, kLocked);
    }
    EXPECT_EQ(fake::TheHost().calls, kLockedAndUnlocked);
  }
}

TEST_F(PictureTest, LetsGoOfOtherTypesAtOnce) {
  for (const std::uint32_t type :
       {0u, 1u, 2u, 7u, 9u, 11u, 12u, 0x80u, 0x108u, 0x80000008u, 0x8000000Au, 0xFFFFFFFFu}) {
    SCOPED_TRACE(type);
    fake::Reset();
    CGContext context;
    REALpictureStruct handle = {"picture", type, &context};
    {
      LMX_Picture picture(&handle);
      EXPECT_EQ(picture.picture, nullptr);
      EXPECT_EQ(fake::TheHost().calls, kLockedAndUnlocked);
      EXPECT_FALSE(picture.Lock());
      ExpectNoPixels(picture);
    }
    EXPECT_EQ(fake::TheHost().calls, kLockedAndUnlocked);
  }
}

// ----------------------------------------------------------------------------------------- locking

TEST_F(PictureTest, LocksABuffer) {
  fake::Buffer buffer(5, 3);
  LMX_Picture picture(buffer.Handle());
  ASSERT_TRUE(picture.Lock());
  EXPECT_TRUE(picture.locked);
  EXPECT_EQ(picture.width, 5);
  EXPECT_EQ(picture.height, 3);
  EXPECT_EQ(picture.bitsPerPixel, 32u);
  EXPECT_EQ(picture.bytesPerPixel, 4u);
  EXPECT_EQ(picture.bytesPerRow, 20u);
  EXPECT_EQ(picture.data, nullptr);
  EXPECT_EQ(picture.buffer, &buffer.Record());
  EXPECT_EQ(fake::TheHost().calls, kLocked) << "locking asks the host for nothing more";
}

TEST_F(PictureTest, LocksANilBufferWithoutPixels) {
  REALpictureStruct handle = {"picture", 10, nullptr};
  LMX_Picture picture(&handle);
  ASSERT_TRUE(picture.Lock());
  EXPECT_TRUE(picture.locked);
  EXPECT_EQ(picture.width, 0);
  EXPECT_EQ(picture.height, 0);
  EXPECT_EQ(picture.bitsPerPixel, 32u);
  EXPECT_EQ(picture.bytesPerPixel, 4u);
  EXPECT_EQ(picture.bytesPerRow, 0u);
  EXPECT_EQ(picture.data, nullptr);
  EXPECT_EQ(picture.buffer, nullptr);
}

TEST_F(PictureTest, CountsNegativeSizesOfABufferAsZero) {
  fake::Buffer buffer(2, 2);
  buffer.Record().width = -1;
  buffer.Record().height = INT32_MIN;
  LMX_Picture picture(buffer.Handle());
  ASSERT_TRUE(picture.Lock());
  EXPECT_EQ(picture.width, 0);
  EXPECT_EQ(picture.height, 0);
  EXPECT_EQ(picture.bytesPerRow, 0u);
}

TEST_F(PictureTest, LocksAContext) {
  fake::Context context(5, 3, 28);
  LMX_Picture picture(context.Handle());
  ASSERT_TRUE(picture.Lock());
  EXPECT_TRUE(picture.locked);
  EXPECT_EQ(picture.width, 5);
  EXPECT_EQ(picture.height, 3);
  EXPECT_EQ(picture.bitsPerPixel, 32u);
  EXPECT_EQ(picture.bytesPerPixel, 4u);
  EXPECT_EQ(picture.bytesPerRow, 28u);
  EXPECT_EQ(picture.data, context.Pixel(0, 0));
  EXPECT_EQ(picture.buffer, nullptr);
  EXPECT_EQ(fake::TheHost().calls, kLocked);
}

TEST_F(PictureTest, LocksContextsOfEveryDepth) {
  for (const std::size_t depth : {0u, 1u, 8u, 16u, 24u, 31u, 33u, 64u, 128u}) {
    SCOPED_TRACE(depth);
    fake::Context context(5, 3);
    context.context.bitsPerPixel = depth;
    LMX_Picture picture(context.Handle());
    ASSERT_TRUE(picture.Lock());
    EXPECT_EQ(picture.bitsPerPixel, depth);
    EXPECT_EQ(picture.bytesPerPixel, 0u);
    EXPECT_EQ(picture.width, 5);
  }
}

// No wrapper holds such a picture, unless somebody changes its description.
TEST_F(PictureTest, DoesNotLockAnotherType) {
  fake::Context context(3, 2);
  fake::Buffer buffer(3, 2);
  for (REALpictureStruct* const handle : {context.Handle(), buffer.Handle()}) {
    for (const std::uint32_t type : {0u, 7u, 9u, 11u, 0xFFFFFFFFu}) {
      LMX_Picture picture(handle);
      picture.description.pictureType = type;
      EXPECT_FALSE(picture.Lock());
      EXPECT_FALSE(picture.locked);
      EXPECT_EQ(picture.width, 0);
      EXPECT_EQ(picture.data, nullptr);
      EXPECT_EQ(picture.buffer, nullptr);
    }
  }
}

TEST_F(PictureTest, DoesNotLockANilContext) {
  REALpictureStruct handle = {"picture", 8, nullptr};
  {
    LMX_Picture picture(&handle);
    EXPECT_EQ(picture.picture, &handle);
    EXPECT_FALSE(picture.Lock());
    ExpectNoPixels(picture);
    EXPECT_FALSE(picture.Lock());
  }
  EXPECT_EQ(fake::TheHost().calls, kLockedAndUnlocked);
}

TEST_F(PictureTest, DoesNotLockAContextWithoutAddress) {
  fake::Context context(5, 3);
  context.context.data = nullptr;
  LMX_Picture picture(context.Handle());
  EXPECT_FALSE(picture.Lock());
  ExpectNoPixels(picture);
}

TEST_F(PictureTest, LocksAnEmptyContextWithoutAddress) {
  for (const auto& [width, height] : {std::pair(0, 3), std::pair(5, 0), std::pair(0, 0)}) {
    CGContext context;
    context.width = static_cast<std::size_t>(width);
    context.height = static_cast<std::size_t>(height);
    REALpictureStruct handle = {"picture", 8, &context};
    LMX_Picture picture(&handle);
    EXPECT_TRUE(picture.Lock());
    EXPECT_EQ(picture.width, width);
    EXPECT_EQ(picture.height, height);
    EXPECT_EQ(picture.data, nullptr);
  }
}

TEST_F(PictureTest, CountsNegativeSizesOfAContextAsZero) {
  fake::Context context(2, 2);
  context.context.width = static_cast<std::size_t>(-1);
  context.context.height = static_cast<std::size_t>(INT32_MIN);
  LMX_Picture picture(context.Handle());
  ASSERT_TRUE(picture.Lock());
  EXPECT_EQ(picture.width, 0);
  EXPECT_EQ(picture.height, 0);
}

TEST_F(PictureTest, LocksOnlyOnce) {
  fake::Buffer buffer(5, 3);
  LMX_Picture picture(buffer.Handle());
  ASSERT_TRUE(picture.Lock());
  buffer.Record().width = 4;
  EXPECT_FALSE(picture.Lock());
  EXPECT_TRUE(picture.locked);
  EXPECT_EQ(picture.width, 5);
  EXPECT_EQ(picture.buffer, &buffer.Record());
}

// --------------------------------------------------------------------------------------- releasing

TEST_F(PictureTest, ForgetsAllWhenReleased) {
  fake::Context context(5, 3);
  fake::Buffer buffer(5, 3);
  for (REALpictureStruct* handle : {context.Handle(), buffer.Handle()}) {
    fake::Reset();
    LMX_Picture picture(handle);
    ASSERT_TRUE(picture.Lock());
    picture.Release();
    EXPECT_EQ(picture.picture, nullptr);
    ExpectNoPixels(picture);
    EXPECT_EQ(fake::TheHost().calls, kLockedAndUnlocked);
    picture.Release();
    EXPECT_EQ(fake::TheHost().calls, kLockedAndUnlocked);
    EXPECT_FALSE(picture.Lock());
  }
}

TEST_F(PictureTest, IsReleasedWhateverTheHostThrows) {
  fake::Context context(5, 3);
  fake::TheHost().throwing = {"unlockPictureDescription", "REALUnlockObject"};
  {
    LMX_Picture picture(context.Handle());
    picture.unlockOnRelease = true;
    ASSERT_TRUE(picture.Lock());
    EXPECT_NO_THROW(picture.Release());
    EXPECT_EQ(picture.picture, nullptr);
    ExpectNoPixels(picture);
  }
  const Calls expected = {"lockPictureDescription(picture)", "unlockPictureDescription(picture)",
                          "REALUnlockObject(picture)"};
  EXPECT_EQ(fake::TheHost().calls, expected);
}

}  // namespace
