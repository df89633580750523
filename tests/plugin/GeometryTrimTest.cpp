// LMX_Trim: areas inside, across and outside the source, the frame, and areas without pixels.

#include <climits>

#include "GeometryFixture.h"

namespace geometry {
namespace {

class GeometryTrim : public Geometry {
 protected:
  Called Trim(const Value& source, int left, int top, int width, int height, Colour frame = kClearFrame,
              int yield = 0) {
    return Run("Trim", {source, left, top, width, height, frame, yield});
  }
};

INSTANTIATE_FOR_FORMS(GeometryTrim);

TEST_P(GeometryTrim, CutsAndAddsFrame) {
  const struct {
    int sourceWidth, sourceHeight, left, top, width, height;
    std::vector<int> numbers;
  } kCuts[] = {
      // All of it, and an inner rectangle.
      {3, 2, 0, 0, 3, 2, {1, 2, 3, 4, 5, 6}},
      {4, 4, 1, 2, 2, 2, {10, 11, 14, 15}},
      // Columns beside the source.
      {5, 1, -2, 0, 9, 1, {0, 0, 1, 2, 3, 4, 5, 0, 0}},
      {5, 1, -2, 0, 4, 1, {0, 0, 1, 2}},
      {5, 1, 3, 0, 4, 1, {4, 5, 0, 0}},
      // Corners that overhang.
      {3, 3, -1, 2, 3, 3, {0, 7, 8, 0, 0, 0, 0, 0, 0}},
      {3, 3, 2, -1, 2, 3, {0, 0, 3, 0, 6, 0}},
      {3, 3, -1, -1, 5, 5, {0, 0, 0, 0, 0, 0, 1, 2, 3, 0, 0, 4, 5, 6, 0, 0, 7, 8, 9, 0, 0, 0, 0, 0, 0}},
      // The last position that exists.
      {3, 3, INT_MAX, INT_MAX, 1, 1, {0}},
      {3, 3, INT_MAX - 4, 0, 5, 1, {0, 0, 0, 0, 0}},
  };
  for (const auto& cut : kCuts) {
    SCOPED_TRACE(testing::Message() << cut.left << ", " << cut.top << ": " << cut.width << " x " << cut.height);
    ExpectPixels(Trim(Numbered(cut.sourceWidth, cut.sourceHeight), cut.left, cut.top, cut.width, cut.height), cut.width,
                 cut.height, Numbers(cut.numbers));
  }
}

TEST_P(GeometryTrim, AreasOutsideAreAllFrame) {
  const Picture source = Numbered(3, 3);
  const std::pair<int, int> positions[] = {{-50, 0},     {0, -50},     {3, 0},           {0, 3},  {-10, 0},
                                           {INT_MIN, 0}, {0, INT_MIN}, {INT_MAX - 9, 0}, {0, -2}, {0, INT_MAX - 1}};
  for (const auto& [left, top] : positions) {
    SCOPED_TRACE(testing::Message() << left << ", " << top);
    ExpectPixels(Trim(source, left, top, 10, 2), 10, 2, Words(20, 0));
  }
}

TEST_P(GeometryTrim, TheFrameIsClearInAnyColour) {
  const Picture source = Numbered(1, 1);
  for (std::uint32_t transparency : {0x00000000u, 0x7F000000u, 0xFF000000u}) {
    const Colour frame = {transparency | 0x123456};
    ExpectStored(Trim(source, -1, 0, 3, 2, frame), 3, 2,
                 {ByForm(0, 0x7F123456), Stored(GetParam().result, Number(1)), ByForm(0, 0x7F123456),
                  ByForm(0, 0x7F123456), ByForm(0, 0x7F123456), ByForm(0, 0x7F123456)});
  }
}

TEST_P(GeometryTrim, HalfTransparentPixelsMayLoseOne) {
  const bool context = GetParam().source == kContext;
  ExpectStored(Trim(StoredSource(1, 1, {context ? 0x80640000 : 0x3FC70000}), 0, 0, 1, 1), 1, 1,
               {ByForm(context ? 0x80630000 : 0x81640000, 0x3FC70000)});
}

TEST_P(GeometryTrim, EmptySourcesAreAllFrame) {
  for (const auto& [width, height] : {std::pair(0, 4), std::pair(4, 0), std::pair(0, 0)}) {
    ExpectPixels(Trim(Picture({width, height, GetParam().source}), 0, 0, 2, 2), 2, 2, Words(4, 0));
  }
}

TEST_P(GeometryTrim, AreasThatDoNotExistAreRefused) {
  const Picture source = Numbered(3, 3);
  const std::pair<int, int> spans[] = {
      {0, 0},       {0, -1},          {5, INT_MIN},       {INT_MIN, 0}, {INT_MIN, -5},      {INT_MAX, 2},
      {2, INT_MAX}, {INT_MAX - 4, 6}, {INT_MIN, INT_MIN}, {INT_MAX, 0}, {INT_MAX, INT_MAX}, {0, INT_MIN}};
  for (const auto& [position, length] : spans) {
    SCOPED_TRACE(testing::Message() << position << " + " << length);
    ExpectFailure(Trim(source, position, 0, length, 1), 39);
    ExpectFailure(Trim(source, 0, position, 1, length), 39);
    EXPECT_EQ(host_.Calls(host::Service::NewInstance), 0);
  }
}

TEST_P(GeometryTrim, WithoutMemoryThereIsNoResult) {
  host_.newPictures.storage = kContext;  // a buffer without pixels is a picture of 0 x 0
  ExpectFailure(Run("Trim", {Numbered(3, 3), INT_MIN, 0, INT_MAX, 1000, kClearFrame, 0}, 1), 6);
}

TEST_P(GeometryTrim, NeverYields) {
  for (int yield : {1, 0, -1, 2, INT_MAX, INT_MIN}) {
    EXPECT_EQ(Trim(Numbered(9, 9), -1, -1, 11, 11, kClearFrame, yield).yields, 0);
  }
}

TEST_P(GeometryTrim, WrongArgumentsAreReportedInTheirOrder) {
  ExpectRefused("Trim", {nullptr, 0, 0, 0, 0, kClearFrame, 0}, 2);
  ExpectFailure(Trim(Unusable(), 0, 0, 0, 0), 4);
  ExpectFailure(Trim(Unusable(), 0, 0, 1, 1), 4);
  MakeUnusable();
  ExpectFailure(Trim(Numbered(2, 2), 0, 0, 0, 1), 39);
  ExpectFailure(Run("Trim", {Numbered(2, 2), 0, 0, 1, 1, kClearFrame, 0}, 1), 6);
  host_.newPictures.change = nullptr;
  EXPECT_EQ(Trim(Numbered(2, 2), 0, 0, 1, 1).code, 0);
}

}  // namespace
}  // namespace geometry
