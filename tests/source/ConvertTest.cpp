// Conversions between numbers at the limits of 32 bits.
#include "LMX_Convert.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace {

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

TEST(TruncatedToInt, CutsTowardsZero) {
  EXPECT_EQ(TruncatedToInt(0.0), 0);
  EXPECT_EQ(TruncatedToInt(-0.0), 0);
  EXPECT_EQ(TruncatedToInt(0.999999), 0);
  EXPECT_EQ(TruncatedToInt(-0.999999), 0);
  EXPECT_EQ(TruncatedToInt(1.9), 1);
  EXPECT_EQ(TruncatedToInt(-1.9), -1);
}

TEST(TruncatedToInt, ReachesBothEnds) {
  EXPECT_EQ(TruncatedToInt(2147483646.0), kHighest - 1);
  EXPECT_EQ(TruncatedToInt(2147483647.0), kHighest);
  EXPECT_EQ(TruncatedToInt(std::nextafter(2147483648.0, 0.0)), kHighest);
  EXPECT_EQ(TruncatedToInt(-2147483647.5), kLowest + 1);
  EXPECT_EQ(TruncatedToInt(-2147483648.0), kLowest);
  EXPECT_EQ(TruncatedToInt(std::nextafter(-2147483649.0, 0.0)), kLowest);
}

TEST(TruncatedToInt, GivesTheLowestForAllElse) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(TruncatedToInt(2147483648.0), kLowest);
  EXPECT_EQ(TruncatedToInt(4294967296.0), kLowest);
  EXPECT_EQ(TruncatedToInt(-2147483649.0), kLowest);
  EXPECT_EQ(TruncatedToInt(1e308), kLowest);
  EXPECT_EQ(TruncatedToInt(-1e308), kLowest);
  EXPECT_EQ(TruncatedToInt(kInfinity), kLowest);
  EXPECT_EQ(TruncatedToInt(-kInfinity), kLowest);
  EXPECT_EQ(TruncatedToInt(std::nan("")), kLowest);
  EXPECT_EQ(TruncatedToInt(-std::nan("")), kLowest);
}

TEST(WrappedToInt, KeepsWhatFits) {
  for (const std::int32_t value : {0, 1, -1, 65536, kLowest, kHighest}) EXPECT_EQ(WrappedToInt(value), value);
}

TEST(WrappedToInt, KeepsTheLowBits) {
  EXPECT_EQ(WrappedToInt(std::int64_t{kHighest} + 1), kLowest);
  EXPECT_EQ(WrappedToInt(std::int64_t{kLowest} - 1), kHighest);
  EXPECT_EQ(WrappedToInt(std::int64_t{1} << 32), 0);
  EXPECT_EQ(WrappedToInt(-(std::int64_t{1} << 32) - 5), -5);
  EXPECT_EQ(WrappedToInt(std::numeric_limits<std::int64_t>::max()), -1);
  EXPECT_EQ(WrappedToInt(std::numeric_limits<std::int64_t>::min()), 0);
}

TEST(FitsInt, EndsAtTheBounds) {
  EXPECT_TRUE(FitsInt(0));
  EXPECT_TRUE(FitsInt(kHighest));
  EXPECT_FALSE(FitsInt(std::int64_t{kHighest} + 1));
  EXPECT_TRUE(FitsInt(kLowest));
  EXPECT_FALSE(FitsInt(std::int64_t{kLowest} - 1));
  EXPECT_FALSE(FitsInt(std::numeric_limits<std::int64_t>::max()));
  EXPECT_FALSE(FitsInt(std::numeric_limits<std::int64_t>::min()));
}

}  // namespace
