// docs/methods.md is right: its declarations and messages are those of the library, and so are the
// surprising results that it describes.
#include <algorithm>
#include <cmath>
#include <fstream>
#include <regex>

#include "ColourFixture.h"

namespace {

using namespace colour;

constexpr std::uint32_t kWhite = 0xFFFFFFFF;
constexpr host::Colour kAlmostOpaqueWhite = {0x01FFFFFF}, kClearFrame = {0xFF000000};

std::uint32_t Channel(std::uint32_t pixel, int shift) {
  return pixel >> shift & 0xFF;
}

class MethodsPage : public ColourTest {
 protected:
  MethodsPage() {
    std::ifstream in(LMX_METHODS_PAGE);
    EXPECT_TRUE(in);
    for (std::string line; std::getline(in, line);) lines_.push_back(line);
  }

  Picture Result(const std::string& name, const std::vector<Value>& arguments) {
    const Called called = Run(name, arguments);
    EXPECT_EQ(called.code, 0) << name;
    return called.result;
  }

  std::vector<std::string> lines_;
};

TEST_F(MethodsPage, HasTheDeclarationsAsTheHostGetsThem) {
  std::vector<std::string> registered, onThePage;
  for (const host::Method& method : host_.Methods()) registered.push_back(method.declaration);
  const std::regex declaration(R"(LMX_\w+\(.*\)( as \w+)?)");
  std::copy_if(lines_.begin(), lines_.end(), std::back_inserter(onThePage),
               [&](const std::string& line) { return std::regex_match(line, declaration); });
  std::sort(registered.begin(), registered.end());
  std::sort(onThePage.begin(), onThePage.end());
  EXPECT_EQ(onThePage, registered);
}

TEST_F(MethodsPage, HasTheMessages) {
  const std::regex row(R"(\| (\d+) \| (\w+ Error: .*?) \|.*)");
  int count = 0;
  for (const std::string& line : lines_) {
    std::smatch found;
    if (!std::regex_match(line, found, row)) continue;
    EXPECT_EQ(host_.Call("GetErrorMessage", {std::stoi(found[1])}).result.AsText(), found[2]);
    ++count;
  }
  EXPECT_EQ(count, 12);
}

TEST_F(MethodsPage, HasTheColumnsOfSelections) {
  host_.newPictures.storage = kBuffer;
  constexpr int kColumns = 10;
  const std::regex minus("−"), row(R"(\| (-?\d+) \| (-?\d+) \| (error )?(\d+)( to (\d+))?[ :].*)");
  int count = 0;
  for (const std::string& line : lines_) {
    if (line.rfind("| ", 0) != 0) continue;
    const std::string ascii = std::regex_replace(line, minus, "-");
    std::smatch found;
    if (!std::regex_match(ascii, found, row)) continue;
    ++count;
    const Picture picture = MakePlain(kBuffer, kColumns, 1, 0);
    const Called called = Run("AdjustRGB", {picture, std::stoi(found[1]), 0, std::stoi(found[2]), 0, 1, 0, 0, 0});
    EXPECT_EQ(called.code, found[3].matched ? std::stoi(found[4]) : 0) << line;
    if (called.result.IsNil()) continue;
    const int first = std::stoi(found[4]), last = found[6].matched ? std::stoi(found[6]) : first;
    for (int x = 0; x < kColumns; ++x) {
      EXPECT_EQ(called.result.Stored(x, 0) != 0, first <= x && x <= last) << line << " column " << x;
    }
  }
  EXPECT_EQ(count, 8);
}

// Conversions.

TEST_F(MethodsPage, ATranslucentColourLosesAStoredStepInEachCall) {
  Picture picture = MakePlain(kContext, 1, 1, 0x80640000);
  for (const std::uint32_t red : {99U, 98U, 97U}) {
    picture = Result("FlipRotate", {picture, false, false, 0, 0});
    EXPECT_EQ(Channel(picture.Stored(0, 0), 16), red);
  }
  EXPECT_EQ(Result("FlipRotate", {MakePlain(kContext, 1, 1, 0x02010101), false, false, 0, 0}).Stored(0, 0),
            0x02000000U);
}

// Colours.

TEST_F(MethodsPage, AnAdjustmentByNothingLowersChannelsByOneAtMost) {
  Picture colours({256, 256, kBuffer});
  std::uint32_t most = 0;
  for (std::uint32_t blue = 0; blue < 256; blue += 17) {
    for (int y = 0; y < 256; ++y) {
      for (int x = 0; x < 256; ++x) colours.SetStored(x, y, static_cast<std::uint32_t>(x << 16 | y << 8) | blue);
    }
    const Words before = colours.StoredPixels();
    Run("AdjustHSV_InPlace", {colours, 0, 0, 255, 255, 0, 1, 1, false, 0});
    const Words after = colours.StoredPixels();
    for (std::size_t i = 0; i < before.size(); ++i) {
      for (const int shift : {16, 8, 0}) most = std::max(most, Channel(before[i], shift) - Channel(after[i], shift));
    }
  }
  EXPECT_EQ(most, 1U);  // more where a channel has risen
}

TEST_F(MethodsPage, AGreyKeepsTheLargestChannelAndDoubledBrightnessTheColour) {
  host_.newPictures.storage = kBuffer;
  const auto adjusted = [this](std::uint32_t colour, int saturation, int brightness) {
    const Picture picture = MakePlain(kBuffer, 1, 1, colour);
    return Result("AdjustHSV", {picture, 0, 0, 0, 0, 0, saturation, brightness, false, 0}).Stored(0, 0);
  };
  EXPECT_EQ(adjusted(0xFF0000, 0, 1), 0xFFFFFFU);
  EXPECT_EQ(adjusted(0xFFFF00, 0, 1), 0xFFFFFFU);
  EXPECT_EQ(adjusted(0x102030, 0, 1), 0x303030U);
  EXPECT_EQ(adjusted(0xC86400, 1, 2), 0xFF7F00U);
}

// Forms.

TEST_F(MethodsPage, EdgesOfARotationBecomeDarkerAndThoseOfThreeShearsOnWhiteDoNot) {
  const auto leastColour = [](const Picture& picture) {
    std::uint32_t least = 255;
    for (const std::uint32_t pixel : picture.Straight()) {
      if (pixel >> 24 > 64) least = std::min(least, Channel(pixel, 8));
    }
    return least;
  };
  for (const Storage storage : {kContext, kBuffer}) {
    host_.newPictures.storage = storage;
    Picture white({40, 30, storage});
    white.Fill(Opaque(storage, 0xFFFFFF));
    EXPECT_LT(leastColour(Result("FreeRotateByShear", {white, 10.0, kClearFrame, 0})), 200U);

    const double angle = 10 * 3.14159265 / 180, slant = std::tan(angle / 2);
    const int width = static_cast<int>(std::ceil(40 + 30 * slant));
    const int height = static_cast<int>(std::ceil(30 + width * std::sin(angle)));
    const Picture first = Result("ShearHorizontal", {white, width, 30, slant, kAlmostOpaqueWhite, 0});
    const Picture second = Result("ShearVertical", {first, width, height, -std::sin(angle), kAlmostOpaqueWhite, 0});
    const Picture third = Result("ShearHorizontal", {second, width + 2, height, slant, kAlmostOpaqueWhite, 0});
    for (const std::uint32_t pixel : third.Straight()) {
      ASSERT_GE(pixel >> 24, 252U);
      ASSERT_GE(Channel(pixel, 8), 252U);
    }
  }
}

TEST_F(MethodsPage, AnOpaqueFrameGivesStairsAndATransparencyOfOneDoesNot) {
  const Picture black = MakePlain(kContext, 10, 10, 0xFF000000);
  const auto between = [&](host::Colour frame) {
    const std::vector<std::uint32_t> pixels = Result("ShearHorizontal", {black, 13, 10, 0.3, frame, 0}).Straight();
    return std::count_if(pixels.begin(), pixels.end(),
                         [](std::uint32_t pixel) { return Channel(pixel, 8) > 20 && Channel(pixel, 8) < 235; });
  };
  EXPECT_EQ(between({0x00FFFFFF}), 0);
  EXPECT_GE(between(kAlmostOpaqueWhite), 8);
}

TEST_F(MethodsPage, TheSizeThatHoldsEverythingDoes) {
  const auto covered = [](const Picture& picture) {
    const std::vector<std::uint32_t> pixels = picture.Straight();
    return std::count_if(pixels.begin(), pixels.end(), [](std::uint32_t pixel) { return pixel >> 24 != 0; });
  };
  const Picture white = MakePlain(kBuffer, 21, 17, 0xFFFFFF);
  for (const double shear : {0.3, -0.3, 0.71, -0.055, 1.0}) {
    const int width = static_cast<int>(std::ceil(21 + 17 * std::fabs(shear)));
    const int height = static_cast<int>(std::ceil(17 + 21 * std::fabs(shear)));
    EXPECT_EQ(covered(Result("ShearHorizontal", {white, width, 17, shear, kClearFrame, 0})),
              covered(Result("ShearHorizontal", {white, width + 20, 17, shear, kClearFrame, 0})))
        << shear;
    EXPECT_EQ(covered(Result("ShearVertical", {white, 21, height, shear, kClearFrame, 0})),
              covered(Result("ShearVertical", {white, 21, height + 20, shear, kClearFrame, 0})))
        << shear;
  }
}

TEST_F(MethodsPage, AStretchCutsFractionsAndDarkensCutOutPictures) {
  const Picture blackAndWhite = MakePicture(kContext, 2, {0xFF000000, kWhite});
  EXPECT_EQ(Result("Stretch", {blackAndWhite, 1, 1, 0}).Stored(0, 0), 0xFF7F7F7FU);
  const Picture clearAndWhite = MakePicture(kContext, 2, {0, kWhite});
  const std::uint32_t edge = Result("Stretch", {clearAndWhite, 1, 1, 0}).Straight().front();
  EXPECT_EQ(edge >> 24, 127U);
  EXPECT_LT(Channel(edge, 8), 130U);
}

TEST_F(MethodsPage, MostInnerRowsOfAnOpaqueGradientHaveAlpha254) {
  const Picture gradient = Result("MakeGradient", {1, 100, host::Colour{0x3070D0}, host::Colour{0xF0F8FF}, 0});
  int rows = 0;
  for (int y = 1; y < 99; ++y) rows += gradient.Stored(0, y) >> 24 == 254;
  EXPECT_GT(rows, 50);
}

// How do I …

TEST_F(MethodsPage, BandsOfRowsDoWhatOneCallDoes) {
  const auto picture = [] {
    Picture made({50, 100, kContext});
    for (int y = 0; y < 100; ++y) {
      for (int x = 0; x < 50; ++x) made.SetStored(x, y, 0x80000000 | static_cast<std::uint32_t>(x << 16 | y << 8 | 77));
    }
    return made;
  };
  const Picture whole = picture(), bands = picture();
  Run("AdjustRGB_InPlace", {whole, 0, 0, 49, 99, 20, 5, -20, 0});
  for (int top = 0; top < 100; top += 32) Run("AdjustRGB_InPlace", {bands, 0, top, 49, 31, 20, 5, -20, 0});
  EXPECT_TRUE(bands.SamePixels(whole));
}

}  // namespace
