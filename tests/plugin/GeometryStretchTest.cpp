// LMX_Stretch: averages worked out by hand, limits of sizes, and what remains when a picture is
// missing.

#include <climits>

#include "GeometryFixture.h"

namespace geometry {
namespace {

class GeometryStretch : public Geometry {
 protected:
  Called Stretch(const Value& source, int width, int height, int yield = 0) {
    return Run("Stretch", {source, width, height, yield});
  }
  static Words Reds(const std::vector<std::uint32_t>& reds) {
    Words pixels;
    for (std::uint32_t red : reds) pixels.push_back(0xFF000000 | red << 16);
    return pixels;
  }
};

INSTANTIATE_FOR_FORMS(GeometryStretch);

TEST_P(GeometryStretch, AveragesByHand) {
  const struct {
    int sourceWidth, sourceHeight;
    std::vector<std::uint32_t> source;
    int width, height;
    std::vector<std::uint32_t> result;
  } kCases[] = {
      // (30 * 21845 + 60 * 10922) / 32767 and (60 * 10923 + 90 * 21844) / 32767, without their
      // fractions.
      {3, 1, {30, 60, 90}, 2, 1, {39, 79}},
      {1, 3, {30, 60, 90}, 1, 2, {39, 79}},
      {2, 1, {10, 21}, 3, 1, {10, 15, 21}},
      {1, 2, {10, 21}, 1, 3, {10, 15, 21}},
      {4, 2, {0, 255, 10, 20, 100, 101, 7, 8}, 2, 2, {127, 15, 100, 7}},
      // Rows first: 1 and 5; then 3. Every pass cuts its fraction: (0 + 1) / 2 is 0, (1 + 2) / 2 is
      // 1, and between them 0.
      {2, 2, {0, 2, 4, 6}, 1, 1, {3}},
      {2, 2, {0, 1, 1, 2}, 1, 1, {0}},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(testing::Message() << c.sourceWidth << " x " << c.sourceHeight << " to " << c.width << " x "
                                    << c.height);
    ExpectPixels(Stretch(Source(c.sourceWidth, c.sourceHeight, Reds(c.source)), c.width, c.height), c.width, c.height,
                 Reds(c.result));
  }
}

TEST_P(GeometryStretch, OpaquePixelsAreCopiedAndRepeated) {
  ExpectPixels(Stretch(Numbered(1, 1), 3, 1), 3, 1, Numbers({1, 1, 1}));
  ExpectPixels(Stretch(Numbered(1, 1), 2, 3), 2, 3, Numbers({1, 1, 1, 1, 1, 1}));
  ExpectPixels(Stretch(Numbered(2, 2), 4, 4), 4, 4, Numbers({1, 1, 2, 2, 1, 1, 2, 2, 3, 3, 4, 4, 3, 3, 4, 4}));
  ExpectPixels(Stretch(Numbered(3, 2), 3, 2), 3, 2, Numbers({1, 2, 3, 4, 5, 6}));
}

TEST_P(GeometryStretch, TheSameSizeStillRoundsTwice) {
  // In a context red 100 at alpha 128 is 199, stored as 99 in between, which is 197, stored as 98;
  // in a buffer red 199 at alpha 129 is stored as 100, which is 197, stored as 99.
  const bool context = GetParam().source == kContext;
  ExpectStored(Stretch(StoredSource(1, 1, {context ? 0x80640000 : 0x3FC70000}), 1, 1), 1, 1,
               {ByForm(context ? 0x80620000 : 0x81630000, 0x3FC70000)});
}

TEST_P(GeometryStretch, UniformStaysUniform) {
  const Picture source = Source(7, 5, Words(35, 0xFFC08040));
  for (const auto& [width, height] : {std::pair(1, 1), std::pair(2, 3), std::pair(7, 5), std::pair(8, 4),
                                      std::pair(13, 17), std::pair(100, 1), std::pair(1, 100), std::pair(64, 64)}) {
    SCOPED_TRACE(testing::Message() << width << " x " << height);
    ExpectPixels(Stretch(source, width, height), width, height,
                 Words(static_cast<std::size_t>(width * height), 0xFFC08040));
  }
}

TEST_P(GeometryStretch, ClearAndOpaqueMixByAlpha) {
  // Alpha 127 and red 127; as a premultiplied word the red is 63, and what is read from that is
  // 126.
  const Called called = Stretch(Source(2, 1, {0xFFFF0000, 0}), 1, 1);
  ExpectStored(called, 1, 1, {ByForm(0x7F3E0000, 0x407F0000)});
}

TEST_P(GeometryStretch, SizesBelowOneAreRefusedHeightFirst) {
  const Picture source = Numbered(2, 2);
  for (int bad : {0, -1, INT_MIN}) {
    ExpectRefused("Stretch", {source, bad, bad, 0}, 35);
    ExpectRefused("Stretch", {source, 2, bad, 0}, 35);
    ExpectRefused("Stretch", {source, bad, 2, 0}, 34);
    ExpectRefused("Stretch", {nullptr, bad, bad, 0}, 35);
    ExpectRefused("Stretch", {nullptr, bad, 2, 0}, 34);
    ExpectRefused("Stretch", {Unusable(), bad, 2, 0}, 34);
  }
  ExpectRefused("Stretch", {nullptr, 2, 2, 0}, 2);
}

TEST_P(GeometryStretch, SizesBeyondTheUnitsAreRefusedHeightFirst) {
  const Picture source = Numbered(2, 2);
  for (int bad : {65536, 65537, 1 << 20, INT_MAX}) {
    ExpectFailure(Stretch(source, bad, bad), 35);
    ExpectFailure(Stretch(source, 1, bad), 35);
    ExpectFailure(Stretch(source, bad, 1), 34);
    EXPECT_EQ(host_.Calls(host::Service::NewInstance), 0);
    ExpectRefused("Stretch", {nullptr, bad, bad, 0}, 2);
    ExpectFailure(Stretch(Unusable(), bad, bad), 4);
    ExpectRefused("Stretch", {source, 0, bad, 0}, 34);
    ExpectRefused("Stretch", {source, bad, 0, 0}, 35);
  }
}

TEST_P(GeometryStretch, TheGreatestSizesWork) {
  ExpectPixels(Stretch(Numbered(1, 1), 65535, 1), 65535, 1, Words(65535, Number(1)));
  ExpectPixels(Stretch(Numbered(1, 1), 1, 65535), 1, 65535, Words(65535, Number(1)));
}

TEST_P(GeometryStretch, TheGreatestReductionWorksAndNoMore) {
  Words pixels;
  for (int i = 0; i < 32768; ++i) pixels.push_back(i % 2 == 0 ? 0xFF0000FF : 0xFF000000);
  ExpectPixels(Stretch(Source(32768, 1, pixels), 1, 1), 1, 1, {0xFF00007F});
  ExpectPixels(Stretch(Source(1, 32768, pixels), 1, 1), 1, 1, {0xFF00007F});

  pixels.push_back(0xFF000000);
  ExpectFailure(Stretch(Source(32769, 1, pixels), 1, 1), 34);
  ExpectFailure(Stretch(Source(1, 32769, pixels), 1, 1), 35);
  ExpectFailure(Stretch(Source(1, 32769, pixels), 65536, 1), 35);
  EXPECT_EQ(Stretch(Source(32769, 1, pixels), 2, 1).code, 0);
}

TEST_P(GeometryStretch, AnUnusableSourceIsFour) {
  ExpectFailure(Stretch(Unusable(), 2, 2), 4);
  EXPECT_EQ(host_.Calls(host::Service::NewInstance), 0);
}

TEST_P(GeometryStretch, AnUnusableResultIsSilent) {
  MakeUnusable();
  ExpectFailure(Run("Stretch", {Numbered(2, 2), 3, 3, 1}, 1), 0);
  EXPECT_EQ(host_.Calls(host::Service::NewInstance), 1);
}

TEST_P(GeometryStretch, WithoutTheIntermediateTheResultIsUntouched) {
  MakeUnusable(2);
  const Called called = Run("Stretch", {Numbered(2, 2), 3, 2, 1}, 1);
  EXPECT_EQ(called.code, 5);
  EXPECT_EQ(called.yields, 0);
  ASSERT_FALSE(called.result.IsNil());
  EXPECT_EQ(called.result.StoredPixels(), Words(6, host::kUnwritten));
}

TEST_P(GeometryStretch, EmptySourcesHaveNoIntermediate) {
  for (const auto& [width, height] : {std::pair(0, 4), std::pair(4, 0), std::pair(0, 0)}) {
    const Called called = Stretch(Picture({width, height, GetParam().source}), 3, 2, 1);
    EXPECT_EQ(called.code, 5);
    EXPECT_EQ(host_.Calls(host::Service::NewInstance), 1);
    ASSERT_FALSE(called.result.IsNil());
    EXPECT_EQ(called.result.StoredPixels(), Words(6, host::kUnwritten));
  }
}

TEST_P(GeometryStretch, ASourceOfAnotherDepthIsClear) {
  host::PictureShape shape = {4, 3, kContext};
  for (int depth : {1, 8, 16, 24, 64}) {
    shape.defects.bitsPerPixel = depth;
    ExpectPixels(Stretch(Picture(shape), 2, 5), 2, 5, Words(10, 0));
  }
}

TEST_P(GeometryStretch, AResultOfAnotherDepthIsNotWritten) {
  host_.newPictures.storage = kContext;
  for (int depth : {8, 16, 24, 64}) {
    host_.newPictures.change = [depth](int number, host::PictureShape& shape) {
      if (number == 1) shape.defects.bitsPerPixel = depth;
    };
    const Called called = Stretch(Numbered(2, 2), 3, 3);
    EXPECT_EQ(called.code, 0);
    ASSERT_FALSE(called.result.IsNil());
    host_.newPictures.change = nullptr;

    host::PictureShape same = {3, 3, kContext};
    same.defects.bitsPerPixel = depth;
    EXPECT_TRUE(called.result.TakeSnapshot() == Picture(same).TakeSnapshot());
  }
}

}  // namespace
}  // namespace geometry
