// The yields of the geometric methods, by hand: before every line, the pixels since the last yield
// are compared with the yield argument.

#include <algorithm>
#include <climits>
#include <stdexcept>

#include "GeometryFixture.h"

namespace geometry {
namespace {

class GeometryYield : public Geometry {
 protected:
  int Yields(const std::string& name, std::vector<Value> arguments, int yield) {
    arguments.emplace_back(yield);
    const Called called = Run(name, arguments);
    EXPECT_FALSE(called.result.IsNil()) << name;
    EXPECT_EQ(called.code, 0) << name;
    return called.yields;
  }

  // The pixels of the new picture that are written at each yield, one character each.
  std::vector<std::string> PicturesAtYields(const std::string& name, const std::vector<Value>& arguments) {
    std::vector<std::string> seen;
    host_.onYield = [&] {
      const auto live = support::LiveNewPictures(host_);
      ASSERT_EQ(live.size(), 1u);
      const Picture& picture = live[0].second;
      std::string text;
      for (int y = 0; y < picture.Height(); ++y) {
        for (int x = 0; x < picture.Width(); ++x) text += picture.Stored(x, y) == host::kUnwritten ? '.' : '#';
        text += y + 1 < picture.Height() ? "/" : "";
      }
      seen.push_back(text);
    };
    Run(name, arguments);
    host_.onYield = nullptr;
    return seen;
  }
};

INSTANTIATE_FOR_FORMS(GeometryYield);

using Texts = std::vector<std::string>;

TEST_P(GeometryYield, OfZeroOrLessNeverHappens) {
  const Picture source = Numbered(4, 5);
  for (int yield : {0, -1, -4, INT_MIN, INT_MAX}) {
    EXPECT_EQ(Yields("FlipRotate", {source, false, false, 0}, yield), 0);
    EXPECT_EQ(Yields("FlipRotate", {source, true, false, 270}, yield), 0);
    EXPECT_EQ(Yields("ShearHorizontal", {source, 6, 7, 0.5, kClearFrame}, yield), 0);
    EXPECT_EQ(Yields("ShearVertical", {source, 6, 7, 0.5, kClearFrame}, yield), 0);
    EXPECT_EQ(Yields("FreeRotateByShear", {source, 33.0, kClearFrame}, yield), 0);
    EXPECT_EQ(Yields("Stretch", {source, 6, 7}, yield), 0);
  }
}

TEST_P(GeometryYield, OfOneHappensBeforeEveryLineButTheFirst) {
  const Picture source = Numbered(4, 5);
  EXPECT_EQ(Yields("FlipRotate", {source, false, false, 0}, 1), 4);
  EXPECT_EQ(Yields("FlipRotate", {source, false, false, 90}, 1), 3);
  EXPECT_EQ(Yields("FlipRotate", {source, true, true, 180}, 1), 4);
  EXPECT_EQ(Yields("ShearHorizontal", {source, 6, 7, 0.5, kClearFrame}, 1), 6);
  EXPECT_EQ(Yields("ShearVertical", {source, 6, 7, 0.5, kClearFrame}, 1), 5);
  EXPECT_EQ(Yields("Stretch", {Numbered(3, 4), 5, 6}, 1), 3 + 4);
  // A turn, two passes over rows and one over columns.
  EXPECT_EQ(Yields("FreeRotateByShear", {Numbered(4, 3), 0.0, kClearFrame}, 1), 2 + 2 + 3 + 2);
  EXPECT_EQ(Yields("FlipRotate", {Numbered(9, 1), false, false, 0}, 1), 0);
}

TEST_P(GeometryYield, OfMultiplesOfALineIsExact) {
  const Picture source = Numbered(4, 6);
  const std::pair<int, int> counts[] = {{3, 5},  {4, 5},  {5, 2},  {7, 2},  {8, 2},  {9, 1},
                                        {12, 1}, {13, 1}, {16, 1}, {20, 1}, {21, 0}, {24, 0}};
  for (const auto& [yield, count] : counts) {
    SCOPED_TRACE(yield);
    EXPECT_EQ(Yields("FlipRotate", {source, false, true, 0}, yield), count);
    EXPECT_EQ(Yields("FlipRotate", {Numbered(6, 4), false, false, 90}, yield), count);
    EXPECT_EQ(Yields("ShearHorizontal", {source, 4, 6, -0.5, kClearFrame}, yield), count);
    EXPECT_EQ(Yields("ShearVertical", {source, 6, 4, -0.5, kClearFrame}, yield), count);
  }
}

TEST_P(GeometryYield, CountsFrameLinesLikeOthers) {
  // Two rows of frame, one of the picture, three of frame; 5 pixels each.
  EXPECT_EQ(Yields("ShearHorizontal", {Numbered(2, 1), 5, 6, 0.5, kClearFrame}, 10), 2);
  EXPECT_EQ(Yields("ShearVertical", {Numbered(1, 2), 6, 5, 0.5, kClearFrame}, 10), 2);
}

TEST_P(GeometryYield, HundredPixelsAtFortyARowAreThreeRows) {
  std::vector<int> rowsDone;
  host_.onYield = [&] {
    const auto live = support::LiveNewPictures(host_);
    ASSERT_EQ(live.size(), 1u);
    int y = 0;
    while (y < 10 && live[0].second.Stored(39, y) != host::kUnwritten) ++y;
    rowsDone.push_back(y);
  };
  EXPECT_EQ(Yields("ShearHorizontal", {Numbered(30, 8), 40, 10, 0.5, kClearFrame}, 100), 3);
  host_.onYield = nullptr;
  EXPECT_EQ(rowsDone, (std::vector<int>{3, 6, 9}));
}

TEST_P(GeometryYield, EveryPassHasItsOwnCount) {
  // Four rows of 5, then five columns of 6.
  const std::pair<int, int> counts[] = {{5, 3 + 4}, {6, 1 + 4}, {7, 1 + 2}, {10, 1 + 2}, {16, 1}, {24, 1}, {25, 0}};
  for (const auto& [yield, count] : counts) EXPECT_EQ(Yields("Stretch", {Numbered(3, 4), 5, 6}, yield), count) << yield;
  // Rows of 4, three times; columns of 3, once.
  EXPECT_EQ(Yields("FreeRotateByShear", {Numbered(4, 3), 0.0, kClearFrame}, 4), 2 + 2 + 1 + 2);
  EXPECT_EQ(Yields("FreeRotateByShear", {Numbered(4, 3), 0.0, kClearFrame}, 9), 0 + 0 + 1 + 0);
}

// 16416 boxes of 32766 units take 32832 rows of 16383 units: the last row is left over, and counts.
TEST_P(GeometryYield, CountsRowsThatNoBoxNeeds) {
  EXPECT_EQ(Yields("Stretch", {Numbered(1, 32833), 1, 16416}, 1), 32832);
}

TEST_P(GeometryYield, FindsTheLinesBeforeItCompleteAndNoOther) {
  const Texts downward = {"###/.../...", "###/###/..."}, upward = {".../.../###", ".../###/###"};
  const struct {
    bool flipH, flipV;
    int rotation;
    Texts pictures;
  } kTurns[] = {{true, false, 0, downward},
                {true, false, 90, downward},
                {true, true, 90, downward},
                {false, true, 90, downward},
                {false, false, 270, downward},
                // The plain quarter turn goes from the last row up.
                {false, false, 90, upward},
                {true, true, 270, upward}};
  for (const auto& turn : kTurns) {
    EXPECT_EQ(PicturesAtYields("FlipRotate", {Numbered(3, 3), turn.flipH, turn.flipV, turn.rotation, 1}), turn.pictures)
        << turn.rotation;
  }
  EXPECT_EQ(PicturesAtYields("ShearHorizontal", {Numbered(3, 3), 3, 3, 0.5, kClearFrame, 4}), (Texts{"###/###/..."}));
  EXPECT_EQ(PicturesAtYields("ShearVertical", {Numbered(3, 3), 3, 3, 0.5, kClearFrame, 1}),
            (Texts{"#../#../#..", "##./##./##."}));
}

TEST_P(GeometryYield, BlocksOfLinesStopAtEveryYield) {
  // Far more columns than any worker processes at once.
  Texts expected;
  for (std::size_t done = 7; done < 100; done += 7) {
    expected.push_back(std::string(done, '#') + std::string(100 - done, '.'));
  }
  Texts seen;
  for (const std::string& text : PicturesAtYields("ShearVertical", {Numbered(100, 3), 100, 3, 0.25, kClearFrame, 21})) {
    seen.push_back(text.substr(0, 100));
    EXPECT_EQ(text, seen.back() + "/" + seen.back() + "/" + seen.back());
  }
  EXPECT_EQ(seen, expected);
}

// The host's windows stay responsive: a temporary picture is made before its yields, but by no more
// than 2^18 pixels.
TEST_P(GeometryYield, FindsATemporaryPictureNotFarAhead) {
  constexpr int kWidth = 6000, kHeight = 100;
  int yields = 0, furthest = 0;
  host_.onYield = [&] {
    const auto live = support::LiveNewPictures(host_);
    ASSERT_EQ(live.size(), 2u);
    int rows = 0;
    while (rows < kHeight && live[1].second.Stored(kWidth - 1, rows) != host::kUnwritten) ++rows;
    if (++yields < kHeight) furthest = std::max(furthest, rows - yields);
  };
  // Columns are enlarged: each row of the first pass is written at its final place.
  Run("Stretch", {Numbered(kWidth / 2, kHeight), kWidth, kHeight + 1, kWidth});
  host_.onYield = nullptr;
  EXPECT_GT(yields, kHeight);
  EXPECT_GE(furthest, 8) << "bands of a few rows are slow";
  EXPECT_LE(furthest * kWidth, 1 << 18);
}

TEST_P(GeometryYield, FindsNoPictureWhoseReaderIsDone) {
  std::vector<std::vector<std::size_t>> alive;
  host_.onYield = [&] {
    std::vector<std::size_t> numbers;
    for (const auto& live : support::LiveNewPictures(host_)) numbers.push_back(live.first);
    if (alive.empty() || alive.back() != numbers) alive.push_back(numbers);
  };
  Run("FreeRotateByShear", {Numbered(4, 3), 30.0, kClearFrame, 1});
  EXPECT_EQ(alive, (std::vector<std::vector<std::size_t>>{{1}, {1, 2}, {2, 3}, {3, 4}}));
  alive.clear();
  Run("Stretch", {Numbered(4, 3), 5, 5, 1});
  host_.onYield = nullptr;
  EXPECT_EQ(alive, (std::vector<std::vector<std::size_t>>{{1, 2}}));
}

TEST_P(GeometryYield, FindsTheCodeOfTheCall) {
  Run("FlipRotate", {nullptr, false, false, 0, 0});
  ASSERT_EQ(LastError(), 2);
  std::vector<int> codes;
  host_.onYield = [&] { codes.push_back(LastError()); };
  Run("Stretch", {Numbered(2, 2), 2, 2, 1});
  host_.onYield = nullptr;
  EXPECT_EQ(codes, (std::vector<int>{0, 0}));
}

TEST_P(GeometryYield, MayEndTheCallByAnException) {
  const Picture source = Numbered(4, 4);
  const std::pair<const char*, std::vector<Value>> calls[] = {
      {"FlipRotate", {source, false, false, 90, 1}},          {"ShearHorizontal", {source, 5, 5, 0.5, kClearFrame, 1}},
      {"ShearVertical", {source, 5, 5, 0.5, kClearFrame, 1}}, {"Stretch", {source, 5, 5, 1}},
      {"FreeRotateByShear", {source, 30.0, kClearFrame, 1}},
  };
  host_.onYield = [] { throw std::runtime_error("enough"); };
  for (const auto& [name, arguments] : calls) {
    SCOPED_TRACE(name);
    host_.ResetCounts();
    EXPECT_THROW(host_.Call(name, arguments), std::runtime_error);
    EXPECT_EQ(source.Locks(), 0);
    EXPECT_EQ(source.PluginReferences(), 0);
    // The result is abandoned, because nobody received it. Nothing else is, and nothing is locked.
    const bool rotation = std::string(name) == "FreeRotateByShear";
    EXPECT_EQ(host_.Leaks().size(), rotation ? 0u : 1u);
    for (const host::LiveObject& object : host_.Leaks()) EXPECT_EQ(object.locks, 0);
    host_.DropLeaks();
  }
}

}  // namespace
}  // namespace geometry
