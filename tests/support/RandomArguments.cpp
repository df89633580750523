#include "RandomArguments.h"

#include <cmath>
#include <functional>

#include "Cases.h"

namespace support {
namespace {

using host::BooleanByte;
using host::Value;

// A rectangle near the picture, followed by more arguments.
Arguments WithRectangle(Random& random, Size picture, const std::function<Arguments()>& more) {
  Arguments arguments;
  for (const int size : {picture.width, picture.height, picture.width, picture.height}) {
    arguments.emplace_back(RandomNear(random, size));
  }
  const Arguments others = more();
  arguments.insert(arguments.end(), others.begin(), others.end());
  return arguments;
}

// A yield for lines along either side.
std::int32_t RandomYieldOfSide(Random& random, Size picture) {
  return RandomYield(random, (OneIn(random, 2) ? picture.width : picture.height) % 5000);
}

double RandomHue(Random& random) {
  if (OneIn(random, 10)) return AnyDouble(random);
  return OneIn(random, 4) ? random.Between(-6, 6) * 60.0 : (Fraction(random) * 2 - 1) * 360;
}

double RandomFactor(Random& random) {
  if (OneIn(random, 10)) return AnyDouble(random);
  if (OneIn(random, 8)) return Fraction(random) * 999;
  return OneIn(random, 2) ? random.Between(0, 3) : Fraction(random) * 4;
}

std::int32_t RandomDelta(Random& random) {
  if (OneIn(random, 20)) return AnyInteger(random);
  return OneIn(random, 4) ? random.Between(-1, 1) * 255 : random.Between(-255, 255);
}

double RandomSlope(Random& random) {
  if (OneIn(random, 8)) return AnyDouble(random);
  if (OneIn(random, 3)) return ExactShear(random);
  if (OneIn(random, 8)) return random.Between(-4, 4) / 4.0;
  return 2 * Fraction(random) - 1;
}

double RandomAngle(Random& random) {
  if (OneIn(random, 10)) return AnyDouble(random);
  if (OneIn(random, 4)) return AwkwardAngle(random.Next());
  if (OneIn(random, 4)) return ExactAngle(random);
  const double eighth = random.Between(0, 8) * 45.0;
  if (OneIn(random, 4)) return eighth;
  if (OneIn(random, 8)) return std::nextafter(eighth, OneIn(random, 2) ? 0.0 : 360.0);
  if (OneIn(random, 8)) return random.Between(0, 4) * 90.0 + (Fraction(random) - 0.5) * 1e-6;
  return 360 * Fraction(random);
}

Arguments RandomAverage(Random& random, Size source, const Value& before) {
  const auto orNil = [&] { return OneIn(random, 10) ? Value() : before; };
  return WithRectangle(random, source, [&]() -> Arguments {
    return {orNil(), orNil(), orNil(), RandomYield(random, source.width)};
  });
}

}  // namespace

std::int32_t RandomYield(Random& random, std::int32_t line) {
  if (OneIn(random, 5)) return AnyInteger(random);
  if (OneIn(random, 4)) return 0;
  if (OneIn(random, 3)) return 1;
  return random.Between(1, 4) * line + random.Between(-1, 1);
}

std::int32_t RandomNear(Random& random, std::int32_t size) {
  if (OneIn(random, 6)) return AnyInteger(random);
  if (OneIn(random, 2)) return random.Between(0, size);
  return random.Between(-size - 3, 2 * size + 3);
}

host::Colour RandomColour(Random& random) {
  const std::uint32_t colour = random.Word();
  if (OneIn(random, 2)) return {colour & 0xFFFFFF};
  return {OneIn(random, 4) ? colour | 0xFF000000 : colour};
}

// Braces evaluate their elements in order, so a seed gives the same arguments with every compiler.

Arguments RandomAdjustHSV(Random& random, Size source) {
  return WithRectangle(random, source, [&]() -> Arguments {
    const std::uint8_t negative = OneIn(random, 3) ? AnyBooleanByte(random) : std::uint8_t{0};
    return {RandomHue(random), RandomFactor(random), RandomFactor(random), BooleanByte{negative},
            RandomYield(random, source.width)};
  });
}

Arguments RandomAdjustRGB(Random& random, Size source) {
  return WithRectangle(random, source, [&]() -> Arguments {
    return {RandomDelta(random), RandomDelta(random), RandomDelta(random), RandomYield(random, source.width)};
  });
}

Arguments RandomAverageHSV(Random& random, Size source) {
  return RandomAverage(random, source, -17.25);
}

Arguments RandomAverageRGB(Random& random, Size source) {
  return RandomAverage(random, source, 0x5A5A5A5A);
}

Arguments RandomFlipRotate(Random& random, Size source) {
  return {BooleanByte{AnyBooleanByte(random)}, BooleanByte{AnyBooleanByte(random)},
          OneIn(random, 10) ? AnyInteger(random) : random.Between(-95, 365), RandomYieldOfSide(random, source)};
}

Arguments RandomFreeRotate(Random& random, Size source) {
  return {RandomAngle(random), RandomColour(random),
          RandomYield(random, source.width + random.Between(0, source.height))};
}

Arguments RandomGradient(Random& random, Size) {
  const std::int32_t width = RandomNear(random, 60);
  return {width, RandomNear(random, 60), RandomColour(random), RandomColour(random), RandomYield(random, width % 5000)};
}

Arguments RandomDoubleGradient(Random& random, Size source) {
  Arguments arguments = RandomGradient(random, source);
  arguments.push_back(arguments.back());
  arguments[4] = RandomColour(random);
  return arguments;
}

Arguments RandomShear(Random& random, Size source) {
  const auto length = [&](int size) {
    return OneIn(random, 2) ? random.Between(0, 2 * (source.width + source.height) + 3) : RandomNear(random, size);
  };
  const int width = length(source.width), height = length(source.height);
  return {width, height, RandomSlope(random), RandomColour(random), RandomYieldOfSide(random, {width, height})};
}

Arguments RandomStretch(Random& random, Size source) {
  const auto length = [&](int size) {
    if (OneIn(random, 12)) return AnyInteger(random);
    if (OneIn(random, 6)) return size;
    if (OneIn(random, 8)) return NearPowerOfTwo(random, 512);
    return OneIn(random, 3) ? random.Between(1, 200) : random.Between(1, 2 * size + 2);
  };
  const int width = length(source.width), height = length(source.height);
  return {width, height, RandomYieldOfSide(random, {width, height})};
}

Arguments RandomTrim(Random& random, Size source) {
  return WithRectangle(random, source, [&]() -> Arguments { return {RandomColour(random), RandomYield(random, 1)}; });
}

}  // namespace support
