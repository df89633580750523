// The wide kernels of the geometric methods: fills and blends. Included after a Vector header.
#pragma once

#include "WidePixels.h"

namespace {

template <class Stores = Temporal>
void Fill(uint8_t* stored, const uint8_t* pixel, size_t n) {
  const Reg words = Vector::Set32(LMX_Pixel::Load(pixel));
  InSteps<Stores>(stored, n,
                  [&](size_t i, const auto& pixels) LMX_INLINE_LAMBDA { pixels.Store(stored + 4 * i, words); });
}

// ------------------------------------------------------------------------------------------ blends

// Two channels a and b mix to min(a, b) + |a - b| * w / W, truncated. w is the weight of the larger
// one, and W the sum of both weights. This holds the distances |a - b| in 16-bit lanes, and masks
// where the second one is larger.
struct Distances {
  Distances(Reg first, Reg second) : min(Vector::Min8(first, second)) {
    of = Unpack(Vector::Sub8(Vector::Max8(first, second), min));
    const Reg isLarger = Vector::Equal8(min, first);
    secondIsLarger = {Vector::DoubleLow8(isLarger), Vector::DoubleHigh8(isLarger)};
  }

  // min + part.Of(distance, part.Weight(secondIsLarger)), of both halves of the pixels.
  template <class Part>
  LMX_ALWAYS_INLINE Reg Mix(const Part& ofLow, const Part& ofHigh) const {
    const Reg low = ofLow.Of(of.low, ofLow.Weight(secondIsLarger.low));
    const Reg high = ofHigh.Of(of.high, ofHigh.Weight(secondIsLarger.high));
    return Vector::Add8(min, Pack({low, high}));
  }
  template <class Part>
  LMX_ALWAYS_INLINE Reg Mix(const Part& part) const {
    return Mix(part, part);
  }

  Reg min;
  Channels of;
  Channels secondIsLarger;
};

// d * w / 65535, truncated, for a distance d of 0 to 255 and a weight w of 0 to 65535. With H and L
// the upper and lower 16 bits of the product, d * w = H * 65535 + (H + L). H is at most 254, so H +
// L is below 2 * 65535, and the quotient is H, or H + 1 where H + L >= 65535. Average16 gives (H +
// L + 1) / 2, at most 32895, whose bit 15 is that carry. The two weights are complements: they add
// up to 65535.
// Tests: AllChannelsAndChannelsBefore.Blend, AllAlphasAndAlphasBefore.Blend, AllFractions.Blend.
class BlendPart {
 public:
  explicit BlendPart(uint32_t fraction) : ofFirst_(Vector::Set16(65535 - fraction)) {}
  explicit BlendPart(Reg weightsOfFirst) : ofFirst_(weightsOfFirst) {}

  LMX_ALWAYS_INLINE Reg Weight(Reg secondIsLarger) const { return Vector::Xor(ofFirst_, secondIsLarger); }
  LMX_ALWAYS_INLINE Reg Of(Reg distance, Reg weight) const {
    const Reg high = Vector::MulHigh16(distance, weight);
    const Reg low = Vector::MulLow16(distance, weight);
    return Vector::Add16(high, Vector::Right16<15>(Vector::Average16(high, low)));
  }

 private:
  Reg ofFirst_;
};

// Blends the pixels of one register at `from`, each with the one before it. The last lane of `last`
// is the working pixel before `from`; on return `last` holds these pixels. `isFirst` says that no
// stored pixel precedes `from`. False, with nothing changed, when a pixel takes the scalar path.
template <class From, class To>
struct Blending {
  static constexpr bool kOpaqueAsStored = false;
  template <class Pixels>
  LMX_ALWAYS_INLINE static bool Wide(const uint8_t* from, const Pixels& pixels, bool /*isFirst*/, const BlendPart& part,
                                     Reg* last, Reg* out) {
    Reg working;
    if (!From::Read(pixels.Load(from), &working)) return false;
    *out = To::Write(Distances(working, Vector::ShiftIn(*last, working)).Mix(part));
    *last = working;
    return true;
  }
};

// Opaque pixels have the same channels stored and working, in another order. So they are blended as
// stored.
template <>
struct Blending<ContextForm, ContextForm> {
  static constexpr bool kOpaqueAsStored = true;
  template <class Pixels>
  LMX_ALWAYS_INLINE static bool Wide(const uint8_t* from, const Pixels& pixels, bool isFirst, const BlendPart& part,
                                     Reg* last, Reg* out) {
    const Reg stored = pixels.Load(from);
    if (!isFirst) {
      const Reg before = pixels.Load(from - 4);
      if (ContextForm::AllOpaque(Vector::And(stored, before))) {
        *out = Distances(stored, before).Mix(part);
        *last = Vector::SwapBytes(stored);
        return true;
      }
    }
    Reg working;
    if (!ContextForm::Read(stored, &working)) return false;
    *out = ContextForm::Write(Distances(working, Vector::ShiftIn(*last, working)).Mix(part));
    *last = working;
    return true;
  }
};

template <class From, class To>
void Blend(uint8_t* to, const uint8_t* from, uint32_t before, uint32_t fraction, size_t n) {
  if (fraction == 0) return Copy<From, To>(to, from, n);
  const BlendPart part(fraction);
  Reg last = Vector::Set32(before);
  InSteps<Temporal>(to, n, [&](size_t i, const auto& pixels) LMX_INLINE_LAMBDA {
    Reg out;
    if (Blending<From, To>::Wide(from + 4 * i, pixels, i == 0, part, &last, &out)) return pixels.Store(to + 4 * i, out);
    const uint32_t above = i == 0 ? before : plain::Read<From>(from + 4 * (i - 1));
    plain::Blend<From, To>(to + 4 * i, from + 4 * i, above, fraction, pixels.count);
    last = Vector::Set32(plain::Read<From>(from + 4 * (i + pixels.count - 1)));
  });
}

// ------------------------------------------------------------------------------ columns of a shear

// Blends neighbouring columns, row after row. Each row is blended with the one above it, which
// stays in a register.
template <class From, class To>
class ColumnBlending {
 public:
  // `fractions` are the weights of the pixel above, one 32-bit lane for each column.
  LMX_ALWAYS_INLINE ColumnBlending(Reg fractions, Reg above)
      : low_(WeightsOf(Vector::DoubleLow32(fractions))),
        high_(WeightsOf(Vector::DoubleHigh32(fractions))),
        above_(above),
        straightAbove_(above) {}

  // Blends the next row with the one above it; false when a pixel of either takes the scalar path.
  LMX_ALWAYS_INLINE bool Next(Reg row, Reg* out) {
    const Reg above = above_;
    above_ = row;
    if (Blending<From, To>::kOpaqueAsStored && ContextForm::AllOpaque(Vector::And(row, above))) {
      isStraight_ = false;
      *out = Distances(row, above).Mix(low_, high_);
      return true;
    }
    Reg straight;
    const bool isWide = (isStraight_ || From::Read(above, &straightAbove_)) && From::Read(row, &straight);
    isStraight_ = isWide;
    if (!isWide) return false;
    *out = To::Write(Distances(straight, straightAbove_).Mix(low_, high_));
    straightAbove_ = straight;
    return true;
  }

 private:
  LMX_ALWAYS_INLINE static BlendPart WeightsOf(Reg fractions) {
    const Reg inBothHalves = Vector::Or(fractions, Vector::Left32<16>(fractions));
    return BlendPart(Vector::Xor(inBothHalves, Vector::Set32(0xFFFFFFFF)));
  }

  BlendPart low_;
  BlendPart high_;
  Reg above_;          // as it is stored
  Reg straightAbove_;  // the same as working pixels, if isStraight_
  bool isStraight_ = false;
};

// Prefetches a run of n pixels.
template <int isWritten>
LMX_ALWAYS_INLINE void Fetch(const uint8_t* run, size_t n) {
  for (size_t i = 0; i < 4 * n; i += 64) __builtin_prefetch(run + i, isWritten);
  __builtin_prefetch(run + 4 * n - 1, isWritten);
}

// Neighbouring columns, at most one register of them, each displaced by its own number of rows. A
// row of the sheared picture takes its lanes from `steps` + 1 rows of the source.
struct SlantedColumns {
  SlantedColumns(const uint32_t* down, size_t columns) : n(columns), least(down[0]), idle(Vector::OnesFrom(n)) {
    uint32_t most = least;
    for (size_t j = 1; j < n; ++j) {
      least = down[j] < least ? down[j] : least;
      most = down[j] > most ? down[j] : most;
    }
    steps = most - least;
    const Reg downs = Vector::Or(idle, Vector::Sub32(Vector::LoadFirst(down, n), Vector::Set32(least)));
    for (uint32_t k = 0; k < kWide; ++k) lanes[k] = Vector::EqualLanes(downs, Vector::Set32(k));
  }

  size_t n;
  uint32_t least;
  size_t steps;
  Reg idle;  // all bits set in lanes without a column: they count as opaque
  typename Vector::Lanes lanes[kWide];
};

// Assembles `count` rows of the sheared picture. The columns begin at byte `at` of the runs `from`.
template <size_t steps>
void Unslant(Reg* rows, size_t count, const uint8_t* const* from, size_t at, const SlantedColumns& columns) {
  const size_t n = columns.n;
  const Reg idle = columns.idle;
  typename Vector::Lanes lanes[steps + 1];
  for (size_t k = 0; k <= steps; ++k) lanes[k] = columns.lanes[k];
  for (size_t r = 0; r < count; ++r) {
    Reg row = idle;
    for (size_t k = 0; k <= steps; ++k) row = Vector::LoadLanes(row, lanes[k], from[r + k] + at, n);
    rows[r] = row;
  }
}

template <size_t steps = kWide - 1>
LMX_ALWAYS_INLINE void UnslantRows(Reg* rows, size_t count, const uint8_t* const* from, size_t at,
                                   const SlantedColumns& columns) {
  if constexpr (steps > 0) {
    if (columns.steps < steps) return UnslantRows<steps - 1>(rows, count, from, at, columns);
  }
  Unslant<steps>(rows, count, from, at, columns);
}

// Columns c to c + n - 1, n <= kWide. Calls fetch(r) at every row.
template <class From, class To, class FetchRow>
LMX_ALWAYS_INLINE void BlendColumnsAt(size_t c, size_t n, uint8_t* const* to, const uint8_t* const* from,
                                      const uint32_t* down, const uint32_t* fraction, size_t rows,
                                      const FetchRow& fetch) {
  constexpr size_t kRowsAtOnce = 16;
  Reg sheared[kRowsAtOnce];
  const SlantedColumns columns(down + c, n);
  const uint8_t* const* const least = from + columns.least;
  UnslantRows(sheared, 1, least, 4 * c, columns);
  ColumnBlending<From, To> blending(Vector::LoadFirst(fraction + c, n), sheared[0]);
  for (size_t begin = 0; begin < rows; begin += kRowsAtOnce) {
    const size_t count = rows - begin < kRowsAtOnce ? rows - begin : kRowsAtOnce;
    UnslantRows(sheared, count, least + begin + 1, 4 * c, columns);
    for (size_t i = 0; i < count; ++i) {
      const size_t r = begin + i;
      fetch(r);
      Reg out;
      if (blending.Next(sheared[i], &out)) {
        Vector::StoreFirst(to[r] + 4 * c, n, out);
      } else {
        plain::BlendRow<From, To>(to[r], from + r, down, fraction, c, n);
      }
    }
  }
}

template <class From, class To>
void BlendColumns(uint8_t* const* to, const uint8_t* const* from, const uint32_t* down, const uint32_t* fraction,
                  size_t rows, size_t ahead, size_t n) {
  if (rows == 0 || n == 0) return;
  uint32_t most = 0;
  for (size_t c = 0; c < n; ++c) most = down[c] > most ? down[c] : most;
  const auto fetch = [&](size_t r) LMX_INLINE_LAMBDA {
    const size_t later = r + kRowsAhead;
    if (later >= rows + ahead) return;
    Fetch<0>(from[later + most + 1], n);
    Fetch<1>(to[later], n);
  };
  const auto nothing = [](size_t) {};
  if (n < kWide) return BlendColumnsAt<From, To>(0, n, to, from, down, fraction, rows, fetch);
  BlendColumnsAt<From, To>(0, kWide, to, from, down, fraction, rows, fetch);
  for (size_t c = kWide; c < n; c += kWide) {
    const size_t last = n - kWide;  // the last register may blend some columns again
    BlendColumnsAt<From, To>(c < last ? c : last, kWide, to, from, down, fraction, rows, nothing);
  }
}

}  // namespace
