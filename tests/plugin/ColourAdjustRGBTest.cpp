// LMX_AdjustRGB and LMX_AdjustRGB_InPlace: pixels worked out by hand.
#include "ColourFixture.h"

namespace {

using namespace colour;

constexpr Storage kContext = Storage::BitmapContext;
constexpr Storage kBuffer = Storage::Buffer;

class ColourAdjustRGB : public ColourTest {
 protected:
  // An opaque colour, which both storage forms must treat alike.
  std::uint32_t Adjust(std::uint32_t colour, const RGBDeltas& by) {
    const std::uint32_t inBuffer = AdjustRGB(kBuffer, colour, by);
    EXPECT_EQ(AdjustRGB(kContext, 0xFF000000 | colour, by), 0xFF000000 | inBuffer);
    return inBuffer;
  }
};

TEST_F(ColourAdjustRGB, AddsToEachChannel) {
  EXPECT_EQ(Adjust(0x102030, {1, 2, 3}), 0x112233u);
  EXPECT_EQ(Adjust(0x102030, {-1, -2, -3}), 0x0F1E2Du);
  EXPECT_EQ(Adjust(0x102030, {16, 0, 0}), 0x202030u);
  EXPECT_EQ(Adjust(0x102030, {0, 16, 0}), 0x103030u);
  EXPECT_EQ(Adjust(0x102030, {0, 0, 16}), 0x102040u);
}

TEST_F(ColourAdjustRGB, StopsAtBothEnds) {
  EXPECT_EQ(Adjust(0xFA0580, {6, -6, 127}), 0xFF00FFu);
  EXPECT_EQ(Adjust(0xFA0580, {5, -5, -128}), 0xFF0000u);
}

TEST_F(ColourAdjustRGB, GreatestDeltasGiveWhiteAndBlack) {
  for (const std::uint32_t colour : {0x000000u, 0x123456u, 0xFFFFFFu}) {
    EXPECT_EQ(Adjust(colour, {255, 255, 255}), 0xFFFFFFu);
    EXPECT_EQ(Adjust(colour, {-255, -255, -255}), 0x000000u);
  }
}

TEST_F(ColourAdjustRGB, AlphaIsKept) {
  EXPECT_EQ(AdjustRGB(kBuffer, 0x40123456, {255, 255, 255}), 0x40FFFFFFu);
  EXPECT_EQ(AdjustRGB(kBuffer, 0x40123456, {-255, -255, -255}), 0x40000000u);
  EXPECT_EQ(AdjustRGB(kContext, 0x80403020, {255, 255, 255}), 0x80808080u);
  EXPECT_EQ(AdjustRGB(kContext, 0x80403020, {-255, -255, -255}), 0x80000000u);
}

TEST_F(ColourAdjustRGB, ClearPixelsKeepTheirColourInABufferAlone) {
  EXPECT_EQ(AdjustRGB(kBuffer, 0x7F102030, {16, 16, 16}), 0x7F203040u);
  EXPECT_EQ(AdjustRGB(kContext, 0x00102030, {16, 16, 16}), 0x00000000u);
}

// Red 100 reads as 100 x 255 / 128 = 199; 199 x 128 / 255 = 99.9 and 209 x 128 / 255 = 104.9.
TEST_F(ColourAdjustRGB, TranslucentColoursAreAdjustedStraight) {
  EXPECT_EQ(AdjustRGB(kContext, 0x80640000, {10, 0, 0}), 0x80680000u);
}

TEST_F(ColourAdjustRGB, DeltasOfZeroStillPassBothConversions) {
  EXPECT_EQ(AdjustRGB(kContext, 0x80640000, {0, 0, 0}), 0x80630000u);
  EXPECT_EQ(AdjustRGB(kContext, 0xFF640000, {0, 0, 0}), 0xFF640000u);
  EXPECT_EQ(AdjustRGB(kBuffer, 0x80123456, {0, 0, 0}), 0x00123456u);
  EXPECT_EQ(AdjustRGB(kBuffer, 0xFF123456, {0, 0, 0}), 0x7F123456u);
}

// Blue 129 of alpha 128 reads as 256: green 1, blue 0.
TEST_F(ColourAdjustRGB, ColourAboveItsAlphaCarriesIntoTheNeighbour) {
  EXPECT_EQ(AdjustRGB(kContext, 0x80000081, {0, 254, 0}), 0x80008000u);
  EXPECT_EQ(AdjustRGB(kContext, 0x80000081, {0, -1, 255}), 0x80000080u);
}

// --------------------------------------------------------------------------- outside the selection

// Words that both conversions change.
const Words kUnstable = {0x80640000, 0x80640000, 0x80640000, 0x80640000, 0x80640000, 0x80640000};

TEST_F(ColourAdjustRGB, CopyPassesEveryPixelThroughBothConversions) {
  host_.newPictures.storage = kContext;
  EXPECT_EQ(Copy("AdjustRGB", RGBArguments(MakePicture(kContext, 2, kUnstable), {0, 1, 0, 0}, {-255, 0, 0})),
            (Words{0x80630000, 0x80630000, 0x80000000, 0x80630000, 0x80630000, 0x80630000}));
}

TEST_F(ColourAdjustRGB, InPlaceLeavesOtherRowsAndConvertsOtherColumns) {
  EXPECT_EQ(InPlace("AdjustRGB_InPlace", RGBArguments(MakePicture(kContext, 2, kUnstable), {0, 1, 0, 0}, {-255, 0, 0})),
            (Words{0x80640000, 0x80640000, 0x80000000, 0x80630000, 0x80640000, 0x80640000}));
  EXPECT_EQ(InPlace("AdjustRGB_InPlace", RGBArguments(MakePicture(kContext, 3, kUnstable), {1, 0, 0, 0}, {-255, 0, 0})),
            (Words{0x80630000, 0x80000000, 0x80630000, 0x80640000, 0x80640000, 0x80640000}));
}

TEST_F(ColourAdjustRGB, InPlaceLeavesOtherRowsOfABufferWithImpossibleTransparencies) {
  EXPECT_EQ(InPlace("AdjustRGB_InPlace",
                    RGBArguments(MakePicture(kBuffer, 2,
                                             {0x80123456, 0xFF123456, 0x80123456, 0xFF123456, 0x80123456, 0xFF123456}),
                                 {1, 1, 0, 0}, {1, 1, 1})),
            (Words{0x80123456, 0xFF123456, 0x00123456, 0x7F133557, 0x80123456, 0xFF123456}));
}

// More pixels than are worked on at a time, with the selection's ends anywhere in them.
TEST_F(ColourAdjustRGB, LongRowsAreSelectedExactly) {
  for (const Area area : {Area{0, 0, 510, 0}, Area{0, 0, 511, 0}, Area{0, 0, 512, 0}, Area{1, 0, 1022, 0},
                          Area{511, 0, 600, 0}, Area{1299, 0, 5, 0}}) {
    Words expected(1300, 0x00102030);
    for (int x = area.left; x <= std::min(area.left + area.width, 1299); ++x) {
      expected[static_cast<std::size_t>(x)] = 0x00112132;
    }
    host_.newPictures.storage = kBuffer;
    EXPECT_EQ(Copy("AdjustRGB", RGBArguments(MakePlain(kBuffer, 1300, 1, 0x00102030), area, {1, 1, 2})), expected);
    EXPECT_EQ(InPlace("AdjustRGB_InPlace", RGBArguments(MakePlain(kBuffer, 1300, 1, 0x00102030), area, {1, 1, 2})),
              expected);
  }
}

TEST_F(ColourAdjustRGB, StorageFormsOfSourceAndResultMayDiffer) {
  host_.newPictures.storage = kBuffer;
  EXPECT_EQ(
      Copy("AdjustRGB", RGBArguments(MakePicture(kContext, 2, {0x80640000, 0x80640000}), {0, 0, 0, 0}, {1, 2, 3})),
      (Words{0x3FC80203, 0x3FC70000}));
  host_.newPictures.storage = kContext;
  EXPECT_EQ(
      Copy("AdjustRGB", RGBArguments(MakePicture(kBuffer, 2, {0x40FF0000, 0x40FF0000}), {0, 0, 0, 0}, {0, 255, 0})),
      (Words{0x7F7F7F00, 0x7F7F0000}));
}

// ------------------------------------------------------------------------------------------- depth

TEST_F(ColourAdjustRGB, SourceOfAnotherDepthReadsAsClearBlack) {
  host::PictureShape shape = {3, 2, kContext};
  shape.defects.bitsPerPixel = 16;
  host_.newPictures.storage = kBuffer;
  EXPECT_EQ(Copy("AdjustRGB", RGBArguments(Picture(shape), {0, 0, 0, 0}, {1, 2, 3})),
            (Words{0x7F010203, 0x7F000000, 0x7F000000, 0x7F000000, 0x7F000000, 0x7F000000}));
  const Picture picture(shape);
  const host::Snapshot before = picture.TakeSnapshot();
  EXPECT_EQ(Run("AdjustRGB_InPlace", RGBArguments(picture, kEverything, {1, 2, 3})).code, 0);
  EXPECT_TRUE(picture.TakeSnapshot() == before);
}

}  // namespace
