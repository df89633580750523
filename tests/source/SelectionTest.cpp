// The rectangle of the colour methods, compared with its rules written out.
#include "LMX_Selection.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace {

constexpr std::int32_t kLowest = INT32_MIN;
constexpr std::int32_t kHighest = INT32_MAX;

// A picture of any size whose pixels are never read.
struct Sized {
  Sized(std::int32_t width, std::int32_t height) {
    picture.width = width;
    picture.height = height;
  }
  LMX_Picture picture;
};

std::int32_t WrappingSum(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

TEST(SelectionTest, ClampsBothEndsOfBothAxes) {
  const std::vector<std::int32_t> values = {kLowest, kLowest + 1, -1000, -8, -7, -6, -1,           0,       1, 5,
                                            6,       7,           8,     9,  13, 14, kHighest - 1, kHighest};
  for (const std::int32_t size : {0, 1, 2, 7}) {
    const Sized sized(size, size);
    for (const std::int32_t start : values) {
      for (const std::int32_t extent : values) {
        SCOPED_TRACE(testing::Message() << "size " << size << ", start " << start << ", extent " << extent);
        const std::int32_t first = std::min(std::max(start, 0), size - 1);
        const std::int32_t last = std::min(std::max(WrappingSum(start, extent), 0), size - 1);

        const Selection across(sized.picture, start, 0, extent, 0);
        EXPECT_EQ(across.x0, first);
        EXPECT_EQ(across.x1, last);
        EXPECT_EQ(across.IsValid(), first <= last);

        const Selection down(sized.picture, 0, start, 0, extent);
        EXPECT_EQ(down.y0, first);
        EXPECT_EQ(down.y1, last);
        EXPECT_EQ(down.IsValid(), first <= last);
        for (std::int32_t y = 0; y < size; ++y) EXPECT_EQ(down.HasRow(y), first <= y && y <= last);
      }
    }
  }
}

TEST(SelectionTest, IncludesItsFarEnds) {
  const Sized sized(10, 20);
  const Selection selection(sized.picture, 2, 3, 4, 5);
  EXPECT_EQ(selection.x0, 2);
  EXPECT_EQ(selection.x1, 6);
  EXPECT_EQ(selection.y0, 3);
  EXPECT_EQ(selection.y1, 8);
  EXPECT_EQ(selection.Width(), 5);
  EXPECT_EQ(selection.Count(), 30);
  EXPECT_FALSE(selection.IsEmpty());
}

TEST(SelectionTest, OfNoSizeHoldsOnePixel) {
  const Sized sized(10, 20);
  const Selection selection(sized.picture, 9, 19, 0, 0);
  EXPECT_TRUE(selection.IsValid());
  EXPECT_EQ(selection.Count(), 1);
  EXPECT_TRUE(selection.HasRow(19));
  EXPECT_FALSE(selection.HasRow(18));
}

TEST(SelectionTest, OfAPictureWithoutPixelsIsValidAndEmpty) {
  for (const auto& [width, height] : {std::pair(0, 5), std::pair(5, 0), std::pair(0, 0)}) {
    const Sized sized(width, height);
    const Selection selection(sized.picture, 0, 0, 3, 3);
    EXPECT_TRUE(selection.IsValid());
    EXPECT_TRUE(selection.IsEmpty());
  }
}

TEST(SelectionTest, CountsIn32Bits) {
  const Sized sized(65536, 65537);
  EXPECT_EQ(Selection(sized.picture, 0, 0, 65535, 32766).Count(), 65536 * 32767);
  EXPECT_EQ(Selection(sized.picture, 0, 0, 65535, 32767).Count(), kLowest);
  EXPECT_EQ(Selection(sized.picture, 0, 0, 65535, 65535).Count(), 0);
  EXPECT_EQ(Selection(sized.picture, 0, 0, 65535, 65536).Count(), 65536);
}

TEST(SelectionTest, MeansAreTruncated) {
  const Sized sized(3, 1);
  const Selection selection(sized.picture, 0, 0, 2, 0);
  ASSERT_EQ(selection.Count(), 3);
  EXPECT_EQ(selection.Mean(0), 0);
  EXPECT_EQ(selection.Mean(2), 0);
  EXPECT_EQ(selection.Mean(3), 1);
  EXPECT_EQ(selection.Mean(764), 254);
  EXPECT_EQ(selection.Mean(765), 255);
}

TEST(SelectionTest, MeansOfSumsThatWrappedAreSigned) {
  const Sized sized(3, 1);
  const Selection selection(sized.picture, 0, 0, 2, 0);
  EXPECT_EQ(selection.Mean(0x7FFFFFFF), kHighest / 3);
  EXPECT_EQ(selection.Mean(0x80000000), kLowest / 3);
  EXPECT_EQ(selection.Mean(0xFFFFFFFF), 0);
  EXPECT_EQ(selection.Mean(static_cast<std::uint32_t>(-3)), -1);
}

TEST(SelectionTest, MeansOfCountsThatWrappedAreDefined) {
  const Sized sized(65536, 65537);
  EXPECT_EQ(Selection(sized.picture, 0, 0, 65535, 65535).Mean(12345), 0) << "a count of 0";
  const Selection negative(sized.picture, 0, 0, 65535, 65534);
  ASSERT_EQ(negative.Count(), -65536);
  EXPECT_EQ(negative.Mean(65536 * 7), -7);
  EXPECT_EQ(negative.Mean(0x80000000), 32768);
}

}  // namespace
