// Rows, columns and single pixels of a locked picture.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>

#include "LinkedTest.h"

namespace {

class AddressTest : public LinkedTest {};

host::Defects WithoutTable() {
  host::Defects defects;
  defects.nilRowTable = true;
  return defects;
}

// -------------------------------------------------------------------------------------------- rows

TEST_F(AddressTest, RowsOfAContextFollowEachOther) {
  for (const int bytesPerRow : {23, -20}) {
    host::Defects defects;
    defects.bytesPerRow = bytesPerRow;
    const LockedPicture context(Context(5, 3, defects));
    std::uint8_t* const first = context.picture.PixelAddress(0, 0);
    for (int y = 0; y < 3; ++y) EXPECT_EQ(context.wrapper.RowAddress(y), first + bytesPerRow * y);
  }
}

// In 32 bits an offset beyond 2 GiB is no signed number. Builds with sanitizers would report an
// overflow.
TEST_F(AddressTest, RowsMayLieBeyond2GiB) {
  LMX_Picture picture;
  picture.bytesPerRow = 1000000;
  picture.data = reinterpret_cast<std::uint8_t*>(std::uintptr_t{0x1000});
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(picture.RowAddress(2999)), std::uintptr_t{0x1000} + 2999000000u);
}

TEST_F(AddressTest, RowsOfABufferComeFromItsTable) {
  const LockedPicture buffer(Buffer(5, 3, WithoutRows({1})));
  EXPECT_EQ(buffer.wrapper.RowAddress(0), buffer.picture.PixelAddress(0, 0));
  EXPECT_EQ(buffer.wrapper.RowAddress(1), nullptr);
  EXPECT_EQ(buffer.wrapper.RowAddress(2), buffer.picture.PixelAddress(0, 2));
}

TEST_F(AddressTest, ABufferWithoutRecordOrTableHasNoRows) {
  LMX_Picture empty;
  empty.description.pictureType = kPictureTypeBuffer;
  EXPECT_EQ(empty.RowAddress(0), nullptr);

  const LockedPicture buffer(Buffer(5, 3, WithoutTable()));
  EXPECT_EQ(buffer.wrapper.RowAddress(0), nullptr);
  EXPECT_EQ(buffer.wrapper.RowAddress(2), nullptr);
}

// ----------------------------------------------------------------------------------------- columns

std::int32_t NextRow(const LMX_Picture& picture, std::int32_t row, ColumnWalk::Direction direction) {
  ColumnWalk walk(picture, row, direction);
  EXPECT_EQ(walk.Row(), row);
  walk.Next();
  return walk.Row();
}

// The next row of a walk in a picture of four rows, from each row and from rows outside.
TEST_F(AddressTest, AWalkStaysInABufferAndBeforeMissingRows) {
  const struct {
    const char* what;
    host::PictureShape shape;
    std::array<std::int32_t, 6> below, above;  // rows -1 to 4
  } kCases[] = {
      {"a context", Context(5, 4), {0, 1, 2, 3, 4, 5}, {-2, -1, 0, 1, 2, 3}},
      {"a buffer", Buffer(5, 4), {-1, 1, 2, 3, 3, 4}, {-1, 0, 0, 1, 2, 4}},
      {"a buffer without row 2", Buffer(5, 4, WithoutRows({2})), {-1, 1, 1, 2, 3, 4}, {-1, 0, 0, 2, 3, 4}},
      {"a buffer without table", Buffer(5, 4, WithoutTable()), {-1, 0, 1, 2, 3, 4}, {-1, 0, 1, 2, 3, 4}},
  };
  for (const auto& picture : kCases) {
    const LockedPicture locked(picture.shape);
    for (std::size_t i = 0; i < picture.below.size(); ++i) {
      const auto row = static_cast<std::int32_t>(i) - 1;
      EXPECT_EQ(NextRow(locked.wrapper, row, ColumnWalk::kDown), picture.below[i]) << picture.what << ", row " << row;
      EXPECT_EQ(NextRow(locked.wrapper, row, ColumnWalk::kUp), picture.above[i]) << picture.what << ", row " << row;
    }
  }
}

TEST_F(AddressTest, AWalkTakesManySteps) {
  const LockedPicture buffer(Buffer(1, 4));
  ColumnWalk down(buffer.wrapper, 0), up(buffer.wrapper, 3, ColumnWalk::kUp);
  for (const int expected : {1, 2, 3, 3, 3}) {
    down.Next();
    EXPECT_EQ(down.Row(), expected);
  }
  for (const int expected : {2, 1, 0, 0, 0}) {
    up.Next();
    EXPECT_EQ(up.Row(), expected);
  }
  ColumnWalk skip(buffer.wrapper, 0);
  skip.Skip(3);
  EXPECT_EQ(skip.Row(), 3);
  skip.Skip(1);
  EXPECT_EQ(skip.Row(), 3);
}

// ------------------------------------------------------------------------------------------ pixels

using Bytes = std::array<std::uint8_t, 4>;

TEST_F(AddressTest, BufferPixelsAreLittleEndianWithATransparency) {
  const LockedPicture buffer(Buffer(1, 1));
  const LMX_Picture& picture = buffer.wrapper;
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
  const LockedPicture context(Context(1, 1));
  const LMX_Picture& picture = context.wrapper;
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
  LMX_Picture picture;
  picture.description.pictureType = kPictureTypeBuffer;
  picture.bitsPerPixel = 32;
  EXPECT_EQ(picture.ReadPixel(Bytes{0xFF, 0x01, 0x02, 0x03}.data()), 0xFF010203);
  Bytes stored;
  picture.WritePixel(stored.data(), 0xFF010203);
  EXPECT_EQ(stored, (Bytes{0xFF, 0x01, 0x02, 0x03}));
}

TEST_F(AddressTest, PixelsOfOtherDepthsAreClear) {
  for (const std::uint32_t depth : {0u, 16u, 24u, 31u, 33u, 64u}) {
    LMX_Picture picture;
    picture.bitsPerPixel = depth;
    Bytes stored = {0xFF, 0x01, 0x02, 0x03};
    EXPECT_EQ(picture.ReadPixel(stored.data()), 0u);
    picture.WritePixel(stored.data(), 0xFF999999);
    EXPECT_EQ(stored, (Bytes{0xFF, 0x01, 0x02, 0x03}));
  }
}

}  // namespace
