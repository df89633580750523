// The yields of the colour methods: how many, and which rows are complete at each. Pictures are 10
// pixels wide.
#include "ColourFixture.h"

namespace {

using namespace colour;
using Rows = std::vector<int>;

constexpr int kWidth = 10;
constexpr std::uint32_t kBefore = 0x00102030;

class ColourYield : public ColourTest {
 protected:
  static Picture Source(int height) { return MakePlain(kBuffer, kWidth, height, kBefore); }

  // At each yield, the last row (from 1) that is not as it was; a failure if a row is changed
  // partly.
  Rows RowsAtYields(const Picture& source, bool inPlace, const std::function<Called()>& run) {
    Rows rows;
    const std::uint32_t before = inPlace ? kBefore : host::kUnwritten;
    host_.newPictures.storage = kBuffer;
    host_.onYield = [&] {
      const Picture watched = inPlace ? source : NewPicture();
      int last = 0;
      for (int y = 0; y < watched.Height(); ++y) {
        int changed = 0;
        for (int x = 0; x < kWidth; ++x) changed += watched.Stored(x, y) != before;
        EXPECT_TRUE(changed == 0 || changed == kWidth) << "row " << y;
        if (changed > 0) last = y + 1;
      }
      rows.push_back(last);
    };
    const Called called = run();
    host_.onYield = nullptr;
    EXPECT_EQ(called.code, 0);
    EXPECT_EQ(called.yields, static_cast<int>(rows.size()));
    return rows;
  }

  Rows Copy(int height, int yield, const Adjustment& by) {
    const Picture source = Source(height);
    return RowsAtYields(source, false, [&] { return RunCopy(source, {3, 2, 1, 1}, by, yield); });
  }
  Rows InPlace(int height, const Area& area, int yield, const Adjustment& by) {
    const Picture source = Source(height);
    return RowsAtYields(source, true, [&] { return RunInPlace(source, area, by, yield); });
  }

  int AverageYields(const char* method, const Area& area, int yield) {
    return Run(method, Arguments(Source(8), area, {Value(), Value(), Value()}, yield)).yields;
  }

  const Adjustment hsv_ = HSV(60, 1, 1), rgb_ = RGB(1, 1, 1);

 private:
  Picture NewPicture() {
    const auto pictures = support::LiveNewPictures(host_);
    EXPECT_EQ(pictures.size(), 1u);
    return pictures.at(0).second;
  }
};

// The row is counted before the test, so even the last row can yield.
TEST_F(ColourYield, OfCopiesIsAfterEveryRowThatReachesThePace) {
  for (const Adjustment& by : {hsv_, rgb_}) {
    SCOPED_TRACE(by.method);
    for (const int yield : {1, 9, 10}) EXPECT_EQ(Copy(4, yield, by), (Rows{1, 2, 3, 4})) << yield;
    for (const int yield : {11, 20}) EXPECT_EQ(Copy(5, yield, by), (Rows{2, 4})) << yield;
    EXPECT_EQ(Copy(8, 25, by), (Rows{3, 6}));
    EXPECT_EQ(Copy(4, 40, by), (Rows{4}));
    EXPECT_EQ(Copy(4, 41, by), (Rows{}));
  }
}

TEST_F(ColourYield, OfHSVInPlaceCountsEveryRow) {
  EXPECT_EQ(InPlace(4, kEverything, 10, hsv_), (Rows{1, 2, 3, 4}));
  EXPECT_EQ(InPlace(8, kEverything, 25, hsv_), (Rows{3, 6}));
  // Rows 3 to 5 alone are selected; all rows count.
  EXPECT_EQ(InPlace(6, {0, 2, 99, 2}, 10, hsv_), (Rows{0, 0, 3, 4, 5, 5}));
  EXPECT_EQ(InPlace(6, {0, 2, 99, 2}, 20, hsv_), (Rows{0, 4, 5}));
}

TEST_F(ColourYield, OfRGBInPlaceCountsTheSelectedRows) {
  EXPECT_EQ(InPlace(4, kEverything, 10, rgb_), (Rows{1, 2, 3, 4}));
  EXPECT_EQ(InPlace(8, kEverything, 25, rgb_), (Rows{3, 6}));
  const std::pair<int, Rows> kOfRows3To5[] = {{10, {3, 4, 5}}, {20, {4}}, {30, {5}}, {31, {}}};
  for (const auto& [yield, rows] : kOfRows3To5) EXPECT_EQ(InPlace(6, {0, 2, 99, 2}, yield, rgb_), rows) << yield;
}

// A row counts with its whole width, even if few of its pixels are selected.
TEST_F(ColourYield, OfAdjustmentsCountsWholeRows) {
  EXPECT_EQ(RunInPlace(Source(6), {4, 0, 0, 5}, rgb_, 10).yields, 6);
  EXPECT_EQ(RunInPlace(Source(6), {4, 0, 0, 5}, HSV(60, 1, 1, true), 20).yields, 3);
}

// Averages count the pixels of the selection: 4 in each of 6 rows.
TEST_F(ColourYield, OfAveragesCountsTheSelectedPixels) {
  const Area area = {2, 1, 3, 5};
  const std::pair<int, int> counts[] = {{1, 6}, {4, 6}, {5, 3}, {8, 3}, {9, 2}, {24, 1}, {25, 0}};
  for (const char* method : {"GetAverageHSV", "GetAverageRGB"}) {
    for (const auto& [yield, count] : counts) EXPECT_EQ(AverageYields(method, area, yield), count) << method << yield;
  }
}

// What the host draws during a yield is seen in later rows, and not in earlier ones.
TEST_F(ColourYield, OfAveragesIsBetweenTheRows) {
  // Two rows of black, two of blue.
  const std::pair<const char*, Value> blues[] = {{"GetAverageHSV", 255 / 512.0}, {"GetAverageRGB", 127}};
  for (const auto& [method, blue] : blues) {
    const Picture source = MakePlain(kBuffer, kWidth, 4, 0);
    const Value before = blue.Is<double>() ? Value(0.0) : Value(0);
    host_.onYield = [&] { Picture(source).Fill(0x0000FF); };
    host_.ResetCounts();
    const host::Outcome outcome = host_.Call(method, Arguments(source, kEverything, {before, before, before}, 20));
    host_.onYield = nullptr;
    EXPECT_EQ(host_.Calls(Service::YieldToRB), 2) << method;
    EXPECT_EQ(outcome.arguments[7], blue) << method;
  }
}

TEST_F(ColourYield, NeverHappensAtAPaceOfZeroOrLess) {
  for (const int yield : {0, -1, INT32_MIN}) {
    SCOPED_TRACE(yield);
    for (const Adjustment& by : {hsv_, rgb_}) {
      EXPECT_EQ(Copy(5, yield, by), (Rows{})) << by.method;
      EXPECT_EQ(InPlace(5, kEverything, yield, by), (Rows{})) << by.method;
    }
    EXPECT_EQ(AverageYields("GetAverageHSV", kEverything, yield), 0);
    EXPECT_EQ(AverageYields("GetAverageRGB", kEverything, yield), 0);
  }
}

}  // namespace
