// The colour methods, gradients and messages against the reference model, on random pictures and
// arguments.

#include "ModelTest.h"

namespace {

using host::Colour;
using host::Value;
using model::HsvChange;
using model::MakePicture;
using model::Rectangle;
using model::RgbChange;
using model::StoredPicture;
using support::AnyDouble;
using support::AnyInteger;
using support::ForEachCase;
using support::Fraction;
using support::OneIn;
using support::RandomColour;
using support::RandomYield;
using support::Setting;

class ModelColour : public support::PluginTest {};

std::int32_t YieldFor(Random& random, const Setting& setting) {
  return RandomYield(random, setting.source ? setting.source->width : 1);
}

double RandomFactor(Random& random) {
  if (OneIn(random, 10)) return AnyDouble(random);
  if (OneIn(random, 8)) return Fraction(random) * 999;
  return OneIn(random, 2) ? random.Between(0, 3) : Fraction(random) * 4;
}

HsvChange RandomHsvChange(Random& random) {
  const double hue = OneIn(random, 10)  ? AnyDouble(random)
                     : OneIn(random, 4) ? random.Between(-6, 6) * 60.0
                                        : (Fraction(random) * 2 - 1) * 360;
  const double saturation = RandomFactor(random);
  const double brightness = RandomFactor(random);
  return {hue, saturation, brightness, OneIn(random, 3) ? support::AnyBooleanByte(random) : std::uint8_t{0}};
}

std::vector<Value> HsvArguments(const Rectangle& r, const HsvChange& change, int yield) {
  return {r.left,
          r.top,
          r.width,
          r.height,
          change.hueDegrees,
          change.saturationFactor,
          change.brightnessFactor,
          host::BooleanByte{change.negative},
          yield};
}

TEST_F(ModelColour, AdjustHSV) {
  ForEachCase(700, [this](Random& random) {
    const Setting setting = support::RandomSetting(random);
    const Rectangle r = support::RandomRectangle(random, setting);
    const HsvChange change = RandomHsvChange(random);
    const int yield = YieldFor(random, setting);
    CheckCall({"AdjustHSV", true, HsvArguments(r, change, yield),
               [=](const StoredPicture* source, const MakePicture& make) {
                 return model::AdjustHsv(source, r, change, yield, make);
               }},
              setting);
  });
}

TEST_F(ModelColour, AdjustHSVInPlace) {
  ForEachCase(700, [this](Random& random) {
    const Setting setting = support::RandomSetting(random);
    const Rectangle r = support::RandomRectangle(random, setting);
    const HsvChange change = RandomHsvChange(random);
    const int yield = YieldFor(random, setting);
    CheckCall({"AdjustHSV_InPlace", true, HsvArguments(r, change, yield),
               [=](const StoredPicture* source, const MakePicture&) {
                 return model::AdjustHsvInPlace(source, r, change, yield);
               }},
              setting);
  });
}

RgbChange RandomRgbChange(Random& random) {
  const auto delta = [&] {
    if (OneIn(random, 20)) return AnyInteger(random);
    return OneIn(random, 4) ? random.Between(-1, 1) * 255 : random.Between(-255, 255);
  };
  const int red = delta();
  const int green = delta();
  return {red, green, delta()};
}

std::vector<Value> RgbArguments(const Rectangle& r, const RgbChange& change, int yield) {
  return {r.left, r.top, r.width, r.height, change.red, change.green, change.blue, yield};
}

TEST_F(ModelColour, AdjustRGB) {
  ForEachCase(700, [this](Random& random) {
    const Setting setting = support::RandomSetting(random);
    const Rectangle r = support::RandomRectangle(random, setting);
    const RgbChange change = RandomRgbChange(random);
    const int yield = YieldFor(random, setting);
    CheckCall({"AdjustRGB", true, RgbArguments(r, change, yield),
               [=](const StoredPicture* source, const MakePicture& make) {
                 return model::AdjustRgb(source, r, change, yield, make);
               }},
              setting);
  });
}

TEST_F(ModelColour, AdjustRGBInPlace) {
  ForEachCase(700, [this](Random& random) {
    const Setting setting = support::RandomSetting(random);
    const Rectangle r = support::RandomRectangle(random, setting);
    const RgbChange change = RandomRgbChange(random);
    const int yield = YieldFor(random, setting);
    CheckCall({"AdjustRGB_InPlace", true, RgbArguments(r, change, yield),
               [=](const StoredPicture* source, const MakePicture&) {
                 return model::AdjustRgbInPlace(source, r, change, yield);
               }},
              setting);
  });
}

// The rectangle, three values to be overwritten, of which any may be missing, and the pace.
std::vector<Value> MeanArguments(Random& random, const Rectangle& r, const Value& value, int yield) {
  std::vector<Value> arguments = {r.left, r.top, r.width, r.height, value, value, value, yield};
  for (std::size_t i = 4; i < 7; ++i) {
    if (OneIn(random, 10)) arguments[i] = nullptr;
  }
  return arguments;
}

TEST_F(ModelColour, GetAverageHSV) {
  ForEachCase(700, [this](Random& random) {
    const Setting setting = support::RandomSetting(random);
    const Rectangle r = support::RandomRectangle(random, setting);
    const int yield = YieldFor(random, setting);
    CheckCall({"GetAverageHSV", true, MeanArguments(random, r, -17.25, yield),
               [=](const StoredPicture* source, const MakePicture&) { return model::AverageHsv(source, r, yield); }},
              setting);
  });
}

TEST_F(ModelColour, GetAverageRGB) {
  ForEachCase(700, [this](Random& random) {
    const Setting setting = support::RandomSetting(random);
    const Rectangle r = support::RandomRectangle(random, setting);
    const int yield = YieldFor(random, setting);
    CheckCall({"GetAverageRGB", true, MeanArguments(random, r, 0x5A5A5A5A, yield),
               [=](const StoredPicture* source, const MakePicture&) { return model::AverageRgb(source, r, yield); }},
              setting);
  });
}

TEST_F(ModelColour, MakeGradient) {
  ForEachCase(500, [this](Random& random) {
    const int width = support::RandomNear(random, 60);
    const int height = support::RandomNear(random, 60);
    const std::uint32_t colour1 = RandomColour(random);
    const std::uint32_t colour2 = RandomColour(random);
    const int yield = RandomYield(random, width % 5000);
    CheckCall({"MakeGradient",
               false,
               {width, height, Colour{colour1}, Colour{colour2}, yield},
               [=](const StoredPicture*, const MakePicture& make) {
                 return model::MakeGradient(width, height, colour1, colour2, yield, make);
               }},
              support::RandomNewPictures(random));
  });
}

TEST_F(ModelColour, MakeDoubleGradient) {
  ForEachCase(500, [this](Random& random) {
    const int width = support::RandomNear(random, 60);
    const int height = support::RandomNear(random, 60);
    const std::uint32_t colour1 = RandomColour(random);
    const std::uint32_t colour2 = RandomColour(random);
    const std::uint32_t colour3 = RandomColour(random);
    const int yield = RandomYield(random, width % 5000);
    CheckCall({"MakeDoubleGradient",
               false,
               {width, height, Colour{colour1}, Colour{colour2}, Colour{colour3}, yield},
               [=](const StoredPicture*, const MakePicture& make) {
                 return model::MakeDoubleGradient(width, height, colour1, colour2, colour3, yield, make);
               }},
              support::RandomNewPictures(random));
  });
}

TEST_F(ModelColour, GetErrorMessage) {
  for (int code = -60; code <= 120; ++code) {
    EXPECT_EQ(host_.Call("GetErrorMessage", {code}).result.AsText(), model::ErrorMessage(code)) << code;
  }
  ForEachCase(100, [this](Random& random) {
    const int code = AnyInteger(random);
    EXPECT_EQ(host_.Call("GetErrorMessage", {code}).result.AsText(), model::ErrorMessage(code)) << code;
  });
}

}  // namespace
