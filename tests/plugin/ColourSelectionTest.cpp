// The selection, which is the same in all six colour methods: the pixels that it contains in a
// picture of 5 x 4.
#include <climits>
#include <ostream>

#include "ColourFixture.h"

namespace {

using namespace colour;

enum class Method { AdjustHSV, AdjustHSVInPlace, GetAverageHSV, AdjustRGB, AdjustRGBInPlace, GetAverageRGB };

struct Case {
  const char* name;
  Area area;
  const char* selected;  // row by row; empty if the selection is invalid
};

constexpr char kNone[] = "";
constexpr char kAll[] = "##### ##### ##### #####";
constexpr char kFirst[] = "#.... ..... ..... .....";

const Case kCases[] = {
    {"FarEndsAreIncluded", {1, 1, 2, 1}, "..... .###. .###. ....."},
    {"SizeZeroIsOnePixel", {2, 1, 0, 0}, "..... ..#.. ..... ....."},
    {"OneBelowThePictureIsAllOfIt", {0, 0, 4, 3}, kAll},
    {"PicturesSizeIsAllOfIt", {0, 0, 5, 4}, kAll},
    {"TwoBelowThePictureLeavesTheLast", {0, 0, 3, 2}, "####. ####. ####. ....."},
    {"FarEndIsCut", {3, 2, 100, 100}, "..... ..... ...## ...##"},
    {"NearEndIsCut", {-2, -1, 3, 2}, "##... ##... ..... ....."},
    {"RightOfThePictureIsItsLastColumn", {1000, 0, 0, 3}, "....# ....# ....# ....#"},
    {"AtTheRightEdgeIsItsLastColumn", {5, 1, 7, 0}, "..... ....# ..... ....."},
    {"BelowThePictureIsItsLastRow", {0, 1000, 4, 10}, "..... ..... ..... #####"},
    {"LeftOfThePictureIsItsFirstColumn", {-10, 1, 5, 1}, "..... #.... #.... ....."},
    {"AboveThePictureIsItsFirstRow", {1, -10, 1, 9}, ".##.. ..... ..... ....."},
    {"OutsideBothWaysIsTheCorner", {-9, 99, 1, 1}, "..... ..... ..... #...."},
    {"NegativeWidthIsInvalid", {3, 0, -1, 0}, kNone},
    {"NegativeWidthFromOutsideIsInvalid", {5, 0, -3, 0}, kNone},
    {"NegativeHeightIsInvalid", {0, 3, 0, -1}, kNone},
    {"BothNegativeIsInvalid", {3, 3, -1, -1}, kNone},
    {"NegativeWidthAtTheFirstColumnIsThatColumn", {0, 0, -5, 0}, kFirst},
    {"NegativeHeightAtTheFirstRowIsThatRow", {0, 0, 0, -5}, kFirst},
    {"NegativeWidthRightOfThePictureIsItsLastColumn", {7, 0, -2, 0}, "....# ..... ..... ....."},
    {"NegativeHeightBelowThePictureIsItsLastRow", {0, 9, 0, -5}, "..... ..... ..... #...."},
    {"GreatestWidthFromZero", {0, 0, INT_MAX, 0}, "##### ..... ..... ....."},
    {"GreatestHeightFromZero", {0, 0, 0, INT_MAX}, "#.... #.... #.... #...."},
    {"SumOfColumnsWraps", {1, 0, INT_MAX, 0}, kNone},
    {"SumOfRowsWraps", {0, 1, 0, INT_MAX}, kNone},
    {"SumAtTheGreatestColumnWraps", {INT_MAX, 0, 1, 0}, kNone},
    {"SumAtTheGreatestRowWraps", {0, INT_MAX, 0, 1}, kNone},
    {"NoSumAtTheGreatestColumn", {INT_MAX, 0, 0, 0}, "....# ..... ..... ....."},
    {"SumOfLeastColumnsWrapsToZero", {INT_MIN, 0, INT_MIN, 0}, kFirst},
    {"SumBelowTheLeastColumnWraps", {INT_MIN, 0, -1, 0}, "##### ..... ..... ....."},
    {"SumBelowTheLeastRowWraps", {0, INT_MIN, 0, -1}, "#.... #.... #.... #...."},
};

class ColourSelection : public ColourTest, public testing::WithParamInterface<std::tuple<Method, Storage>> {
 protected:
  static constexpr int kWidth = 5, kHeight = 4;

  Picture Plain(std::uint32_t colour) const { return MakePlain(storage_, kWidth, kHeight, Opaque(storage_, colour)); }

  static std::string MapOf(const Words& words, std::uint32_t unselected) {
    std::string map;
    for (std::size_t i = 0; i < words.size(); ++i) {
      if (i > 0 && i % kWidth == 0) map += ' ';
      map += words[i] == unselected ? '.' : '#';
    }
    return map;
  }

  // The pixels that an adjustment changes.
  std::string ChangedBy(const std::string& method, const std::vector<Value>& arguments, bool inPlace) {
    const std::uint32_t before = Opaque(storage_, 0x102030);
    const Called called = Run(method, arguments);
    const Picture source = arguments[0].AsPicture();
    if (called.code == 0) return MapOf((inPlace ? source : called.result).StoredPixels(), before);
    EXPECT_EQ(called.code, 38);
    EXPECT_TRUE(called.result.IsNil());
    EXPECT_EQ(source.StoredPixels(), Words(kWidth * kHeight, before));
    return kNone;
  }

  // The pixels that an average sees: each is made the only white one, and the result must change.
  std::string SeenBy(const std::string& method, const Area& area, const Value& nothing) {
    Words seen(kWidth * kHeight, 0);
    for (int i = 0; i < kWidth * kHeight; ++i) {
      Picture picture = Plain(0);
      picture.SetStored(i % kWidth, i / kWidth, Opaque(storage_, 0xFFFFFF));
      std::vector<Value> arguments = Arguments(picture, area);
      arguments.insert(arguments.end(), {nothing, nothing, nothing, 0});
      const Called called = Run(method, arguments);
      if (called.code != 0) {
        EXPECT_EQ(called.code, 38);
        for (std::size_t k = 5; k < 8; ++k) EXPECT_EQ(called.arguments[k], nothing);
        return kNone;
      }
      const Value& last = called.arguments[7];  // blue, or brightness
      seen[static_cast<std::size_t>(i)] = last.Is<double>() ? last.AsDouble() > 0 : last.AsInteger() > 0;
    }
    return MapOf(seen, 0);
  }

  std::string Selected(const Area& area) {
    const HSVFactors black = {0, 1, 0};
    const RGBDeltas white = {255, 255, 255};
    switch (std::get<0>(GetParam())) {
      case Method::AdjustHSV:
        return ChangedBy("AdjustHSV", HSVArguments(Plain(0x102030), area, black), false);
      case Method::AdjustHSVInPlace:
        return ChangedBy("AdjustHSV_InPlace", HSVArguments(Plain(0x102030), area, black), true);
      case Method::GetAverageHSV:
        return SeenBy("GetAverageHSV", area, -77.0);
      case Method::AdjustRGB:
        return ChangedBy("AdjustRGB", RGBArguments(Plain(0x102030), area, white), false);
      case Method::AdjustRGBInPlace:
        return ChangedBy("AdjustRGB_InPlace", RGBArguments(Plain(0x102030), area, white), true);
      case Method::GetAverageRGB:
        return SeenBy("GetAverageRGB", area, -77);
    }
    return "no such method";
  }

  const Storage storage_ = std::get<1>(GetParam());
};

TEST_P(ColourSelection, HoldsWhatItShould) {
  host_.newPictures.storage = storage_;
  for (const Case& c : kCases) EXPECT_EQ(Selected(c.area), c.selected) << c.name;
}

std::string Name(const testing::TestParamInfo<std::tuple<Method, Storage>>& info) {
  static const char* const kNames[] = {"AdjustHSV", "AdjustHSVInPlace", "GetAverageHSV",
                                       "AdjustRGB", "AdjustRGBInPlace", "GetAverageRGB"};
  const bool buffer = std::get<1>(info.param) == Storage::Buffer;
  return std::string(kNames[static_cast<std::size_t>(std::get<0>(info.param))]) + (buffer ? "OfBuffer" : "OfContext");
}

INSTANTIATE_TEST_SUITE_P(Methods, ColourSelection,
                         testing::Combine(testing::Values(Method::AdjustHSV, Method::AdjustHSVInPlace,
                                                          Method::GetAverageHSV, Method::AdjustRGB,
                                                          Method::AdjustRGBInPlace, Method::GetAverageRGB),
                                          testing::Values(Storage::BitmapContext, Storage::Buffer)),
                         Name);

}  // namespace
