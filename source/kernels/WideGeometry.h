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

// The pixels of one register, of which the one at `from` has a pixel before it in the run; false when they need their
// definition.
template <class From, class To>
struct Blending {
  LMX_EXPAND static bool Wide(const uint8_t* from, const BlendPart& part, Reg* out) {
    Reg pixel, before;
    if (!From::Read(Vector::Load(from), &pixel) || !From::Read(Vector::Load(from - 4), &before)) return false;
    *out = To::Write(Distances(pixel, before).Mix(part));
    return true;
  }
};

// Opaque pixels are stored as they are, so that they can be blended as they are stored.
template <>
struct Blending<ContextForm, ContextForm> {
  LMX_EXPAND static bool Wide(const uint8_t* from, const BlendPart& part, Reg* out) {
    const Reg pixel = Vector::Load(from), before = Vector::Load(from - 4);
    if (Vector::HasBits(Vector::And(pixel, before), Vector::Set32(ContextForm::kAlpha))) {
      *out = Distances(pixel, before).Mix(part);
      return true;
    }
    Reg straight, straightBefore;
    if (!ContextForm::Read(pixel, &straight) || !ContextForm::Read(before, &straightBefore)) return false;
    *out = ContextForm::Write(Distances(straight, straightBefore).Mix(part));
    return true;
  }
};

template <class From, class To>
void Blend(uint8_t* to, const uint8_t* from, uint32_t before, uint32_t fraction, size_t n) {
  if (fraction == 0) return Convert<From, To, Cached>(to, from, n);
  if (n == 0) return;
  To::WriteOne(to, LMX_Pixel::Blend(From::ReadOne(from), before, fraction));
  const auto one = [&](size_t i) {
    const uint32_t pixel = From::ReadOne(from + 4 * i);
    To::WriteOne(to + 4 * i, LMX_Pixel::Blend(pixel, From::ReadOne(from + 4 * (i - 1)), fraction));
  };
  const BlendPart part(fraction);
  size_t i = 1;
  for (; i + kWide <= n; i += kWide) {
    Reg out;
    if (Blending<From, To>::Wide(from + 4 * i, part, &out)) {
      Vector::Store(to + 4 * i, out);
    } else {
      for (size_t j = i; j < i + kWide; ++j) one(j);
    }
  }
  Reg out;
  if (i < n && n > kWide && Blending<From, To>::Wide(from + 4 * (n - kWide), part, &out)) {
    Vector::Store(to + 4 * (n - kWide), out);  // some pixels once more
  } else {
    for (; i < n; ++i) one(i);
  }
}

}  // namespace
