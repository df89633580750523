// The wide kernels of the geometric methods: fills and blends. Included after a Vector header.
#pragma once

#include "WidePixels.h"

namespace {

template <class Stores>
void Fill(uint8_t* stored, const uint8_t* pixel, size_t n) {
  const uint32_t word = LMX_Pixel::Load(pixel);
  const Reg words = Vector::Set32(word);
  const size_t ahead = Stores::Ahead(stored, n);
  size_t i = 0;
  for (; i < ahead; ++i) LMX_Pixel::Store(stored + 4 * i, word);
  for (; i + kWide <= n; i += kWide) Stores::Store(stored + 4 * i, words);
  for (; i < n; ++i) LMX_Pixel::Store(stored + 4 * i, word);
}

// ------------------------------------------------------------------------------------------------------------ blends

// Two pixels' mix is the smaller channel and a part of their distance: min + |a - b| w / W, truncated, where w is the
// weight of the larger one and W that of both. The distances in 16-bit lanes, and where the second is the larger one.
struct Distances {
  Distances(Reg first, Reg second) : min(Vector::Min8(first, second)) {
    of = Unpack(Vector::Sub8(Vector::Max8(first, second), min));
    const Reg isLarger = Vector::Equal8(min, first);
    secondIsLarger = {Vector::DoubleLow8(isLarger), Vector::DoubleHigh8(isLarger)};
  }

  // min + part(distance, weight of the larger one)
  template <class Part>
  LMX_EXPAND Reg Mix(const Part& part) const {
    const Reg low = part.Of(of.low, part.Weight(secondIsLarger.low));
    const Reg high = part.Of(of.high, part.Weight(secondIsLarger.high));
    return Vector::Add8(min, Pack({low, high}));
  }

  Reg min;
  Channels of;
  Channels secondIsLarger;
};

// The weights of a blend add up to 65535. With H and L the halves of distance times weight, the quotient is H, and one
// more where L + H reaches 65535.
class BlendPart {
 public:
  explicit BlendPart(uint32_t fraction) : ofFirst_(Vector::Set16(65535 - fraction)) {}

  LMX_EXPAND Reg Weight(Reg secondIsLarger) const { return Vector::Xor(ofFirst_, secondIsLarger); }
  LMX_EXPAND Reg Of(Reg distance, Reg weight) const {
    const Reg high = Vector::MulHigh16(distance, weight);
    const Reg low = Vector::MulLow16(distance, weight);
    return Vector::Add16(high, Vector::Right16<15>(Vector::Average16(high, low)));
  }

 private:
  Reg ofFirst_;
};

// The pixels of one register at `from`, each blended with the one before it. `last` is a register of working pixels of
// which the last is the one before `from`; then it is that of these. `isFirst` says that no stored pixel lies before
// `from`. False, and nothing done, when a pixel needs its definition.
template <class From, class To>
struct Blending {
  template <class Pixels>
  LMX_EXPAND static bool Wide(const uint8_t* from, const Pixels& pixels, bool /*isFirst*/, const BlendPart& part,
                              Reg* last, Reg* out) {
    Reg working;
    if (!From::Read(pixels.Load(from), &working)) return false;
    *out = To::Write(Distances(working, Vector::ShiftIn(*last, working)).Mix(part));
    *last = working;
    return true;
  }
};

// Opaque pixels are stored as they are, so that they can be blended as they are stored.
template <>
struct Blending<ContextForm, ContextForm> {
  template <class Pixels>
  LMX_EXPAND static bool Wide(const uint8_t* from, const Pixels& pixels, bool isFirst, const BlendPart& part, Reg* last,
                              Reg* out) {
    const Reg stored = pixels.Load(from);
    if (!isFirst) {
      const Reg before = pixels.Load(from - 4);
      if (Vector::HasBits(Vector::And(stored, before), Vector::Set32(ContextForm::kAlpha))) {
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
  if (fraction == 0) return Convert<From, To, Cached>(to, from, n);
  const BlendPart part(fraction);
  Reg last = Vector::Set32(before);
  InSteps<Cached>(to, n, [&](size_t i, const auto& pixels) LMX_EXPANDED {
    Reg out;
    if (Blending<From, To>::Wide(from + 4 * i, pixels, i == 0, part, &last, &out)) return pixels.Store(to + 4 * i, out);
    for (size_t j = i; j < i + pixels.count; ++j) {
      const uint32_t pixel = From::ReadOne(from + 4 * j);
      To::WriteOne(to + 4 * j, LMX_Pixel::Blend(pixel, j == 0 ? before : From::ReadOne(from + 4 * (j - 1)), fraction));
      last = Vector::Set32(pixel);
    }
  });
}

}  // namespace
