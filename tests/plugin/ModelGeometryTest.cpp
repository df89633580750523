// The geometric methods against the reference model, on random pictures with random arguments.

#include <cmath>

#include "ModelTest.h"

namespace {

using host::Colour;
using model::MakePicture;
using model::Rectangle;
using model::StoredPicture;
using support::AnyDouble;
using support::AnyInteger;
using support::AwkwardAngle;
using support::ForEachCase;
using support::Fraction;
using support::MethodCall;
using support::OneIn;
using support::RandomColour;
using support::RandomNear;
using support::RandomYield;
using support::Setting;

class ModelGeometry : public support::PluginTest {};

int Width(const Setting& setting) {
  return setting.source ? setting.source->width : 0;
}

int Height(const Setting& setting) {
  return setting.source ? setting.source->height : 0;
}

TEST_F(ModelGeometry, FlipRotate) {
  ForEachCase(700, [this](Random& random) {
    const Setting setting = support::RandomSetting(random);
    const std::uint8_t flipH = support::AnyBooleanByte(random);
    const std::uint8_t flipV = support::AnyBooleanByte(random);
    const int rotation = OneIn(random, 10) ? AnyInteger(random) : random.Between(-95, 365);
    const int yield = RandomYield(random, OneIn(random, 2) ? Width(setting) : Height(setting));
    CheckCall({"FlipRotate",
               true,
               {host::BooleanByte{flipH}, host::BooleanByte{flipV}, rotation, yield},
               [=](const StoredPicture* source, const MakePicture& make) {
                 return model::FlipRotate(source, flipH, flipV, rotation, yield, make);
               }},
              setting);
  });
}

double RandomShear(Random& random) {
  if (OneIn(random, 8)) return AnyDouble(random);
  if (OneIn(random, 3)) return support::ExactShear(random);
  if (OneIn(random, 8)) return random.Between(-4, 4) / 4.0;
  return 2 * Fraction(random) - 1;
}

template <class Define>
MethodCall RandomShearCall(Random& random, const Setting& setting, const char* name, Define define) {
  const int width = OneIn(random, 2) ? random.Between(0, 2 * (Width(setting) + Height(setting)) + 3)
                                     : RandomNear(random, Width(setting));
  const int height = OneIn(random, 2) ? random.Between(0, 2 * (Width(setting) + Height(setting)) + 3)
                                      : RandomNear(random, Height(setting));
  const double shear = RandomShear(random);
  const std::uint32_t frame = RandomColour(random);
  const int yield = RandomYield(random, OneIn(random, 2) ? width % 5000 : height % 5000);
  return {name,
          true,
          {width, height, shear, Colour{frame}, yield},
          [=](const StoredPicture* source, const MakePicture& make) {
            return define(source, width, height, shear, frame, yield, make);
          }};
}

TEST_F(ModelGeometry, ShearHorizontal) {
  ForEachCase(700, [this](Random& random) {
    const Setting setting = support::RandomSetting(random);
    CheckCall(RandomShearCall(random, setting, "ShearHorizontal", model::ShearHorizontal), setting);
  });
}

TEST_F(ModelGeometry, ShearVertical) {
  ForEachCase(700, [this](Random& random) {
    const Setting setting = support::RandomSetting(random);
    CheckCall(RandomShearCall(random, setting, "ShearVertical", model::ShearVertical), setting);
  });
}

// Displacements by tenths and hundredths that add up to whole pixels, or to just less.
TEST_F(ModelGeometry, ShearsByWholePixelsInAll) {
  Random random(1);
  const auto check = [&](int lines, double shear) {
    const int natural = static_cast<int>(std::lround(1 + lines * std::fabs(shear)));
    for (const bool isHorizontal : {true, false}) {
      Setting setting = support::RandomNewPictures(random);
      for (support::NewPicture& plan : setting.newPictures) plan.fault = model::Fault::None;
      setting.source = support::RandomPicture(random, support::RandomForm(random), isHorizontal ? 1 : lines,
                                              isHorizontal ? lines : 1);
      const int width = isHorizontal ? natural + 1 : lines, height = isHorizontal ? lines : natural + 1;
      const auto define = isHorizontal ? model::ShearHorizontal : model::ShearVertical;
      CheckCall({isHorizontal ? "ShearHorizontal" : "ShearVertical",
                 true,
                 {width, height, shear, Colour{0x40306090}, 0},
                 [=](const StoredPicture* source, const MakePicture& make) {
                   return define(source, width, height, shear, 0x40306090, 0, make);
                 }},
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

// Sixteen columns together reach over as many rows as they can, in pictures that are higher than a
// block of rows and what is fetched ahead of it.
TEST_F(ModelGeometry, SteepShearsOfHighPictures) {
  Random random(1);
  for (const double shear : {1.0, -1.0, 65535 / 65536.0, -65535 / 65536.0}) {
    for (const int width : {16, 37}) {
      Setting setting;
      setting.source = support::RandomPicture(random, support::RandomForm(random), width, 190);
      CheckCall({"ShearVertical",
                 true,
                 {width, 240, shear, Colour{0x40306090}, 0},
                 [=](const StoredPicture* source, const MakePicture& make) {
                   return model::ShearVertical(source, width, 240, shear, 0x40306090, 0, make);
                 }},
                setting);
    }
  }
}

double RandomAngle(Random& random) {
  if (OneIn(random, 10)) return AnyDouble(random);
  if (OneIn(random, 4)) return AwkwardAngle(random.Next());
  if (OneIn(random, 4)) return support::ExactAngle(random);
  const double eighth = random.Between(0, 8) * 45.0;
  if (OneIn(random, 4)) return eighth;
  if (OneIn(random, 8)) return std::nextafter(eighth, OneIn(random, 2) ? 0.0 : 360.0);
  if (OneIn(random, 8)) return random.Between(0, 4) * 90.0 + (Fraction(random) - 0.5) * 1e-6;
  return 360 * Fraction(random);
}

TEST_F(ModelGeometry, FreeRotateByShear) {
  ForEachCase(500, [this](Random& random) {
    const Setting setting = support::RandomSetting(random);
    const double rotation = RandomAngle(random);
    const std::uint32_t frame = RandomColour(random);
    const int yield = RandomYield(random, Width(setting) + random.Between(0, Height(setting)));
    CheckCall({"FreeRotateByShear",
               true,
               {rotation, Colour{frame}, yield},
               [=](const StoredPicture* source, const MakePicture& make) {
                 return model::FreeRotateByShear(source, rotation, frame, yield, make);
               }},
              setting);
  });
}

MethodCall StretchCall(int width, int height, int yield) {
  return {"Stretch", true, {width, height, yield}, [=](const StoredPicture* source, const MakePicture& make) {
            return model::Stretch(source, width, height, yield, make);
          }};
}

TEST_F(ModelGeometry, Stretch) {
  ForEachCase(600, [this](Random& random) {
    const Setting setting = support::RandomSetting(random);
    const auto length = [&](int size) {
      if (OneIn(random, 12)) return AnyInteger(random);
      if (OneIn(random, 6)) return size;
      if (OneIn(random, 8)) return support::NearPowerOfTwo(random, 512);
      return OneIn(random, 3) ? random.Between(1, 200) : random.Between(1, 2 * size + 2);
    };
    const int width = length(Width(setting));
    const int height = length(Height(setting));
    const int yield = RandomYield(random, OneIn(random, 2) ? width % 5000 : height % 5000);
    CheckCall(StretchCall(width, height, yield), setting);
  });
}

// Higher than a band of rows, or so wide that a band has only a few.
TEST_F(ModelGeometry, StretchInBands) {
  ForEachCase(24, [this](Random& random) {
    const model::Form form = support::RandomForm(random);
    const bool isWide = OneIn(random, 4);
    const int sourceWidth = isWide ? 4500 + random.Between(0, 900) : random.Between(60, 300);
    const int sourceHeight = isWide ? random.Between(60, 90) : random.Between(100, 400);
    Setting setting = support::RandomNewPictures(random);
    setting.source = support::RandomPicture(random, form, sourceWidth, sourceHeight);
    setting.layout = support::RandomLayout(random, form);
    const int width = isWide ? 4200 + random.Between(0, 900) : random.Between(1, 2 * sourceWidth);
    const int height = random.Between(1, 2 * sourceHeight);
    const int yield = OneIn(random, 3) ? 0 : random.Between(1, 12) * height;
    CheckCall(StretchCall(width, height, yield), setting);
  });
}

TEST_F(ModelGeometry, Trim) {
  ForEachCase(700, [this](Random& random) {
    const Setting setting = support::RandomSetting(random);
    const Rectangle area = support::RandomRectangle(random, setting);
    const std::uint32_t frame = RandomColour(random);
    const int yield = RandomYield(random, 1);
    CheckCall({"Trim",
               true,
               {area.left, area.top, area.width, area.height, Colour{frame}, yield},
               [=](const StoredPicture* source, const MakePicture& make) {
                 return model::Trim(source, area, frame, yield, make);
               }},
              setting);
  });
}

}  // namespace
