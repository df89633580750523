// LMX_ShearHorizontal and LMX_ShearVertical: placement, edges and frames worked out by hand.
//
// Every picture here is written for the horizontal shear. The vertical shear gets it with rows and
// columns exchanged, and must give the exchanged result.

#include <climits>
#include <cmath>
#include <limits>

#include "GeometryFixture.h"

namespace geometry {
namespace {

class GeometryShear : public Geometry {
 protected:
  // Shears a source of stored words into a result of stored words, in both directions.
  void Check(int width, int height, const Words& source, double shear, Colour frame, int resultWidth, int resultHeight,
             const Words& expected) {
    {
      SCOPED_TRACE("horizontal");
      ExpectStored(
          Run("ShearHorizontal", {StoredSource(width, height, source), resultWidth, resultHeight, shear, frame, 0}),
          resultWidth, resultHeight, expected);
    }
    SCOPED_TRACE("vertical");
    ExpectStored(Run("ShearVertical", {StoredSource(height, width, Exchanged(width, height, source)), resultHeight,
                                       resultWidth, shear, frame, 0}),
                 resultHeight, resultWidth, Exchanged(resultWidth, resultHeight, expected));
  }

  // The same with a numbered source and a clear frame.
  void CheckNumbers(int width, int height, double shear, int resultWidth, int resultHeight,
                    const std::vector<int>& expected) {
    Check(width, height, Numbered(width, height).StoredPixels(), shear, kClearFrame, resultWidth, resultHeight,
          Stored(GetParam().result, Numbers(expected)));
  }

  // The alphas of one sheared column of opaque white pixels, in a result one pixel wide: one value
  // per row.
  void CheckAlphas(int height, double shear, const std::vector<std::uint32_t>& alphas) {
    Words expected;
    for (std::uint32_t alpha : alphas) expected.push_back(White(alpha));
    Check(1, height, Words(static_cast<std::size_t>(height), Stored(GetParam().source, 0xFFFFFFFF)), shear, kClearFrame,
          1, height, expected);
  }

  // A pixel blended with the clear black frame: all channels have the same value.
  static std::uint32_t White(std::uint32_t a) {
    return ByForm(a << 24 | a * a / 255 * 0x010101, (127 - (a >> 1)) << 24 | a * 0x010101);
  }

  static Words Exchanged(int width, int height, const Words& words) {
    Words exchanged;
    for (int x = 0; x < width; ++x) {
      for (int y = 0; y < height; ++y) exchanged.push_back(words.at(static_cast<std::size_t>(y * width + x)));
    }
    return exchanged;
  }
};

INSTANTIATE_FOR_FORMS(GeometryShear);

TEST_P(GeometryShear, WholeStepsPlaceEveryLine) {
  const struct {
    int width, height;
    double shear;
    int resultWidth, resultHeight;
    std::vector<int> numbers;
  } kShears[] = {
      // Zero copies unchanged; it centres and crops with the odd line at the end.
      {3, 2, 0.0, 3, 2, {1, 2, 3, 4, 5, 6}},
      {3, 2, -0.0, 3, 2, {1, 2, 3, 4, 5, 6}},
      {2, 1, 0.0, 5, 4, {0, 0, 0, 0, 0, 0, 1, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
      {5, 5, 0.0, 2, 2, {7, 8, 12, 13}},
      {4, 4, 0.0, 2, 2, {6, 7, 10, 11}},
      {2, 5, 0.0, 4, 2, {0, 3, 4, 0, 0, 5, 6, 0}},
      // A positive one moves the first line furthest, and every line at least once.
      {2, 2, 1.0, 4, 2, {0, 0, 1, 2, 0, 3, 4, 0}},
      {1, 3, 1.0, 4, 3, {0, 0, 0, 1, 0, 0, 2, 0, 0, 3, 0, 0}},
      // A negative one leaves the first line.
      {2, 2, -1.0, 4, 2, {1, 2, 0, 0, 0, 3, 4, 0}},
      {1, 3, -1.0, 4, 3, {1, 0, 0, 0, 0, 2, 0, 0, 0, 0, 3, 0}},
      // Cropped lines still count for the offset: the natural width is 3 + 4; rows 1 and 2 of 4 are
      // kept, displaced by 3 and 2; 2 of 7 columns are cut on each side.
      {3, 4, 1.0, 3, 2, {0, 4, 5, 7, 8, 9}},
      // 2 x 2 at -1 is 4 wide: one column before, two after; one row above, two below.
      {2, 2, -1.0, 7, 5, {0, 0, 0, 0, 0, 0, 0,  //
                          0, 1, 2, 0, 0, 0, 0,  //
                          0, 0, 3, 4, 0, 0, 0,  //
                          0, 0, 0, 0, 0, 0, 0,  //
                          0, 0, 0, 0, 0, 0, 0}},
      // Lines outside the result are all frame.
      {1, 3, 1.0, 1, 3, {0, 0, 3}},
      {1, 3, -1.0, 1, 3, {0, 2, 0}},
      {1, 5, -1.0, 1, 5, {0, 0, 3, 0, 0}},
      {2, 6, 1.0, 1, 6, {0, 0, 0, 7, 10, 0}},
  };
  for (const auto& s : kShears) {
    SCOPED_TRACE(testing::Message() << s.width << " x " << s.height << " at " << s.shear);
    CheckNumbers(s.width, s.height, s.shear, s.resultWidth, s.resultHeight, s.numbers);
  }
}

// A row of red and green, half a pixel to the right, with one column before it and one after.
constexpr std::uint32_t kRed = 0xFFFF0000;
constexpr std::uint32_t kGreen = 0xFF00FF00;

TEST_P(GeometryShear, FramesBlendIntoTheEdges) {
  struct Edges {
    std::uint32_t frame, first, last;
  };
  const struct {
    Colour frame;
    Edges context, buffer;
  } kFrames[] = {
      // An opaque frame does not tint the edges: the first pixel stays red; the last one is green
      // with 254 of 255 in all its channels.
      {{0x000000FF}, {0xFF0000FF, 0xFFFF0000, 0xFE00FD00}, {0x000000FF, 0x00FF0000, 0x0000FE00}},
      {kClearFrame, {0x00000000, 0x7F3F0000, 0x7F003F00}, {0x7F000000, 0x407F0000, 0x40007F00}},
      {{0x800000FF}, {0x7F00007F, 0xBE5E005E, 0xBE005E5E}, {0x400000FF, 0x207F007F, 0x20007F7F}},
  };
  for (const auto& [frame, context, buffer] : kFrames) {
    const Edges& edges = GetParam().result == kContext ? context : buffer;
    Check(2, 1, Stored(GetParam().source, {kRed, kGreen}), 0.5, frame, 4, 1,
          {edges.frame, edges.first, ByForm(0xFF7F7F00, 0x007F7F00), edges.last});
  }
}

// The largest fraction: the first pixel is all frame, the one after it all red but for 1/65536.
TEST_P(GeometryShear, TheLargestFractionStillBlendsBothEdges) {
  const double kLargest = 65535 / 65536.0;
  const Words red = {Stored(GetParam().source, kRed)};
  const std::uint32_t frame = ByForm(0x7F00007F, 0x400000FF);
  const std::uint32_t last = ByForm(0xFEFD0000, 0x00FE0000);
  Check(1, 1, red, kLargest, Colour{0x800000FF}, 4, 1, {frame, frame, last, frame});
  Check(1, 1, red, kLargest, Colour{0x000000FF}, 4, 1,
        {ByForm(0xFF0000FF, 0x000000FF), ByForm(0xFFFF0000, 0x00FF0000), last, ByForm(0xFF0000FF, 0x000000FF)});
  // The second row is displaced to the right of the first by as much.
  const std::uint32_t whole = ByForm(0xFFFF0000, 0x00FF0000);
  Check(1, 2, {red[0], red[0]}, -kLargest, Colour{0x800000FF}, 3, 2, {whole, frame, frame, frame, last, frame});
}

TEST_P(GeometryShear, AnOpaqueFrameMakesClearEdgesOfItsOwnAlphaOnly) {
  // The source is a clear pixel: the frame's alpha enters, its colour does not.
  Check(1, 1, {Stored(GetParam().source, 0)}, 0.5, Colour{0x00FFFFFF}, 3, 1,
        {ByForm(0xFFFFFFFF, 0x00FFFFFF), ByForm(0x7F000000, 0x40000000), ByForm(0x7F000000, 0x40000000)});
}

TEST_P(GeometryShear, ALineThatStartsBeforeTheResultBlendsWithWhatIsCutOff) {
  const Words source = Stored(GetParam().source, {0xFF000000, 0xFF640000, 0xFFC80000, 0xFFFF0000});
  // Half a pixel to the left of column 0: 49 is half of 0 and 100, 149 half of 100 and 200.
  Check(4, 1, source, 0.5, kClearFrame, 2, 1, Stored(GetParam().result, {0xFF310000, 0xFF950000}));
}

TEST_P(GeometryShear, AnEdgeThatReachesTheResultIsBlendedAndOneFurtherAwayIsNot) {
  // Positions -1, -0.25, 0.5, 1.25, 2.
  CheckAlphas(5, -0.75, {0, 191, 127, 0, 0});
  // Positions -3, -2.25, -1.5, -0.75, 0, 0.75, 1.5, 2.25, 3.
  CheckAlphas(9, -0.75, {0, 0, 0, 63, 255, 63, 0, 0, 0});
}

TEST_P(GeometryShear, TheStepIsRoundedDown) {
  // A third of 65536 is 21845 and a bit; minus a third, rounded down, is -21846.
  const Words white = {Stored(GetParam().source, 0xFFFFFFFF)};
  // 255 * 43690 / 65535 is 170; after it 255 * 21845 >> 16 is 84.
  Check(1, 1, white, 1.0 / 3, kClearFrame, 2, 1, {White(170), White(84)});
  // In the second row: 255 * 43689 / 65535 is 169, and 255 * 21846 >> 16 is 85.
  Check(1, 2, {white[0], white[0]}, -1.0 / 3, kClearFrame, 2, 2, {White(255), White(0), White(169), White(85)});
}

// A line and its displacement are 60000.9999 pixels long. 60000 of them count: 29998 are cut off at
// the start.
TEST_P(GeometryShear, LengthsAreRoundedDown) {
  CheckNumbers(60000, 1, -0.9999, 3, 1, {29999, 30000, 30001});
}

TEST_P(GeometryShear, LongSumsDoNotOverflow) {
  constexpr int kLines = 70000;
  // Line r lies at 35001 - r: 34999 of 70001 columns are cut off at the start.
  std::vector<int> expected(3 * kLines, 0);
  for (int r = 34999; r <= 35001; ++r) expected[static_cast<std::size_t>(3 * r + 35001 - r)] = r + 1;
  CheckNumbers(1, kLines, 1.0, 3, kLines, expected);
}

TEST_P(GeometryShear, NotANumberCountsAsZero) {
  for (double nan : {std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::quiet_NaN()}) {
    CheckNumbers(2, 2, nan, 3, 2, {1, 2, 0, 3, 4, 0});
  }
}

TEST_P(GeometryShear, TheTinyShearsOfBothSignsDiffer) {
  // A positive shear below one step is 0; a negative one is a step of -1.
  CheckNumbers(2, 2, std::numeric_limits<double>::denorm_min(), 2, 2, {1, 2, 3, 4});
  const Called called = Run("ShearHorizontal", {Source(2, 2, Words(4, 0xFFFFFFFF)), 2, 2,
                                                -std::numeric_limits<double>::denorm_min(), kClearFrame, 0});
  ExpectStored(called, 2, 2, {White(255), White(255), White(254), White(255)});
}

class GeometryShearErrors : public GeometryShear {};

INSTANTIATE_FOR_FORMS(GeometryShearErrors);

constexpr const char* kBoth[] = {"ShearHorizontal", "ShearVertical"};

TEST_P(GeometryShearErrors, OneIsTheGreatestShear) {
  const double infinity = std::numeric_limits<double>::infinity();
  const Picture source = Numbered(2, 2);
  for (const char* name : kBoth) {
    for (double shear : {1.0000001, -1.0000001, std::nextafter(1.0, 2.0), std::nextafter(-1.0, -2.0), 1e300, -1e300,
                         infinity, -infinity}) {
      ExpectRefused(name, {source, 2, 2, shear, kClearFrame, 0}, 33);
      ExpectRefused(name, {nullptr, 2, 2, shear, kClearFrame, 0}, 33);
      ExpectRefused(name, {nullptr, 0, -1, shear, kClearFrame, 0}, 33);
    }
    for (double shear : {1.0, -1.0}) {
      const Called called = Run(name, {source, 2, 2, shear, kClearFrame, 0});
      EXPECT_EQ(called.code, 0);
      EXPECT_FALSE(called.result.IsNil());
    }
  }
}

TEST_P(GeometryShearErrors, SizesBelowOneAreSilentlyNil) {
  for (const char* name : kBoth) {
    for (int bad : {0, -1, INT_MIN}) {
      ExpectFailure(Run(name, {Numbered(2, 2), bad, 2, 0.5, kClearFrame, 1}), 0);
      ExpectFailure(Run(name, {Numbered(2, 2), 2, bad, 0.5, kClearFrame, 1}), 0);
      EXPECT_EQ(host_.Calls(host::Service::NewInstance), 0);
      ExpectRefused(name, {nullptr, bad, bad, 0.5, kClearFrame, 1}, 2);
    }
  }
}

TEST_P(GeometryShearErrors, UnusablePicturesAreSilentlyNil) {
  for (const char* name : kBoth) {
    ExpectRefused(name, {nullptr, 2, 2, 0.0, kClearFrame, 0}, 2);
    ExpectFailure(Run(name, {Unusable(), 2, 2, 0.0, kClearFrame, 1}), 0);
    EXPECT_EQ(host_.Calls(host::Service::NewInstance), 0);
    ExpectRefused(name, {Unusable(), 2, 2, 1.5, kClearFrame, 1}, 33);
    MakeUnusable();
    ExpectFailure(Run(name, {Numbered(2, 2), 2, 2, 0.0, kClearFrame, 1}, 1), 0);
    host_.newPictures.change = nullptr;
  }
}

TEST_P(GeometryShearErrors, EmptySourcesAreAllFrame) {
  for (const char* name : kBoth) {
    for (const auto& [width, height] : {std::pair(0, 3), std::pair(3, 0), std::pair(0, 0)}) {
      const Picture source({width, height, GetParam().source});
      ExpectPixels(Run(name, {source, 4, 3, 0.4, Colour{0x00102030}, 0}), 4, 3, Words(12, 0xFF102030));
    }
  }
}

}  // namespace
}  // namespace geometry
