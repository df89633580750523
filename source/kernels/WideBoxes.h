// The wide kernels of the box filter. Included after a Vector header.
#pragma once

#include "WideGeometry.h"

namespace {

// ---------------------------------------------------------------------------- averages of two runs

// A box of exactly 32768 units: (a * first + b * last) / 32768 is a + (b - a) * last / 32768,
// rounded down. That is a plus the upper half of the signed product of 2 * (b - a), -510 to 510,
// and `last`, 1 to 32767. Test: AllDistancesAndWeights.BoxOfTwo.
class WholeMix {
 public:
  explicit WholeMix(const Box& box) : last_(Vector::Set16(box.last)) {}

  LMX_ALWAYS_INLINE Reg operator()(Reg a, Reg b) const {
    const auto mix = [this](Reg x, Reg y) {
      const Reg difference = Vector::Sub16(y, x);
      return Vector::Add16(x, Vector::MulHighSigned16(Vector::Add16(difference, difference), last_));
    };
    const Channels x = Unpack(a), y = Unpack(b);
    return Pack({mix(x.low, y.low), mix(x.high, y.high)});
  }

 private:
  Reg last_;
};

// A box of U units, 32704 to 32768: the smaller channel plus d * w / U, truncated. d is the
// distance, 0 to 255, and w the weight of the larger channel, 1 to U - 1.
//
// G is w * 2^32 / U with an error e, |e| < 2, and fits in 32 bits. The quotient is the upper half
// of S = floor(d * G / 2^16) + 1:
//   - S is an integer above x - 0.01 and at most x + 1.01, where x is 2^16 * d * w / U, since
//     255 * 2 / 2^16 < 0.01.
//   - Where d * w / U is an integer, S is x or x + 1.
//   - Elsewhere d * w / U is at least 1 / U below the next integer, so x is at least 2 below 2^16
//     times that integer, and S is below it, too.
// G is held in two halves. S is d times the upper half, plus the upper half of d times the lower
// half, plus 1; of the lower 16 bits only the carry is needed. The share of the second run is the
// complement of that of the first: both add up to 2^32 - 1.
// Test: AllDistancesAndWeights.BoxOfTwo.
class Mix {
 public:
  // How much w * 2^32 / U exceeds w * 2^17, for each unit of w, in 1/65536: at most 16810048.
  static uint32_t Excess(uint32_t ofBox) { return static_cast<uint32_t>((1ull << 48) / ofBox - (1ull << 33)); }

  Mix(const Box& box, uint32_t excess) {
    const uint32_t share = (box.first << 17) + static_cast<uint32_t>(static_cast<uint64_t>(box.first) * excess >> 16);
    high_ = Vector::Set16(share >> 16);
    low_ = Vector::Set16(share & 0xFFFF);
  }

  LMX_ALWAYS_INLINE Reg operator()(Reg a, Reg b) const { return Distances(a, b).Mix(*this); }

  LMX_ALWAYS_INLINE static Reg Weight(Reg secondIsLarger) { return secondIsLarger; }
  LMX_ALWAYS_INLINE Reg Of(Reg distance, Reg secondIsLarger) const {
    const Reg weight = Vector::Xor(high_, secondIsLarger);
    const Reg carried = Vector::MulHigh16(distance, Vector::Xor(low_, secondIsLarger));
    const Reg rest = Vector::Average16(Vector::MulLow16(distance, weight), carried);
    return Vector::Add16(Vector::MulHigh16(distance, weight), Vector::Right16<15>(rest));
  }

 private:
  Reg high_;
  Reg low_;
};

// --------------------------------------------------------------------------- averages of more runs

// A register of pixels as four registers of 32-bit lanes, one lane for each channel.
struct Quarters {
  Reg of[4];
};

// a * its weight + b * its weight, for each channel. `weights` holds pairs of signed 16-bit
// weights.
LMX_ALWAYS_INLINE Quarters WeightedBytes(Reg a, Reg b, Reg weights) {
  const Reg low = Vector::Interleave8Low(a, b), high = Vector::Interleave8High(a, b);
  return {{Vector::MulAddPairs16(Vector::UnpackLow8(low), weights),
           Vector::MulAddPairs16(Vector::UnpackHigh8(low), weights),
           Vector::MulAddPairs16(Vector::UnpackLow8(high), weights),
           Vector::MulAddPairs16(Vector::UnpackHigh8(high), weights)}};
}

// 16-bit channels times a weight of 0 to 32767.
LMX_ALWAYS_INLINE Quarters Weighted(const Channels& a, Reg weight) {
  return {{Vector::MulAddPairs16(Vector::UnpackLow16(a.low), weight),
           Vector::MulAddPairs16(Vector::UnpackHigh16(a.low), weight),
           Vector::MulAddPairs16(Vector::UnpackLow16(a.high), weight),
           Vector::MulAddPairs16(Vector::UnpackHigh16(a.high), weight)}};
}

// The sums of the channels of at most 128 runs: 128 * 255 is a signed 16-bit number.
template <class Pixels>
LMX_ALWAYS_INLINE Channels SumRuns(const uint8_t* const* runs, size_t count, size_t i, const Pixels& pixels) {
  Channels sums = {Vector::Zero(), Vector::Zero()};
  for (size_t run = 0; run < count; ++run) {
    const Channels channels = Unpack(pixels.Load(runs[run] + 4 * i));
    sums = {Vector::Add16(sums.low, channels.low), Vector::Add16(sums.high, channels.high)};
  }
  return sums;
}

// A box of three runs or more, of U = 32768 - e units, with e of 0 to kMostMissing. Weights are at
// most 32766. The sum, at most 255 * U, is H * 32768 + L, which is H * U + (H * e + L). So the
// quotient is H, 0 to 255, or H + 1 where H * e + L >= U; that term is at most 49087, below 2 * U.
// Bit 15 of H * e + L + e, at most 49151, tells which.
// Tests: AllUnitsOfManyRuns.BoxesOfOneColour, and the kernel cases of `boxes`.
class Average {
 public:
  Average(const Box& box, const BoxUnits& units)
      : between_(box.count - 2),
        ends_(Vector::Set32(box.last << 16 | box.first)),
        whole_(Vector::Set32(units.ofRun)),
        missing_(Vector::Set16(kWholeBox - units.ofBox)) {}

  template <class Pixels>
  LMX_ALWAYS_INLINE Reg operator()(const uint8_t* const* runs, size_t i, const Pixels& pixels) const {
    const Reg first = pixels.Load(runs[0] + 4 * i), last = pixels.Load(runs[between_ + 1] + 4 * i);
    const Quarters ends = WeightedBytes(first, last, ends_);
    const Quarters inside = Weighted(SumRuns(runs + 1, between_, i, pixels), whole_);
    const auto sum = [&](size_t q) { return Vector::Add32(ends.of[q], inside.of[q]); };
    return Pack({Quotient(sum(0), sum(1)), Quotient(sum(2), sum(3))});
  }

 private:
  LMX_ALWAYS_INLINE Reg Quotient(Reg a, Reg b) const {
    const Reg low = Vector::Set32(32767);
    const Reg high = Vector::Pack32(Vector::Right32<15>(a), Vector::Right32<15>(b));
    const Reg rest = Vector::Add16(Vector::Pack32(Vector::And(a, low), Vector::And(b, low)), missing_);
    return Vector::Add16(high, Vector::Right16<15>(Vector::Add16(rest, Vector::MulLow16(high, missing_))));
  }

  size_t between_;
  Reg ends_;
  Reg whole_;
  Reg missing_;
};

// -------------------------------------------------------------------------------------------- runs

// The working pixels of a whole register.
struct AllColumns {
  LMX_ALWAYS_INLINE static Reg Load(const uint8_t* p) { return Vector::Load(p); }
};

// The first n columns of a register, 0 to kWide; with 0 it must not load or store. The other lanes
// read as opaque, so that one opaque test covers the register.
class FirstColumns {
 public:
  LMX_ALWAYS_INLINE explicit FirstColumns(size_t n) : n_(n) {
    uint8_t bytes[sizeof(Reg)];
    Vector::Store(bytes, Vector::Set32(0xFFFFFFFF));
    if (n > 0) beyond_ = Vector::Xor(Vector::LoadFirst(bytes, n), Vector::Set32(0xFFFFFFFF));
  }
  LMX_ALWAYS_INLINE Reg Load(const uint8_t* p) const { return Vector::Or(Vector::LoadFirst(p, n_), beyond_); }
  LMX_ALWAYS_INLINE void Store(uint8_t* p, Reg a) const { Vector::StoreFirst(p, n_, a); }

 private:
  size_t n_;
  Reg beyond_ = Vector::Zero();
};

// Makes runs of n pixels. average(i, pixels) gives the working pixels from pixel i on.
template <class To, class Stores>
class Runs {
 public:
  LMX_ALWAYS_INLINE explicit Runs(size_t n) : n_(n), rest_(n % kWide) {}

  template <class OfRegister>
  LMX_ALWAYS_INLINE void Make(uint8_t* to, const OfRegister& average) const {
    size_t i = Stores::Head(to, n_);
    if (i > 0) return MakeFrom(i, to, average);
    for (; i + kWide <= n_; i += kWide) Stores::Store(to + 4 * i, To::Write(average(i, AllColumns())));
    if (i < n_) rest_.Store(to + 4 * i, To::Write(average(i, rest_)));
  }

  // The same run `count` times.
  LMX_ALWAYS_INLINE void Copy(uint8_t* const* to, size_t count, const uint8_t* run) const {
    bool isTogether = count > 1;
    for (size_t row = 0; row < count; ++row) isTogether = isTogether && Stores::Head(to[row], n_) == 0;
    if (!isTogether) {
      for (size_t row = 0; row < count; ++row) {
        Make(to[row], [&](size_t i, const auto& pixels) LMX_INLINE_LAMBDA { return pixels.Load(run + 4 * i); });
      }
      return;
    }
    size_t i = 0;
    for (; i + kWide <= n_; i += kWide) {
      const Reg pixels = To::Write(Vector::Load(run + 4 * i));
      for (size_t row = 0; row < count; ++row) Stores::Store(to[row] + 4 * i, pixels);
    }
    if (i == n_) return;
    const Reg pixels = To::Write(rest_.Load(run + 4 * i));
    for (size_t row = 0; row < count; ++row) rest_.Store(to[row] + 4 * i, pixels);
  }

 private:
  // The head and the rest with ordinary stores.
  template <class OfRegister>
  LMX_ALWAYS_INLINE void MakeFrom(size_t head, uint8_t* to, const OfRegister& average) const {
    const auto part = [&](size_t from, size_t end) LMX_INLINE_LAMBDA {
      for (size_t i = from; i < end; i += kWide) {
        const FirstColumns first(end - i < kWide ? end - i : kWide);
        first.Store(to + 4 * i, To::Write(average(i, first)));
      }
    };
    part(0, head);
    size_t i = head;
    for (; i + kWide <= n_; i += kWide) Stores::Store(to + 4 * i, To::Write(average(i, AllColumns())));
    part(i, n_);
  }

  size_t n_;
  FirstColumns rest_;
};

// The same for runs of n < kWide pixels.
template <class To>
class Strip {
 public:
  LMX_ALWAYS_INLINE explicit Strip(size_t n) : columns_(n) {}
  template <class OfRegister>
  LMX_ALWAYS_INLINE void Make(uint8_t* to, const OfRegister& average) const {
    columns_.Store(to, To::Write(average(0, columns_)));
  }
  LMX_ALWAYS_INLINE void Copy(uint8_t* const* to, size_t count, const uint8_t* run) const {
    const Reg pixels = To::Write(columns_.Load(run));
    for (size_t row = 0; row < count; ++row) columns_.Store(to[row], pixels);
  }

 private:
  FirstColumns columns_;
};

template <class Made>
LMX_ALWAYS_INLINE void MakeBoxes(uint8_t* const* to, const uint8_t* const* runs, const BoxUnits& units, size_t count,
                                 const Made& made) {
  const uint32_t excess = Mix::Excess(units.ofBox);
  const auto mixed = [&](const auto& mix) LMX_INLINE_LAMBDA {
    return [&](size_t i, const auto& pixels)
               LMX_INLINE_LAMBDA { return mix(pixels.Load(runs[0] + 4 * i), pixels.Load(runs[1] + 4 * i)); };
  };
  BoxWalk walk(units);
  for (size_t row = 0; row < count; ++row) {
    Box box = walk.Next();
    if (box.count == 1) {
      const size_t first = row;
      for (BoxWalk ahead = walk; box.advance == 0 && row + 1 < count; ++row, walk = ahead) {
        const Box next = ahead.Next();
        if (next.count != 1) break;
        box = next;
      }
      made.Copy(to + first, row + 1 - first, runs[0]);
    } else if (box.count == 2 && units.ofBox == kWholeBox) {
      made.Make(to[row], mixed(WholeMix(box)));
    } else if (box.count == 2) {
      made.Make(to[row], mixed(Mix(box, excess)));
    } else {
      const Average average(box, units);
      made.Make(to[row], [&](size_t i, const auto& pixels) LMX_INLINE_LAMBDA { return average(runs, i, pixels); });
    }
    runs += box.advance;
  }
}

template <class To, class Stores = Temporal>
void Boxes(uint8_t* const* to, const uint8_t* const* runs, const BoxUnits* units, size_t count, size_t n) {
  if (n == 0) return;
  if (n < kWide) return MakeBoxes(to, runs, *units, count, Strip<To>(n));
  MakeBoxes(to, runs, *units, count, Runs<To, Stores>(n));
}

// ------------------------------------------------------------------------------- averages in steps

// Calls step(i, pixels) for every register of n pixels; the last may be partial.
template <class Step>
LMX_ALWAYS_INLINE void ForRegisters(size_t n, const Step& step) {
  size_t i = 0;
  for (; i + kWide <= n; i += kWide) step(i, AllColumns());
  if (i < n) step(i, FirstColumns(n - i));
}

// The sums of a register of pixels take four registers.
static_assert(kBoxSumsStep % kWide == 0);

void AddToBoxes(uint32_t* sums, const uint8_t* const* runs, size_t count, uint32_t units, size_t n) {
  const Reg weight = Vector::Set32(units);
  ForRegisters(n, [&](size_t i, const auto& pixels) LMX_INLINE_LAMBDA {
    const Quarters added = Weighted(SumRuns(runs, count, i, pixels), weight);
    for (size_t q = 0; q < 4; ++q) {
      uint32_t* const sum = sums + 4 * i + q * kWide;
      Vector::Store(sum, Vector::Add32(Vector::Load(sum), added.of[q]));
    }
  });
}

// sum / units, truncated, is sum * M >> 40, with M = ceil(2^40 / units). units is 16384 to 32768,
// so M is at most 2^26, and M * units exceeds 2^40 by less than 2^15. sum is below 2^23, so sum * M
// exceeds 2^40 * sum / units by less than 2^38 / units, a quarter of the step 2^40 / units between
// two quotients. Test: AllUnits.AverageBoxes.
template <class To>
void AverageBoxes(uint8_t* to, const uint32_t* sums, uint32_t units, size_t n) {
  const Reg factor = Vector::Set32(static_cast<uint32_t>(((1ull << 40) + units - 1) / units));
  const auto quotient = [&](size_t at) LMX_INLINE_LAMBDA {
    const Reg sum = Vector::Load(sums + at);
    const Reg even = Vector::Right64<40>(Vector::MulEven32(sum, factor));
    const Reg odd = Vector::Right64<40>(Vector::MulEven32(Vector::Right64<32>(sum), factor));
    return Vector::Or(even, Vector::Left64<32>(odd));
  };
  Runs<To, Temporal>(n).Make(to, [&](size_t i, const auto&) LMX_INLINE_LAMBDA {
    const Reg low = Vector::Pack32(quotient(4 * i), quotient(4 * i + kWide));
    return Pack({low, Vector::Pack32(quotient(4 * i + 2 * kWide), quotient(4 * i + 3 * kWide))});
  });
}

// ------------------------------------------------------------------------------------------ halves

// Working pixels written in a form, and read again.
template <class Form>
LMX_ALWAYS_INLINE Reg Rewritten(Reg working) {
  Reg read = working;
  Form::Read(Form::Write(working), &read);  // written pixels always read wide
  return read;
}

// The truncated means of a register of pairs; false when a pixel takes the scalar path. Average8
// rounds up, so its rounding is subtracted.
template <class From, class Through>
LMX_ALWAYS_INLINE bool HalveWide(Reg first, Reg second, Reg* out) {
  Reg even = Vector::EvenPixels(first, second), odd = Vector::OddPixels(first, second);
  const auto mean = [&] {
    const Reg roundedUp = Vector::And(Vector::Xor(even, odd), Vector::Set32(0x01010101));
    return Vector::Sub8(Vector::Average8(even, odd), roundedUp);
  };
  if (From::kForm == kContextForm && ContextForm::AllOpaque(Vector::And(first, second))) {
    *out = Vector::SwapBytes(mean());
    return true;
  }
  if (!From::Read(even, &even) || !From::Read(odd, &odd)) return false;
  *out = Rewritten<Through>(mean());
  return true;
}

template <class From, class Through>
void Halve(uint8_t* to, const uint8_t* from, size_t n) {
  size_t i = 0;
  Reg out;
  for (; i + kWide <= n; i += kWide) {
    const uint8_t* const pairs = from + 8 * i;
    if (HalveWide<From, Through>(Vector::Load(pairs), Vector::Load(pairs + 4 * kWide), &out)) {
      Vector::Store(to + 4 * i, out);
    } else {
      plain::Halve<From, Through>(to + 4 * i, pairs, kWide);
    }
  }
  const size_t rest = n - i;
  if (rest == 0) return;
  const uint8_t* const pairs = from + 8 * i;
  const Reg first = Vector::LoadFirst(pairs, 2 * rest < kWide ? 2 * rest : kWide);
  const Reg second = 2 * rest > kWide ? Vector::LoadFirst(pairs + 4 * kWide, 2 * rest - kWide) : Vector::Zero();
  if (HalveWide<From, Through>(first, second, &out)) {
    Vector::StoreFirst(to + 4 * i, rest, out);
  } else {
    plain::Halve<From, Through>(to + 4 * i, pairs, rest);
  }
}

}  // namespace
