// The methods against their plain definition on pictures that are too large for the cache, whose results the plug-in
// writes past it.

#include "DefinitionTest.h"

namespace {

using definition::Form;
using definition::MakePicture;
using definition::StoredPicture;
using support::MethodCall;
using support::NewPicture;
using support::Setting;

// More than 3 x 2^20 pixels, in sizes that fill neither registers nor tiles.
constexpr int kWidth = 2115;
constexpr int kHeight = 1497;
static_assert(kWidth * kHeight > 3 << 20);
constexpr std::uint32_t kFrame = 0x00204060;

// Opaque, but for a translucent strip across and a clear corner.
std::uint32_t WordAt(Form form, int x, int y) {
  const std::uint32_t mixed = static_cast<std::uint32_t>(x) * 0x9E3779B1u ^ static_cast<std::uint32_t>(y) * 0x85EBCA6Bu;
  const std::uint32_t alpha = x + y < 300 ? 0 : (x / 2 + y) % 700 < 40 ? mixed >> 24 : 255;
  return definition::WritePixel(form, alpha << 24 | (mixed & 0xFFFFFF));
}

// Sources and results in both forms.
class LargePictures : public support::PluginTest, public testing::WithParamInterface<Form> {
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
};

INSTANTIATE_TEST_SUITE_P(Forms, LargePictures, testing::Values(Form::BitmapContext, Form::Buffer),
                         [](const testing::TestParamInfo<Form>& form) {
                           return form.param == Form::Buffer ? "Buffer" : "Context";
                         });

TEST_P(LargePictures, FlipRotate) {
  for (const auto& [flipH, rotation] : {std::pair(false, 0), std::pair(true, 0), std::pair(false, 90)}) {
    CheckCall({"FlipRotate",
               true,
               {flipH, false, rotation, 0},
               [flip = flipH, turn = rotation](const StoredPicture* source, const MakePicture& make) {
                 return definition::FlipRotate(source, flip, false, turn, 0, make);
               }},
              Pictures());
  }
}

TEST_P(LargePictures, ShearVertical) {
  CheckCall({"ShearVertical",
             true,
             {kWidth, kHeight + 300, -0.3, host::Colour{kFrame}, 0},
             [](const StoredPicture* source, const MakePicture& make) {
               return definition::ShearVertical(source, kWidth, kHeight + 300, -0.3, kFrame, 0, make);
             }},
            Pictures());
}

TEST_P(LargePictures, ShearHorizontal) {
  CheckCall({"ShearHorizontal",
             true,
             {kWidth + 300, kHeight, 0.3, host::Colour{kFrame}, 0},
             [](const StoredPicture* source, const MakePicture& make) {
               return definition::ShearHorizontal(source, kWidth + 300, kHeight, 0.3, kFrame, 0, make);
             }},
            Pictures());
}

TEST_P(LargePictures, FreeRotateByShear) {
  CheckCall({"FreeRotateByShear",
             true,
             {30.0, host::Colour{kFrame}, 0},
             [](const StoredPicture* source, const MakePicture& make) {
               return definition::FreeRotateByShear(source, 30.0, kFrame, 0, make);
             }},
            Pictures(kWidth * 3 / 4, kHeight * 3 / 4));
}

TEST_P(LargePictures, Stretch) {
  CheckCall({"Stretch",
             true,
             {kWidth, kHeight, 0},
             [](const StoredPicture* source, const MakePicture& make) {
               return definition::Stretch(source, kWidth, kHeight, 0, make);
             }},
            Pictures(700, 1900));
}

TEST_P(LargePictures, AdjustRGB) {
  CheckCall({"AdjustRGB",
             true,
             {3, 5, kWidth - 8, kHeight - 9, 20, -30, 255, 0},
             [](const StoredPicture* source, const MakePicture& make) {
               return definition::AdjustRgb(source, {3, 5, kWidth - 8, kHeight - 9}, {20, -30, 255}, 0, make);
             }},
            Pictures());
}

TEST_P(LargePictures, MakeGradient) {
  CheckCall({"MakeGradient",
             false,
             {kWidth, kHeight, host::Colour{kFrame}, host::Colour{0x40F08010}, 0},
             [](const StoredPicture*, const MakePicture& make) {
               return definition::MakeGradient(kWidth, kHeight, kFrame, 0x40F08010, 0, make);
             }},
            Pictures(1, 1));
}

}  // namespace
