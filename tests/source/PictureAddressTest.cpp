// Rows, columns and single pixels of a locked picture.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>

#include "FakeHost.h"
#include "LMX_Picture.h"

namespace {

class AddressTest : public testing::Test {
 protected:
  void SetUp() override { fake::Reset(); }
};

// -------------------------------------------------------------------------------------------- rows

TEST_F(AddressTest, RowsOfAContextFollowEachOther) {
  fake::Context context(5, 3, 23);
  LMX_Picture picture(context.Handle());
  ASSERT_TRUE(picture.Lock());
  for (int y = 0; y < 3; ++y) EXPECT_EQ(picture.RowAddress(y), context.Pixel(0, 0) + 23 * y);
}

TEST_F(AddressTest, RowsOfAContextMayLieUpwards) {
  fake::Context context(5, 3);
  context.context.bytesPerRow = static_cast<std::size_t>(-20);
  context.context.data = static_cast<std::uint8_t*>(context.context.data) + 40;
  LMX_Picture picture(context.Handle());
  ASSERT_TRUE(picture.Lock());
  for (int y = 0; y < 3; ++y) {
    EXPECT_EQ(picture.RowAddress(y), static_cast<std::uint8_t*>(context.context.data) - 20 * y);
  }
}

// In 32 bits an offset beyond 2 GiB is no signed number, which instrumented builds find out.
TEST_F(AddressTest, RowsMayLieBeyond2GiB) {
  fake::Context context(5, 3);
  context.context.height = 3000;
  context.context.bytesPerRow = 1000000;
  context.context.data = reinterpret_cast<void*>(std::uintptr_t{0x1000});
  LMX_Picture picture(context.Handle());
  ASSERT_TRUE(picture.Lock());
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(picture.RowAddress(2999)), std::uintptr_t{0x1000} + 2999000000u);
}

TEST_F(AddressTest, RowsOfABufferComeFromItsTable) {
  fake::Buffer buffer(5, 3);
  buffer.MakeRowNil(1);
  LMX_Picture picture(buffer.Handle());
  ASSERT_TRUE(picture.Lock());
  EXPECT_EQ(picture.RowAddress(0), buffer.Row(0));
  EXPECT_EQ(picture.RowAddress(1), nullptr);
  EXPECT_EQ(picture.RowAddress(2), buffer.Row(2));
}

TEST_F(AddressTest, ABufferWithoutRecordOrTableHasNoRows) {
  REALpictureStruct nilBuffer = {"picture", kPictureTypeBuffer, nullptr};
  LMX_Picture empty(&nilBuffer);
  ASSERT_TRUE(empty.Lock());
  EXPECT_EQ(empty.RowAddress(0), nullptr);

  fake::Buffer buffer(5, 3);
  buffer.Record().rowTable = 0;
  LMX_Picture picture(buffer.Handle());
  ASSERT_TRUE(picture.Lock());
  EXPECT_EQ(picture.RowAddress(0), nullptr);
  EXPECT_EQ(picture.RowAddress(2), nullptr);
}

// ----------------------------------------------------------------------------------------- columns

std::int32_t RowBelow(const LMX_Picture& picture, std::int32_t row) {
  ColumnWalk walk(picture, row);
  walk.Next();
  return walk.Row();
}

std::int32_t RowAbove(const LMX_Picture& picture, std::int32_t row) {
  ColumnWalk walk(picture, row, ColumnWalk::kUp);
  walk.Next();
  return walk.Row();
}

TEST_F(AddressTest, AWalkStartsWhereItIsTold) {
  fake::Buffer buffer(5, 4);
  LMX_Picture picture(buffer.Handle());
  ASSERT_TRUE(picture.Lock());
  EXPECT_EQ(ColumnWalk(picture, 3).Row(), 3);
}

TEST_F(AddressTest, AWalkInAContextGoesOn) {
  fake::Context context(5, 4);
  LMX_Picture picture(context.Handle());
  ASSERT_TRUE(picture.Lock());
  EXPECT_EQ(RowBelow(picture, 0), 1);
  EXPECT_EQ(RowBelow(picture, 3), 4);
  EXPECT_EQ(RowAbove(picture, 3), 2);
  EXPECT_EQ(RowAbove(picture, 0), -1);
}

TEST_F(AddressTest, AWalkInABufferStaysInside) {
  fake::Buffer buffer(5, 4);
  LMX_Picture picture(buffer.Handle());
  ASSERT_TRUE(picture.Lock());
  EXPECT_EQ(RowBelow(picture, 0), 1);
  EXPECT_EQ(RowBelow(picture, 2), 3);
  EXPECT_EQ(RowBelow(picture, 3), 3) << "below the last row";
  EXPECT_EQ(RowBelow(picture, 4), 4) << "beyond the last row";
  EXPECT_EQ(RowAbove(picture, 3), 2);
  EXPECT_EQ(RowAbove(picture, 1), 0);
  EXPECT_EQ(RowAbove(picture, 0), 0) << "above the first row";
  EXPECT_EQ(RowAbove(picture, 4), 4) << "beyond the last row";
}

TEST_F(AddressTest, AWalkInABufferStopsAtMissingRows) {
  fake::Buffer buffer(5, 4);
  buffer.MakeRowNil(2);
  LMX_Picture picture(buffer.Handle());
  ASSERT_TRUE(picture.Lock());
  EXPECT_EQ(RowBelow(picture, 0), 1);
  EXPECT_EQ(RowBelow(picture, 1), 1) << "towards a missing row";
  EXPECT_EQ(RowBelow(picture, 2), 2) << "from a missing row";
  EXPECT_EQ(RowAbove(picture, 3), 3) << "towards a missing row";
  EXPECT_EQ(RowAbove(picture, 2), 2) << "from a missing row";
  EXPECT_EQ(RowAbove(picture, 1), 0);
}

TEST_F(AddressTest, AWalkInABufferWithoutTableStays) {
  fake::Buffer buffer(5, 4);
  buffer.Record().rowTable = 0;
  LMX_Picture picture(buffer.Handle());
  ASSERT_TRUE(picture.Lock());
  EXPECT_EQ(RowBelow(picture, 1), 1);
  EXPECT_EQ(RowAbove(picture, 1), 1);
}

TEST_F(AddressTest, AWalkTakesManySteps) {
  fake::Buffer buffer(1, 4);
  LMX_Picture picture(buffer.Handle());
  ASSERT_TRUE(picture.Lock());
  ColumnWalk down(picture, 0), up(picture, 3, ColumnWalk::kUp);
  for (const int expected : {1, 2, 3, 3, 3}) {
    down.Next();
    EXPECT_EQ(down.Row(), expected);
  }
  for (const int expected : {2, 1, 0, 0, 0}) {
    up.Next();
    EXPECT_EQ(up.Row(), expected);
  }
  ColumnWalk skip(picture, 0);
  skip.Skip(3);
  EXPECT_EQ(skip.Row(), 3);
  skip.Skip(1);
  EXPECT_EQ(skip.Row(), 3);
}

// ------------------------------------------------------------------------------------------ pixels

using Bytes = std::array<std::uint8_t, 4>;

TEST_F(AddressTest, BufferPixelsAreLittleEndianWithATransparency) {
  fake::Buffer buffer(1, 1);
  LMX_Picture picture(buffer.Handle());
  ASSERT_TRUE(picture.Lock());
  EXPECT_EQ(picture.ReadPixel(Bytes{0x03, 0x02, 0x01, 0}.data()), 0xFF010203);
  EXPECT_EQ(picture.ReadPixel(Bytes{0x03, 0x02, 0x01, 127}.data()), 0x00010203u);
  EXPECT_EQ(picture.ReadPixel(Bytes{0x03, 0x02, 0x01, 126}.data()), 0x03010203u);
  EXPECT_EQ(picture.ReadPixel(Bytes{0x03, 0x02, 0x01, 128}.data()), 0xFF010203) << "255 - 256, modulo 256";
  EXPECT_EQ(picture.ReadPixel(Bytes{0x03, 0x02, 0x01, 255}.data()), 0x01010203u) << "255 - 510, modulo 256";
  Bytes stored;
  picture.WritePixel(stored.data(), 0xFF010203);
  EXPECT_EQ(stored, (Bytes{0x03, 0x02, 0x01, 0}));
  picture.WritePixel(stored.data(), 0x00010203);
  EXPECT_EQ(stored, (Bytes{0x03, 0x02, 0x01, 127}));
  picture.WritePixel(stored.data(), 0x80010203);
  EXPECT_EQ(stored, (Bytes{0x03, 0x02, 0x01, 63}));
}

TEST_F(AddressTest, ContextPixelsAreBigEndianAndPremultiplied) {
  fake::Context context(1, 1);
  LMX_Picture picture(context.Handle());
  ASSERT_TRUE(picture.Lock());
  EXPECT_EQ(picture.ReadPixel(Bytes{0xFF, 0x01, 0x02, 0x03}.data()), 0xFF010203);
  EXPECT_EQ(picture.ReadPixel(Bytes{0x00, 0x01, 0x02, 0x03}.data()), 0u);
  EXPECT_EQ(picture.ReadPixel(Bytes{0x80, 100, 0, 128}.data()), 0x80C700FFu) << "100 * 255 / 128 = 199";
  EXPECT_EQ(picture.ReadPixel(Bytes{0x01, 0, 2, 0}.data()), 0x0101FE00u) << "510 carries into red";
  Bytes stored;
  picture.WritePixel(stored.data(), 0xFF010203);
  EXPECT_EQ(stored, (Bytes{0xFF, 0x01, 0x02, 0x03}));
  picture.WritePixel(stored.data(), 0x00010203);
  EXPECT_EQ(stored, (Bytes{0, 0, 0, 0}));
  picture.WritePixel(stored.data(), 0x80FF0001);
  EXPECT_EQ(stored, (Bytes{0x80, 0x80, 0, 0}));
}

TEST_F(AddressTest, TheBufferDecidesTheForm) {
  REALpictureStruct nilBuffer = {"picture", kPictureTypeBuffer, nullptr};
  LMX_Picture picture(&nilBuffer);
  ASSERT_TRUE(picture.Lock());
  EXPECT_EQ(picture.ReadPixel(Bytes{0xFF, 0x01, 0x02, 0x03}.data()), 0xFF010203);
  Bytes stored;
  picture.WritePixel(stored.data(), 0xFF010203);
  EXPECT_EQ(stored, (Bytes{0xFF, 0x01, 0x02, 0x03}));
}

TEST_F(AddressTest, PixelsOfOtherDepthsAreClear) {
  for (const std::size_t depth : {0u, 16u, 24u, 31u, 33u, 64u}) {
    fake::Context context(1, 1);
    context.context.bitsPerPixel = depth;
    LMX_Picture picture(context.Handle());
    ASSERT_TRUE(picture.Lock());
    Bytes stored = {0xFF, 0x01, 0x02, 0x03};
    EXPECT_EQ(picture.ReadPixel(stored.data()), 0u);
    picture.WritePixel(stored.data(), 0xFF999999);
    EXPECT_EQ(stored, (Bytes{0xFF, 0x01, 0x02, 0x03}));
  }
}

}  // namespace
