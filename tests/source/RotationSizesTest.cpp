// The largest pictures that free rotation takes; docs/methods.md has the rule and these figures.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

#include "FakeHost.h"
#include "TPQ_FreeRotateByShear.h"

namespace {

class RotationSizes : public testing::Test {
 protected:
  void SetUp() override {
    fake::StartPlugin();
    fake::TheHost().newPicture = nullptr;
  }

  // Whether the plug-in begins to rotate a picture of that size: it asks for a temporary picture,
  // which this host refuses. So no pixel is touched, and the one that there is stands for all.
  static bool IsTaken(std::int64_t width, std::int64_t height, double degrees) {
    std::uint32_t pixel = 0;
    CGContext context = {static_cast<std::size_t>(width), static_cast<std::size_t>(height), 32,
                         static_cast<std::size_t>(width) * 4, &pixel};
    REALpictureStruct picture = {"source", kPictureTypeBitmapContext, &context};
    fake::TheHost().calls.clear();
    EXPECT_EQ(PrivFreeRotateByShear_Frame_NonVector(&picture, degrees, 0, 0), nullptr);
    for (const std::string& call : fake::TheHost().calls) {
      if (call.rfind("CreateInstance", 0) == 0) return true;
    }
    return false;
  }
};

TEST_F(RotationSizes, LargestSquares) {
  const struct {
    double degrees;
    std::int64_t side;
  } kSquares[] = {{0, 32767}, {30, 20053}, {45, 16383}};
  for (const auto& square : kSquares) {
    for (const double quarter : {0.0, 90.0, 180.0, 270.0}) {
      const double degrees = square.degrees + quarter;
      EXPECT_TRUE(IsTaken(square.side, square.side, degrees)) << degrees;
      EXPECT_FALSE(IsTaken(square.side + 1, square.side + 1, degrees)) << degrees;
    }
  }
}

TEST_F(RotationSizes, EachSideAlone) {
  EXPECT_TRUE(IsTaken(32767, 10, 0));
  EXPECT_FALSE(IsTaken(32768, 10, 0));
  EXPECT_TRUE(IsTaken(10, 32767, 0));
  EXPECT_FALSE(IsTaken(10, 32768, 0));
}

// The rule in real numbers. Steps are cut to 1/65536 and pi has six digits, so that it is one pixel
// off at most; the sides that are asked about stay clear of the bound by two.
TEST_F(RotationSizes, BothShearedSidesDecide) {
  constexpr double kBound = 32767;
  int taken = 0, refused = 0;
  for (double degrees = 0.5; degrees < 360; degrees += 7.25) {
    const double quarters = std::floor((degrees + 45) / 90);
    const double rest = (degrees - 90 * quarters) * 3.14159265358979 / 180;
    for (std::int64_t width = 1; width < 34000; width += 1987) {
      for (std::int64_t height = 1; height < 34000; height += 2011) {
        const bool onItsSide = static_cast<int>(quarters) % 2 == 1;
        const double w = static_cast<double>(onItsSide ? height : width);
        const double h = static_cast<double>(onItsSide ? width : height);
        const double sheared = w + h * std::abs(std::tan(rest / 2));
        const double shearedTwice = h + sheared * std::abs(std::sin(rest));
        const double longer = std::max(sheared, shearedTwice);
        if (std::abs(longer - kBound) < 2) continue;
        EXPECT_EQ(IsTaken(width, height, degrees), longer < kBound) << width << " x " << height << " by " << degrees;
        ++(longer < kBound ? taken : refused);
      }
    }
  }
  EXPECT_GT(taken, 1000);
  EXPECT_GT(refused, 1000);
}

}  // namespace
