// The wide kernels of the geometric methods: fills, blends and box filters. Included after a Vector header.
#pragma once

#include "WidePixels.h"

namespace {

void Fill(uint8_t* stored, const uint8_t* pixel, size_t n) {
  uint32_t word;
  memcpy(&word, pixel, 4);
  const Reg words = Vector::Set32(word);
  size_t i = 0;
  for (; i + kWide <= n; i += kWide) Vector::Store(stored + 4 * i, words);
  for (; i < n; ++i) memcpy(stored + 4 * i, &word, 4);
}

// ------------------------------------------------------------------------------------------------------------ blends

// Two pixels' mix is the smaller channel and a part of their distance: min + |a - b| w / W, truncated, where w is the
// weight of the larger one and W that of both. The distances in 16-bit lanes, and where the second is the larger one.
struct Distances {
  Distances(Reg first, Reg second) : min(Vector::Min8(first, second)) {
    const Reg distance = Vector::Sub8(Vector::Max8(first, second), min);
    const Reg secondIsLarger = Vector::Equal8(min, first);
    of = Unpack(distance);
    second_ = {Vector::DoubleLow8(secondIsLarger), Vector::DoubleHigh8(secondIsLarger)};
  }

  // min + part(distance, weight); `weight` is that of the second, and `both` what to flip for that of the first.
  template <class Part>
  LMX_EXPAND Reg Mix(Reg weight, Reg both, Part part) const {
    const Reg low = part(of.low, Vector::Xor(weight, Vector::AndNot(second_.low, both)));
    const Reg high = part(of.high, Vector::Xor(weight, Vector::AndNot(second_.high, both)));
    return Vector::Add8(min, Pack({low, high}));
  }

  Reg min;
  Channels of;

 private:
  Channels second_;
};

// The weights of a blend add up to 65535. With H and L the halves of distance times weight, the quotient is H, and one
// more where L + H reaches 65535.
struct BlendPart {
  LMX_EXPAND Reg operator()(Reg distance, Reg weight) const {
    const Reg high = Vector::MulHigh16(distance, weight);
    const Reg low = Vector::MulLow16(distance, weight);
    return Vector::Add16(high, Vector::Right16<15>(Vector::Average16(high, low)));
  }
};

LMX_EXPAND Reg BlendPixels(Reg pixel, Reg before, Reg fraction) {
  return Distances(pixel, before).Mix(fraction, Vector::Set16(65535), BlendPart());
}

// The pixels of one register, of which the one at `from` has a pixel before it in the run; false when they need their
// definition.
template <class From, class To>
struct Blending {
  LMX_EXPAND static bool Wide(const uint8_t* from, Reg fraction, Reg* out) {
    Reg pixel, before;
    if (!From::Read(Vector::Load(from), &pixel) || !From::Read(Vector::Load(from - 4), &before)) return false;
    *out = To::Write(BlendPixels(pixel, before, fraction));
    return true;
  }
};

// Opaque pixels are stored as they are, so that they can be blended as they are stored.
template <>
struct Blending<ContextForm, ContextForm> {
  LMX_EXPAND static bool Wide(const uint8_t* from, Reg fraction, Reg* out) {
    const Reg pixel = Vector::Load(from), before = Vector::Load(from - 4);
    if (Vector::HasBits(Vector::And(pixel, before), Vector::Set32(ContextForm::kAlpha))) {
      *out = BlendPixels(pixel, before, fraction);
      return true;
    }
    Reg straight, straightBefore;
    if (!ContextForm::Read(pixel, &straight) || !ContextForm::Read(before, &straightBefore)) return false;
    *out = ContextForm::Write(BlendPixels(straight, straightBefore, fraction));
    return true;
  }
};

template <class From, class To>
void Blend(uint8_t* to, const uint8_t* from, uint32_t before, uint32_t fraction, size_t n) {
  if (n == 0) return;
  To::WriteOne(to, LMX_Pixel::Blend(From::ReadOne(from), before, fraction));
  const auto one = [&](size_t i) {
    const uint32_t pixel = From::ReadOne(from + 4 * i);
    To::WriteOne(to + 4 * i, LMX_Pixel::Blend(pixel, From::ReadOne(from + 4 * (i - 1)), fraction));
  };
  const Reg f = Vector::Set16(fraction);
  size_t i = 1;
  for (; i + kWide <= n; i += kWide) {
    Reg out;
    if (Blending<From, To>::Wide(from + 4 * i, f, &out)) {
      Vector::Store(to + 4 * i, out);
    } else {
      for (size_t j = i; j < i + kWide; ++j) one(j);
    }
  }
  for (; i < n; ++i) one(i);
}

// -------------------------------------------------------------------------------------------------------- box filter

// All units are 32768 and the weight is below that.
struct WholeMixPart {
  LMX_EXPAND Reg operator()(Reg distance, Reg weight) const {
    return Vector::MulHigh16(distance, Vector::Add16(weight, weight));
  }
};

// All units are 32768 - e with a small e. With distance times weight = H 32768 + L, which is H units + (H e + L), the
// quotient is H, and one more where H e + L reaches the units.
struct MixPart {
  static constexpr uint32_t kMost = 64;  // e, so that nothing exceeds 16 bits

  explicit MixPart(uint32_t units) : missing(Vector::Set16(32768 - units)) {}

  LMX_EXPAND Reg operator()(Reg distance, Reg weight) const {
    const Reg high = Vector::MulHigh16(distance, Vector::Add16(weight, weight));
    const Reg low = Vector::And(Vector::MulLow16(distance, weight), Vector::Set16(32767));
    const Reg rest = Vector::Add16(low, Vector::MulLow16(high, missing));
    return Vector::Add16(high, Vector::Right16<15>(Vector::Add16(rest, missing)));
  }

  Reg missing;
};

template <class Part>
LMX_EXPAND size_t MixRegisters(uint32_t* averages, const uint32_t* first, const uint32_t* second, uint32_t ofSecond,
                               uint32_t units, size_t n, const Part& part) {
  const Reg weight = Vector::Set16(ofSecond);
  const Reg both = Vector::Set16(ofSecond ^ (units - ofSecond));
  size_t i = 0;
  for (; i + kWide <= n; i += kWide) {
    const Distances distances(Vector::Load(first + i), Vector::Load(second + i));
    Vector::Store(averages + i, distances.Mix(weight, both, part));
  }
  return i;
}

void Mix(uint32_t* averages, const uint32_t* first, const uint32_t* second, uint32_t ofSecond, uint32_t units,
         size_t n) {
  size_t i = 0;
  const bool isMix = ofSecond > 0 && ofSecond < units;
  if (isMix && units == 32768) {
    i = MixRegisters(averages, first, second, ofSecond, units, n, WholeMixPart());
  } else if (isMix && units >= 32768 - MixPart::kMost) {
    i = MixRegisters(averages, first, second, ofSecond, units, n, MixPart(units));
  }
  for (; i < n; ++i) averages[i] = LMX_Pixel::Mix(first[i], second[i], ofSecond, units);
}

void AddCoverage(uint32_t* sums, const uint32_t* runs, size_t stride, size_t count, uint32_t units, size_t n) {
  constexpr size_t kStep = kWide / 4;
  const Reg factor = Vector::Set32(units);
  size_t i = 0;
  for (; i + kStep <= n; i += kStep) {
    Reg sum = Vector::Load(sums + 4 * i);
    for (size_t run = 0; run < count; ++run) {
      sum = Vector::Add32(sum, Vector::MulAddPairs16(Vector::LoadWide(runs + run * stride + i), factor));
    }
    Vector::Store(sums + 4 * i, sum);
  }
  for (; i < n; ++i) {
    for (size_t run = 0; run < count; ++run) LMX_Pixel::AddCoverage(sums + 4 * i, runs[run * stride + i], units);
  }
}

// With M = ceil(2^40 / units), sum M >> 40 is sum / units for every sum below 2^23, since M units - 2^40 < 2^15. Of fewer
// units M does not fit in 32 bits.
constexpr uint32_t kFewestWideUnits = 257;

void AverageCoverage(uint32_t* averages, const uint32_t* sums, uint32_t units, size_t n) {
  size_t i = 0;
  if (units >= kFewestWideUnits) {
    const Reg factor = Vector::Set32(static_cast<uint32_t>(((1ull << 40) + units - 1) / units));
    const auto divide = [factor](const uint32_t* sum) {
      const Reg all = Vector::Load(sum);
      const Reg even = Vector::Right64<40>(Vector::MulEven32(all, factor));
      const Reg odd = Vector::Right64<40>(Vector::MulEven32(Vector::Right64<32>(all), factor));
      return Vector::Or(even, Vector::Left64<32>(odd));
    };
    for (; i + kWide <= n; i += kWide) {
      const uint32_t* const at = sums + 4 * i;
      Vector::Store(averages + i,
                    Vector::PackWide(divide(at), divide(at + kWide), divide(at + 2 * kWide), divide(at + 3 * kWide)));
    }
  }
  for (; i < n; ++i) averages[i] = LMX_Pixel::AverageCoverage(sums + 4 * i, units);
}

}  // namespace
