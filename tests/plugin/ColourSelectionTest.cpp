// The selection, which is the same in all six colour methods: the pixels that it contains in a
// picture of 5 x 4.
#include <climits>
#include <ostream>

#include "ColourFixture.h"
#include "support/Cases.h"

namespace {

using namespace colour;

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

class ColourSelection : public ColourTest, public testing::WithParamInterface<std::tuple<const char*, Storage>> {
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

  // Which pixels an adjustment changes.
  std::string ChangedBy(const std::string& method, const Area& area, const std::vector<Value>& others) {
    const std::uint32_t before = Opaque(storage_, 0x102030);
    const Picture source = Plain(0x102030);
    const Called called = Run(method, Arguments(source, area, others));
    if (called.code == 0) return MapOf((called.result ? called.result : source).StoredPixels(), before);
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
      const Called called = Run(method, Arguments(picture, area, {nothing, nothing, nothing}));
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
    const std::string method = std::get<0>(GetParam());
    if (method == "GetAverageHSV") return SeenBy(method, area, -77.0);
    if (method == "GetAverageRGB") return SeenBy(method, area, -77);
    const bool hsv = method.find("HSV") != std::string::npos;
    return ChangedBy(method, area, (hsv ? HSV(0, 1, 0) : RGB(255, 255, 255)).arguments);
  }

  const Storage storage_ = std::get<1>(GetParam());
};

TEST_P(ColourSelection, HoldsWhatItShould) {
  host_.newPictures.storage = storage_;
  for (const Case& c : kCases) EXPECT_EQ(Selected(c.area), c.selected) << c.name;
}

INSTANTIATE_TEST_SUITE_P(Methods, ColourSelection,
                         testing::Combine(testing::Values("AdjustHSV", "AdjustHSV_InPlace", "GetAverageHSV",
                                                          "AdjustRGB", "AdjustRGB_InPlace", "GetAverageRGB"),
                                          testing::Values(kContext, kBuffer)),
                         [](const auto& tested) {
                           const bool buffer = std::get<1>(tested.param) == kBuffer;
                           return support::TestName(std::get<0>(tested.param)) + (buffer ? "OfBuffer" : "OfContext");
                         });

}  // namespace
