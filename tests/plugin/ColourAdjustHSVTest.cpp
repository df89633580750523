// LMX_AdjustHSV and LMX_AdjustHSV_InPlace: pixels worked out by hand. (Hue h in 1/1024 of 60
// degrees, saturation s of 1024, value v; p = (1024 - s) v / 1024, t = (1048576 - (1024 - f) s)
// v / 1048576 with the fraction f of the sector.)
#include <limits>

#include "ColourFixture.h"

namespace {

using namespace colour;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr Storage kContext = Storage::BitmapContext;
constexpr Storage kBuffer = Storage::Buffer;

class ColourAdjustHSV : public ColourTest {
 protected:
  // An opaque colour, which both storage forms must treat alike.
  std::uint32_t Adjust(std::uint32_t colour, const HSVFactors& by) {
    const std::uint32_t inBuffer = AdjustHSV(kBuffer, colour, by);
    EXPECT_EQ(AdjustHSV(kContext, 0xFF000000 | colour, by), 0xFF000000 | inBuffer);
    return inBuffer;
  }
};

// --------------------------------------------------------------------------------------------- hue

TEST_F(ColourAdjustHSV, SixtyDegreesTurnRedIntoYellow) {
  EXPECT_EQ(Adjust(0xFF0000, {60, 1, 1}), 0xFFFF00u);
}

TEST_F(ColourAdjustHSV, HueGoesRoundBothWays) {
  EXPECT_EQ(Adjust(0xFF0000, {120, 1, 1}), 0x00FF00u);
  EXPECT_EQ(Adjust(0xFF0000, {-120, 1, 1}), 0x0000FFu);
  EXPECT_EQ(Adjust(0x0000FF, {180, 1, 1}), 0xFFFF00u);
  EXPECT_EQ(Adjust(0xFF00FF, {300, 1, 1}), 0x0000FFu);  // 5120 + 5120 - 6144 = 4096
  EXPECT_EQ(Adjust(0xFFFF00, {300, 1, 1}), 0xFF0000u);  // 1024 + 5120 = 6144, which is 0
  EXPECT_EQ(Adjust(0xFFFF00, {-60, 1, 1}), 0xFF0000u);  // exactly 0
}

// Yellow has hue 1024. A shift of 6143 gives 1023, where green is 254.
TEST_F(ColourAdjustHSV, AlmostAFullTurnForwardsIsOneUnitBack) {
  EXPECT_EQ(Adjust(0xFFFF00, {359.99, 1, 1}), 0xFFFE00u);
}

TEST_F(ColourAdjustHSV, AlmostAFullTurnBackwardsIsRoundedDownToAFullTurn) {
  EXPECT_EQ(Adjust(0xFFFF00, {-359.99, 1, 1}), 0xFFFF00u);
}

TEST_F(ColourAdjustHSV, ShiftIsRoundedDown) {
  EXPECT_EQ(Adjust(0xFFFF00, {-0.01, 1, 1}), 0xFFFE00u);  // -1 unit
  // 0.85 units are none: h 1019 gives green 253.8, where 1020 would give 254.005.
  EXPECT_EQ(Adjust(0xFFFE00, {0.05, 1, 1}), 0xFFFD00u);
}

// -------------------------------------------------------------------------------------- saturation

TEST_F(ColourAdjustHSV, SaturationFactorBelowOneGivesGreyOfTheValue) {
  EXPECT_EQ(Adjust(0xC86432, {0, 0.9, 1}), 0xC8C8C8u);
  EXPECT_EQ(Adjust(0xC86432, {77, 0, 1}), 0xC8C8C8u);
  EXPECT_EQ(Adjust(0xC86432, {0, 0.9, 2}), 0xFFFFFFu);
}

// h 512, s 512: doubled and cut to 1023; p = 200 / 1024, t = (1048576 - 512 x 1023) x 200 / 1048576
// = 100.1
TEST_F(ColourAdjustHSV, SaturationFactorIsCutToAWholeNumber) {
  EXPECT_EQ(Adjust(0xC89664, {0, 2, 1}), 0xC86400u);
  EXPECT_EQ(Adjust(0xC89664, {0, 2.5, 1}), 0xC86400u);
  EXPECT_EQ(Adjust(0xC89664, {0, 1.9, 1}), Adjust(0xC89664, {0, 1, 1}));
}

// (255, 128, 0) has h 514, s 1024. With s 1023 its green is 128.1, with 1024 it would be 127.998.
TEST_F(ColourAdjustHSV, SaturationEndsAtOneBelowTheFullScale) {
  EXPECT_EQ(Adjust(0xFF8000, {0, 1, 1}), 0xFF8000u);
}

TEST_F(ColourAdjustHSV, GreatestFactorsStayInRange) {
  EXPECT_EQ(Adjust(0x010000, {0, 999.999, 999.999}), 0xFF0000u);
  EXPECT_EQ(Adjust(0xFF8000, {0, 999.999, 999.999}), 0xFF8000u);
  EXPECT_EQ(Adjust(0x010101, {0, 999, 254.9}), 0xFEFEFEu);
}

// -------------------------------------------------------------------------------------- brightness

TEST_F(ColourAdjustHSV, BrightnessFactorBelowOneGivesBlack) {
  EXPECT_EQ(Adjust(0xC86432, {0, 1, 0.99}), 0x000000u);
  EXPECT_EQ(Adjust(0xFFFFFF, {0, 1, 0}), 0x000000u);
}

// (100, 50, 25): h 341, s 768, v 200: p = 256 x 200 / 1024 = 50,
// t = (1048576 - 683 x 768) x 200 / 1048576 = 99.95
TEST_F(ColourAdjustHSV, BrightnessTwoDoublesTheValue) {
  EXPECT_EQ(Adjust(0x643219, {0, 1, 2}), 0xC86332u);
  EXPECT_EQ(Adjust(0x404040, {0, 1, 2.9}), 0x808080u);
}

TEST_F(ColourAdjustHSV, BrightnessEndsAt255) {
  EXPECT_EQ(Adjust(0x808080, {0, 1, 2}), 0xFFFFFFu);
  EXPECT_EQ(Adjust(0xFF0000, {0, 1, 2}), 0xFF0000u);
}

// (10, 9, 7): h 682, s 307: t = (1048576 - 342 x 307) x 10 / 1048576 = 8.9987
TEST_F(ColourAdjustHSV, FactorsOfOneMayLowerAChannel) {
  EXPECT_EQ(Adjust(0x0A0907, {0, 1, 1}), 0x0A0807u);
}

// ------------------------------------------------------------------------------------------- alpha

TEST_F(ColourAdjustHSV, AlphaIsKept) {
  EXPECT_EQ(AdjustHSV(kBuffer, 0x40FF0000, {60, 1, 1}), 0x40FFFF00u);
  EXPECT_EQ(AdjustHSV(kBuffer, 0x40FF0000, {0, 1, 0}), 0x40000000u);
  // red 100 x 255 / 128 = 199, turned to green, 199 x 128 / 255 = 99.9
  EXPECT_EQ(AdjustHSV(kContext, 0x80640000, {120, 1, 1}), 0x80006300u);
  EXPECT_EQ(AdjustHSV(kContext, 0x80640000, {0, 1, 0}), 0x80000000u);
}

TEST_F(ColourAdjustHSV, ClearPixelsStayClear) {
  EXPECT_EQ(AdjustHSV(kBuffer, 0x7FFF0000, {60, 1, 1}), 0x7FFFFF00u);
  EXPECT_EQ(AdjustHSV(kContext, 0x00000000, {60, 999, 999}), 0x00000000u);
  EXPECT_EQ(AdjustHSV(kContext, 0x00FF0000, {60, 999, 999}), 0x00000000u);
}

// --------------------------------------------------------------------------------------------- NaN

TEST_F(ColourAdjustHSV, NaNFactorActsAsZero) {
  EXPECT_EQ(Adjust(0xC86432, {0, kNaN, 1}), 0xC8C8C8u);
  EXPECT_EQ(Adjust(0xC86432, {0, 1, kNaN}), 0x000000u);
}

TEST_F(ColourAdjustHSV, NaNHueBlackensWhatKeepsASaturation) {
  EXPECT_EQ(Adjust(0xC86432, {kNaN, 1, 1}), 0x000000u);
  EXPECT_EQ(Adjust(0x808080, {kNaN, 1, 1}), 0x808080u);
  EXPECT_EQ(Adjust(0xC86432, {kNaN, 0.5, 1}), 0xC8C8C8u);
  EXPECT_EQ(AdjustHSV(kBuffer, 0x40FF0000, {kNaN, 1, 1}), 0x40000000u);
  EXPECT_EQ(Adjust(0x00FF00, {-kNaN, 1, 1}), 0x000000u);
}

// --------------------------------------------------------------------------- outside the selection

const Words kHalfTransparent = {0x80640000, 0x80640000, 0x80640000, 0x80640000};

TEST_F(ColourAdjustHSV, PixelsOutsideTheSelectionPassBothConversions) {
  const std::string method = "AdjustHSV";
  host_.newPictures.storage = kContext;
  EXPECT_EQ(Copy(method, HSVArguments(MakePicture(kContext, 2, kHalfTransparent), {0, 0, 0, 0}, {0, 1, 0})),
            (Words{0x80000000, 0x80630000, 0x80630000, 0x80630000}));
  host_.newPictures.storage = kBuffer;
  EXPECT_EQ(Copy(method, HSVArguments(MakePicture(kBuffer, 2, {0x80112233, 0xFF112233}), {0, 0, 0, 0}, {0, 1, 1})),
            (Words{0x00112233, 0x7F112233}));
}

TEST_F(ColourAdjustHSV, InPlacePassesEveryPixelThroughBothConversions) {
  const std::string method = "AdjustHSV_InPlace";
  EXPECT_EQ(InPlace(method, HSVArguments(MakePicture(kContext, 2, kHalfTransparent), {0, 0, 0, 0}, {0, 1, 0})),
            (Words{0x80000000, 0x80630000, 0x80630000, 0x80630000}));
}

TEST_F(ColourAdjustHSV, StorageFormsOfSourceAndResultMayDiffer) {
  host_.newPictures.storage = kBuffer;
  EXPECT_EQ(
      Copy("AdjustHSV", HSVArguments(MakePicture(kContext, 2, {0x80640000, 0x80640000}), {0, 0, 0, 0}, {120, 1, 1})),
      (Words{0x3F00C700, 0x3FC70000}));
  host_.newPictures.storage = kContext;
  EXPECT_EQ(
      Copy("AdjustHSV", HSVArguments(MakePicture(kBuffer, 2, {0x40FF0000, 0x40FF0000}), {0, 0, 0, 0}, {120, 1, 1})),
      (Words{0x7F007F00, 0x7F7F0000}));
}

TEST_F(ColourAdjustHSV, CopyLeavesTheSourceAlone) {
  const Picture source = MakePicture(kContext, 2, kHalfTransparent);
  const Called called = Run("AdjustHSV", HSVArguments(source, kEverything, {60, 2, 2}));
  EXPECT_EQ(source.StoredPixels(), kHalfTransparent);
  EXPECT_NE(called.result, source);
}

// ---------------------------------------------------------------------------------------- negative

TEST_F(ColourAdjustHSV, NegativeOfABufferIsInvertedAndClear) {
  EXPECT_EQ(AdjustHSV(kBuffer, 0x00FF0000, {60, 1, 1}, true), 0x7F0000FFu);
  EXPECT_EQ(AdjustHSV(kBuffer, 0x40102030, {0, 0, 0}, true), 0x7FFFFFFFu);
  EXPECT_EQ(AdjustHSV(kBuffer, 0x7F808080, {0, 1, 1}, true), 0x7F7F7F7Fu);
}

TEST_F(ColourAdjustHSV, NegativeReachesOutsideTheSelection) {
  const Words words = {0x00FF0000, 0x00FF0000, 0x00123456, 0x40FFFFFF};
  const Words expected = {0x7F0000FF, 0x7F00FFFF, 0x7FEDCBA9, 0x7F000000};
  host_.newPictures.storage = kBuffer;
  EXPECT_EQ(Copy("AdjustHSV", HSVArguments(MakePicture(kBuffer, 2, words), {0, 0, 0, 0}, {60, 1, 1}, true)), expected);
  EXPECT_EQ(InPlace("AdjustHSV_InPlace", HSVArguments(MakePicture(kBuffer, 2, words), {0, 0, 0, 0}, {60, 1, 1}, true)),
            expected);
}

TEST_F(ColourAdjustHSV, NegativeOfABitmapContextIsWhollyZero) {
  const Words words = {0xFFFF0000, 0xFF000000, 0x80640000, 0x00FFFFFF};
  host_.newPictures.storage = kContext;
  EXPECT_EQ(Copy("AdjustHSV", HSVArguments(MakePicture(kContext, 2, words), {0, 0, 0, 0}, {60, 1, 1}, true)),
            (Words{0, 0, 0, 0}));
  EXPECT_EQ(InPlace("AdjustHSV_InPlace", HSVArguments(MakePicture(kContext, 2, words), {1, 1, 0, 0}, {0, 1, 1}, true)),
            (Words{0, 0, 0, 0}));
}

TEST_F(ColourAdjustHSV, NegativeFollowsTheResultsStorageForm) {
  host_.newPictures.storage = kBuffer;
  EXPECT_EQ(Copy("AdjustHSV", HSVArguments(MakePicture(kContext, 1, {0xFF123456}), {0, 0, 0, 0}, {0, 0, 0}, true)),
            (Words{0x7FFFFFFF}));
  EXPECT_EQ(Copy("AdjustHSV",
                 HSVArguments(MakePicture(kContext, 2, {0xFF123456, 0x00FFFFFF}), {9, 0, 0, 0}, {0, 1, 1}, true)),
            (Words{0x7FEDCBA9, 0x7FFFFFFF}));
  host_.newPictures.storage = kContext;
  EXPECT_EQ(Copy("AdjustHSV", HSVArguments(MakePicture(kBuffer, 1, {0x00123456}), {0, 0, 0, 0}, {0, 1, 1}, true)),
            (Words{0}));
}

TEST_F(ColourAdjustHSV, AnyByteButZeroIsNegative) {
  for (const int byte : {1, 2, 3, 127, 128, 254, 255}) {
    SCOPED_TRACE(byte);
    const host::BooleanByte negative = {static_cast<std::uint8_t>(byte)};
    EXPECT_EQ(AdjustHSV(kBuffer, 0x00FF0000, {60, 1, 1}, negative), 0x7F0000FFu);
    EXPECT_EQ(AdjustHSV(kContext, 0xFFFF0000, {60, 1, 1}, negative), 0u);
  }
  EXPECT_EQ(AdjustHSV(kBuffer, 0x00FF0000, {60, 1, 1}, host::BooleanByte{0}), 0x00FFFF00u);
}

// ------------------------------------------------------------------------------------------- depth

Picture OfDepth(int bits) {
  host::PictureShape shape = {3, 2, kContext};
  shape.defects.bitsPerPixel = bits;
  return Picture(shape);
}

TEST_F(ColourAdjustHSV, SourceOfAnotherDepthReadsAsClearBlack) {
  for (const int bits : {16, 64}) {
    host_.newPictures.storage = kContext;
    EXPECT_EQ(Copy("AdjustHSV", HSVArguments(OfDepth(bits), kEverything, {60, 1, 1})), Words(6, 0));
    host_.newPictures.storage = kBuffer;
    EXPECT_EQ(Copy("AdjustHSV", HSVArguments(OfDepth(bits), kEverything, {60, 1, 1})), Words(6, 0x7F000000));
    EXPECT_EQ(Copy("AdjustHSV", HSVArguments(OfDepth(bits), kEverything, {60, 1, 1}, true)), Words(6, 0x7FFFFFFF));
  }
}

TEST_F(ColourAdjustHSV, PictureOfAnotherDepthIsNotWritten) {
  for (const bool negative : {false, true}) {
    const Picture picture = OfDepth(16);
    const host::Snapshot before = picture.TakeSnapshot();
    EXPECT_EQ(Run("AdjustHSV_InPlace", HSVArguments(picture, kEverything, {60, 1, 1}, negative)).code, 0);
    EXPECT_TRUE(picture.TakeSnapshot() == before) << negative;

    host_.newPictures.change = [](int, host::PictureShape& shape) { shape.defects.bitsPerPixel = 16; };
    const Called called =
        Run("AdjustHSV", HSVArguments(MakePlain(kContext, 3, 2, 0xFFFF0000), kEverything, {60, 1, 1}, negative));
    EXPECT_EQ(called.code, 0);
    ASSERT_TRUE(called.result);
    EXPECT_TRUE(called.result.TakeSnapshot() == before) << negative;
    host_.newPictures.change = nullptr;
  }
}

}  // namespace
