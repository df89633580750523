// LMX_GetAverageHSV and LMX_GetAverageRGB: exact results, sums that wrap, and results that the
// caller leaves out.
#include <array>
#include <cmath>
#include <limits>

#include "ColourFixture.h"

namespace {

using namespace colour;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

using HSVMeans = std::array<double, 3>;
using RGBMeans = std::array<int, 3>;

// Doubles bit for bit; every NaN is the same.
std::string Bits(const HSVMeans& means) {
  std::string text;
  for (const double mean : means) {
    char number[40];
    std::snprintf(number, sizeof number, std::isnan(mean) ? " nan" : " %a", mean);
    text += number;
  }
  return text;
}

class ColourAverage : public ColourTest {
 protected:
  HSVMeans AverageHSV(const Picture& p, const Area& area = kEverything) {
    const Called called = Run("GetAverageHSV", Arguments(p, area, {-77.0, -77.0, -77.0}));
    EXPECT_EQ(called.code, 0);
    return {called.arguments[5].AsDouble(), called.arguments[6].AsDouble(), called.arguments[7].AsDouble()};
  }
  RGBMeans AverageRGB(const Picture& p, const Area& area = kEverything) {
    const Called called = Run("GetAverageRGB", Arguments(p, area, {-77, -77, -77}));
    EXPECT_EQ(called.code, 0);
    return {called.arguments[5].AsInteger(), called.arguments[6].AsInteger(), called.arguments[7].AsInteger()};
  }

  // Of opaque colours in one row, which both storage forms must measure alike.
  std::string HSVOf(const Words& colours) {
    const int width = static_cast<int>(colours.size());
    Words opaque;
    for (const std::uint32_t colour : colours) opaque.push_back(0xFF000000 | colour);
    const std::string bits = Bits(AverageHSV(MakePicture(kBuffer, width, colours)));
    EXPECT_EQ(Bits(AverageHSV(MakePicture(kContext, width, opaque))), bits);
    return bits;
  }

  // A picture that takes only the memory of one row.
  static Picture OneRowRepeated(int width, int height, std::uint32_t word) {
    host::PictureShape shape = {width, height, kContext};
    shape.defects.bytesPerRow = 0;
    Picture picture(shape);
    for (int x = 0; x < width; ++x) picture.SetStored(x, 0, word);
    return picture;
  }
};

// --------------------------------------------------------------------------------------------- HSV

TEST_F(ColourAverage, HSVOfPureColours) {
  constexpr double kFull = 0.99609375;  // 255 / 256
  EXPECT_EQ(HSVOf({0xFF0000}), Bits({0, 1, kFull}));
  EXPECT_EQ(HSVOf({0xFFFF00}), Bits({60, 1, kFull}));
  EXPECT_EQ(HSVOf({0x00FF00}), Bits({120, 1, kFull}));
  EXPECT_EQ(HSVOf({0x00FFFF}), Bits({180, 1, kFull}));
  EXPECT_EQ(HSVOf({0x0000FF}), Bits({240, 1, kFull}));
  EXPECT_EQ(HSVOf({0xFF00FF}), Bits({300, 1, kFull}));
}

TEST_F(ColourAverage, HSVOfBlackHasHueMinusOne) {
  EXPECT_EQ(HSVOf({0, 0, 0}), Bits({-1, 0, 0}));
}

TEST_F(ColourAverage, HSVOfAnotherGreyHasNoNumberForAHue) {
  EXPECT_EQ(HSVOf({0x808080}), Bits({kNaN, 0, 0.5}));
  EXPECT_EQ(HSVOf({0xFFFFFF}), Bits({kNaN, 0, 0.99609375}));
  EXPECT_EQ(HSVOf({0x010101}), Bits({kNaN, 0, 0.00390625}));
}

TEST_F(ColourAverage, HueIsThatOfTheMeanColour) {
  EXPECT_EQ(HSVOf({0xFF0000, 0x00FFFF}), Bits({kNaN, 1, 0.99609375}));  // the mean is a grey
  // (255, 0, 127), where the mean of the hues would be 330
  EXPECT_EQ(HSVOf({0xFF0000, 0xFF00FF}), Bits({-127 / 255.0 * 60 + 360, 1, 0.99609375}));
  EXPECT_EQ(HSVOf({0xFF0000, 0xFF00FF}), Bits({0x1.4a1e1e1e1e1e2p+8, 1, 0.99609375}));
}

TEST_F(ColourAverage, MeanColourOfTheHueIsTruncated) {
  EXPECT_EQ(HSVOf({0xFF0000, 0x000100}), Bits({0, 1, 0.5}));             // green 1 / 2 is 0
  EXPECT_EQ(HSVOf({0x010000, 0x000000}), Bits({-1, 0.5, 0.001953125}));  // so is red: black
}

TEST_F(ColourAverage, SaturationIsTheMeanOfThePixels) {
  // (2/3 + 5/7 + 3/10) / 3 and (3 + 7 + 10) / 256 / 3; the mean colour (6, 4, 4) has hue 0
  EXPECT_EQ(HSVOf({0x030102, 0x070205, 0x0A0907}), Bits({0, 0x1.1ee1ee1ee1ee2p-1, 0x1.aaaaaaaaaaaabp-6}));
}

// 3 / 5 and 5 / 6 end in another bit than 3 and 5 times the rounded reciprocal.
TEST_F(ColourAverage, SumsAreDividedByTheCount) {
  EXPECT_EQ(HSVOf({0xFF0000, 0xFF0000, 0xFF0000, 0, 0}), Bits({0, 3 / 5.0, 3 * 255 / 256.0 / 5}));
  EXPECT_EQ(HSVOf({0xFF0000, 0xFF0000, 0xFF0000, 0xFF0000, 0xFF0000, 0}), Bits({0, 5 / 6.0, 5 * 255 / 256.0 / 6}));
}

// 35 pixels whose saturations, added in any but the visiting order, end in another last bit.
TEST_F(ColourAverage, SumsAreMadeRowByRowFromLeftToRight) {
  Words words;
  for (std::uint32_t y = 0; y < 5; ++y) {
    for (std::uint32_t x = 0; x < 7; ++x) {
      words.push_back((x * 37 + y * 11 + 50) % 256 << 16 | (x * 5 + y * 71 + 3) % 256 << 8 |
                      (x * 91 + y * 29 + 200) % 256);
    }
  }
  // The mean colour is (124, 108, 121).
  const std::string expected = Bits({311.25, 0x1.707c2dee0a5edp-1, 0x1.75e2be2be2be3p-1});
  EXPECT_EQ(Bits(AverageHSV(MakePicture(kBuffer, 7, words))), expected);
  for (std::uint32_t& word : words) word |= 0xFF000000;
  EXPECT_EQ(Bits(AverageHSV(MakePicture(kContext, 7, words))), expected);
}

TEST_F(ColourAverage, HSVCountsTranslucentPixelsWithTheirStraightColour) {
  // red 100 of alpha 128 is 199
  EXPECT_EQ(Bits(AverageHSV(MakePicture(kContext, 1, {0x80640000}))), Bits({0, 1, 199 / 256.0}));
  EXPECT_EQ(Bits(AverageHSV(MakePicture(kBuffer, 1, {0x7F00FF00}))), Bits({120, 1, 0.99609375}));
  EXPECT_EQ(Bits(AverageHSV(MakePicture(kContext, 1, {0x0000FF00}))), Bits({-1, 0, 0}));
}

// --------------------------------------------------------------------------------------------- RGB

TEST_F(ColourAverage, RGBIsTruncated) {
  EXPECT_EQ(AverageRGB(MakePicture(kBuffer, 2, {0xFF0001, 0x000002})), (RGBMeans{127, 0, 1}));
  EXPECT_EQ(AverageRGB(MakePicture(kContext, 3, {0xFF010203, 0xFF020304, 0xFF020307})), (RGBMeans{1, 2, 4}));
}

TEST_F(ColourAverage, RGBCountsTranslucentPixelsWithTheirStraightColour) {
  EXPECT_EQ(AverageRGB(MakePicture(kContext, 2, {0x80640000, 0xFF0000FF})), (RGBMeans{99, 0, 127}));
  EXPECT_EQ(AverageRGB(MakePicture(kContext, 1, {0x80000081})), (RGBMeans{0, 1, 0}));  // 256: a carry
}

TEST_F(ColourAverage, RGBOfClearPixels) {
  EXPECT_EQ(AverageRGB(MakePicture(kContext, 2, {0x00FFFFFF, 0x00010203})), (RGBMeans{0, 0, 0}));
  EXPECT_EQ(AverageRGB(MakePicture(kBuffer, 2, {0x7F102030, 0x7F304050})), (RGBMeans{32, 48, 64}));
}

TEST_F(ColourAverage, MeasuresTheSelectionAlone) {
  const Picture picture = MakePicture(kBuffer, 3, {1, 2, 3, 4, 5, 6, 7, 8, 90});
  EXPECT_EQ(AverageRGB(picture, {1, 1, 0, 0}), (RGBMeans{0, 0, 5}));
  EXPECT_EQ(AverageRGB(picture, {0, 0, 1, 1}), (RGBMeans{0, 0, 3}));
  EXPECT_EQ(AverageRGB(picture, {99, 99, 0, 0}), (RGBMeans{0, 0, 90}));
  EXPECT_EQ(AverageHSV(picture, {99, -99, 5, 3}), (HSVMeans{240, 1, 3 / 256.0}));
}

TEST_F(ColourAverage, LongRowsAreMeasuredExactly) {
  for (const int width : {511, 512, 513, 1024, 1300}) {
    Words words(static_cast<std::size_t>(width), 0);
    words.front() = 0x010000 * 200;
    words.back() = 255;
    const Picture picture = MakePicture(kBuffer, width, words);
    const RGBMeans one = AverageRGB(picture, {width - 1, 0, 0, 0});
    EXPECT_EQ(one, (RGBMeans{0, 0, 255})) << width;
    EXPECT_EQ(Bits(AverageHSV(picture)), Bits({-1, 2.0 / width, 455 / 256.0 / width})) << width;
  }
}

// ---------------------------------------------------------------------------------- sums that wrap

// 8,421,504 = 32896 x 256 pixels of 255 give 2,147,483,520, which 32 bits still hold.
TEST_F(ColourAverage, GreatestSumThatFits) {
  const Picture picture = OneRowRepeated(32896, 256, 0xFFFFFFFF);
  EXPECT_EQ(AverageRGB(picture), (RGBMeans{255, 255, 255}));
  EXPECT_EQ(Bits(AverageHSV(picture)), Bits({kNaN, 0, 0.99609375}));
}

// One pixel more: 2,147,483,775 wraps to -2,147,483,521, and a 8,421,505th of that is -254.9999.
TEST_F(ColourAverage, SumBeyondWraps) {
  EXPECT_EQ(AverageRGB(OneRowRepeated(1684301, 5, 0xFFFF0001)), (RGBMeans{-254, 0, 1}));
  // The mean colour (-254, 1, 0): green is its greatest, 255 above its least.
  EXPECT_EQ(Bits(AverageHSV(OneRowRepeated(1684301, 5, 0xFFFF0100))),
            Bits({(254 / 255.0 + 2.0) * 60.0, 1, 0.99609375}));
  EXPECT_EQ(Bits(AverageHSV(OneRowRepeated(1684301, 5, 0xFFFFFFFF))), Bits({kNaN, 0, 0.99609375}));
  EXPECT_EQ(Bits(AverageHSV(OneRowRepeated(1684301, 5, 0xFFFF0000))), Bits({-1, 1, 0.99609375}));
}

// ------------------------------------------------------------------------------------------- depth

TEST_F(ColourAverage, PictureOfAnotherDepthMeasuresAsBlack) {
  EXPECT_EQ(AverageRGB(OfDepth(16)), (RGBMeans{0, 0, 0}));
  EXPECT_EQ(AverageHSV(OfDepth(16)), (HSVMeans{-1, 0, 0}));
}

// -------------------------------------------------------------------------------- left-out results

TEST_F(ColourAverage, ResultsCanBeLeftOut) {
  const Picture picture = MakePicture(kBuffer, 1, {0x00404080});
  const struct {
    const char* method;
    Value before;
    Value means[3];
  } kMethods[] = {{"GetAverageHSV", -5.0, {240.0, 0.5, 0.5}}, {"GetAverageRGB", -5, {64, 64, 128}}};
  for (const auto& [method, before, means] : kMethods) {
    for (unsigned leftOut = 0; leftOut < 8; ++leftOut) {
      const auto isLeftOut = [&](unsigned i) { return (leftOut >> i & 1) != 0; };
      std::vector<Value> passed(3, before);
      for (unsigned i = 0; i < 3; ++i) passed[i] = isLeftOut(i) ? Value() : before;
      const Called called = Run(method, Arguments(picture, kEverything, passed));
      EXPECT_EQ(called.code, 0);
      for (unsigned i = 0; i < 3; ++i) {
        EXPECT_EQ(called.arguments[5 + i], isLeftOut(i) ? Value() : means[i]) << method << leftOut << ", " << i;
      }
    }
  }
}

TEST_F(ColourAverage, SourceMayBeReadOnly) {
  const Picture picture = MakePicture(kContext, 2, {0x80640000, 0xFF010203});
  Picture(picture).SetReadOnly(true);
  EXPECT_EQ(AverageRGB(picture), (RGBMeans{100, 1, 1}));
  EXPECT_EQ(AverageHSV(picture)[0], 0.0);
}

}  // namespace
