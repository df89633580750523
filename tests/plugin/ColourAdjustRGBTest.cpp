// LMX_AdjustRGB and LMX_AdjustRGB_InPlace: pixels worked out by hand.
#include "ColourFixture.h"

namespace {

using namespace colour;

class ColourAdjustRGB : public ColourTest {};

TEST_F(ColourAdjustRGB, AddsToEachChannelAndStopsAtBothEnds) {
  const AdjustedColour rows[] = {
      {0x102030, RGB(1, 2, 3), 0x112233},          {0x102030, RGB(-1, -2, -3), 0x0F1E2D},
      {0x102030, RGB(16, 0, 0), 0x202030},         {0x102030, RGB(0, 16, 0), 0x103030},
      {0x102030, RGB(0, 0, 16), 0x102040},         {0xFA0580, RGB(6, -6, 127), 0xFF00FF},
      {0xFA0580, RGB(5, -5, -128), 0xFF0000},      {0x000000, RGB(255, 255, 255), 0xFFFFFF},
      {0x123456, RGB(255, 255, 255), 0xFFFFFF},    {0xFFFFFF, RGB(255, 255, 255), 0xFFFFFF},
      {0x000000, RGB(-255, -255, -255), 0x000000}, {0x123456, RGB(-255, -255, -255), 0x000000},
      {0xFFFFFF, RGB(-255, -255, -255), 0x000000},
  };
  for (const AdjustedColour& row : rows) Check(row);
}

TEST_F(ColourAdjustRGB, ChangesStraightColoursAndKeepsAlpha) {
  const Adjusted rows[] = {
      {kBuffer, 0x40123456, RGB(255, 255, 255), 0x40FFFFFF},
      {kBuffer, 0x40123456, RGB(-255, -255, -255), 0x40000000},
      {kContext, 0x80403020, RGB(255, 255, 255), 0x80808080},
      {kContext, 0x80403020, RGB(-255, -255, -255), 0x80000000},
      // Clear pixels keep their colour in a buffer alone.
      {kBuffer, 0x7F102030, RGB(16, 16, 16), 0x7F203040},
      {kContext, 0x00102030, RGB(16, 16, 16), 0x00000000},
      // Red 100 reads as 100 x 255 / 128 = 199; 199 x 128 / 255 = 99.9, 209 x 128 / 255 = 104.9.
      {kContext, 0x80640000, RGB(10, 0, 0), 0x80680000},
      // Deltas of zero still pass both conversions.
      {kContext, 0x80640000, RGB(0, 0, 0), 0x80630000},
      {kContext, 0xFF640000, RGB(0, 0, 0), 0xFF640000},
      {kBuffer, 0x80123456, RGB(0, 0, 0), 0x00123456},
      {kBuffer, 0xFF123456, RGB(0, 0, 0), 0x7F123456},
      // Blue 129 of alpha 128 reads as 256: green 1, blue 0.
      {kContext, 0x80000081, RGB(0, 254, 0), 0x80008000},
      {kContext, 0x80000081, RGB(0, -1, 255), 0x80000080},
  };
  for (const Adjusted& row : rows) Check(row);
}

// --------------------------------------------------------------------------- outside the selection

const Words kUnstable(6, 0x80640000);  // words that both conversions change

TEST_F(ColourAdjustRGB, CopyPassesEveryPixelThroughBothConversions) {
  host_.newPictures.storage = kContext;
  EXPECT_EQ(Copy(MakePicture(kContext, 2, kUnstable), {0, 1, 0, 0}, RGB(-255, 0, 0)),
            (Words{0x80630000, 0x80630000, 0x80000000, 0x80630000, 0x80630000, 0x80630000}));
}

TEST_F(ColourAdjustRGB, InPlaceLeavesOtherRowsAndConvertsOtherColumns) {
  EXPECT_EQ(InPlace(MakePicture(kContext, 2, kUnstable), {0, 1, 0, 0}, RGB(-255, 0, 0)),
            (Words{0x80640000, 0x80640000, 0x80000000, 0x80630000, 0x80640000, 0x80640000}));
  EXPECT_EQ(InPlace(MakePicture(kContext, 3, kUnstable), {1, 0, 0, 0}, RGB(-255, 0, 0)),
            (Words{0x80630000, 0x80000000, 0x80630000, 0x80640000, 0x80640000, 0x80640000}));
  // Impossible transparencies in other rows stay.
  const Words words = {0x80123456, 0xFF123456, 0x80123456, 0xFF123456, 0x80123456, 0xFF123456};
  EXPECT_EQ(InPlace(MakePicture(kBuffer, 2, words), {1, 1, 0, 0}, RGB(1, 1, 1)),
            (Words{0x80123456, 0xFF123456, 0x00123456, 0x7F133557, 0x80123456, 0xFF123456}));
}

// More pixels than are worked on at a time, with the selection's ends anywhere in them.
TEST_F(ColourAdjustRGB, LongRowsAreSelectedExactly) {
  host_.newPictures.storage = kBuffer;
  for (const Area area : {Area{0, 0, 510, 0}, Area{0, 0, 511, 0}, Area{0, 0, 512, 0}, Area{1, 0, 1022, 0},
                          Area{511, 0, 600, 0}, Area{1299, 0, 5, 0}}) {
    Words expected(1300, 0x00102030);
    for (int x = area.left; x <= std::min(area.left + area.width, 1299); ++x) {
      expected[static_cast<std::size_t>(x)] = 0x00112132;
    }
    EXPECT_EQ(Copy(MakePlain(kBuffer, 1300, 1, 0x00102030), area, RGB(1, 1, 2)), expected);
    EXPECT_EQ(InPlace(MakePlain(kBuffer, 1300, 1, 0x00102030), area, RGB(1, 1, 2)), expected);
  }
}

TEST_F(ColourAdjustRGB, StorageFormsOfSourceAndResultMayDiffer) {
  host_.newPictures.storage = kBuffer;
  EXPECT_EQ(Copy(MakePicture(kContext, 2, {0x80640000, 0x80640000}), kFirstPixel, RGB(1, 2, 3)),
            (Words{0x3FC80203, 0x3FC70000}));
  host_.newPictures.storage = kContext;
  EXPECT_EQ(Copy(MakePicture(kBuffer, 2, {0x40FF0000, 0x40FF0000}), kFirstPixel, RGB(0, 255, 0)),
            (Words{0x7F7F7F00, 0x7F7F0000}));
}

TEST_F(ColourAdjustRGB, SourceOfAnotherDepthReadsAsClearBlack) {
  host_.newPictures.storage = kBuffer;
  EXPECT_EQ(Copy(OfDepth(16), kFirstPixel, RGB(1, 2, 3)),
            (Words{0x7F010203, 0x7F000000, 0x7F000000, 0x7F000000, 0x7F000000, 0x7F000000}));
  const Picture picture = OfDepth(16);
  const host::Snapshot before = picture.TakeSnapshot();
  EXPECT_EQ(RunInPlace(picture, kEverything, RGB(1, 2, 3)).code, 0);
  EXPECT_TRUE(picture.TakeSnapshot() == before);
}

}  // namespace
