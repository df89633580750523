// LMX_FlipRotate: the new place of every pixel, the quarter that each angle means, and the effect
// of storing on a pixel.

#include <climits>

#include "GeometryFixture.h"

namespace geometry {
namespace {

class GeometryFlipRotate : public Geometry {
 protected:
  Called FlipRotate(const Value& source, const Value& flipH, const Value& flipV, int rotation, int yield = 0) {
    return Run("FlipRotate", {source, flipH, flipV, rotation, yield});
  }
};

INSTANTIATE_FOR_FORMS(GeometryFlipRotate);

struct Turn {
  int rotation;
  bool flipH, flipV;
  int width, height;
  std::vector<int> numbers;  // of the source 1 2 3 / 4 5 6
};

const Turn kTurns[] = {
    {0, false, false, 3, 2, {1, 2, 3, 4, 5, 6}},   {0, true, false, 3, 2, {3, 2, 1, 6, 5, 4}},
    {0, false, true, 3, 2, {4, 5, 6, 1, 2, 3}},    {0, true, true, 3, 2, {6, 5, 4, 3, 2, 1}},
    {90, false, false, 2, 3, {4, 1, 5, 2, 6, 3}},  {90, true, false, 2, 3, {6, 3, 5, 2, 4, 1}},
    {90, false, true, 2, 3, {1, 4, 2, 5, 3, 6}},   {90, true, true, 2, 3, {3, 6, 2, 5, 1, 4}},
    {180, false, false, 3, 2, {6, 5, 4, 3, 2, 1}}, {180, true, false, 3, 2, {4, 5, 6, 1, 2, 3}},
    {180, false, true, 3, 2, {3, 2, 1, 6, 5, 4}},  {180, true, true, 3, 2, {1, 2, 3, 4, 5, 6}},
    {270, false, false, 2, 3, {3, 6, 2, 5, 1, 4}}, {270, true, false, 2, 3, {1, 4, 2, 5, 3, 6}},
    {270, false, true, 2, 3, {6, 3, 5, 2, 4, 1}},  {270, true, true, 2, 3, {4, 1, 5, 2, 6, 3}},
};

TEST_P(GeometryFlipRotate, MirrorsFirstThenTurnsClockwise) {
  const Picture source = Numbered(3, 2);
  for (const Turn& turn : kTurns) {
    SCOPED_TRACE(testing::Message() << turn.rotation << (turn.flipH ? " H" : "") << (turn.flipV ? " V" : ""));
    const Called booleans = FlipRotate(source, turn.flipH, turn.flipV, turn.rotation);
    const Called bytes = FlipRotate(source, host::BooleanByte{static_cast<std::uint8_t>(turn.flipH)},
                                    host::BooleanByte{static_cast<std::uint8_t>(turn.flipV)}, turn.rotation);
    for (const Called& called : {booleans, bytes}) {
      ExpectPixels(called, turn.width, turn.height, Numbers(turn.numbers));
    }
  }
}

TEST_P(GeometryFlipRotate, FlagsThatAreNeitherFalseNorTrueLeaveTheResultUnpainted) {
  static constexpr std::uint8_t kBytes[] = {0, 1, 2, 3, 127, 128, 254, 255};
  const Picture source = Numbered(3, 2);
  for (const std::uint8_t flipH : kBytes) {
    for (const std::uint8_t flipV : kBytes) {
      if (flipH <= 1 && flipV <= 1) continue;
      for (const int rotation : {0, 90, 180, 270}) {
        SCOPED_TRACE(testing::Message() << rotation << ", " << int{flipH} << ", " << int{flipV});
        const bool upright = rotation % 180 == 0;
        const Called called = FlipRotate(source, host::BooleanByte{flipH}, host::BooleanByte{flipV}, rotation, 1);
        ExpectStored(called, upright ? 3 : 2, upright ? 2 : 3, Words(6, host::kUnwritten));
        EXPECT_EQ(called.yields, 0);
      }
    }
  }
}

TEST_P(GeometryFlipRotate, OtherAnglesCountAsTheQuarterTowardsZero) {
  const Picture source = Numbered(3, 2);
  const std::pair<int, std::size_t> quarters[] = {{-89, 0}, {-1, 0},  {1, 0},   {89, 0},  {90, 1}, {91, 1},
                                                  {179, 1}, {181, 2}, {269, 2}, {271, 3}, {359, 3}};
  for (const auto& [rotation, quarter] : quarters) {
    SCOPED_TRACE(rotation);
    const Turn& turn = kTurns[4 * quarter];
    ExpectPixels(FlipRotate(source, false, false, rotation), turn.width, turn.height, Numbers(turn.numbers));
  }
}

TEST_P(GeometryFlipRotate, AnglesOutOfRangeAreRefused) {
  const Picture source = Numbered(3, 2);
  for (int rotation : {-90, 360, -91, 361, INT_MIN, INT_MAX, -360}) {
    SCOPED_TRACE(rotation);
    ExpectRefused("FlipRotate", {source, false, true, rotation, 1}, 31);
  }
}

TEST_P(GeometryFlipRotate, HalfTurnWithHorizontalFlipIsTheVerticalFlip) {
  const Picture source = Numbered(37, 21);
  const Called turned = FlipRotate(source, true, false, 180);
  const Called flipped = FlipRotate(source, false, true, 0);
  ASSERT_TRUE(turned.result && flipped.result);
  EXPECT_TRUE(turned.result.SamePixels(flipped.result));
  EXPECT_EQ(turned.result.Stored(0, 0), Stored(GetParam().result, Number(37 * 20 + 1)));
}

TEST_P(GeometryFlipRotate, FourQuartersGoRoundAndThreeDoNot) {
  const Picture source = Numbered(19, 7);
  Picture picture = source;
  for (int i = 1; i <= 4; ++i) {
    const Called called = FlipRotate(picture, false, false, 90);
    ASSERT_FALSE(called.result.IsNil());
    picture = called.result;
    if (i == 3) {
      // The top right corner is now at the top left.
      EXPECT_EQ(picture.Stored(0, 0), Stored(GetParam().result, Number(19)));
    }
  }
  EXPECT_EQ(picture.StoredPixels(), Stored(GetParam().result, NumberedPixels(19, 7)));
}

TEST_P(GeometryFlipRotate, OneRowAndOneColumnTurnIntoEachOther) {
  const std::vector<int> forward = {1, 2, 3, 4, 5}, backward = {5, 4, 3, 2, 1};
  ExpectPixels(FlipRotate(Numbered(5, 1), false, false, 90), 1, 5, Numbers(forward));
  ExpectPixels(FlipRotate(Numbered(5, 1), false, false, 270), 1, 5, Numbers(backward));
  ExpectPixels(FlipRotate(Numbered(1, 5), false, false, 90), 5, 1, Numbers(backward));
  ExpectPixels(FlipRotate(Numbered(1, 5), true, false, 270), 5, 1, Numbers(forward));
}

TEST_P(GeometryFlipRotate, EmptySourcesHaveNoResult) {
  for (const auto& [width, height] : {std::pair(0, 5), std::pair(5, 0), std::pair(0, 0)}) {
    const Picture source({width, height, GetParam().source});
    ExpectFailure(FlipRotate(source, false, false, 0, 1), 6);
    ExpectFailure(FlipRotate(source, true, true, 270, 1), 6);
    EXPECT_EQ(host_.Calls(host::Service::NewInstance), 0);
  }
}

const struct {
  Storage from;
  std::uint32_t stored;
  std::uint32_t context, buffer;  // as it arrives in a result of that form
} kConversions[] = {
    // Opaque: colours pass.
    {kContext, 0xFF123456, 0xFF123456, 0x00123456},
    {kBuffer, 0x00123456, 0xFF123456, 0x00123456},
    // Clear: a context has no colour, a buffer keeps its own.
    {kContext, 0x00123456, 0x00000000, 0x7F000000},
    {kBuffer, 0x7F123456, 0x00000000, 0x7F123456},
    // 100 * 255 / 128 is 199, and 199 * 128 / 255 only 99.
    {kContext, 0x80640000, 0x80630000, 0x3FC70000},
    // Transparency 63 is alpha 129; 199 * 129 / 255 is 100.
    {kBuffer, 0x3FC70000, 0x81640000, 0x3FC70000},
    // A red above alpha is 508 and carries into alpha.
    {kContext, 0x80FF0000, 0x817F0000, 0x3FFC0000},
    // A green above alpha is 650, 0x28A, and carries into red.
    {kContext, 0x6400FF00, 0x64003600, 0x4D028A00},
    // The lowest bit of alpha is lost in a buffer: 1 becomes clear, 254 opaque.
    {kContext, 0x01010101, 0x01010101, 0x7FFFFFFF},
    {kContext, 0xFE000000, 0xFE000000, 0x00000000},
    // Transparencies above 127 wrap: 128 is alpha 255, 255 is alpha 1.
    {kBuffer, 0x80123456, 0xFF123456, 0x00123456},
    {kBuffer, 0xFF123456, 0x01000000, 0x7F123456},
    {kBuffer, 0x7EFFFFFF, 0x03030303, 0x7EFFFFFF},
};

TEST_P(GeometryFlipRotate, PixelsAreConvertedBetweenTheForms) {
  for (const auto& conversion : kConversions) {
    if (conversion.from != GetParam().source) continue;
    SCOPED_TRACE(testing::Message() << std::hex << conversion.stored);
    const std::uint32_t expected = ByForm(conversion.context, conversion.buffer);
    for (int rotation : {0, 90, 180, 270}) {
      // Wide enough for any kernel that processes several pixels at once.
      const Picture source = StoredSource(67, 2, Words(134, conversion.stored));
      const bool upright = rotation % 180 == 0;
      ExpectStored(FlipRotate(source, false, false, rotation), upright ? 67 : 2, upright ? 2 : 67,
                   Words(134, expected));
    }
  }
}

TEST_P(GeometryFlipRotate, RowsThatABufferLacksAreClearAndEndColumns) {
  host::PictureShape shape = {1, 4, kBuffer};
  shape.defects.nilRows = {1};
  Picture source(shape);
  source.SetStoredPixels(Stored(kBuffer, Numbers({1, 2, 3, 4})));
  ExpectPixels(FlipRotate(source, false, false, 0), 1, 4, Numbers({1, 0, 3, 4}));
  // Downwards the walk stays in the first row, upwards in the third.
  ExpectPixels(FlipRotate(source, false, true, 90), 4, 1, Numbers({1, 1, 1, 1}));
  ExpectPixels(FlipRotate(source, false, false, 90), 4, 1, Numbers({4, 3, 3, 3}));
}

TEST_P(GeometryFlipRotate, WrongArgumentsAreReportedInTheirOrder) {
  ExpectRefused("FlipRotate", {nullptr, false, false, 360, 0}, 31);
  ExpectRefused("FlipRotate", {nullptr, false, false, -90, 0}, 31);
  ExpectRefused("FlipRotate", {Unusable(), false, false, 360, 0}, 31);
  ExpectRefused("FlipRotate", {nullptr, true, true, 359, 0}, 2);
  ExpectFailure(FlipRotate(Unusable(), false, false, 0), 4);
  EXPECT_EQ(host_.Calls(host::Service::NewInstance), 0);

  const Picture source = Numbered(2, 2);
  MakeUnusable();
  ExpectFailure(Run("FlipRotate", {source, false, false, 0, 0}, 1), 6);
  ExpectFailure(FlipRotate(Unusable(), false, false, 0), 4);

  host_.newPictures.change = nullptr;
  EXPECT_EQ(FlipRotate(source, false, false, 0).code, 0);  // the earlier code is gone
}

}  // namespace
}  // namespace geometry
