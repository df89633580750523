// Calls of methods on picture files: the arguments that the plug-in gets, the output, and the
// messages about it.
#include <gtest/gtest.h>

#include <regex>

#include "Files.h"
#include "Process.h"

namespace tool_test {
namespace {

using Pixels = std::vector<std::uint32_t>;

void ExpectImage(const tool::Image& image, int width, int height, const Pixels& pixels) {
  EXPECT_EQ(image.width, width);
  EXPECT_EQ(image.height, height);
  EXPECT_EQ(image.pixels, pixels);
}

class CallTest : public FileTest {
 protected:
  // Runs lmx with -o NAME and returns what it wrote.
  tool::Image Run(std::vector<std::string> arguments, const std::string& name = "out.png") {
    arguments.insert(arguments.end(), {"-o", Path(name)});
    ended_ = Lmx(arguments);
    EXPECT_EQ(ended_.status, 0) << ended_.error;
    EXPECT_EQ(ended_.error, "");
    return Result(name);
  }

  const std::string small_ = Given("small.png", SmallImage());
  Ended ended_;
};

TEST_F(CallTest, TurnsEveryPixelToItsPlace) {
  const tool::Image turned = Run({"FlipRotate", small_, "rotation=90"});
  ExpectImage(turned, 2, 3, {0xFFA0B0C0, 0xFF102030, 0xFFD0E0F0, 0xFF405060, 0xFF0A141E, 0xFF708090});
  EXPECT_EQ(ended_.out, "");
}

TEST_F(CallTest, NamesMayLackThePrefixAndHaveAnyCase) {
  const tool::Image expected = Run({"LMX_FlipRotate", small_, "flip_h=true"});
  ExpectImage(expected, 3, 2, {0xFF708090, 0xFF405060, 0xFF102030, 0xFF0A141E, 0xFFD0E0F0, 0xFFA0B0C0});
  EXPECT_EQ(Run({"fliprotate", small_, "FLIP_H=Yes"}).pixels, expected.pixels);
  EXPECT_EQ(Run({"lmx_FLIPROTATE", small_, "flip_h=1"}).pixels, expected.pixels);
}

TEST_F(CallTest, ReadsJpeg) {
  const tool::Image plain{16, 16, Pixels(256, 0xFF3C78B4)};
  WriteFile(Path("plain.jpg"), Jpeg(plain));
  const tool::Image result = Run({"AdjustRGB", Path("plain.jpg"), "red_delta=100"});
  ASSERT_EQ(result.pixels.size(), 256u);
  ExpectColour(result, 0xA078B4, 2);
}

TEST_F(CallTest, KeepsAlpha) {
  const std::string soft = Given("soft.png", {2, 2, {0x80FF0000, 0x00000000, 0xFF00FF00, 0x400000FF}});
  const tool::Image context = Run({"FlipRotate", soft, "flip_h=yes"});
  ExpectImage(context, 2, 2, {0x00000000, 0x80FF0000, 0x400000FF, 0xFF00FF00});
  // Seven bits of transparency.
  const tool::Image buffer = Run({"FlipRotate", soft, "flip_h=yes", "--storage=buffer"});
  ASSERT_EQ(buffer.pixels.size(), 4u);
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_NEAR(static_cast<int>(buffer.pixels[i] >> 24), static_cast<int>(context.pixels[i] >> 24), 1);
    EXPECT_EQ(buffer.pixels[i] & 0xFFFFFF, context.pixels[i] & 0xFFFFFF);
  }
}

TEST_F(CallTest, ColoursMeanTheSameInEveryForm) {
  const tool::Image web = Run({"MakeGradient", "width=1", "height=2", "color1=&c11223300", "color2=&C445566ff"});
  ExpectImage(web, 1, 2, {0xFF112233, 0x00000000});
  EXPECT_EQ(Run({"MakeGradient", "width=1", "height=2", "color1=#123", "color2=&hFF445566"}).pixels, web.pixels);
}

TEST_F(CallTest, StepsWorkOnTheResultOfTheOneBefore) {
  Run({"FlipRotate", small_, "rotation=90"}, "first.png");
  const tool::Image apart = Run({"Stretch", Path("first.png"), "width=5", "height=4"});
  const tool::Image chained = Run({"FlipRotate", small_, "rotation=90", "+", "Stretch", "width=5", "height=4"});
  ExpectImage(chained, 5, 4, apart.pixels);
  const tool::Image made = Run({"MakeGradient", "width=2", "height=3", "+", "FlipRotate", "rotation=90"});
  EXPECT_EQ(made.width, 3);
  EXPECT_EQ(made.height, 2);
}

TEST_F(CallTest, InPlaceMethodsHandTheChangedPictureOn) {
  const tool::Image expected = Run({"AdjustRGB", small_, "green_delta=9", "+", "FlipRotate", "flip_v=1"});
  EXPECT_EQ(expected.pixels[3], 0xFF102930u);
  EXPECT_EQ(Run({"AdjustRGB_InPlace", small_, "green_delta=9", "+", "FlipRotate", "flip_v=1"}).pixels, expected.pixels);
  EXPECT_EQ(Run({"AdjustRGB_InPlace", small_, "green_delta=9"}).pixels[0], 0xFF102930u);
  EXPECT_EQ(ReadFile(small_), Png(SmallImage()));
}

// Also if the method changes its picture, which must happen only once.
TEST_F(CallTest, RepeatedCallsCountOnce) {
  const tool::Image once =
      Run({"AdjustRGB_InPlace", small_, "green_delta=9", "+", "FlipRotate", "rotation=90", "--json"});
  const std::string told = std::regex_replace(ended_.out, std::regex("\"milliseconds\":[0-9.]+"), "");
  const tool::Image repeated =
      Run({"AdjustRGB_InPlace", small_, "green_delta=9", "+", "FlipRotate", "rotation=90", "--json", "--repeat", "3"});
  EXPECT_EQ(repeated.pixels, once.pixels);
  EXPECT_EQ(std::regex_replace(ended_.out, std::regex("\"milliseconds\":[0-9.]+"), ""), told);
}

TEST_F(CallTest, SelectionsAreTheWholePictureUnlessGiven) {
  for (const std::uint32_t pixel : Run({"AdjustRGB", small_, "red_delta=255"}).pixels) {
    EXPECT_EQ(pixel >> 16, 0xFFFFu);
  }
  const tool::Image part = Run({"AdjustRGB", small_, "red_delta=255", "left=1", "top=1", "width=0", "height=0"});
  ExpectImage(part, 3, 2, {0xFF102030, 0xFF405060, 0xFF708090, 0xFFA0B0C0, 0xFFFFE0F0, 0xFF0A141E});
  const tool::Image rest = Run({"AdjustRGB", small_, "red_delta=255", "left=1", "top=1"});
  ExpectImage(rest, 3, 2, {0xFF102030, 0xFF405060, 0xFF708090, 0xFFA0B0C0, 0xFFFFE0F0, 0xFFFF141E});
}

TEST_F(CallTest, SizesFollowThePictureUnlessGiven) {
  const auto expectSize = [&](const std::vector<std::string>& arguments, int width, int height) {
    const tool::Image result = Run(arguments);
    EXPECT_EQ(result.width, width) << testing::PrintToString(arguments);
    EXPECT_EQ(result.height, height) << testing::PrintToString(arguments);
  };
  expectSize({"Stretch", small_}, 3, 2);
  expectSize({"Stretch", small_, "width=12"}, 12, 8);
  expectSize({"Stretch", small_, "height=1"}, 2, 1);
  expectSize({"Stretch", small_, "width=1", "height=7"}, 1, 7);
  expectSize({"Trim", small_, "left=1"}, 2, 2);
  expectSize({"Trim", small_, "left=-2", "top=1"}, 5, 1);
  expectSize({"ShearHorizontal", small_, "shear=1"}, 5, 2);
  expectSize({"ShearHorizontal", small_, "shear=-0.6"}, 5, 2);
  expectSize({"ShearVertical", small_, "shear=-1"}, 3, 5);
  expectSize({"MakeGradient"}, 256, 256);
}

TEST_F(CallTest, NegativeNumbersAndClearFrames) {
  ExpectImage(Run({"Trim", small_, "left=-1", "top=-1", "width=2", "height=2"}), 2, 2, {0, 0, 0, 0xFF102030});
  const tool::Image framed =
      Run({"Trim", small_, "left=3", "width=1", "height=1", "frame_color=#abcdef", "--storage=buffer"});
  ExpectImage(framed, 1, 1, {0x00ABCDEF});
}

TEST_F(CallTest, OpaqueShowsWhatIsBelowTheTransparency) {
  const std::vector<std::string> negative = {"AdjustHSV", small_, "negative=yes"};
  for (const std::uint32_t pixel : Run(negative).pixels) EXPECT_EQ(pixel, 0u);
  std::vector<std::string> buffer = negative;
  buffer.push_back("--storage=buffer");
  const tool::Image clear = Run(buffer);
  buffer.push_back("--opaque");
  const tool::Image opaque = Run(buffer);
  const tool::Image adjusted = Run({"AdjustHSV", small_, "--storage=buffer"});
  ASSERT_EQ(opaque.pixels.size(), 6u);
  for (std::size_t i = 0; i < 6; ++i) {
    EXPECT_EQ(clear.pixels[i], ~adjusted.pixels[i] & 0xFFFFFF);
    EXPECT_EQ(opaque.pixels[i], 0xFF000000 | clear.pixels[i]);
  }
}

TEST_F(CallTest, BothStorageFormsGiveTheSameOpaqueResult) {
  const std::string opaque = Given("opaque.png", OpaqueImage(37, 23));
  const std::vector<std::vector<std::string>> calls = {
      {"FlipRotate", opaque, "flip_v=1", "rotation=270"},
      {"FreeRotateByShear", opaque, "rotation=180"},
      {"ShearHorizontal", opaque, "shear=1", "frame_color=#336699"},
      {"ShearVertical", opaque, "shear=-1", "frame_color=#336699"},
      {"Stretch", opaque, "width=91", "height=11"},
      {"Trim", opaque, "left=5", "top=6", "width=17", "height=9"},
      {"AdjustHSV", opaque, "hue_degrees=-77", "brightness_factor=2"},
      {"AdjustHSV_InPlace", opaque, "saturation_factor=2", "left=7"},
      {"AdjustRGB", opaque, "blue_delta=-99", "top=4"},
      {"AdjustRGB_InPlace", opaque, "red_delta=99"},
      {"MakeGradient", "height=2", "color1=#ff0000", "color2=#00ff00"},
      {"MakeDoubleGradient", "width=9", "height=4", "color1=#ff0000", "color2=#00ff00", "color3=#0000ff"},
  };
  for (std::vector<std::string> call : calls) {
    call.push_back("--storage=context");
    const tool::Image context = Run(call);
    call.back() = "--storage=buffer";
    const tool::Image buffer = Run(call);
    ExpectImage(buffer, context.width, context.height, context.pixels);
    EXPECT_FALSE(context.pixels.empty());
    for (const std::uint32_t pixel : context.pixels) ASSERT_EQ(pixel >> 24, 0xFFu) << call.front();
  }
}

TEST_F(CallTest, MeasuresForPeople) {
  const Ended ended = Lmx({"GetAverageRGB", small_, "width=0", "height=0", "left=2"});
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.out, "red = 112, green = 128, blue = 144\n");
}

TEST_F(CallTest, MeasuresForScripts) {
  const Ended ended = Lmx({"GetAverageRGB", small_, "width=0", "height=0", "left=2", "--json"});
  const std::regex expected(
      R"re(\{"method":"LMX_GetAverageRGB","call":"p\.LMX_GetAverageRGB\(2, 0, 0, 0, red, green, blue, 0\)",)re"
      R"("error":0,"message":"General Error: No Error","milliseconds":[0-9]+\.[0-9]{3},"width":3,"height":2,)"
      R"("results":\{"red":112,"green":128,"blue":144\}\}\n)");
  EXPECT_TRUE(std::regex_match(ended.out, expected)) << ended.out;
}

TEST_F(CallTest, NaNIsAResult) {
  const std::string grey = Given("grey.png", {1, 1, {0xFF808080}});
  EXPECT_EQ(Lmx({"GetAverageHSV", grey}).out, "hue_degrees = NaN, saturation = 0, brightness = 0.5\n");
  const Ended ended = Lmx({"GetAverageHSV", grey, "--json"});
  EXPECT_EQ(ended.status, 0);
  EXPECT_PRED2(Contains, ended.out, R"("results":{"hue_degrees":null,"saturation":0,"brightness":0.5})");
}

TEST_F(CallTest, MeasuringPassesThePictureOn) {
  const tool::Image result =
      Run({"AdjustRGB", small_, "red_delta=-255", "+", "GetAverageRGB", "+", "FlipRotate", "flip_h=1"});
  EXPECT_EQ(ended_.out, "red = 0, green = 110, blue = 125\n");
  ASSERT_EQ(result.pixels.size(), 6u);
  EXPECT_EQ(result.pixels[0], 0xFF008090u);
}

TEST_F(CallTest, AChainMayEndInAMeasurementAlone) {
  EXPECT_EQ(Lmx({"FlipRotate", small_, "rotation=180", "+", "GetAverageRGB", "width=0", "height=0"}),
            (Ended{0, "red = 10, green = 20, blue = 30\n", ""}));
  EXPECT_EQ(Names(), std::vector<std::string>{"small.png"});
}

TEST_F(CallTest, NumbersThatCountAsOthersAreNoted) {
  const auto noted = [&](const std::vector<std::string>& call) {
    std::vector<std::string> words = call;
    words.insert(words.end(), {"-o", Path("out.png")});
    const Ended ended = Lmx(words);
    EXPECT_EQ(ended.status, 0) << ended.error;
    return ended.error;
  };
  EXPECT_EQ(noted({"FlipRotate", small_, "rotation=45"}), "lmx: note: rotation=45 counts as 0 in LMX_FlipRotate\n");
  EXPECT_EQ(noted({"FlipRotate", small_, "rotation=300"}), "lmx: note: rotation=300 counts as 270 in LMX_FlipRotate\n");
  EXPECT_EQ(noted({"FlipRotate", small_, "rotation=-89"}), "lmx: note: rotation=-89 counts as 0 in LMX_FlipRotate\n");
  EXPECT_EQ(noted({"AdjustHSV", small_, "saturation_factor=1.5", "brightness_factor=0.9"}),
            "lmx: note: saturation_factor=1.5 counts as 1 in LMX_AdjustHSV\n"
            "lmx: note: brightness_factor=0.9 counts as 0 in LMX_AdjustHSV\n");
  EXPECT_EQ(noted({"FlipRotate", small_, "rotation=180", "+", "AdjustHSV", "brightness_factor=2"}), "");
  EXPECT_EQ(noted({"FreeRotateByShear", small_, "rotation=45"}), "");
}

// 384 x 21931 pixels of 255 are the most whose sum fits into 32 bits.
TEST_F(CallTest, SumsThatDoNotFitAreTold) {
  const auto measured = [](const char* height, const char* method, const char* part) {
    return Lmx({"MakeGradient", "width=384", height, "color2=#000000", "+", "AdjustRGB_InPlace", "red_delta=255", "+",
                method, part});
  };
  const Ended fits = measured("height=21931", "GetAverageRGB", "left=0");
  EXPECT_EQ(fits.error, "");
  EXPECT_EQ(fits.out, "red = 255, green = 0, blue = 0\n");
  const Ended wraps = measured("height=21932", "GetAverageRGB", "left=0");
  EXPECT_EQ(wraps.status, 0);
  EXPECT_EQ(wraps.out, "red = -254, green = 0, blue = 0\n");
  EXPECT_PRED2(StartsWith, wraps.error,
               "lmx: warning: red adds up to 2147581440, and LMX_GetAverageRGB counts to 2147483647");
  EXPECT_EQ(wraps.error.find("green"), std::string::npos);
  EXPECT_PRED2(Contains, measured("height=21932", "GetAverageHSV", "left=0").error, "LMX_GetAverageHSV");
  EXPECT_EQ(measured("height=21932", "GetAverageRGB", "left=1").error, "");
}

TEST_F(CallTest, VerboseShowsTheProgramThatWouldDoTheSame) {
  Run({"FlipRotate", small_, "flip_h=1", "rotation=90", "+", "AdjustHSV_InPlace", "hue_degrees=60", "yield=7", "-v",
       "--yield=3"});
  const std::regex expected(
      "result = p\\.LMX_FlipRotate\\(True, False, 90, 3\\)\n"
      "  error 0 \\(General Error: No Error\\), 2 x 3 pixels, [0-9.]+ ms\n"
      "result\\.LMX_AdjustHSV_InPlace\\(0, 0, 2, 3, 60\\.0, 1\\.0, 1\\.0, False, 7\\)\n"
      "  error 0 \\(General Error: No Error\\), 2 x 3 pixels, [0-9.]+ ms\n");
  EXPECT_TRUE(std::regex_match(ended_.out, expected)) << ended_.out;
}

TEST_F(CallTest, ReportingMethodsPrintWhatTheyReturn) {
  EXPECT_EQ(Lmx({"GetErrorMessage", "errorCode=31"}).out, "Rotate Error: \"rotation\" parameter is out of bounds\n");
  EXPECT_EQ(Lmx({"GetErrorMessage", "errorCode=-1"}).out, "Unknown Error\n");
  EXPECT_EQ(Lmx({"GetLastError"}).out, "0\n");
  const std::string json = Lmx({"GetErrorMessage", "errorCode=31", "--json"}).out;
  EXPECT_PRED2(Contains, json, R"("results":{"result":"Rotate Error: \"rotation\" parameter is out of bounds"})");
}

TEST_F(CallTest, FailuresShowThePluginsMessage) {
  const Ended ended = Lmx({"FlipRotate", small_, "rotation=360", "-o", Path("out.png")});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(
      ended.error,
      "lmx: LMX_FlipRotate: Rotate Error: \"rotation\" parameter is out of bounds (error 31); rotation=360 is out "
      "of range: -89 to 359\n");
  EXPECT_EQ(ended.out, "");
  EXPECT_EQ(Names(), std::vector<std::string>{"small.png"});
}

TEST_F(CallTest, FailuresTellTheRangeOfWhatWasTyped) {
  const auto told = [&](std::vector<std::string> call) {
    call.insert(call.begin() + 1, small_);
    call.insert(call.end(), {"-o", Path("out.png")});
    const std::string error = Lmx(call).error;
    return error.substr(error.find(';') + 1);
  };
  EXPECT_EQ(told({"AdjustRGB", "RED_delta=300", "blue_delta=-255"}), " RED_delta=300 is out of range: -255 to 255\n");
  EXPECT_EQ(told({"AdjustHSV", "hue_degrees=-360"}), " hue_degrees=-360 is out of range: above -360 and below 360\n");
  EXPECT_EQ(told({"AdjustHSV", "saturation_factor=1e3"}),
            " saturation_factor=1e3 is out of range: from 0 and below 1000\n");
  EXPECT_EQ(told({"FreeRotateByShear", "rotation=360"}), " rotation=360 is out of range: from 0 and below 360\n");
  EXPECT_EQ(told({"ShearVertical", "shear=1.5"}), " shear=1.5 is out of range: -1 to 1\n");
  EXPECT_EQ(told({"ShearHorizontal", "shear=1", "Width=0"}), " Width=0 is out of range: at least 1\n");
  EXPECT_EQ(told({"Stretch", "width=0", "height=70000"}),
            " width=0 is out of range: 1 to 65535; height=70000 is out of range: 1 to 65535\n");
  EXPECT_EQ(told({"Trim", "width=0", "left=1"}), " width=0 is out of range: at least 1\n");
}

TEST_F(CallTest, FailuresOfMethodsWithoutAPictureResultCountToo) {
  const Ended ended = Lmx({"AdjustRGB_InPlace", small_, "red_delta=256", "-o", Path("out.png")});
  EXPECT_EQ(ended.status, 1);
  EXPECT_PRED2(Contains, ended.error, "Color Error: red parameter out of bounds");
  const Ended measured = Lmx({"GetAverageRGB", small_, "left=2", "width=-2"});
  EXPECT_EQ(measured.status, 1);
  EXPECT_EQ(measured.out, "");
  EXPECT_PRED2(Contains, measured.error, "Color Error: invalid selection");
}

TEST_F(CallTest, ScriptsGetFailuresTooAndNoStepFollows) {
  const Ended ended = Lmx({"Stretch", small_, "width=0", "+", "FlipRotate", "--json", "-o", Path("out.png")});
  EXPECT_EQ(ended.status, 1);
  const std::regex expected(R"(\{"method":"LMX_Stretch",.*"error":34,"message":"Stretch Error: \\"width\\" parameter)"
                            R"( is out of bounds",.*"width":null,"height":null,"results":\{\}\}\n)");
  EXPECT_TRUE(std::regex_match(ended.out, expected)) << ended.out;
}

TEST_F(CallTest, NoPictureWithoutACodeIsAFailure) {
  const Ended ended = Lmx({"ShearHorizontal", small_, "shear=0.5", "width=0", "-o", Path("out.png")});
  EXPECT_EQ(ended.status, 1);
  EXPECT_PRED2(Contains, ended.error, "LMX_ShearHorizontal returned no picture");
  EXPECT_EQ(Names(), std::vector<std::string>{"small.png"});
}

TEST_F(CallTest, ThePluginDecidesAboutSpecialNumbers) {
  Run({"FreeRotateByShear", small_, "rotation=0"});
  EXPECT_EQ(Lmx({"ShearVertical", small_, "shear=inf", "-o", Path("out.png")}).status, 1);
  EXPECT_EQ(Lmx({"AdjustHSV", small_, "saturation_factor=nan", "-o", Path("out.png")}).status, 0);
  const tool::Image grey = Result("out.png");
  EXPECT_EQ(grey.pixels[0], 0xFF303030u);
}

}  // namespace
}  // namespace tool_test
