// The methods compared with the reference model on pictures larger than the cache. The plug-in
// writes their results by non-temporal stores.

#include <algorithm>

#include "support/Pictures.h"
#include "support/PluginTest.h"

namespace {

using host::Storage;
using model::StoredPicture;
using support::NewPicture;
using support::Setting;

// More than 3 x 2^20 pixels, in sizes that are no multiples of registers or tiles.
constexpr int kWidth = 2115;
constexpr int kHeight = 1497;
static_assert(kWidth * kHeight > 3 << 20);
constexpr std::uint32_t kFrame = 0x00204060;

// Opaque, except for a translucent band across the picture and a clear corner.
std::uint32_t WordAt(Storage form, int x, int y) {
  const std::uint32_t mixed = static_cast<std::uint32_t>(x) * 0x9E3779B1u ^ static_cast<std::uint32_t>(y) * 0x85EBCA6Bu;
  const std::uint32_t alpha = x + y < 300 ? 0 : (x / 2 + y) % 700 < 40 ? mixed >> 24 : 255;
  return model::WritePixel(form, alpha << 24 | (mixed & 0xFFFFFF));
}

// Sources and results in both forms.
class LargePictures : public support::PluginTest, public testing::WithParamInterface<Storage> {
 protected:
  Setting Pictures(int width = kWidth, int height = kHeight) {
    Setting setting;
    setting.source = StoredPicture(GetParam(), width, height);
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) setting.source->Word(x, y) = WordAt(GetParam(), x, y);
    }
    setting.newPictures.assign(4, NewPicture{});
    for (NewPicture& plan : setting.newPictures) plan.form = GetParam();
    setting.mostPixels = 1 << 24;
    return setting;
  }

  // The result of a call, without the checks of CheckCall. Yields end with it.
  host::Picture Make(const std::string& name, const std::vector<host::Value>& arguments) {
    host_.ResetCounts();
    const host::Picture result = host_.Call(name, arguments).result.AsPicture();
    host_.onYield = nullptr;
    return result;
  }
};

INSTANTIATE_TEST_SUITE_P(Forms, LargePictures, testing::Values(Storage::BitmapContext, Storage::Buffer),
                         [](const testing::TestParamInfo<Storage>& form) {
                           return form.param == Storage::Buffer ? "Buffer" : "Context";
                         });

TEST_P(LargePictures, FlipRotate) {
  const Setting pictures = Pictures();
  for (const auto& [flipH, rotation] : {std::pair(false, 0), std::pair(true, 0), std::pair(false, 90)}) {
    CheckCall({"FlipRotate", {flipH, false, rotation, 0}}, pictures);
  }
}

// The place in the source of the pixel at (x, y) of a turned result.
struct Place {
  int x;
  int y;
};
Place TurnedFrom(bool flipH, bool flipV, int quarter, int x, int y) {
  Place at = {x, y};
  if (quarter == 1) at = {y, kHeight - 1 - x};
  if (quarter == 2) at = {kWidth - 1 - x, kHeight - 1 - y};
  if (quarter == 3) at = {kWidth - 1 - y, x};
  return {flipH ? kWidth - 1 - at.x : at.x, flipV ? kHeight - 1 - at.y : at.y};
}

// The sixteen turns into a result of the other form, half of them from each form. Some rows are
// compared. At every yield, the last row that is due and the first row that is not are checked.
TEST_P(LargePictures, EveryTurnToTheOtherForm) {
  constexpr int kYield = 149705;  // falls inside tiles, in either direction of the result
  const Storage form = GetParam(), other = form == Storage::Buffer ? Storage::BitmapContext : Storage::Buffer;
  const host::Picture source = support::ToHost(*Pictures().source, {});
  host_.newPictures.storage = other;
  for (int turn = 0; turn < 16; ++turn) {
    const bool flipH = turn % 2 != 0, flipV = turn / 2 % 2 != 0;
    if ((flipH == flipV) != ((form == Storage::Buffer) == (turn < 8))) continue;
    const int quarter = turn / 4, rows = quarter % 2 == 0 ? kHeight : kWidth, columns = kWidth + kHeight - rows;
    SCOPED_TRACE(testing::Message() << quarter << " quarters" << (flipH ? ", H" : "") << (flipV ? ", V" : ""));
    const bool isUpwards = flipH == flipV && quarter == (flipH ? 3 : 1);
    const auto rowOf = [&](int line) { return isUpwards ? rows - 1 - line : line; };
    const int linesOfAYield = (kYield + columns - 1) / columns;
    int yields = 0;
    host_.onYield = [&] {
      const int done = ++yields * linesOfAYield;
      const host::Picture result = support::LiveNewPictures(host_).back().second;
      ASSERT_LT(done, rows);
      EXPECT_NE(result.Stored(columns - 1, rowOf(done - 1)), host::kUnwritten) << "row " << rowOf(done - 1);
      EXPECT_EQ(result.Stored(0, rowOf(done)), host::kUnwritten) << "row " << rowOf(done);
    };
    const host::Picture result = Make("FlipRotate", {source, flipH, flipV, 90 * quarter, kYield});
    EXPECT_EQ(yields, (rows - 1) / linesOfAYield);
    for (int y = 0; y < rows; y += y < rows - 1 && y + 149 >= rows ? rows - 1 - y : 149) {
      const std::vector<std::uint32_t> row = result.StoredRow(y);
      for (int x = 0; x < columns; ++x) {
        const Place from = TurnedFrom(flipH, flipV, quarter, x, y);
        const std::uint32_t pixel = model::ReadPixel(form, WordAt(form, from.x, from.y));
        ASSERT_EQ(row[static_cast<std::size_t>(x)], model::WritePixel(other, pixel)) << x << ", " << y;
      }
    }
  }
}

// The same pixels as without yields. At each yield of the second pass, only the columns that are
// due are written.
TEST_P(LargePictures, StretchWithYields) {
  constexpr int kYield = 1000000, kSourceWidth = 700, kSourceHeight = 1900;
  const host::Picture source = support::ToHost(*Pictures(kSourceWidth, kSourceHeight).source, {});
  host_.newPictures.storage = GetParam();
  const int rowYields = (kSourceHeight - 1) / ((kYield + kWidth - 1) / kWidth);
  const int columnsOfAYield = (kYield + kHeight - 1) / kHeight;
  int yields = 0;
  host_.onYield = [&] {
    const int done = std::max(++yields - rowYields, 0) * columnsOfAYield;
    const host::Picture result = support::LiveNewPictures(host_).front().second;
    ASSERT_LT(done, kWidth);
    EXPECT_EQ(result.Stored(done, 0), host::kUnwritten) << "column " << done;
    if (done > 0) {
      EXPECT_NE(result.Stored(done - 1, kHeight - 1), host::kUnwritten) << "column " << done - 1;
    }
  };
  const host::Picture result = Make("Stretch", {source, kWidth, kHeight, kYield});
  EXPECT_EQ(yields, rowYields + (kWidth - 1) / columnsOfAYield);
  EXPECT_TRUE(result.SamePixels(Make("Stretch", {source, kWidth, kHeight, 0})));
}

TEST_P(LargePictures, ShearVertical) {
  CheckCall({"ShearVertical", {kWidth, kHeight + 300, -0.3, host::Colour{kFrame}, 0}}, Pictures());
}

TEST_P(LargePictures, ShearHorizontal) {
  CheckCall({"ShearHorizontal", {kWidth + 300, kHeight, 0.3, host::Colour{kFrame}, 0}}, Pictures());
}

TEST_P(LargePictures, FreeRotateByShear) {
  CheckCall({"FreeRotateByShear", {30.0, host::Colour{kFrame}, 0}}, Pictures(kWidth * 3 / 4, kHeight * 3 / 4));
}

TEST_P(LargePictures, Stretch) {
  CheckCall({"Stretch", {kWidth, kHeight, 0}}, Pictures(700, 1900));
}

TEST_P(LargePictures, AdjustRGB) {
  CheckCall({"AdjustRGB", {3, 5, kWidth - 8, kHeight - 9, 20, -30, 255, 0}}, Pictures());
}

TEST_P(LargePictures, MakeGradient) {
  CheckCall({"MakeGradient", {kWidth, kHeight, host::Colour{kFrame}, host::Colour{0x40F08010}, 0}}, Pictures(1, 1));
}

}  // namespace
