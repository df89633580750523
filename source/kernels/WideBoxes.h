// The wide kernels of the box filter. Included after a Vector header.
#pragma once

#include "WideGeometry.h"

namespace {

// --------------------------------------------------------------------------------------------------------------- boxes

class MixWeights {
 public:
  explicit MixWeights(const BoxUnits& units)
      : ofFirst_(Vector::Set16(units.first)), both_(Vector::Set16(units.first ^ units.last)) {}

  LMX_EXPAND Reg Weight(Reg secondIsLarger) const { return Vector::Xor(ofFirst_, Vector::And(secondIsLarger, both_)); }

 private:
  Reg ofFirst_;
  Reg both_;  // what the two weights differ in
};

// All units are 32768, and both weights below that.
class WholeMixPart {
 public:
  explicit WholeMixPart(const BoxUnits& units) : weights_(units) {}

  LMX_EXPAND Reg Weight(Reg secondIsLarger) const { return weights_.Weight(secondIsLarger); }
  LMX_EXPAND static Reg Of(Reg distance, Reg weight) {
    return Vector::MulHigh16(distance, Vector::Add16(weight, weight));
  }

 private:
  MixWeights weights_;
};

// All units are 32768 - e with a small e. With a sum of H 32768 + L, which is H units + (H e + L), the quotient is H, and
// one more where H e + L reaches the units.
constexpr uint32_t kMostMissing = 64;  // e, so that nothing exceeds 16 bits

LMX_EXPAND Reg DivideByUnits(Reg high, Reg low, Reg missing) {
  const Reg rest = Vector::Add16(low, Vector::MulLow16(high, missing));
  return Vector::Add16(high, Vector::Right16<15>(Vector::Add16(rest, missing)));
}

class MixPart {
 public:
  explicit MixPart(const BoxUnits& units) : weights_(units), missing_(Vector::Set16(32768 - units.Of(2))) {}

  LMX_EXPAND Reg Weight(Reg secondIsLarger) const { return weights_.Weight(secondIsLarger); }
  LMX_EXPAND Reg Of(Reg distance, Reg weight) const {
    const Reg high = Vector::MulHigh16(distance, Vector::Add16(weight, weight));
    const Reg low = Vector::And(Vector::MulLow16(distance, weight), Vector::Set16(32767));
    return DivideByUnits(high, low, missing_);
  }

 private:
  MixWeights weights_;
  Reg missing_;
};

// The averages of a register of pixels from each of the runs; false when a pixel needs its definition.
template <class From, class To, class Part>
struct Mixing {
  LMX_EXPAND static bool Wide(const uint8_t* first, const uint8_t* second, const Part& part, Reg* out) {
    Reg a, b;
    if (!From::Read(Vector::Load(first), &a) || !From::Read(Vector::Load(second), &b)) return false;
    *out = To::Write(Distances(a, b).Mix(part));
    return true;
  }
};

template <class Part>
struct Mixing<ContextForm, ContextForm, Part> {
  LMX_EXPAND static bool Wide(const uint8_t* first, const uint8_t* second, const Part& part, Reg* out) {
    const Reg a = Vector::Load(first), b = Vector::Load(second);
    if (Vector::HasBits(Vector::And(a, b), Vector::Set32(ContextForm::kAlpha))) {
      *out = Distances(a, b).Mix(part);
      return true;
    }
    Reg straightA, straightB;
    if (!ContextForm::Read(a, &straightA) || !ContextForm::Read(b, &straightB)) return false;
    *out = ContextForm::Write(Distances(straightA, straightB).Mix(part));
    return true;
  }
};

// One average, by the definition.
template <class From, class To>
void BoxOne(uint8_t* to, const uint8_t* const* runs, size_t count, const BoxUnits& units, size_t i) {
  uint32_t sums[4] = {};
  LMX_Pixel::AddToBox(sums, From::ReadOne(runs[0] + 4 * i), units.first);
  for (size_t run = 1; run + 1 < count; ++run) {
    LMX_Pixel::AddToBox(sums, From::ReadOne(runs[run] + 4 * i), units.whole);
  }
  LMX_Pixel::AddToBox(sums, From::ReadOne(runs[count - 1] + 4 * i), units.last);
  To::WriteOne(to + 4 * i, LMX_Pixel::BoxAverage(sums, units.Of(count)));
}

// Calls wide(i, &out) for each whole register, and averages what it refuses, or leaves over, one by one.
template <class From, class To, class Stores, class Wide>
LMX_EXPAND void BoxRegisters(uint8_t* to, const uint8_t* const* runs, size_t count, const BoxUnits& units, size_t n,
                             const Wide& wide) {
  const size_t ahead = Stores::Ahead(to, n);
  size_t i = 0;
  for (; i < ahead; ++i) BoxOne<From, To>(to, runs, count, units, i);
  for (; i + kWide <= n; i += kWide) {
    Reg out;
    if (wide(i, &out)) {
      Stores::Store(to + 4 * i, out);
    } else {
      for (size_t j = i; j < i + kWide; ++j) BoxOne<From, To>(to, runs, count, units, j);
    }
  }
  for (; i < n; ++i) BoxOne<From, To>(to, runs, count, units, i);
}

template <class From, class To, class Stores, class Part>
void MixRuns(uint8_t* to, const uint8_t* const* runs, const BoxUnits& units, size_t n) {
  const Part part(units);
  const uint8_t* const first = runs[0];
  const uint8_t* const second = runs[1];
  BoxRegisters<From, To, Stores>(to, runs, 2, units, n, [&](size_t i, Reg* out) LMX_EXPANDED {
    return Mixing<From, To, Part>::Wide(first + 4 * i, second + 4 * i, part, out);
  });
}

// A quarter of a register of pixels in 32-bit lanes, four times.
struct Quarters {
  Reg of[4];
};

// a times its weight plus b times its weight, in each channel; `weights` are pairs of signed 16-bit numbers.
LMX_EXPAND Quarters WeightedBytes(Reg a, Reg b, Reg weights) {
  const Reg low = Vector::Interleave8Low(a, b), high = Vector::Interleave8High(a, b);
  return {{Vector::MulAddPairs16(Vector::UnpackLow8(low), weights),
           Vector::MulAddPairs16(Vector::UnpackHigh8(low), weights),
           Vector::MulAddPairs16(Vector::UnpackLow8(high), weights),
           Vector::MulAddPairs16(Vector::UnpackHigh8(high), weights)}};
}

// 16-bit channels times a weight, a signed 16-bit number.
LMX_EXPAND Quarters Weighted(const Channels& a, Reg weight) {
  return {{Vector::MulAddPairs16(Vector::UnpackLow16(a.low), weight),
           Vector::MulAddPairs16(Vector::UnpackHigh16(a.low), weight),
           Vector::MulAddPairs16(Vector::UnpackLow16(a.high), weight),
           Vector::MulAddPairs16(Vector::UnpackHigh16(a.high), weight)}};
}

LMX_EXPAND Quarters Sum(const Quarters& a, const Quarters& b) {
  return {{Vector::Add32(a.of[0], b.of[0]), Vector::Add32(a.of[1], b.of[1]), Vector::Add32(a.of[2], b.of[2]),
           Vector::Add32(a.of[3], b.of[3])}};
}

// The sums of the runs' channels, up to 128 runs.
template <class From>
LMX_EXPAND bool SumRuns(const uint8_t* const* runs, size_t count, size_t i, Channels* sums) {
  *sums = {Vector::Zero(), Vector::Zero()};
  for (size_t run = 0; run < count; ++run) {
    Reg pixels;
    if (!From::Read(Vector::Load(runs[run] + 4 * i), &pixels)) return false;
    const Channels channels = Unpack(pixels);
    sums->low = Vector::Add16(sums->low, channels.low);
    sums->high = Vector::Add16(sums->high, channels.high);
  }
  return true;
}

template <class From, class To, class Stores>
void AverageRuns(uint8_t* to, const uint8_t* const* runs, size_t count, const BoxUnits& units, size_t n) {
  const Reg ends = Vector::Set32(units.last << 16 | units.first);
  const Reg whole = Vector::Set32(units.whole);
  const Reg missing = Vector::Set16(32768 - units.Of(count));
  const auto divide = [missing](Reg a, Reg b) LMX_EXPANDED {
    const Reg rest = Vector::Set32(32767);
    const Reg high = Vector::Pack32(Vector::Right32<15>(a), Vector::Right32<15>(b));
    return DivideByUnits(high, Vector::Pack32(Vector::And(a, rest), Vector::And(b, rest)), missing);
  };
  BoxRegisters<From, To, Stores>(to, runs, count, units, n, [&](size_t i, Reg* out) LMX_EXPANDED {
    Reg first, last;
    Channels between;
    if (!From::Read(Vector::Load(runs[0] + 4 * i), &first)) return false;
    if (!From::Read(Vector::Load(runs[count - 1] + 4 * i), &last)) return false;
    if (!SumRuns<From>(runs + 1, count - 2, i, &between)) return false;
    const Quarters sums = Sum(WeightedBytes(first, last, ends), Weighted(between, whole));
    *out = To::Write(Pack({divide(sums.of[0], sums.of[1]), divide(sums.of[2], sums.of[3])}));
    return true;
  });
}

template <class From, class To, class Stores>
void Box(uint8_t* to, const uint8_t* const* runs, size_t count, const BoxUnits* units, size_t n) {
  const uint32_t all = units->Of(count);
  if (all < 32768 - kMostMissing) {
    for (size_t i = 0; i < n; ++i) BoxOne<From, To>(to, runs, count, *units, i);
  } else if (count > 2) {
    AverageRuns<From, To, Stores>(to, runs, count, *units, n);
  } else if (all == 32768) {
    MixRuns<From, To, Stores, WholeMixPart>(to, runs, *units, n);
  } else {
    MixRuns<From, To, Stores, MixPart>(to, runs, *units, n);
  }
}

// Registers of pixels have their sums in four registers of quarters, the pixels that are left over in channels.
template <class From>
void AddToBoxes(uint32_t* sums, const uint8_t* const* runs, size_t count, uint32_t units, size_t n) {
  const Reg weight = Vector::Set32(units);
  size_t i = 0;
  for (; i + kWide <= n; i += kWide) {
    Channels channels;
    if (!SumRuns<From>(runs, count, i, &channels)) {
      // By way of working pixels, in the order of the others.
      channels = {Vector::Zero(), Vector::Zero()};
      for (size_t run = 0; run < count; ++run) {
        uint32_t pixels[kWide];
        for (size_t j = 0; j < kWide; ++j) pixels[j] = From::ReadOne(runs[run] + 4 * (i + j));
        const Channels more = Unpack(Vector::Load(pixels));
        channels = {Vector::Add16(channels.low, more.low), Vector::Add16(channels.high, more.high)};
      }
    }
    const Quarters added = Weighted(channels, weight);
    for (size_t q = 0; q < 4; ++q) {
      uint32_t* const sum = sums + 4 * i + q * kWide;
      Vector::Store(sum, Vector::Add32(Vector::Load(sum), added.of[q]));
    }
  }
  for (; i < n; ++i) {
    for (size_t run = 0; run < count; ++run) {
      LMX_Pixel::AddToBox(sums + 4 * i, From::ReadOne(runs[run] + 4 * i), units);
    }
  }
}

// With M = ceil(2^40 / units), sum M >> 40 is sum / units for every sum below 2^23, since M units - 2^40 < 2^15. Of fewer
// units M does not fit in 32 bits.
constexpr uint32_t kFewestWideUnits = 257;

template <class To>
void AverageBoxes(uint8_t* to, const uint32_t* sums, uint32_t units, size_t n) {
  const Reg factor = Vector::Set32(
      static_cast<uint32_t>(((1ull << 40) + units - 1) / (units < kFewestWideUnits ? kFewestWideUnits : units)));
  const auto quotient = [&](Reg sum) LMX_EXPANDED {
    const Reg even = Vector::Right64<40>(Vector::MulEven32(sum, factor));
    const Reg odd = Vector::Right64<40>(Vector::MulEven32(Vector::Right64<32>(sum), factor));
    return Vector::Or(even, Vector::Left64<32>(odd));
  };
  size_t i = 0;
  for (; i + kWide <= n; i += kWide) {
    Reg quarters[4];
    for (size_t q = 0; q < 4; ++q) {
      if (units < kFewestWideUnits) {
        uint32_t quotients[kWide];
        for (size_t j = 0; j < kWide; ++j) quotients[j] = sums[4 * i + q * kWide + j] / units;
        quarters[q] = Vector::Load(quotients);
      } else {
        quarters[q] = quotient(Vector::Load(sums + 4 * i + q * kWide));
      }
    }
    const Reg low = Vector::Pack32(quarters[0], quarters[1]), high = Vector::Pack32(quarters[2], quarters[3]);
    Vector::Store(to + 4 * i, To::Write(Pack({low, high})));
  }
  for (; i < n; ++i) To::WriteOne(to + 4 * i, LMX_Pixel::BoxAverage(sums + 4 * i, units));
}

template <class From, class To>
LMX_EXPAND void HalveOne(uint8_t* to, const uint8_t* from) {
  uint32_t sums[4] = {};
  LMX_Pixel::AddToBox(sums, From::ReadOne(from), 1);
  LMX_Pixel::AddToBox(sums, From::ReadOne(from + 4), 1);
  To::WriteOne(to, LMX_Pixel::BoxAverage(sums, 2));
}

// Truncated means: Average8 rounds up.
template <class From, class To>
void Halve(uint8_t* to, const uint8_t* from, size_t n) {
  size_t i = 0;
  for (; i + kWide <= n; i += kWide) {
    const Reg first = Vector::Load(from + 8 * i), second = Vector::Load(from + 8 * i + 4 * kWide);
    Reg even, odd;
    if (From::Read(Vector::EvenPixels(first, second), &even) && From::Read(Vector::OddPixels(first, second), &odd)) {
      const Reg roundedUp = Vector::And(Vector::Xor(even, odd), Vector::Set32(0x01010101));
      Vector::Store(to + 4 * i, To::Write(Vector::Sub8(Vector::Average8(even, odd), roundedUp)));
    } else {
      for (size_t j = i; j < i + kWide; ++j) HalveOne<From, To>(to + 4 * j, from + 8 * j);
    }
  }
  for (; i < n; ++i) HalveOne<From, To>(to + 4 * i, from + 8 * i);
}

}  // namespace
