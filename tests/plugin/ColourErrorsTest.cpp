// The codes of the colour methods and their order; a failing call changes nothing.
#include <climits>
#include <limits>

#include "ColourFixture.h"

namespace {

using namespace colour;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr Area kInvalid = {3, 0, -1, 0};

enum class Trouble { None, Nil, Unlockable };

class ColourErrors : public ColourTest {
 protected:
  static Picture Source(Trouble trouble) {
    if (trouble == Trouble::Nil) return {};
    host::PictureShape shape = {5, 4, kContext};
    shape.defects.nilData = trouble == Trouble::Unlockable;
    Picture picture(shape);
    picture.Fill(0x80123456);
    return picture;
  }

  // A call that must fail: no result, no yield, and every picture and value as it was.
  int CodeOf(const std::string& method, const std::vector<Value>& arguments) {
    const Picture source = arguments[0].AsPicture();
    const host::Snapshot before = source ? source.TakeSnapshot() : host::Snapshot();
    const Called called = Run(method, arguments);
    EXPECT_TRUE(called.result.IsNil()) << method;
    EXPECT_EQ(called.yields, 0) << method;
    EXPECT_EQ(called.arguments, arguments) << method;
    const bool untouched = !source || source.TakeSnapshot() == before;
    EXPECT_TRUE(untouched) << method;
    return called.code;
  }
  int CopyCode(const Picture& source, const Area& area, const Adjustment& by) {
    return CodeOf(by.method, Arguments(source, area, by.arguments, 1));
  }
  int InPlaceCode(const Picture& source, const Area& area, const Adjustment& by) {
    return CodeOf(by.method + "_InPlace", Arguments(source, area, by.arguments, 1));
  }
  // The code of both forms, which must agree.
  int Code(Trouble trouble, const Area& area, const Adjustment& by) {
    const int code = CopyCode(Source(trouble), area, by);
    EXPECT_EQ(InPlaceCode(Source(trouble), area, by), code);
    return code;
  }
  void ExpectSuccess(const Adjustment& by) {
    EXPECT_EQ(RunCopy(Source(Trouble::None), kEverything, by).code, 0);
    EXPECT_EQ(RunInPlace(Source(Trouble::None), kEverything, by).code, 0);
  }
  // The code of both averages, which must agree.
  int AverageCode(const Picture& source, const Area& area) {
    const int code = CodeOf("GetAverageHSV", Arguments(source, area, {12.5, 12.5, 12.5}, 1));
    EXPECT_EQ(CodeOf("GetAverageRGB", Arguments(source, area, {1234, 1234, 1234}, 1)), code);
    return code;
  }

  const Adjustment ordinary_[2] = {HSV(0, 1, 1, true), RGB(0, 0, 0)};
};

// All that can be wrong is wrong; then one thing after the other is right.
TEST_F(ColourErrors, OfAdjustmentsComeInOrder) {
  const std::pair<int, Adjustment> wrong[] = {
      {43, HSV(360, -1, 1000)}, {44, HSV(0, -1, 1000)}, {45, HSV(0, 1, 1000)},
      {40, RGB(256, 256, 256)}, {41, RGB(0, 256, 256)}, {42, RGB(0, 0, 256)},
  };
  for (const auto& [code, by] : wrong) {
    EXPECT_EQ(Code(Trouble::Nil, kInvalid, by), 2) << code;
    EXPECT_EQ(Code(Trouble::Unlockable, kInvalid, by), code);
  }
  for (const Adjustment& by : ordinary_) {
    EXPECT_EQ(Code(Trouble::Unlockable, kInvalid, by), 4) << by.method;
    host_.FailAt(Service::NewInstance, 1);
    EXPECT_EQ(Code(Trouble::None, kInvalid, by), 38) << by.method;
    EXPECT_EQ(CopyCode(Source(Trouble::None), kEverything, by), 6) << by.method;
    host_.ClearFaults();
  }
}

TEST_F(ColourErrors, HueEndsBeforeAFullTurn) {
  for (const double hue : {360.0, -360.0, 360.1, -1e300, kInfinity, -kInfinity}) {
    EXPECT_EQ(Code(Trouble::None, kEverything, HSV(hue, 1, 1)), 43) << hue;
  }
  for (const double hue : {359.999999, -359.999999, 0.0, -0.0, kNaN}) {
    SCOPED_TRACE(hue);
    ExpectSuccess(HSV(hue, 1, 1));
  }
}

TEST_F(ColourErrors, FactorsGoFromZeroToBelowThousand) {
  for (const double factor : {-0.000001, -1.0, 1000.0, 1e10, kInfinity, -kInfinity}) {
    EXPECT_EQ(Code(Trouble::None, kEverything, HSV(0, factor, 1)), 44) << factor;
    EXPECT_EQ(Code(Trouble::None, kEverything, HSV(0, 1, factor)), 45) << factor;
    EXPECT_EQ(Code(Trouble::None, kEverything, HSV(0, factor, factor)), 44) << factor;
  }
  for (const double factor : {0.0, -0.0, 0.5, 999.999999, kNaN}) {
    SCOPED_TRACE(factor);
    ExpectSuccess(HSV(0, factor, factor));
  }
}

TEST_F(ColourErrors, DeltasGoFromMinus255To255) {
  for (const int delta : {256, -256, 300, INT_MAX, INT_MIN}) {
    EXPECT_EQ(Code(Trouble::None, kEverything, RGB(delta, 0, 0)), 40) << delta;
    EXPECT_EQ(Code(Trouble::None, kEverything, RGB(0, delta, 0)), 41) << delta;
    EXPECT_EQ(Code(Trouble::None, kEverything, RGB(0, 0, delta)), 42) << delta;
    EXPECT_EQ(Code(Trouble::None, kEverything, RGB(delta, delta, delta)), 40) << delta;
    EXPECT_EQ(Code(Trouble::None, kEverything, RGB(0, delta, delta)), 41) << delta;
  }
  ExpectSuccess(RGB(255, 255, 255));
  ExpectSuccess(RGB(-255, -255, -255));
}

TEST_F(ColourErrors, OfTheAveragesComeInOrder) {
  EXPECT_EQ(AverageCode(Picture(), kInvalid), 2);
  EXPECT_EQ(AverageCode(Source(Trouble::Unlockable), kInvalid), 4);
  EXPECT_EQ(AverageCode(Source(Trouble::None), kInvalid), 38);
  EXPECT_EQ(AverageCode(Source(Trouble::None), {0, 3, 0, -1}), 38);
}

// ----------------------------------------------------------------------------------------- general

TEST_F(ColourErrors, OfAPictureOfUnusableTypeAreAsOfOneThatCannotBeLocked) {
  for (const std::uint32_t type : {0u, 7u, 9u, 11u, 0xFFFFFFFFu}) {
    SCOPED_TRACE(type);
    host::PictureShape shape = {5, 4, kBuffer};
    shape.defects.pictureType = type;
    for (const Adjustment& by : ordinary_) {
      EXPECT_EQ(CopyCode(Picture(shape), kInvalid, by), 4) << by.method;
      EXPECT_EQ(InPlaceCode(Picture(shape), kInvalid, by), 4) << by.method;
    }
    EXPECT_EQ(AverageCode(Picture(shape), kInvalid), 4);
  }
}

TEST_F(ColourErrors, OfArgumentsAreFoundBeforeTheSourceIsLocked) {
  for (const Adjustment& by :
       {HSV(360, 1, 1), HSV(0, -1, 1), HSV(0, 1, -1), RGB(256, 0, 0), RGB(0, -256, 0), RGB(0, 0, 256)}) {
    EXPECT_NE(CopyCode(Source(Trouble::None), kEverything, by), 0);
    EXPECT_EQ(host_.Calls(Service::LockPictureDescription), 0) << by.method;
    EXPECT_NE(InPlaceCode(Source(Trouble::None), kEverything, by), 0);
    EXPECT_EQ(host_.Calls(Service::LockPictureDescription), 0) << by.method;
  }
}

TEST_F(ColourErrors, OfSelectionsAreFoundBeforeAPictureIsMade) {
  for (const Adjustment& by : ordinary_) {
    EXPECT_EQ(CopyCode(Source(Trouble::None), kInvalid, by), 38);
    EXPECT_EQ(host_.Calls(Service::NewInstance), 0) << by.method;
  }
}

TEST_F(ColourErrors, AreClearedByTheNextSuccess) {
  for (const char* method :
       {"AdjustHSV", "AdjustHSV_InPlace", "GetAverageHSV", "AdjustRGB", "AdjustRGB_InPlace", "GetAverageRGB"}) {
    const bool average = method[0] == 'G', hsv = std::string(method).find("HSV") != std::string::npos;
    const Value nothing = hsv ? Value(0.0) : Value(0);
    const std::vector<Value> others = average ? std::vector<Value>(3, nothing) : ordinary_[hsv ? 0 : 1].arguments;
    EXPECT_EQ(AverageCode(Picture(), kEverything), 2);
    EXPECT_EQ(Run(method, Arguments(Source(Trouble::None), kEverything, others)).code, 0) << method;
  }
}

// ---------------------------------------------------------------------------------- without pixels

// A selection of such a picture is valid, at column or row -1.
TEST_F(ColourErrors, OfPicturesWithoutPixels) {
  host::PictureShape nilBuffer = {5, 4, kBuffer};
  nilBuffer.defects.nilData = true;  // locks as 0 x 0
  const host::PictureShape shapes[] = {{0, 4, kContext},  {5, 0, kContext}, {0, 0, kContext}, {0, 4, kBuffer},
                                       {5, 0, kBuffer},   {0, 0, kBuffer},  {-3, 4, kBuffer}, {5, -3, kBuffer},
                                       {-1, -1, kBuffer}, nilBuffer};
  for (const host::PictureShape& shape : shapes) {
    SCOPED_TRACE(testing::Message() << shape.width << " x " << shape.height);
    const Picture picture(shape);
    for (const Adjustment& by : {HSV(60, 1, 1, true), RGB(1, 2, 3)}) {
      EXPECT_EQ(CopyCode(picture, kFirstPixel, by), 6) << by.method;
      EXPECT_EQ(InPlaceCode(picture, kFirstPixel, by), 0) << by.method;
    }
    EXPECT_EQ(AverageCode(picture, kFirstPixel), 38);
  }
}

}  // namespace
