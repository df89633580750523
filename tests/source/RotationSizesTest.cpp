// The largest pictures that free rotation accepts. docs/methods.md has the rule and these figures.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "LinkedTest.h"
#include "TPQ_FreeRotateByShear.h"

namespace {

class RotationSizes : public LinkedTest {
 protected:
  // Whether the plug-in starts to rotate a picture of that size. It then asks for a temporary
  // picture, which this host refuses. So no pixel is read, and all rows can share one row's memory.
  bool IsTaken(int width, int height, double degrees) {
    host::PictureShape shape = Context(width, height);
    shape.layout.sparse = true;
    shape.defects.bytesPerRow = 0;
    const host::Picture source(shape);
    host_.ResetCounts();
    host_.FailAt(host::Service::NewInstance, 1);
    EXPECT_EQ(PrivFreeRotateByShear_Frame_NonVector(source.Handle(), degrees, 0, 0), nullptr);
    return host_.Calls(host::Service::NewInstance) > 0;
  }
};

TEST_F(RotationSizes, LargestSquares) {
  const struct {
    double degrees;
    int side;
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

// The rule in real numbers. Steps are truncated to 1/65536 and pi has six digits, so the rule can
// be wrong by one pixel. The tested sides keep a distance of two from the limit.
TEST_F(RotationSizes, BothShearedSidesDecide) {
  constexpr double kBound = 32767;
  int taken = 0, refused = 0;
  for (double degrees = 0.5; degrees < 360; degrees += 7.25) {
    const double quarters = std::floor((degrees + 45) / 90);
    const double rest = (degrees - 90 * quarters) * 3.14159265358979 / 180;
    for (int width = 1; width < 34000; width += 1987) {
      for (int height = 1; height < 34000; height += 2011) {
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
