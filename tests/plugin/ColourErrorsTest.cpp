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
    host::PictureShape shape = {5, 4, Storage::BitmapContext};
    shape.defects.nilData = trouble == Trouble::Unlockable;
    Picture picture(shape);
    picture.Fill(0x80123456);
    return picture;
  }

  // The code of a call that must fail without a result and leave the source unchanged.
  int CodeOf(const std::string& method, const std::vector<Value>& arguments) {
    const Picture source = arguments[0].AsPicture();
    const host::Snapshot before = source ? source.TakeSnapshot() : host::Snapshot();
    const Called called = Run(method, arguments);
    EXPECT_TRUE(called.result.IsNil()) << method;
    EXPECT_EQ(called.yields, 0) << method;
    const bool untouched = !source || source.TakeSnapshot() == before;
    EXPECT_TRUE(untouched) << method;
    return called.code;
  }

  // The code of the copying and the in-place method, which must be the same.
  int HSVCode(Trouble trouble, const Area& area, const HSVFactors& by) {
    const int code = CodeOf("AdjustHSV", HSVArguments(Source(trouble), area, by, true, 1));
    EXPECT_EQ(CodeOf("AdjustHSV_InPlace", HSVArguments(Source(trouble), area, by, true, 1)), code);
    return code;
  }
  int RGBCode(Trouble trouble, const Area& area, const RGBDeltas& by) {
    const int code = CodeOf("AdjustRGB", RGBArguments(Source(trouble), area, by, 1));
    EXPECT_EQ(CodeOf("AdjustRGB_InPlace", RGBArguments(Source(trouble), area, by, 1)), code);
    return code;
  }

  // The code of a failing average, which must leave the caller's values unchanged.
  int AverageCode(const std::string& method, const Value& before, const Picture& source, const Area& area) {
    std::vector<Value> arguments = Arguments(source, area);
    arguments.insert(arguments.end(), {before, before, before, 1});
    const Called called = Run(method, arguments);
    for (std::size_t i = 5; i < 8; ++i) EXPECT_EQ(called.arguments[i], before) << method << " changed argument " << i;
    EXPECT_EQ(called.yields, 0) << method;
    return called.code;
  }
  int AverageCode(const Picture& source, const Area& area) {
    const int code = AverageCode("GetAverageHSV", 12.5, source, area);
    EXPECT_EQ(AverageCode("GetAverageRGB", 1234, source, area), code);
    return code;
  }
};

// ---------------------------------------------------------------------------------- HSV adjustment

// At first all arguments are wrong; then they become right one by one.
TEST_F(ColourErrors, OfTheHSVAdjustmentComeInOrder) {
  EXPECT_EQ(HSVCode(Trouble::Nil, kInvalid, {360, -1, 1000}), 2);
  EXPECT_EQ(HSVCode(Trouble::Unlockable, kInvalid, {360, -1, 1000}), 43);
  EXPECT_EQ(HSVCode(Trouble::Unlockable, kInvalid, {0, -1, 1000}), 44);
  EXPECT_EQ(HSVCode(Trouble::Unlockable, kInvalid, {0, 1, 1000}), 45);
  EXPECT_EQ(HSVCode(Trouble::Unlockable, kInvalid, {0, 1, 1}), 4);
  host_.FailAt(Service::NewInstance, 1);
  EXPECT_EQ(HSVCode(Trouble::None, kInvalid, {0, 1, 1}), 38);
  EXPECT_EQ(CodeOf("AdjustHSV", HSVArguments(Source(Trouble::None), kEverything, {0, 1, 1})), 6);
}

TEST_F(ColourErrors, HueEndsBeforeAFullTurn) {
  for (const double hue : {360.0, -360.0, 360.1, -1e300, kInfinity, -kInfinity}) {
    EXPECT_EQ(HSVCode(Trouble::None, kEverything, {hue, 1, 1}), 43) << hue;
  }
  for (const double hue : {359.999999, -359.999999, 0.0, -0.0, kNaN}) {
    EXPECT_EQ(Run("AdjustHSV", HSVArguments(Source(Trouble::None), kEverything, {hue, 1, 1})).code, 0) << hue;
    EXPECT_EQ(Run("AdjustHSV_InPlace", HSVArguments(Source(Trouble::None), kEverything, {hue, 1, 1})).code, 0) << hue;
  }
}

TEST_F(ColourErrors, FactorsGoFromZeroToBelowThousand) {
  for (const double factor : {-0.000001, -1.0, 1000.0, 1e10, kInfinity, -kInfinity}) {
    EXPECT_EQ(HSVCode(Trouble::None, kEverything, {0, factor, 1}), 44) << factor;
    EXPECT_EQ(HSVCode(Trouble::None, kEverything, {0, 1, factor}), 45) << factor;
    EXPECT_EQ(HSVCode(Trouble::None, kEverything, {0, factor, factor}), 44) << factor;
  }
  for (const double factor : {0.0, -0.0, 0.5, 999.999999, kNaN}) {
    EXPECT_EQ(Run("AdjustHSV", HSVArguments(Source(Trouble::None), kEverything, {0, factor, factor})).code, 0)
        << factor;
    EXPECT_EQ(Run("AdjustHSV_InPlace", HSVArguments(Source(Trouble::None), kEverything, {0, factor, factor})).code, 0);
  }
}

// ---------------------------------------------------------------------------------- RGB adjustment

TEST_F(ColourErrors, OfTheRGBAdjustmentComeInOrder) {
  EXPECT_EQ(RGBCode(Trouble::Nil, kInvalid, {256, 256, 256}), 2);
  EXPECT_EQ(RGBCode(Trouble::Unlockable, kInvalid, {256, 256, 256}), 40);
  EXPECT_EQ(RGBCode(Trouble::Unlockable, kInvalid, {0, 256, 256}), 41);
  EXPECT_EQ(RGBCode(Trouble::Unlockable, kInvalid, {0, 0, 256}), 42);
  EXPECT_EQ(RGBCode(Trouble::Unlockable, kInvalid, {0, 0, 0}), 4);
  host_.FailAt(Service::NewInstance, 1);
  EXPECT_EQ(RGBCode(Trouble::None, kInvalid, {0, 0, 0}), 38);
  EXPECT_EQ(CodeOf("AdjustRGB", RGBArguments(Source(Trouble::None), kEverything, {0, 0, 0})), 6);
}

TEST_F(ColourErrors, DeltasGoFromMinus255To255) {
  for (const int delta : {256, -256, 300, INT_MAX, INT_MIN}) {
    EXPECT_EQ(RGBCode(Trouble::None, kEverything, {delta, 0, 0}), 40) << delta;
    EXPECT_EQ(RGBCode(Trouble::None, kEverything, {0, delta, 0}), 41) << delta;
    EXPECT_EQ(RGBCode(Trouble::None, kEverything, {0, 0, delta}), 42) << delta;
    EXPECT_EQ(RGBCode(Trouble::None, kEverything, {delta, delta, delta}), 40) << delta;
    EXPECT_EQ(RGBCode(Trouble::None, kEverything, {0, delta, delta}), 41) << delta;
  }
  for (const int delta : {255, -255}) {
    EXPECT_EQ(Run("AdjustRGB", RGBArguments(Source(Trouble::None), kEverything, {delta, delta, delta})).code, 0);
    EXPECT_EQ(Run("AdjustRGB_InPlace", RGBArguments(Source(Trouble::None), kEverything, {delta, delta, delta})).code,
              0);
  }
}

// ---------------------------------------------------------------------------------------- averages

TEST_F(ColourErrors, OfTheAveragesComeInOrder) {
  EXPECT_EQ(AverageCode(Picture(), kInvalid), 2);
  EXPECT_EQ(AverageCode(Source(Trouble::Unlockable), kInvalid), 4);
  EXPECT_EQ(AverageCode(Source(Trouble::None), kInvalid), 38);
  EXPECT_EQ(AverageCode(Source(Trouble::None), {0, 3, 0, -1}), 38);
}

TEST_F(ColourErrors, OfAPictureOfUnusableTypeAreAsOfOneThatCannotBeLocked) {
  for (const std::uint32_t type : {0u, 7u, 9u, 11u, 0xFFFFFFFFu}) {
    host::PictureShape shape = {5, 4, Storage::Buffer};
    shape.defects.pictureType = type;
    EXPECT_EQ(CodeOf("AdjustHSV", HSVArguments(Picture(shape), kInvalid, {0, 1, 1})), 4) << type;
    EXPECT_EQ(CodeOf("AdjustHSV_InPlace", HSVArguments(Picture(shape), kInvalid, {0, 1, 1})), 4) << type;
    EXPECT_EQ(CodeOf("AdjustRGB", RGBArguments(Picture(shape), kInvalid, {0, 0, 0})), 4) << type;
    EXPECT_EQ(CodeOf("AdjustRGB_InPlace", RGBArguments(Picture(shape), kInvalid, {0, 0, 0})), 4) << type;
    EXPECT_EQ(AverageCode(Picture(shape), kInvalid), 4) << type;
  }
}

// ----------------------------------------------------------------------------------------- general

TEST_F(ColourErrors, OfArgumentsAreFoundBeforeTheSourceIsLocked) {
  for (const char* method : {"AdjustHSV", "AdjustHSV_InPlace"}) {
    for (const HSVFactors by : {HSVFactors{360, 1, 1}, HSVFactors{0, -1, 1}, HSVFactors{0, 1, -1}}) {
      EXPECT_NE(CodeOf(method, HSVArguments(Source(Trouble::None), kEverything, by)), 0);
      EXPECT_EQ(host_.Calls(Service::LockPictureDescription), 0) << method;
    }
  }
  for (const char* method : {"AdjustRGB", "AdjustRGB_InPlace"}) {
    for (const RGBDeltas by : {RGBDeltas{256, 0, 0}, RGBDeltas{0, -256, 0}, RGBDeltas{0, 0, 256}}) {
      EXPECT_NE(CodeOf(method, RGBArguments(Source(Trouble::None), kEverything, by)), 0);
      EXPECT_EQ(host_.Calls(Service::LockPictureDescription), 0) << method;
    }
  }
}

TEST_F(ColourErrors, OfSelectionsAreFoundBeforeAPictureIsMade) {
  EXPECT_EQ(CodeOf("AdjustHSV", HSVArguments(Source(Trouble::None), kInvalid, {0, 1, 1})), 38);
  EXPECT_EQ(host_.Calls(Service::NewInstance), 0);
  EXPECT_EQ(CodeOf("AdjustRGB", RGBArguments(Source(Trouble::None), kInvalid, {0, 0, 0})), 38);
  EXPECT_EQ(host_.Calls(Service::NewInstance), 0);
}

TEST_F(ColourErrors, AreClearedByTheNextSuccess) {
  const Picture source = Source(Trouble::None);
  const std::vector<std::pair<const char*, std::vector<Value>>> calls = {
      {"AdjustHSV", HSVArguments(source, kEverything, {0, 1, 1})},
      {"AdjustHSV_InPlace", HSVArguments(source, kEverything, {0, 1, 1})},
      {"GetAverageHSV", {source, 0, 0, 9, 9, 0.0, 0.0, 0.0, 0}},
      {"AdjustRGB", RGBArguments(source, kEverything, {1, 1, 1})},
      {"AdjustRGB_InPlace", RGBArguments(source, kEverything, {1, 1, 1})},
      {"GetAverageRGB", {source, 0, 0, 9, 9, 0, 0, 0, 0}},
  };
  for (const auto& [method, arguments] : calls) {
    EXPECT_EQ(AverageCode(Picture(), kEverything), 2);
    EXPECT_EQ(Run(method, arguments).code, 0) << method;
  }
}

// ---------------------------------------------------------------------------------- without pixels

// A selection of such a picture is valid, at column or row -1.
TEST_F(ColourErrors, OfPicturesWithoutPixels) {
  host::PictureShape nilBuffer = {5, 4, Storage::Buffer};
  nilBuffer.defects.nilData = true;  // locks as 0 x 0
  const host::PictureShape shapes[] = {{0, 4, Storage::BitmapContext}, {5, 0, Storage::BitmapContext},
                                       {0, 0, Storage::BitmapContext}, {0, 4, Storage::Buffer},
                                       {5, 0, Storage::Buffer},        {0, 0, Storage::Buffer},
                                       {-3, 4, Storage::Buffer},       {5, -3, Storage::Buffer},
                                       {-1, -1, Storage::Buffer},      nilBuffer};
  for (const host::PictureShape& shape : shapes) {
    SCOPED_TRACE(testing::Message() << shape.width << " x " << shape.height);
    const Picture picture(shape);
    const Area area = {0, 0, 0, 0};
    EXPECT_EQ(CodeOf("AdjustHSV", HSVArguments(picture, area, {60, 1, 1}, true, 1)), 6);
    EXPECT_EQ(CodeOf("AdjustRGB", RGBArguments(picture, area, {1, 2, 3}, 1)), 6);
    EXPECT_EQ(CodeOf("AdjustHSV_InPlace", HSVArguments(picture, area, {60, 1, 1}, true, 1)), 0);
    EXPECT_EQ(CodeOf("AdjustRGB_InPlace", RGBArguments(picture, area, {1, 2, 3}, 1)), 0);
    EXPECT_EQ(AverageCode(picture, area), 38);
  }
}

}  // namespace
