// LMX_AdjustHSV and LMX_AdjustHSV_InPlace: pixels worked out by hand. (Hue h in 1/1024 of 60
// degrees, saturation s of 1024, value v; p = (1024 - s) v / 1024, t = (1048576 - (1024 - f) s)
// v / 1048576 with the fraction f of the sector.)
#include <limits>

#include "ColourFixture.h"

namespace {

using namespace colour;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

class ColourAdjustHSV : public ColourTest {};

TEST_F(ColourAdjustHSV, HueGoesRoundBothWays) {
  const AdjustedColour rows[] = {
      {0xFF0000, HSV(60, 1, 1), 0xFFFF00},
      {0xFF0000, HSV(120, 1, 1), 0x00FF00},
      {0xFF0000, HSV(-120, 1, 1), 0x0000FF},
      {0x0000FF, HSV(180, 1, 1), 0xFFFF00},
      {0xFF00FF, HSV(300, 1, 1), 0x0000FF},  // 5120 + 5120 - 6144 = 4096
      {0xFFFF00, HSV(300, 1, 1), 0xFF0000},  // 1024 + 5120 = 6144, which is 0
      {0xFFFF00, HSV(-60, 1, 1), 0xFF0000},  // exactly 0
      // Yellow has hue 1024. A shift of 6143 gives 1023, where green is 254.
      {0xFFFF00, HSV(359.99, 1, 1), 0xFFFE00},
      // Rounded down: to a full turn, to -1 unit, and 0.85 units to none, where h 1019 gives green
      // 253.8 and 1020 would give 254.005.
      {0xFFFF00, HSV(-359.99, 1, 1), 0xFFFF00},
      {0xFFFF00, HSV(-0.01, 1, 1), 0xFFFE00},
      {0xFFFE00, HSV(0.05, 1, 1), 0xFFFD00},
  };
  for (const AdjustedColour& row : rows) Check(row);
}

TEST_F(ColourAdjustHSV, SaturationIsMultipliedByAWholeNumber) {
  const AdjustedColour rows[] = {
      // Below one: grey of the value.
      {0xC86432, HSV(0, 0.9, 1), 0xC8C8C8},
      {0xC86432, HSV(77, 0, 1), 0xC8C8C8},
      {0xC86432, HSV(0, 0.9, 2), 0xFFFFFF},
      // h 512, s 512: doubled and cut to 1023; p = 200 / 1024,
      // t = (1048576 - 512 x 1023) x 200 / 1048576 = 100.1
      {0xC89664, HSV(0, 2, 1), 0xC86400},
      {0xC89664, HSV(0, 2.5, 1), 0xC86400},
      {0xC89664, HSV(0, 1.9, 1), 0xC89664},
      {0xC89664, HSV(0, 1, 1), 0xC89664},
      // h 514, s 1024. With s 1023 its green is 128.1, with 1024 it would be 127.998.
      {0xFF8000, HSV(0, 1, 1), 0xFF8000},
      // The greatest factors stay in range.
      {0x010000, HSV(0, 999.999, 999.999), 0xFF0000},
      {0xFF8000, HSV(0, 999.999, 999.999), 0xFF8000},
      {0x010101, HSV(0, 999, 254.9), 0xFEFEFE},
  };
  for (const AdjustedColour& row : rows) Check(row);
}

TEST_F(ColourAdjustHSV, BrightnessIsMultipliedByAWholeNumber) {
  const AdjustedColour rows[] = {
      // Below one: black.
      {0xC86432, HSV(0, 1, 0.99), 0x000000},
      {0xFFFFFF, HSV(0, 1, 0), 0x000000},
      // (100, 50, 25): h 341, s 768, v 200: p = 256 x 200 / 1024 = 50,
      // t = (1048576 - 683 x 768) x 200 / 1048576 = 99.95
      {0x643219, HSV(0, 1, 2), 0xC86332},
      {0x404040, HSV(0, 1, 2.9), 0x808080},
      // It ends at 255.
      {0x808080, HSV(0, 1, 2), 0xFFFFFF},
      {0xFF0000, HSV(0, 1, 2), 0xFF0000},
      // Factors of one may lower a channel. (10, 9, 7): h 682, s 307:
      // t = (1048576 - 342 x 307) x 10 / 1048576 = 8.9987
      {0x0A0907, HSV(0, 1, 1), 0x0A0807},
  };
  for (const AdjustedColour& row : rows) Check(row);
}

TEST_F(ColourAdjustHSV, AlphaIsKept) {
  const Adjusted rows[] = {
      {kBuffer, 0x40FF0000, HSV(60, 1, 1), 0x40FFFF00},
      {kBuffer, 0x40FF0000, HSV(0, 1, 0), 0x40000000},
      // red 100 x 255 / 128 = 199, turned to green, 199 x 128 / 255 = 99.9
      {kContext, 0x80640000, HSV(120, 1, 1), 0x80006300},
      {kContext, 0x80640000, HSV(0, 1, 0), 0x80000000},
      {kBuffer, 0x7FFF0000, HSV(60, 1, 1), 0x7FFFFF00},
      {kContext, 0x00000000, HSV(60, 999, 999), 0x00000000},
      {kContext, 0x00FF0000, HSV(60, 999, 999), 0x00000000},
  };
  for (const Adjusted& row : rows) Check(row);
}

// A hue that is no number blackens what keeps a saturation.
TEST_F(ColourAdjustHSV, NaNFactorActsAsZero) {
  const AdjustedColour rows[] = {
      {0xC86432, HSV(0, kNaN, 1), 0xC8C8C8},   {0xC86432, HSV(0, 1, kNaN), 0x000000},
      {0xC86432, HSV(kNaN, 1, 1), 0x000000},   {0x808080, HSV(kNaN, 1, 1), 0x808080},
      {0xC86432, HSV(kNaN, 0.5, 1), 0xC8C8C8}, {0x00FF00, HSV(-kNaN, 1, 1), 0x000000},
  };
  for (const AdjustedColour& row : rows) Check(row);
  Check({kBuffer, 0x40FF0000, HSV(kNaN, 1, 1), 0x40000000});
}

// --------------------------------------------------------------------------- outside the selection

const Words kHalfTransparent = {0x80640000, 0x80640000, 0x80640000, 0x80640000};

TEST_F(ColourAdjustHSV, EveryPixelPassesBothConversions) {
  const Words expected = {0x80000000, 0x80630000, 0x80630000, 0x80630000};
  EXPECT_EQ(InPlace(MakePicture(kContext, 2, kHalfTransparent), kFirstPixel, HSV(0, 1, 0)), expected);
  host_.newPictures.storage = kContext;
  EXPECT_EQ(Copy(MakePicture(kContext, 2, kHalfTransparent), kFirstPixel, HSV(0, 1, 0)), expected);
  host_.newPictures.storage = kBuffer;
  EXPECT_EQ(Copy(MakePicture(kBuffer, 2, {0x80112233, 0xFF112233}), kFirstPixel, HSV(0, 1, 1)),
            (Words{0x00112233, 0x7F112233}));
}

TEST_F(ColourAdjustHSV, StorageFormsOfSourceAndResultMayDiffer) {
  host_.newPictures.storage = kBuffer;
  EXPECT_EQ(Copy(MakePicture(kContext, 2, {0x80640000, 0x80640000}), kFirstPixel, HSV(120, 1, 1)),
            (Words{0x3F00C700, 0x3FC70000}));
  host_.newPictures.storage = kContext;
  EXPECT_EQ(Copy(MakePicture(kBuffer, 2, {0x40FF0000, 0x40FF0000}), kFirstPixel, HSV(120, 1, 1)),
            (Words{0x7F007F00, 0x7F7F0000}));
}

TEST_F(ColourAdjustHSV, CopyLeavesTheSourceAlone) {
  const Picture source = MakePicture(kContext, 2, kHalfTransparent);
  const Called called = RunCopy(source, kEverything, HSV(60, 2, 2));
  EXPECT_EQ(source.StoredPixels(), kHalfTransparent);
  EXPECT_NE(called.result, source);
}

// ---------------------------------------------------------------------------------------- negative

TEST_F(ColourAdjustHSV, NegativeOfABufferIsInvertedAndClear) {
  Check({kBuffer, 0x00FF0000, HSV(60, 1, 1, true), 0x7F0000FF});
  Check({kBuffer, 0x40102030, HSV(0, 0, 0, true), 0x7FFFFFFF});
  Check({kBuffer, 0x7F808080, HSV(0, 1, 1, true), 0x7F7F7F7F});
}

TEST_F(ColourAdjustHSV, NegativeReachesOutsideTheSelection) {
  const Words words = {0x00FF0000, 0x00FF0000, 0x00123456, 0x40FFFFFF};
  const Words expected = {0x7F0000FF, 0x7F00FFFF, 0x7FEDCBA9, 0x7F000000};
  host_.newPictures.storage = kBuffer;
  EXPECT_EQ(Copy(MakePicture(kBuffer, 2, words), kFirstPixel, HSV(60, 1, 1, true)), expected);
  EXPECT_EQ(InPlace(MakePicture(kBuffer, 2, words), kFirstPixel, HSV(60, 1, 1, true)), expected);
}

TEST_F(ColourAdjustHSV, NegativeOfABitmapContextIsWhollyZero) {
  const Words words = {0xFFFF0000, 0xFF000000, 0x80640000, 0x00FFFFFF};
  host_.newPictures.storage = kContext;
  EXPECT_EQ(Copy(MakePicture(kContext, 2, words), kFirstPixel, HSV(60, 1, 1, true)), Words(4, 0));
  EXPECT_EQ(InPlace(MakePicture(kContext, 2, words), {1, 1, 0, 0}, HSV(0, 1, 1, true)), Words(4, 0));
}

TEST_F(ColourAdjustHSV, NegativeFollowsTheResultsStorageForm) {
  host_.newPictures.storage = kBuffer;
  EXPECT_EQ(Copy(MakePicture(kContext, 1, {0xFF123456}), kFirstPixel, HSV(0, 0, 0, true)), Words{0x7FFFFFFF});
  EXPECT_EQ(Copy(MakePicture(kContext, 2, {0xFF123456, 0x00FFFFFF}), {9, 0, 0, 0}, HSV(0, 1, 1, true)),
            (Words{0x7FEDCBA9, 0x7FFFFFFF}));
  host_.newPictures.storage = kContext;
  EXPECT_EQ(Copy(MakePicture(kBuffer, 1, {0x00123456}), kFirstPixel, HSV(0, 1, 1, true)), Words{0});
}

TEST_F(ColourAdjustHSV, AnyByteButZeroIsNegative) {
  for (const int byte : {1, 2, 3, 127, 128, 254, 255}) {
    const host::BooleanByte negative = {static_cast<std::uint8_t>(byte)};
    SCOPED_TRACE(byte);
    Check({kBuffer, 0x00FF0000, HSV(60, 1, 1, negative), 0x7F0000FF});
    Check({kContext, 0xFFFF0000, HSV(60, 1, 1, negative), 0});
  }
  Check({kBuffer, 0x00FF0000, HSV(60, 1, 1, host::BooleanByte{0}), 0x00FFFF00});
}

// ------------------------------------------------------------------------------------------- depth

TEST_F(ColourAdjustHSV, SourceOfAnotherDepthReadsAsClearBlack) {
  for (const int bits : {16, 64}) {
    host_.newPictures.storage = kContext;
    EXPECT_EQ(Copy(OfDepth(bits), kEverything, HSV(60, 1, 1)), Words(6, 0));
    host_.newPictures.storage = kBuffer;
    EXPECT_EQ(Copy(OfDepth(bits), kEverything, HSV(60, 1, 1)), Words(6, 0x7F000000));
    EXPECT_EQ(Copy(OfDepth(bits), kEverything, HSV(60, 1, 1, true)), Words(6, 0x7FFFFFFF));
  }
}

TEST_F(ColourAdjustHSV, PictureOfAnotherDepthIsNotWritten) {
  for (const bool negative : {false, true}) {
    const Adjustment by = HSV(60, 1, 1, negative);
    const Picture picture = OfDepth(16);
    const host::Snapshot before = picture.TakeSnapshot();
    EXPECT_EQ(RunInPlace(picture, kEverything, by).code, 0);
    EXPECT_TRUE(picture.TakeSnapshot() == before) << negative;

    host_.newPictures.change = [](int, host::PictureShape& shape) { shape.defects.bitsPerPixel = 16; };
    const Called called = RunCopy(MakePlain(kContext, 3, 2, 0xFFFF0000), kEverything, by);
    EXPECT_EQ(called.code, 0);
    ASSERT_TRUE(called.result);
    EXPECT_TRUE(called.result.TakeSnapshot() == before) << negative;
    host_.newPictures.change = nullptr;
  }
}

}  // namespace
