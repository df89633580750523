// Sizes equal to, one below and one above every constant that bounds a tile, a band, an array or a
// threshold. Also checks that the list of these constants is complete.
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>

#include "support/Bounds.h"
#include "support/Pictures.h"
#include "support/PluginTest.h"

namespace {

using host::Colour;
using support::LengthsAt;
using support::LengthsAtBounds;
using support::Operation;
using support::Setting;
using support::Size;

// ------------------------------------------------------------------------------------- the sources

struct Found {
  std::string file, name, value;
};

std::string WithoutBlanks(const std::string& text) {
  return std::regex_replace(text, std::regex("\\s+"), " ");
}

// Named integers, and arrays of eight or more elements whose size is a bare number.
std::vector<Found> ConstantsOf(const std::string& code, const std::string& file) {
  static const std::regex kComment("//[^\n]*");
  static const std::regex kNamed(
      "constexpr\\s+(?:(?:std::)?u?int\\w*_t|(?:std::)?size_t|unsigned(?: int)?|int|long)\\s+(k[A-Z]\\w*)\\s*=\\s*"
      "([^;]+);");
  static const std::regex kArray("(\\w+)\\[([89]|[1-9]\\d+)\\]");
  const std::string text = std::regex_replace(code, kComment, "");
  std::vector<Found> found;
  for (const std::regex& kind : {kNamed, kArray}) {
    for (std::sregex_iterator at(text.begin(), text.end(), kind); at != std::sregex_iterator(); ++at) {
      found.push_back({file, (*at)[1], WithoutBlanks((*at)[2])});
    }
  }
  return found;
}

std::vector<Found> ConstantsOfTheSources() {
  std::vector<Found> found;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(LMX_SOURCE_FOLDER)) {
    if (!entry.is_regular_file()) continue;
    std::ostringstream text;
    text << std::ifstream(entry.path()).rdbuf();
    for (const Found& constant : ConstantsOf(text.str(), entry.path().filename().string())) found.push_back(constant);
  }
  return found;
}

bool IsKnown(const Found& constant) {
  for (const support::OtherConstant& other : support::OtherConstants()) {
    if (other.name == constant.name) return true;
  }
  for (const support::Bound& bound : support::Bounds()) {
    if (bound.name == constant.name && bound.value == constant.value) return true;
  }
  return false;
}

TEST(BoundsOfTheSources, AreListedWithSizes) {
  const std::vector<Found> constants = ConstantsOfTheSources();
  for (const Found& constant : constants) {
    EXPECT_TRUE(IsKnown(constant)) << constant.file << ": " << constant.name << " = " << constant.value
                                   << " belongs into tests/support/Bounds.cpp";
  }
  const auto has = [&](const std::string& name, const std::string& value) {
    return std::any_of(constants.begin(), constants.end(), [&](const Found& constant) {
      return constant.name == name && (value.empty() || constant.value == value);
    });
  };
  for (const support::Bound& bound : support::Bounds()) {
    EXPECT_TRUE(has(bound.name, bound.value)) << bound.name << " = " << bound.value << " is in no source";
  }
  for (const support::OtherConstant& other : support::OtherConstants()) {
    EXPECT_TRUE(has(other.name, "")) << other.name << " is in no source";
  }
}

TEST(BoundsOfTheSources, AreFoundInEveryForm) {
  const std::vector<Found> found = ConstantsOf(
      "constexpr std::int32_t kA = 7;  // constexpr int kNone = 1;\n"
      "  static constexpr size_t kB =\n      2 * kA;\nstd::uint32_t tile[12];\nint few[7], more[kA];\n",
      "");
  ASSERT_EQ(found.size(), 3u);
  EXPECT_EQ(found[0].name + " " + found[0].value, "kA 7");
  EXPECT_EQ(found[1].name + " " + found[1].value, "kB 2 * kA");
  EXPECT_EQ(found[2].name + " " + found[2].value, "tile 12");
}

// --------------------------------------------------------------------------------------- the sizes

class BoundsTest : public support::PluginTest {
 protected:
  // Forms and contents change from call to call.
  void Check(const Operation& operation, Size size) {
    Setting setting = NextSetting();
    const support::Method& method = support::FindMethod(operation.method);
    if (method.hasSource) SetSource(setting, operation.SourceOf(size));
    const int yield = NextYield(method.ByColumns() ? size.height : size.width);
    SCOPED_TRACE(testing::Message() << operation.name << ", " << size.width << " x " << size.height << ", yield "
                                    << yield);
    CheckCall({operation, size, kFrame, yield}, setting);
  }

  void CheckStretch(Size from, Size to, int yield) {
    Setting setting = NextSetting();
    SetSource(setting, from);
    SCOPED_TRACE(testing::Message() << from.width << " x " << from.height << " to " << to.width << " x " << to.height
                                    << ", yield " << yield);
    CheckCall({"Stretch", {to.width, to.height, yield}}, setting);
  }

  // A yield argument: none, every line, or a few lines of that length.
  int NextYield(int line) {
    const int yields[] = {0, 1, 3 * line + 1};
    return yields[calls_++ % 3];
  }

 private:
  static constexpr Colour kFrame = {0x30204060};

  Setting NextSetting() {
    Setting setting;
    setting.mostPixels = 1 << 24;
    setting.newPictures.assign(4, {});
    for (support::NewPicture& plan : setting.newPictures) plan.form = support::RandomForm(random_);
    return setting;
  }

  void SetSource(Setting& setting, Size size) {
    setting.source = support::RandomPicture(random_, support::RandomForm(random_), size.width, size.height);
  }

  Random random_{1};
  unsigned calls_ = 0;
};

constexpr int kFew = 5;  // pixels, across a length

TEST_F(BoundsTest, LengthsOfEveryMethod) {
  for (const Operation& operation : support::Operations()) {
    for (const int length : LengthsAtBounds()) {
      for (const Size size : {Size{length, kFew}, Size{kFew, length}}) {
        Check(operation, size);
        if (HasFailure()) return;
      }
    }
  }
}

TEST_F(BoundsTest, StretchesFromLengthToLength) {
  for (const int from : LengthsAtBounds()) {
    for (const int to : LengthsAtBounds()) {
      CheckStretch({from, kFew}, {to, kFew - 1}, NextYield(kFew - 1));
      CheckStretch({kFew, from}, {kFew + 1, to}, NextYield(to));
      if (HasFailure()) return;
    }
  }
}

// A box of a reduced picture takes about as many runs as the factor of the reduction.
TEST_F(BoundsTest, ReductionsToBoxesOfAsManyRunsAsAKernelTakes) {
  for (const int most : LengthsAt("kMostBoxRuns")) {
    for (int ratio = most - 3; ratio <= most + 1; ++ratio) {
      for (int n = 2; n <= 5; ++n) {
        for (const int more : {-1, 0, 1}) {
          for (const int yield : {0, n}) {
            CheckStretch({9, ratio * n + more}, {8, n}, yield);
            CheckStretch({ratio * n + more, 9}, {n, 8}, yield);
            if (HasFailure()) return;
          }
        }
      }
    }
  }
}

// Boxes of more runs than a kernel takes, in lines of every length.
TEST_F(BoundsTest, HighBoxesOfEveryLength) {
  std::vector<int> lengths = LengthsAtBounds();
  lengths.push_back(2 * lengths.back() + 73);
  for (const int length : lengths) {
    for (const int yield : {0, 900}) {
      CheckStretch({length + 1, 71}, {length, 2}, yield);
      CheckStretch({71, length + 1}, {2, length}, yield);
      if (HasFailure()) return;
    }
  }
}

class LargeBounds : public BoundsTest {};

TEST_F(LargeBounds, BandsOfSoManyPixels) {
  for (const int width : LengthsAt("kPixelsAhead")) {
    const int height = width > 1 << 17 ? 3 : 70;
    CheckStretch({width, height}, {width, height - 1}, 0);
    CheckStretch({width / 2, height}, {width, height + 1}, 5 * height);
    for (const char* name : {"rotate 75", "turn 90"}) {
      if (height > 3) Check(support::OperationNamed(name), {width / 3, height});
    }
    if (HasFailure()) return;
  }
}

TEST_F(LargeBounds, ResultsThatLeaveTheCache) {
  for (const int pixels : LengthsAt("kCachedPixels")) {
    int height = 1000;
    while (pixels % height != 0) ++height;
    for (const char* name : {"flip horizontal", "gradient"}) {
      Check(support::OperationNamed(name), {pixels / height, height});
    }
  }
}

TEST_F(LargeBounds, LongestStretches) {
  for (const int length : LengthsAt("kLongest")) {
    CheckStretch({3, 2}, {length, 2}, 0);
    CheckStretch({2, 3}, {2, length}, NextYield(length));
  }
  for (const int length : LengthsAt("kGreatestReduction")) {
    CheckStretch({length, 2}, {1, 2}, 0);
    CheckStretch({2, length}, {2, 1}, NextYield(1));
  }
}

}  // namespace
