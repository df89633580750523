// What lmx says about itself, and how it answers command lines that are wrong.
#include <gtest/gtest.h>

#include <sstream>

#include "Files.h"
#include "Process.h"
#include "host/Declaration.h"
#include "host/Host.h"
#include "tool/CommandLine.h"
#include "tool/Errors.h"
#include "tool/PictureFile.h"
#include "tool/Usage.h"

namespace tool_test {
namespace {

std::string WithSingleBlanks(const std::string& text) {
  std::istringstream words(text);
  std::string result;
  for (std::string word; words >> word;) result += (result.empty() ? "" : " ") + word;
  return result;
}

class UsageTest : public FileTest {
 protected:
  // A wrong command line names what is wrong, does nothing, and says nothing on standard output.
  void ExpectWrong(std::vector<std::string> arguments, const std::vector<std::string>& parts) {
    for (std::string& argument : arguments) {
      if (argument == "SMALL") argument = Given("small.png", SmallImage());
      if (argument == "OUT") argument = Path("out.png");
    }
    const Ended ended = Lmx(arguments);
    EXPECT_EQ(ended.status, 2) << testing::PrintToString(arguments) << ended.error;
    EXPECT_EQ(ended.out, "") << testing::PrintToString(arguments);
    for (const std::string& part : parts) EXPECT_TRUE(Contains(ended.error, part)) << part << " in " << ended.error;
    for (const std::string& name : Names()) EXPECT_EQ(name, "small.png");
  }
};

constexpr const char* kStretch =
    "LMX_Stretch(extends p as picture, width as integer, height as integer, yield as integer) as picture";

TEST_F(UsageTest, HelpNamesEveryOptionAndCommand) {
  for (const char* option : {"--help", "-h", "help"}) {
    const Ended ended = Lmx({option});
    EXPECT_EQ(ended.status, 0);
    EXPECT_TRUE(Contains(ended.out, std::to_string(tool::kMaxPixels) + " pixels"));
    EXPECT_TRUE(Contains(ended.out, "small files slowly; default: " + std::to_string(tool::Encoding().compression)));
    EXPECT_TRUE(Contains(ended.out, "1 to 100; default: " + std::to_string(tool::Encoding().quality) + "."));
    for (const char* part :
         {"--output", "--jobs",     "--storage",  "--yield",   "--format", "--compression", "--quality",
          "--opaque", "--verbose",  "--json",     "--repeat",  "--plugin", "--help",        "--version",
          "lmx list", "lmx help",   "lmx chart",  "lmx bench", "lmx info", "lmx compare",   "--tolerance",
          "#rrggbb",  "&cRRGGBBTT", "&hTTRRGGBB", "130"}) {
      EXPECT_TRUE(Contains(ended.out, part)) << part;
    }
    for (const std::string& line : Lines(ended.out)) EXPECT_LE(line.size(), 100u) << line;
  }
}

TEST_F(UsageTest, EveryCommandOfTheHelpIsOne) {
  for (const tool::Command& command : tool::Commands()) {
    if (*command.name == '\0') continue;
    const Ended ended = Lmx({command.name, "too", "many", "words"});
    EXPECT_NE(ended.status, 0) << command.name;
    EXPECT_FALSE(Contains(ended.error, "no method")) << ended.error;
  }
}

TEST_F(UsageTest, VersionTellsTheAbi) {
  const Ended ended = Lmx({"--version"});
  EXPECT_EQ(ended.status, 0);
  EXPECT_TRUE(Contains(ended.out, sizeof(void*) == 4 ? "32-bit" : "64-bit")) << ended.out;
}

TEST_F(UsageTest, TheVersionIsTheSameEverywhere) {
  const std::string version = LMX_VERSION;
  const auto text = [](const Bytes& bytes) { return std::string(bytes.begin(), bytes.end()); };
  EXPECT_EQ(Lmx({"--version"}).out.rfind("lmx " + version + " (", 0), 0u);
  EXPECT_PRED2(StartsWith, Lmx({"--help"}).out, "lmx " + version + " ");
  EXPECT_TRUE(Contains(text(ReadFile(LMX_LIBRARY)), std::string("LMX " + version) + '\0'));
  EXPECT_TRUE(Contains(text(ReadFile(LMX_CHANGELOG)), "\n## " + version + "\n"));
}

TEST_F(UsageTest, ListsTheMethodsInThePluginsOrderWithALineEach) {
  const Ended ended = Lmx({"list"});
  EXPECT_EQ(ended.status, 0);
  const std::vector<std::string> lines = Lines(ended.out);
  host::Host plugin;
  plugin.Load(LMX_LIBRARY);
  ASSERT_EQ(lines.size(), plugin.Methods().size());
  for (std::size_t i = 0; i < lines.size(); ++i) EXPECT_PRED2(StartsWith, lines[i], plugin.Methods()[i].name + " ");
  for (const std::string& line : lines) EXPECT_GT(WithSingleBlanks(line).size(), line.find(' ') + 10) << line;
}

TEST_F(UsageTest, HelpOfAMethodShowsItsDeclarationAndEveryArgument) {
  for (const std::string& line : Lines(Lmx({"list"}).out)) {
    const std::string name = line.substr(0, line.find(' '));
    const Ended ended = Lmx({"help", name});
    EXPECT_EQ(ended.status, 0) << name;
    const std::string text = WithSingleBlanks(ended.out);
    const host::Method method = host::ParseDeclaration(text.substr(0, text.find(')') + 1));
    EXPECT_EQ(method.name, name);
    for (const host::Parameter& parameter : method.parameters) {
      EXPECT_TRUE(Contains(text, parameter.name + " " + host::TypeName(parameter.type) + " ")) << parameter.name;
    }
  }
  EXPECT_TRUE(Contains(WithSingleBlanks(Lmx({"help", "stretch"}).out), kStretch));
}

TEST_F(UsageTest, NothingToDo) {
  ExpectWrong({}, {"lmx list"});
  ExpectWrong({"+"}, {"+"});
  ExpectWrong({"FlipRotate", "SMALL", "+", "-o", "OUT"}, {"+"});
  ExpectWrong({"FlipRotate", "SMALL", "+", "+", "FlipRotate", "-o", "OUT"}, {"+"});
}

TEST_F(UsageTest, UnknownMethods) {
  ExpectWrong({"Blur", "SMALL", "-o", "OUT"}, {"`Blur`", "lmx list"});
  ExpectWrong({"FlipRotate", "SMALL", "+", "Blur", "-o", "OUT"}, {"`Blur`"});
  ExpectWrong({"help", "Blur"}, {"`Blur`"});
}

TEST_F(UsageTest, NearNamesAreSuggested) {
  ExpectWrong({"Strech", "SMALL", "-o", "OUT"}, {"`Strech`", "did you mean `Stretch`?"});
  ExpectWrong({"lmx_fliprotaet", "SMALL", "-o", "OUT"}, {"did you mean `FlipRotate`?"});
  ExpectWrong({"help", "GetAverageRBG"}, {"did you mean `GetAverageRGB`?"});
  ExpectWrong({"lits"}, {"did you mean `list`?"});
  ExpectWrong({"Stretch", "SMALL", "widht=5", "-o", "OUT"}, {"did you mean `width`?", kStretch});
  ExpectWrong({"AdjustHSV", "SMALL", "hue_degree=5", "-o", "OUT"}, {"did you mean `hue_degrees`?"});
  for (const std::string& far : {std::string("Sharpen"), std::string("x"), std::string(3000, 'S')}) {
    EXPECT_FALSE(Contains(Lmx({far}).error, "did you mean")) << far;
  }
}

TEST_F(UsageTest, WrongArgumentsAreNamedAndTheDeclarationShown) {
  ExpectWrong({"Stretch", "SMALL", "widht=5", "-o", "OUT"}, {"`widht`", kStretch});
  ExpectWrong({"Stretch", "SMALL", "width=5", "WIDTH=6", "-o", "OUT"}, {"`width`", "twice", kStretch});
  ExpectWrong({"Stretch", "SMALL", "p=a.png", "-o", "OUT"}, {"`p`", kStretch});
  ExpectWrong({"GetAverageRGB", "SMALL", "red=5"}, {"`red`", "result", "LMX_GetAverageRGB("});
  ExpectWrong({"FreeRotateByShear", "SMALL", "-o", "OUT"}, {"`rotation`", "LMX_FreeRotateByShear("});
  ExpectWrong({"GetErrorMessage"}, {"`errorCode`", "LMX_GetErrorMessage("});
}

TEST_F(UsageTest, MalformedValuesAreNamedAndTheDeclarationShown) {
  for (const char* value : {"width=1.5", "width=", "width=2147483648", "width=0x10", "width= 5", "width=five"}) {
    ExpectWrong({"Stretch", "SMALL", value, "-o", "OUT"}, {"`width`", "whole number", kStretch});
  }
  ExpectWrong({"Stretch", "SMALL", "WIDTH=five", "-o", "OUT"}, {"`WIDTH`", "`five`"});
  ExpectWrong({"FlipRotate", "SMALL", "flip_h=maybe", "-o", "OUT"}, {"`flip_h`", "`maybe`", "true or false"});
  ExpectWrong({"ShearVertical", "SMALL", "shear=1,5", "-o", "OUT"}, {"`shear`", "`1,5`", "number"});
  ExpectWrong({"MakeGradient", "color1=blue", "-o", "OUT"}, {"`color1`", "`blue`", "#rrggbb"});
}

TEST_F(UsageTest, PicturesInWrongPlaces) {
  ExpectWrong({"Stretch", "width=5", "-o", "OUT"}, {"picture", kStretch});
  ExpectWrong({"Stretch", "SMALL", "SMALL", "-o", "OUT"}, {"small.png", kStretch});
  ExpectWrong({"MakeGradient", "SMALL", "-o", "OUT"}, {"small.png", "takes no picture"});
  ExpectWrong({"FlipRotate", "SMALL", "+", "Stretch", "SMALL", "-o", "OUT"}, {"small.png", "step before"});
  ExpectWrong({"FlipRotate", "SMALL", "+", "MakeGradient", "-o", "OUT"}, {"LMX_MakeGradient", "first"});
  ExpectWrong({"GetErrorMessage", "errorCode=0", "+", "FlipRotate", "-o", "OUT"}, {"leaves no picture"});
}

TEST_F(UsageTest, OutputsThatCannotBe) {
  ExpectWrong({"FlipRotate", "SMALL"}, {"-o"});
  ExpectWrong({"AdjustRGB_InPlace", "SMALL"}, {"-o"});
  ExpectWrong({"AdjustRGB_InPlace", "SMALL", "+", "GetAverageRGB", "+", "FlipRotate"}, {"-o"});
  ExpectWrong({"GetErrorMessage", "errorCode=0", "-o", "OUT"}, {"no picture", "out.png"});
  ExpectWrong({"FlipRotate", "SMALL", "-o", Path("out.bmp")}, {"PNG", "JPEG", "out.bmp"});
  ExpectWrong({"FlipRotate", "SMALL", "-o", Path("out.webp")}, {"PNG", "out.webp"});
  ExpectWrong({"chart", "-o", Path("chart.gif")}, {"PNG", "chart.gif"});
  ExpectWrong({"chart"}, {"-o"});
}

TEST_F(UsageTest, WrongOptions) {
  ExpectWrong({"FlipRotate", "SMALL", "--fast", "-o", "OUT"}, {"--fast"});
  ExpectWrong({"FlipRotate", "SMALL", "-x", "-o", "OUT"}, {"-x"});
  ExpectWrong({"FlipRotate", "SMALL", "-o"}, {"-o"});
  ExpectWrong({"FlipRotate", "SMALL", "-o", "OUT", "--yield"}, {"--yield"});
  ExpectWrong({"FlipRotate", "SMALL", "-o", "OUT", "--yield", "many"}, {"--yield", "`many`"});
  ExpectWrong({"FlipRotate", "SMALL", "-o", "OUT", "--repeat", "0"}, {"--repeat", "`0`"});
  ExpectWrong({"FlipRotate", "SMALL", "-o", "OUT", "--repeat=often"}, {"--repeat", "`often`"});
  ExpectWrong({"FlipRotate", "SMALL", "-o", "OUT", "--storage=disk"}, {"--storage", "`disk`"});
  ExpectWrong({"FlipRotate", "SMALL", "-o", "OUT", "--json=yes"}, {"--json"});
  for (const char* level : {"-1", "10", "x"}) {
    ExpectWrong({"FlipRotate", "SMALL", "-o", "OUT", "--compression", level}, {"--compression", level});
  }
  for (const char* quality : {"0", "101", "best"}) {
    ExpectWrong({"FlipRotate", "SMALL", "-o", Path("o.jpg"), "--quality", quality}, {"--quality", quality});
  }
  ExpectWrong({"FlipRotate", "SMALL", "-o", "OUT", "--quality=90"}, {"--quality", "is a PNG"});
  ExpectWrong({"FlipRotate", "SMALL", "-o", Path("o.JPG"), "--compression=2"}, {"--compression", "is a JPEG"});
  ExpectWrong({"FlipRotate", "SMALL", "-o", "-", "--format=gif"}, {"--format", "`gif`"});
  ExpectWrong({"FlipRotate", "SMALL", "-o", "OUT", "--format=jpeg"}, {"--format", "out.png"});
  ExpectWrong({"FlipRotate", "SMALL", "-o", "-", "--quality=9"}, {"--quality", "PNG"});
  ExpectWrong({"list", "everything"}, {"list"});
  ExpectWrong({"chart", "x", "-o", "OUT"}, {"chart"});
  ExpectWrong({"bench"}, {"picture"});
  ExpectWrong({"bench", "SMALL", "SMALL"}, {"bench"});
}

TEST_F(UsageTest, EverythingIsCheckedBeforeAnyPictureIsRead) {
  ExpectWrong({"FlipRotate", Path("missing.png"), "+", "Stretch", "width=x", "-o", "OUT"}, {"`width`"});
}

TEST_F(UsageTest, APluginThatCannotBeLoaded) {
  Ended ended = Lmx({"list", "--plugin", Path("missing.so")});
  EXPECT_EQ(ended.status, 1);
  EXPECT_TRUE(Contains(ended.error, "missing.so")) << ended.error;
  WriteFile(Path("text.so"), Text("none"));
  ended = Lmx({"list", "--plugin", Path("text.so")});
  EXPECT_EQ(ended.status, 1);
  EXPECT_TRUE(Contains(ended.error, "text.so")) << ended.error;
}

TEST_F(UsageTest, APluginCanBeNamed) {
  EXPECT_EQ(Lmx({"list", "--plugin", LMX_LIBRARY}).out, Lmx({"list"}).out);
  EXPECT_EQ(Lmx({"list", std::string("--plugin=") + LMX_LIBRARY}).status, 0);
}

TEST(CommandLine, OptionsMayStandAnywhere) {
  const tool::CommandLine line = tool::ParseCommandLine(
      {"--json", "FlipRotate", "-o", "out.png", "photo.jpg", "--yield=-5", "rotation=90", "--storage", "buffer"});
  ASSERT_EQ(line.steps.size(), 1u);
  EXPECT_EQ(line.steps[0].method, "FlipRotate");
  EXPECT_EQ(line.steps[0].operands, std::vector<std::string>{"photo.jpg"});
  ASSERT_EQ(line.steps[0].assignments.size(), 1u);
  EXPECT_EQ(line.steps[0].assignments[0].name, "rotation");
  EXPECT_EQ(line.steps[0].assignments[0].value, "90");
  EXPECT_EQ(line.output, "out.png");
  EXPECT_EQ(line.yield, -5);
  EXPECT_EQ(line.storage, host::Storage::Buffer);
  EXPECT_TRUE(line.json);
}

TEST(CommandLine, OddFileNamesCanBeWritten) {
  const tool::CommandLine line = tool::ParseCommandLine({"A", "./a=b.png", "--", "-x.png", "--json"});
  EXPECT_EQ(line.steps[0].operands, (std::vector<std::string>{"./a=b.png", "-x.png", "--json"}));
  EXPECT_FALSE(line.json);
}

}  // namespace
}  // namespace tool_test
