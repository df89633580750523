// The wide kernels of the colour methods: adjustments and sums. Included after a Vector header.
#pragma once

#include "WidePixels.h"

namespace {

// --------------------------------------------------------------------------------------------- HSV

// One channel of pixels in 32-bit lanes; `shift` is its lowest bit.
template <int shift>
LMX_ALWAYS_INLINE Reg Channel(Reg pixels) {
  const Reg moved = Vector::Right32<shift>(pixels);
  return shift == 24 ? moved : Vector::And(moved, Vector::Set32(0xFF));
}

// The same for two registers of pixels, in 16-bit lanes.
template <int shift>
LMX_ALWAYS_INLINE Reg Channel16(Reg first, Reg second) {
  return Vector::Pack32(Channel<shift>(first), Channel<shift>(second));
}

// n * 1024 / d, truncated, for 0 <= n <= d <= 255: a long division in 16-bit lanes. Where d is 0
// the result means nothing.
//
// A lane holds 64 times the remainder, and below it, in six bits, the digits of the quotient so
// far. Subtracting 64 * d - 1 subtracts the divisor and sets the lowest digit. Doubling a lane
// doubles both. The first step finds the digit 1024, which is 1 only for n = d; then two times five
// bits follow. The remainder is below d before it is doubled, so a lane is at most 2 * (64 * 254 +
// 63) = 32638. It is even before each step and 64 * d - 1 is odd: the two are never equal.
// Tests: AllColours.AdjustHSV walks all colours, and so all n and d.
LMX_ALWAYS_INLINE Reg Divide1024(Reg n, Reg d) {
  const Reg taken = Vector::Sub16(Vector::Left16<6>(d), Vector::Set16(1));
  const Reg digits = Vector::Set16(63);
  const auto fiveBits = [taken](Reg lane) {
    for (int bit = 0; bit < 5; ++bit) lane = Vector::SubIfGreater16(Vector::Add16(lane, lane), taken);
    return lane;
  };
  const Reg upper = fiveBits(Vector::SubIfGreater16(Vector::Left16<6>(n), taken));
  const Reg lower = fiveBits(Vector::AndNot(digits, upper));
  return Vector::Or(Vector::Left16<5>(Vector::And(upper, digits)), Vector::And(lower, digits));
}

// min(a * factor, most), for a of 0 to 1024 and a factor of 0 to 999. The product has 20 bits.
// Where its upper half is not 0 the lower half becomes 65535, so that `most` wins.
LMX_ALWAYS_INLINE Reg ScaledUpTo(Reg a, Reg factor, Reg most) {
  const Reg overflow = Vector::Greater16(Vector::MulHigh16(a, factor), Vector::Zero());
  const Reg product = Vector::Or(Vector::MulLow16(a, factor), overflow);
  return Vector::Sub16(product, Vector::SubSaturated16(product, most));
}

struct HSVFactors {
  Reg shift;
  Reg saturation;
  Reg value;
};

// A register of 16-bit lanes for each channel.
struct Colours {
  Reg red;
  Reg green;
  Reg blue;
};

struct HSV {
  Reg hue;  // a grey's is 0: its saturation is 0, so that no hue matters
  Reg saturation;
  Reg value;
};

LMX_ALWAYS_INLINE HSV ToHSV(const Colours& in) {
  const Reg max = Vector::Max16(in.red, Vector::Max16(in.green, in.blue));
  const Reg delta = Vector::Sub16(max, Vector::Min16(in.red, Vector::Min16(in.green, in.blue)));
  const Reg grey = Vector::Equal16(delta, Vector::Zero());
  const Reg isRed = Vector::Equal16(in.red, max);
  const Reg isGreen = Vector::AndNot(isRed, Vector::Equal16(in.green, max));
  const Reg difference = Select(isRed, Vector::Sub16(in.green, in.blue),
                                Select(isGreen, Vector::Sub16(in.blue, in.red), Vector::Sub16(in.red, in.green)));
  const Reg base = Vector::AndNot(isRed, Select(isGreen, Vector::Set16(2048), Vector::Set16(4096)));
  const Reg negative = Vector::Greater16(Vector::Zero(), difference);
  const Reg distance = Vector::Max16(difference, Vector::Sub16(Vector::Zero(), difference));
  const Reg quotient = Divide1024(distance, delta);
  const Reg turned = Vector::Add16(base, Vector::Sub16(Vector::Xor(quotient, negative), negative));
  const Reg turn = Vector::And(Vector::Greater16(Vector::Zero(), turned), Vector::Set16(6144));
  return {Vector::AndNot(grey, Vector::Add16(turned, turn)), Vector::AndNot(grey, Divide1024(delta, max)), max};
}

LMX_ALWAYS_INLINE HSV Adjusted(const HSV& in, const HSVFactors& by) {
  const Reg turn = Vector::Set16(6144);
  Reg hue = Vector::Add16(in.hue, by.shift);
  hue = Vector::Add16(hue, Vector::And(Vector::Greater16(Vector::Zero(), hue), turn));
  hue = Vector::Sub16(hue, Vector::And(Vector::Greater16(hue, Vector::Set16(6143)), turn));
  return {hue, ScaledUpTo(in.saturation, by.saturation, Vector::Set16(1023)),
          ScaledUpTo(in.value, by.value, Vector::Set16(255))};
}

LMX_ALWAYS_INLINE Colours ToRGB(const HSV& in) {
  // p is (1024 - s) * v / 1024. The product is at most 1024 * 255, so its upper half is at most 3.
  const Reg unsaturated = Vector::Sub16(Vector::Set16(1024), in.saturation);
  const Reg p = Vector::Or(Vector::Left16<6>(Vector::MulHigh16(unsaturated, in.value)),
                           Vector::Right16<10>(Vector::MulLow16(unsaturated, in.value)));
  // q and t are (2^20 - distance * s) * v / 2^20, which is v - ceil(distance * s * v / 2^20).
  // distance * s is below 2^20, so `high` is at most 15. `top` is distance * s * v >> 16, at most
  // 4079; `rest` tells whether the lower 20 bits of the product are 0.
  const Reg sector = Vector::Right16<10>(in.hue);
  const Reg fraction = Vector::And(in.hue, Vector::Set16(1023));
  const Reg isOdd = Vector::Equal16(Vector::And(sector, Vector::Set16(1)), Vector::Set16(1));
  const Reg distance = Select(isOdd, fraction, Vector::Sub16(Vector::Set16(1024), fraction));
  const Reg low = Vector::MulLow16(distance, in.saturation);
  const Reg high = Vector::MulHigh16(distance, in.saturation);
  const Reg top = Vector::Add16(Vector::MulLow16(high, in.value), Vector::MulHigh16(low, in.value));
  const Reg rest = Vector::Or(Vector::And(top, Vector::Set16(15)), Vector::MulLow16(low, in.value));
  const Reg even = Vector::Equal16(rest, Vector::Zero());  // -1 where nothing is left over
  const Reg ceiling = Vector::Add16(Vector::Right16<4>(top), Vector::Add16(Vector::Set16(1), even));
  const Reg tq = Vector::Sub16(in.value, ceiling);

  const auto isIn = [sector](uint32_t a, uint32_t b) {
    return Vector::Or(Vector::Equal16(sector, Vector::Set16(a)), Vector::Equal16(sector, Vector::Set16(b)));
  };
  return {Select(isIn(0, 5), in.value, Select(isIn(1, 4), tq, p)),
          Select(isIn(1, 2), in.value, Select(isIn(0, 3), tq, p)),
          Select(isIn(3, 4), in.value, Select(isIn(2, 5), tq, p))};
}

// For shifts of at most one turn: the sum of hue and shift is -6144 to 12287, and one turn more or
// less brings it back to 0 to 6143.
class HSVChange {
 public:
  static constexpr size_t kRegs = 2;

  explicit HSVChange(const HSVAdjustment& by)
      : by_(by),
        factors_{Vector::Set16(static_cast<uint32_t>(by.hueShift)),
                 Vector::Set16(static_cast<uint32_t>(by.saturationScale) / 1024),
                 Vector::Set16(static_cast<uint32_t>(by.valueScale) / 1024)} {}

  LMX_ALWAYS_INLINE void Wide(Reg* pixels) const {
    const Reg first = pixels[0], second = pixels[1];
    const Colours in = {Channel16<16>(first, second), Channel16<8>(first, second), Channel16<0>(first, second)};
    const Colours out = ToRGB(Adjusted(ToHSV(in), factors_));
    const Reg greenBlue = Vector::Or(Vector::Left16<8>(out.green), out.blue);
    const auto assemble = [](Reg pixel, Reg red, Reg rest) {
      return Vector::Or(Vector::And(pixel, Vector::Set32(0xFF000000)), Vector::Or(Vector::Left32<16>(red), rest));
    };
    pixels[0] = assemble(first, Vector::UnpackLow16(out.red), Vector::UnpackLow16(greenBlue));
    pixels[1] = assemble(second, Vector::UnpackHigh16(out.red), Vector::UnpackHigh16(greenBlue));
  }
  LMX_ALWAYS_INLINE uint32_t One(uint32_t pixel) const { return LMX_Pixel::AdjustHSV(pixel, by_); }

 private:
  const HSVAdjustment& by_;
  HSVFactors factors_;
};

template <class From, class To>
void AdjustHSV(uint8_t* to, const uint8_t* from, const HSVAdjustment* by, size_t n) {
  if (by->hueShift >= -6144 && by->hueShift <= 6144) {
    Transform<From, To, Temporal>(to, from, HSVChange(*by), n);
    return;
  }
  plain::AdjustHSV<From, To>(to, from, by, n);
}

// ----------------------------------------------------------------------------------- RGB, negative

class RGBChange {
 public:
  static constexpr size_t kRegs = 1;

  explicit RGBChange(const RGBAdjustment& by) : by_(by), more_(Part(by, 1)), less_(Part(by, -1)) {}

  LMX_ALWAYS_INLINE void Wide(Reg* pixels) const {
    *pixels = Vector::SubSaturated8(Vector::AddSaturated8(*pixels, more_), less_);
  }
  LMX_ALWAYS_INLINE uint32_t One(uint32_t pixel) const { return LMX_Pixel::AdjustRGB(pixel, by_); }

 private:
  // The positive deltas, or the negative ones as positive numbers.
  static Reg Part(const RGBAdjustment& by, int32_t sign) {
    const auto part = [sign](int32_t delta) { return static_cast<uint32_t>(LMX_Pixel::Max(sign * delta, 0)); };
    return Vector::Set32(LMX_Pixel::Pack(0, part(by.red), part(by.green), part(by.blue)));
  }

  const RGBAdjustment& by_;
  Reg more_;
  Reg less_;
};

template <class From, class To, class Stores = Temporal>
void AdjustRGB(uint8_t* to, const uint8_t* from, const RGBAdjustment* by, size_t n) {
  Transform<From, To, Stores>(to, from, RGBChange(*by), n);
}

struct NegativeChange {
  static constexpr size_t kRegs = 1;
  LMX_ALWAYS_INLINE void Wide(Reg* pixels) const { *pixels = Vector::AndNot(*pixels, Vector::Set32(0xFFFFFF)); }
  LMX_ALWAYS_INLINE uint32_t One(uint32_t pixel) const { return LMX_Pixel::Negative(pixel); }
};

template <class From, class To>
void Negative(uint8_t* to, const uint8_t* from, size_t n) {
  Transform<From, To, Temporal>(to, from, NegativeChange(), n);
}

// -------------------------------------------------------------------------------------------- sums

class WideRGBSums {
 public:
  LMX_ALWAYS_INLINE void Add(Reg working) {
    red_ = Vector::Add64(red_, Vector::SumBytes(Vector::And(working, Vector::Set32(0xFF0000))));
    green_ = Vector::Add64(green_, Vector::SumBytes(Vector::And(working, Vector::Set32(0xFF00))));
    blue_ = Vector::Add64(blue_, Vector::SumBytes(Vector::And(working, Vector::Set32(0xFF))));
  }
  LMX_ALWAYS_INLINE void AddTo(RGBSums* sums) const {
    sums->red += Vector::SumOf64(red_);
    sums->green += Vector::SumOf64(green_);
    sums->blue += Vector::SumOf64(blue_);
  }

 private:
  Reg red_ = Vector::Zero();
  Reg green_ = Vector::Zero();
  Reg blue_ = Vector::Zero();
};

template <class Form>
void SumRGB(RGBSums* sums, const uint8_t* stored, size_t n) {
  WideRGBSums wide;
  InSteps<Temporal>(stored, n, [&](size_t i, const auto& pixels) LMX_INLINE_LAMBDA {
    Reg working;
    if (Form::Read(pixels.Load(stored + 4 * i), &working)) return wide.Add(working);
    plain::SumRGB<Form>(sums, stored + 4 * i, pixels.count);
  });
  wide.AddTo(sums);
}

// The sum of saturations depends on the order of its terms, but only through rounding. While the
// sum lies between a power of two B and 2 B, adding a term v rounds v to a multiple of B / 2^52,
// whatever the sum is. (v + B) - B rounds v in the same way, and rounded terms add up exactly in
// any order.
//
// The rounding depends on the sum only for a v halfway between two multiples, at an odd multiple of
// B / 2^53. v is (max - min) / max, at most 1, rounded to a double with an error of at most 2^-54.
// For B of 2^8 to 2^45 no such halfway point is a fraction with a denominator of at most 255: it
// would need one of 2^8 or more. A fraction differs from every halfway point by at least B / 2^53 /
// 255, which is more than 2^-54. So v is no halfway point. A sum of 2^46 would take 256 TiB
// of pixels.
// Tests: AllMaximaAndMinima.SumHSV, SaturationSums.AreThoseOfOneTermAfterTheOther.
constexpr double kFirstWideSum = 256;
constexpr size_t kSumBlock = 256;  // pixels; each adds at most 1

// The largest power of two that is at most `x`, which is normal and positive.
LMX_ALWAYS_INLINE double BinadeOf(double x) {
  uint64_t bits;
  memcpy(&bits, &x, sizeof bits);
  bits &= 0x7FF0000000000000;
  memcpy(&x, &bits, sizeof x);
  return x;
}

// Adds n pixels, at most kSumBlock; false, with nothing added, when a pixel takes the scalar path.
template <class Form>
LMX_ALWAYS_INLINE bool AddBlock(HSVSums* sums, const uint8_t* stored, size_t n) {
  const Vector::Doubles base = Vector::SetDouble(BinadeOf(sums->saturation));
  const auto rounded = [base](Vector::Doubles delta, Vector::Doubles max) {
    return Vector::Sub(Vector::Add(Vector::Divide(delta, max), base), base);
  };
  Vector::Doubles saturation = Vector::SetDouble(0);
  Reg brightness = Vector::Zero();
  WideRGBSums rgb;
  bool isWide = true;
  // Lanes after the last pixel are 0: black, which adds nothing.
  InSteps<Temporal>(stored, n, [&](size_t i, const auto& pixels) LMX_INLINE_LAMBDA {
    Reg working;
    isWide = isWide && Form::Read(pixels.Load(stored + 4 * i), &working);
    if (!isWide) return;
    rgb.Add(working);
    const Reg green = Vector::Right32<8>(working), red = Vector::Right32<16>(working);
    const Reg max = Vector::And(Vector::Max8(Vector::Max8(red, green), working), Vector::Set32(0xFF));
    const Reg min = Vector::And(Vector::Min8(Vector::Min8(red, green), working), Vector::Set32(0xFF));
    brightness = Vector::Add32(brightness, max);
    const Reg delta = Vector::Sub32(max, min);
    const Reg divisor = Vector::Max16(max, Vector::Set32(1));  // black adds 0
    saturation = Vector::Add(saturation, rounded(Vector::LowToDouble(delta), Vector::LowToDouble(divisor)));
    saturation = Vector::Add(saturation, rounded(Vector::HighToDouble(delta), Vector::HighToDouble(divisor)));
  });
  if (!isWide) return false;
  rgb.AddTo(&sums->rgb);
  sums->saturation += Vector::SumOf(saturation);
  sums->brightness += Vector::SumOf64(Vector::SumPairs32(brightness)) * 0.00390625;
  return true;
}

template <class Form>
void SumHSV(HSVSums* sums, const uint8_t* stored, size_t n) {
  for (size_t i = 0, block; i < n; i += block) {
    block = n - i < kSumBlock ? n - i : kSumBlock;
    const bool isWide =
        sums->saturation >= kFirstWideSum && sums->saturation + kSumBlock < 2 * BinadeOf(sums->saturation);
    if (isWide && AddBlock<Form>(sums, stored + 4 * i, block)) continue;
    plain::SumHSV<Form>(sums, stored + 4 * i, block);
  }
}

}  // namespace
