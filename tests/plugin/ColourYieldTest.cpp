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
  static Picture Source(int height) { return MakePlain(Storage::Buffer, kWidth, height, kBefore); }

  // At each yield, the last row (from 1) that has changed. A row that is changed in part is a
  // failure.
  Rows RowsAtYields(const std::string& method, const std::vector<Value>& arguments, bool inPlace) {
    Rows rows;
    const std::uint32_t before = inPlace ? kBefore : host::kUnwritten;
    host_.newPictures.storage = Storage::Buffer;
    host_.onYield = [&] {
      const Picture watched = inPlace ? arguments[0].AsPicture() : NewPicture();
      int last = 0;
      for (int y = 0; y < watched.Height(); ++y) {
        int changed = 0;
        for (int x = 0; x < kWidth; ++x) changed += watched.Stored(x, y) != before;
        EXPECT_TRUE(changed == 0 || changed == kWidth) << method << ", row " << y;
        if (changed > 0) last = y + 1;
      }
      rows.push_back(last);
    };
    const Called called = Run(method, arguments);
    host_.onYield = nullptr;
    EXPECT_EQ(called.code, 0) << method;
    EXPECT_EQ(called.yields, static_cast<int>(rows.size())) << method;
    return rows;
  }

  Rows HSVCopy(int height, int yield) {
    return RowsAtYields("AdjustHSV", HSVArguments(Source(height), {3, 2, 1, 1}, {60, 1, 1}, false, yield), false);
  }
  Rows RGBCopy(int height, int yield) {
    return RowsAtYields("AdjustRGB", RGBArguments(Source(height), {3, 2, 1, 1}, {1, 1, 1}, yield), false);
  }
  Rows HSVInPlace(int height, const Area& area, int yield) {
    return RowsAtYields("AdjustHSV_InPlace", HSVArguments(Source(height), area, {60, 1, 1}, false, yield), true);
  }
  Rows RGBInPlace(int height, const Area& area, int yield) {
    return RowsAtYields("AdjustRGB_InPlace", RGBArguments(Source(height), area, {1, 1, 1}, yield), true);
  }

  int AverageYields(const std::string& method, const Area& area, int yield) {
    std::vector<Value> arguments = Arguments(Source(8), area);
    arguments.insert(arguments.end(), {Value(), Value(), Value(), yield});
    return Run(method, arguments).yields;
  }

 private:
  Picture NewPicture() {
    const auto pictures = support::LiveNewPictures(host_);
    EXPECT_EQ(pictures.size(), 1u);
    return pictures.at(0).second;
  }
};

// The row is counted before the test, so even the last row can yield.
TEST_F(ColourYield, OfCopiesIsAfterEveryRowThatReachesThePace) {
  for (const int yield : {1, 9, 10}) {
    EXPECT_EQ(HSVCopy(4, yield), (Rows{1, 2, 3, 4})) << yield;
    EXPECT_EQ(RGBCopy(4, yield), (Rows{1, 2, 3, 4})) << yield;
  }
  for (const int yield : {11, 20}) {
    EXPECT_EQ(HSVCopy(5, yield), (Rows{2, 4})) << yield;
    EXPECT_EQ(RGBCopy(5, yield), (Rows{2, 4})) << yield;
  }
  EXPECT_EQ(HSVCopy(8, 25), (Rows{3, 6}));
  EXPECT_EQ(RGBCopy(8, 25), (Rows{3, 6}));
  EXPECT_EQ(HSVCopy(4, 40), (Rows{4}));
  EXPECT_EQ(RGBCopy(4, 40), (Rows{4}));
  EXPECT_EQ(HSVCopy(4, 41), (Rows{}));
  EXPECT_EQ(RGBCopy(4, 41), (Rows{}));
}

TEST_F(ColourYield, OfHSVInPlaceCountsEveryRow) {
  EXPECT_EQ(HSVInPlace(4, kEverything, 10), (Rows{1, 2, 3, 4}));
  EXPECT_EQ(HSVInPlace(8, kEverything, 25), (Rows{3, 6}));
  // Only rows 3 to 5 are selected, but all rows count.
  EXPECT_EQ(HSVInPlace(6, {0, 2, 99, 2}, 10), (Rows{0, 0, 3, 4, 5, 5}));
  EXPECT_EQ(HSVInPlace(6, {0, 2, 99, 2}, 20), (Rows{0, 4, 5}));
}

TEST_F(ColourYield, OfRGBInPlaceCountsTheSelectedRows) {
  EXPECT_EQ(RGBInPlace(4, kEverything, 10), (Rows{1, 2, 3, 4}));
  EXPECT_EQ(RGBInPlace(8, kEverything, 25), (Rows{3, 6}));
  EXPECT_EQ(RGBInPlace(6, {0, 2, 99, 2}, 10), (Rows{3, 4, 5}));
  EXPECT_EQ(RGBInPlace(6, {0, 2, 99, 2}, 20), (Rows{4}));
  EXPECT_EQ(RGBInPlace(6, {0, 2, 99, 2}, 30), (Rows{5}));
  EXPECT_EQ(RGBInPlace(6, {0, 2, 99, 2}, 31), (Rows{}));
}

// A row counts with its whole width, even if few of its pixels are selected.
TEST_F(ColourYield, OfAdjustmentsCountsWholeRows) {
  std::vector<Value> arguments = RGBArguments(Source(6), {4, 0, 0, 5}, {1, 1, 1}, 10);
  EXPECT_EQ(Run("AdjustRGB_InPlace", arguments).yields, 6);
  arguments = HSVArguments(Source(6), {4, 0, 0, 5}, {60, 1, 1}, true, 20);
  EXPECT_EQ(Run("AdjustHSV_InPlace", arguments).yields, 3);
}

// Averages count the pixels of the selection: 4 in each of 6 rows.
TEST_F(ColourYield, OfAveragesCountsTheSelectedPixels) {
  const Area area = {2, 1, 3, 5};
  for (const char* method : {"GetAverageHSV", "GetAverageRGB"}) {
    EXPECT_EQ(AverageYields(method, area, 1), 6) << method;
    EXPECT_EQ(AverageYields(method, area, 4), 6) << method;
    EXPECT_EQ(AverageYields(method, area, 5), 3) << method;
    EXPECT_EQ(AverageYields(method, area, 8), 3) << method;
    EXPECT_EQ(AverageYields(method, area, 9), 2) << method;
    EXPECT_EQ(AverageYields(method, area, 24), 1) << method;
    EXPECT_EQ(AverageYields(method, area, 25), 0) << method;
  }
}

// What the host draws during a yield is seen in later rows, and not in earlier ones.
TEST_F(ColourYield, OfAveragesIsBetweenTheRows) {
  for (const char* method : {"GetAverageHSV", "GetAverageRGB"}) {
    const bool hsv = std::string(method) == "GetAverageHSV";
    const Picture source = MakePlain(Storage::Buffer, kWidth, 4, 0);
    host_.onYield = [&] { Picture(source).Fill(0x0000FF); };
    std::vector<Value> arguments = Arguments(source, kEverything);
    const Value before = hsv ? Value(0.0) : Value(0);
    arguments.insert(arguments.end(), {before, before, before, 20});
    host_.ResetCounts();
    const host::Outcome outcome = host_.Call(method, arguments);
    host_.onYield = nullptr;
    EXPECT_EQ(host_.Calls(Service::YieldToRB), 2) << method;
    // Two rows of black, two of blue.
    if (hsv) {
      EXPECT_EQ(outcome.arguments[7].AsDouble(), 255 / 512.0);
    } else {
      EXPECT_EQ(outcome.arguments[7].AsInteger(), 127);
    }
  }
}

TEST_F(ColourYield, NeverHappensAtAPaceOfZeroOrLess) {
  for (const int yield : {0, -1, INT32_MIN}) {
    EXPECT_EQ(HSVCopy(5, yield), (Rows{})) << yield;
    EXPECT_EQ(RGBCopy(5, yield), (Rows{})) << yield;
    EXPECT_EQ(HSVInPlace(5, kEverything, yield), (Rows{})) << yield;
    EXPECT_EQ(RGBInPlace(5, kEverything, yield), (Rows{})) << yield;
    EXPECT_EQ(AverageYields("GetAverageHSV", kEverything, yield), 0) << yield;
    EXPECT_EQ(AverageYields("GetAverageRGB", kEverything, yield), 0) << yield;
  }
}

}  // namespace
