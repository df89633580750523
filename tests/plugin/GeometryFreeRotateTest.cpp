// LMX_FreeRotateByShear: exact quarters, the size of the result, the direction of the turn, and
// sizes that are refused.

#include <climits>
#include <cmath>
#include <limits>
#include <numeric>

#include "GeometryFixture.h"

namespace geometry {
namespace {

class GeometryFreeRotate : public Geometry {
 protected:
  Called Rotate(const Value& source, double degrees, Colour frame = kClearFrame, int yield = 0) {
    return Run("FreeRotateByShear", {source, degrees, frame, yield});
  }
  void ExpectSize(double degrees, int sourceWidth, int sourceHeight, int width, int height) {
    SCOPED_TRACE(testing::Message() << sourceWidth << " x " << sourceHeight << " at " << degrees);
    const Called called = Rotate(Numbered(sourceWidth, sourceHeight), degrees);
    ASSERT_FALSE(called.result.IsNil());
    EXPECT_EQ(std::pair(called.result.Width(), called.result.Height()), std::pair(width, height));
  }
};

INSTANTIATE_FOR_FORMS(GeometryFreeRotate);

TEST_P(GeometryFreeRotate, QuartersAreExact) {
  const Picture source = Numbered(3, 2);
  ExpectPixels(Rotate(source, 0.0), 3, 2, Numbers({1, 2, 3, 4, 5, 6}));
  ExpectPixels(Rotate(source, -0.0), 3, 2, Numbers({1, 2, 3, 4, 5, 6}));
  ExpectPixels(Rotate(source, 90.0), 2, 3, Numbers({4, 1, 5, 2, 6, 3}));
  ExpectPixels(Rotate(source, 180.0), 3, 2, Numbers({6, 5, 4, 3, 2, 1}));
  ExpectPixels(Rotate(source, 270.0), 2, 3, Numbers({3, 6, 2, 5, 1, 4}));
}

TEST_P(GeometryFreeRotate, EveryPassRunsAtZeroToo) {
  // A turn and three shears; the last one is stored in the result.
  const Called called =
      Rotate(GetParam().source == kContext ? StoredSource(1, 1, {0x80640000}) : StoredSource(1, 1, {0x3FC70000}), 0.0);
  // A context keeps red 99, 98, 97, 96 of alpha 128, or 100, 99, 98, 97 of alpha 129; a buffer
  // loses nothing more.
  const std::uint32_t context = GetParam().source == kContext ? 0x80600000 : 0x81610000;
  ExpectStored(called, 1, 1, {ByForm(context, 0x3FC70000)});
  EXPECT_EQ(host_.Calls(host::Service::NewInstance), 4);
}

TEST_P(GeometryFreeRotate, TheResultIsTheBoxRoundTheTurnedRectangle) {
  for (const double degrees : {30.0, 150.0, 210.0, 330.0}) ExpectSize(degrees, 10, 4, 11, 9);  // 10.66 x 8.46
  for (const double degrees : {60.0, 120.0, 300.0}) ExpectSize(degrees, 10, 4, 9, 11);
  for (const double degrees : {44.999, 45.0}) ExpectSize(degrees, 10, 4, 10, 10);  // 9.90 x 9.90
  for (const double degrees : {0.1, 359.9}) ExpectSize(degrees, 10, 4, 11, 5);     // 10.007 x 4.017
  for (const double degrees : {89.9, 90.1}) ExpectSize(degrees, 10, 4, 5, 11);
  // The pi of the size is a little short: of 10.000000007 x 4.000000017 the width is measured round
  // a full turn of 6.28318, which takes more than that away.
  ExpectSize(1e-7, 10, 4, 10, 5);
}

TEST_P(GeometryFreeRotate, SizesThatTheLastBitDecides) {
  // Some C libraries err in the last bit, and would give each of these another size.
  const struct {
    double degrees;
    int width, height, resultWidth, resultHeight;
  } kTurns[] = {{1e-300, 5, 67, 5, 67},
                {5e-324, 5, 67, 5, 67},
                {5e-324, 62, 9, 62, 9},
                {5e-324, 67, 23, 67, 24},
                {5e-324, 76, 17, 76, 17},
                {5e-324, 127, 17, 127, 17},
                {5e-324, 50, 47, 50, 48},
                {5e-324, 130, 19, 130, 20},
                {1e-323, 63, 110, 63, 110},
                {1e-323, 100, 94, 100, 95},
                {1.5e-323, 75, 52, 75, 52},
                {1.3449746190494519e-284, 76, 17, 76, 17},
                {4.8407398935616478e-122, 62, 9, 62, 9},
                {89.999999999999957, 21, 109, 110, 22},
                {89.999999999999986, 35, 82, 82, 36},
                {89.999999999999986, 36, 111, 111, 37},
                {89.999999999999986, 79, 90, 91, 80},
                {89.999999999999986, 83, 73, 74, 84},
                {std::nextafter(90.0, 360.0), 114, 35, 35, 115},
                {std::nextafter(90.0, 360.0), 65, 48, 48, 65},
                {std::nextafter(90.0, 360.0), 130, 96, 96, 130}};
  for (const auto& turn : kTurns) {
    ExpectSize(turn.degrees, turn.width, turn.height, turn.resultWidth, turn.resultHeight);
  }
}

TEST_P(GeometryFreeRotate, PositiveAnglesTurnClockwise) {
  Words halves;
  for (int i = 0; i < 31 * 31; ++i) halves.push_back(i % 31 < 15 ? 0xFFFF0000 : 0xFF0000FF);
  const Picture source = Source(31, 31, halves);
  // The new place of the red half, which is left of the centre at first.
  const struct {
    double degrees;
    int dx, dy;
  } kTurns[] = {{10, -10, -2}, {44.999, -7, -7}, {45, -7, -7}, {60, -5, -9}, {90, 0, -10},   {135, 7, -7},
                {180, 10, 0},  {225, 7, 7},      {270, 0, 10}, {315, -7, 7}, {314.9, -7, 7}, {359, -10, 0}};
  for (const auto& turn : kTurns) {
    SCOPED_TRACE(turn.degrees);
    const Called called = Rotate(source, turn.degrees);
    ASSERT_FALSE(called.result.IsNil());
    const int x = called.result.Width() / 2;
    const int y = called.result.Height() / 2;
    EXPECT_EQ(called.result.Stored(x + turn.dx, y + turn.dy), Stored(GetParam().result, 0xFFFF0000));
    EXPECT_EQ(called.result.Stored(x - turn.dx, y - turn.dy), Stored(GetParam().result, 0xFF0000FF));
  }
}

TEST_P(GeometryFreeRotate, TheAreaStaysTheSame) {
  const Picture source = Source(20, 30, Words(600, 0xFFFFFFFF));
  for (double degrees : {17.0, 30.0, 45.0, 80.0, 200.0, 333.3}) {
    const Called called = Rotate(source, degrees);
    ASSERT_FALSE(called.result.IsNil());
    double area = 0;
    for (std::uint32_t pixel : called.result.Straight()) area += (pixel >> 24) / 255.0;
    EXPECT_NEAR(area, 600, 12) << degrees;
  }
}

TEST_P(GeometryFreeRotate, TheFrameColourHasNoEffect) {
  const Picture source = Source(9, 9, Words(81, 0xFFFFFFFF));
  const Called clear = Rotate(source, 30, kClearFrame);
  ASSERT_FALSE(clear.result.IsNil());
  const int right = clear.result.Width() - 1;
  const int bottom = clear.result.Height() - 1;
  for (const auto& [x, y] : {std::pair(0, 0), std::pair(right, 0), std::pair(0, bottom), std::pair(right, bottom)}) {
    EXPECT_EQ(clear.result.Stored(x, y), Stored(GetParam().result, 0));
  }
  for (std::uint32_t frame : {0x00000000u, 0x00FF0000u, 0x80123456u, 0xFFFFFFFFu, 0x7F00FF00u}) {
    const Called called = Rotate(source, 30, Colour{frame});
    ASSERT_FALSE(called.result.IsNil());
    EXPECT_TRUE(called.result.SamePixels(clear.result)) << std::hex << frame;
  }
}

TEST_P(GeometryFreeRotate, EdgesFadeIntoClearBlack) {
  // Every colour of a white picture's edge equals its alpha, or is a little less by rounding, and
  // never more.
  const Called called = Rotate(Source(9, 9, Words(81, 0xFFFFFFFF)), 20);
  ASSERT_FALSE(called.result.IsNil());
  int between = 0;
  for (std::uint32_t word : called.result.StoredPixels()) {
    const std::uint32_t alpha = GetParam().result == kContext ? word >> 24 : 2 * (127 - (word >> 24)) + 1;
    const std::uint32_t red = word >> 16 & 0xFF;
    EXPECT_LE(red, alpha);
    if (red != 0 && red < 250) ++between;
  }
  EXPECT_GT(between, 20);
}

TEST_P(GeometryFreeRotate, NotANumberCountsAsZero) {
  ExpectPixels(Rotate(Numbered(3, 2), std::numeric_limits<double>::quiet_NaN()), 3, 2, Numbers({1, 2, 3, 4, 5, 6}));
}

TEST_P(GeometryFreeRotate, AnglesOutOfRangeAreRefused) {
  const double infinity = std::numeric_limits<double>::infinity();
  for (double degrees : {-0.0001, 360.0, -std::numeric_limits<double>::denorm_min(), 360.0001, 1e300, -1e300, infinity,
                         -infinity, -360.0, 720.0}) {
    ExpectRefused("FreeRotateByShear", {Numbered(2, 2), degrees, kClearFrame, 1}, 31);
    ExpectRefused("FreeRotateByShear", {nullptr, degrees, kClearFrame, 1}, 31);
    ExpectRefused("FreeRotateByShear", {Unusable(), degrees, kClearFrame, 1}, 31);
  }
  ExpectRefused("FreeRotateByShear", {nullptr, 0.0, kClearFrame, 1}, 2);
  EXPECT_EQ(Rotate(Numbered(2, 2), std::nextafter(360.0, 0.0)).code, 0);
}

TEST_P(GeometryFreeRotate, UnusablePicturesAreSilentlyNil) {
  ExpectFailure(Rotate(Unusable(), 30), 0);
  EXPECT_EQ(host_.Calls(host::Service::NewInstance), 0);
  for (int from = 1; from <= 4; ++from) {
    SCOPED_TRACE(from);
    MakeUnusable(from);
    ExpectFailure(Run("FreeRotateByShear", {Numbered(5, 5), 30.0, kClearFrame, 0}, 1), 0);
    EXPECT_EQ(host_.Calls(host::Service::NewInstance), from);
  }
}

TEST_P(GeometryFreeRotate, AResultWithoutPixelsIsReturnedUnpainted) {
  for (bool noData : {false, true}) {
    host_.newPictures.storage = kContext;
    host_.newPictures.change = [noData](int number, host::PictureShape& shape) {
      if (number == 4) (noData ? shape.defects.nilData : shape.defects.nilPixels) = true;
    };
    const Called called = Rotate(Numbered(5, 5), 30);
    EXPECT_EQ(called.code, 0);
    EXPECT_FALSE(called.result.IsNil());
  }
}

TEST_P(GeometryFreeRotate, EmptySourcesAreSilentlyNil) {
  for (const auto& [width, height] : {std::pair(0, 3), std::pair(3, 0), std::pair(0, 0)}) {
    for (double degrees : {0.0, 30.0, 90.0}) {
      ExpectFailure(Rotate(Picture({width, height, GetParam().source}), degrees, kClearFrame, 1), 0);
      EXPECT_EQ(host_.Calls(host::Service::NewInstance), 0);
    }
  }
}

TEST_P(GeometryFreeRotate, LinesThatTheSizesCannotHoldAreRefused) {
  const Words longest(32767, 0xFF010203);
  ExpectPixels(Rotate(Source(1, 32767, longest), 0.0), 1, 32767, longest);
  ExpectPixels(Rotate(Source(32767, 1, longest), 90.0), 1, 32767, longest);
  ExpectPixels(Rotate(Source(32767, 1, longest), 0.0), 32767, 1, longest);
  // A line of 32767 pixels cannot be displaced by even 1/65536. Rows are displaced by tan(d / 2),
  // columns by sin(d).
  const struct {
    int width, height;
    double degrees;
    bool fits;
  } kLines[] = {{32767, 1, 0.0017, true},  {32767, 1, 0.0018, false}, {1, 32767, 0.0008, true},
                {1, 32767, 0.0009, false}, {1, 32768, 0.0, false},    {32768, 1, 0.0, false},
                {32768, 1, 90.0, false},   {1, 32767, 10.0, false},   {32767, 1, 350.0, false},
                {1, 70000, 45.0, false}};
  for (const auto& line : kLines) {
    SCOPED_TRACE(testing::Message() << line.width << " x " << line.height << " at " << line.degrees);
    const Called called = Rotate(Picture({line.width, line.height, GetParam().source}), line.degrees);
    EXPECT_EQ(called.code, 0);
    EXPECT_EQ(called.result.IsNil(), !line.fits);
  }
}

}  // namespace
}  // namespace geometry
