// Every method compared with the reference model, on random pictures with random arguments.

#include <cmath>

#include "support/Cases.h"
#include "support/Pictures.h"
#include "support/RandomArguments.h"
#include "support/RandomSettings.h"

namespace {

using host::Colour;
using support::ForEachCase;
using support::Method;
using support::OneIn;
using support::Setting;

class Model : public support::PluginTest {};
class RandomCalls : public support::PluginTest, public testing::WithParamInterface<Method> {};

INSTANTIATE_TEST_SUITE_P(Model, RandomCalls, testing::ValuesIn(support::ModelledMethods()),
                         [](const auto& method) { return std::string(method.param.name); });

TEST_P(RandomCalls, AreAsTheModelSays) {
  const Method& method = GetParam();
  ForEachCase(700, [&](Random& random) {
    const Setting setting = method.hasSource ? support::RandomSetting(random) : support::RandomNewPictures(random);
    const support::Size source =
        setting.source ? support::Size{setting.source->width, setting.source->height} : support::Size{10, 10};
    CheckCall({method, method.random(random, source)}, setting);
  });
}

// Displacements by tenths and hundredths that add up to whole pixels, or to slightly less.
TEST_F(Model, ShearsByWholePixelsInAll) {
  Random random(1);
  const auto check = [&](int lines, double shear) {
    const int natural = static_cast<int>(std::lround(1 + lines * std::fabs(shear)));
    for (const bool isHorizontal : {true, false}) {
      Setting setting = support::RandomNewPictures(random);
      for (support::NewPicture& plan : setting.newPictures) plan.fault = model::Fault::None;
      setting.source = support::RandomPicture(random, support::RandomForm(random), isHorizontal ? 1 : lines,
                                              isHorizontal ? lines : 1);
      const int width = isHorizontal ? natural + 1 : lines, height = isHorizontal ? lines : natural + 1;
      CheckCall({isHorizontal ? "ShearHorizontal" : "ShearVertical", {width, height, shear, Colour{0x40306090}, 0}},
                setting);
    }
  };
  for (const int parts : {10, 100}) {
    for (int step = 1; step < parts; ++step) {
      for (int lines = 1; lines <= 30; ++lines) {
        if (step * lines % parts != 0) continue;
        check(lines, 1.0 * step / parts);
        check(lines, -1.0 * step / parts);
      }
    }
  }
}

// Sixteen columns reach over as many rows as they can. The pictures are higher than a block of rows
// and its prefetched rows.
TEST_F(Model, SteepShearsOfHighPictures) {
  Random random(1);
  for (const double shear : {1.0, -1.0, 65535 / 65536.0, -65535 / 65536.0}) {
    for (const int width : {16, 37}) {
      Setting setting;
      setting.source = support::RandomPicture(random, support::RandomForm(random), width, 190);
      CheckCall({"ShearVertical", {width, 240, shear, Colour{0x40306090}, 0}}, setting);
    }
  }
}

// Higher than a band of rows, or so wide that a band has only a few rows.
TEST_F(Model, StretchInBands) {
  ForEachCase(24, [this](Random& random) {
    const host::Storage form = support::RandomForm(random);
    const bool isWide = OneIn(random, 4);
    const int sourceWidth = isWide ? 4500 + random.Between(0, 900) : random.Between(60, 300);
    const int sourceHeight = isWide ? random.Between(60, 90) : random.Between(100, 400);
    Setting setting = support::RandomNewPictures(random);
    setting.source = support::RandomPicture(random, form, sourceWidth, sourceHeight);
    setting.layout = support::RandomLayout(random, form);
    const int width = isWide ? 4200 + random.Between(0, 900) : random.Between(1, 2 * sourceWidth);
    const int height = random.Between(1, 2 * sourceHeight);
    const int yield = OneIn(random, 3) ? 0 : random.Between(1, 12) * height;
    CheckCall({"Stretch", {width, height, yield}}, setting);
  });
}

TEST_F(Model, GetErrorMessage) {
  for (int code = -60; code <= 120; ++code) {
    EXPECT_EQ(host_.Call("GetErrorMessage", {code}).result.AsText(), model::ErrorMessage(code)) << code;
  }
  ForEachCase(100, [this](Random& random) {
    const int code = support::AnyInteger(random);
    EXPECT_EQ(host_.Call("GetErrorMessage", {code}).result.AsText(), model::ErrorMessage(code)) << code;
  });
}

}  // namespace
