// What the wide kernels share: registers of pixels, conversions between stored and working pixels,
// and the loop over a run.
//
// Included after a Vector header. Everything is in an anonymous namespace, so that no two levels
// share a function. The end of a run that does not fill a register is loaded and stored as the
// first pixels of one. Pixels that the fast arithmetic does not cover go through the plain kernels.
#pragma once

#include "PlainKernels.h"

namespace {

using Reg = Vector::Reg;
constexpr size_t kWide = Vector::kPixels;

// The channels of a register of pixels in 16-bit lanes: the two halves of the register.
struct Channels {
  Reg low;
  Reg high;
};

LMX_ALWAYS_INLINE Channels Unpack(Reg pixels) {
  return {Vector::UnpackLow8(pixels), Vector::UnpackHigh8(pixels)};
}
LMX_ALWAYS_INLINE Reg Pack(const Channels& c) {
  return Vector::Pack16(c.low, c.high);
}

LMX_ALWAYS_INLINE Reg Select(Reg mask, Reg a, Reg b) {
  return Vector::Or(Vector::And(mask, a), Vector::AndNot(mask, b));
}

// x / 255, truncated, of 16-bit lanes: x * 0x8081 >> 23 for every x below 65536. Here x is at most
// 255 * 255. Test: AllChannelsAndAlphas.WriteContext.
LMX_ALWAYS_INLINE Reg Divide255(Reg x) {
  return Vector::Right16<7>(Vector::MulHigh16(x, Vector::Set16(0x8081)));
}

// How registers of results are stored. Non-temporal stores need aligned addresses. So a kernel
// writes the head of a run, its first pixels, with ordinary stores, and whole registers after it.
struct Temporal {
  LMX_ALWAYS_INLINE static size_t Head(const uint8_t* /*to*/, size_t /*n*/) { return 0; }
  LMX_ALWAYS_INLINE static void Store(void* p, Reg a) { Vector::Store(p, a); }
};
struct NonTemporal {
  LMX_ALWAYS_INLINE static size_t Head(const uint8_t* to, size_t n) {
    const size_t past = reinterpret_cast<uintptr_t>(to) % sizeof(Reg);
    if (past % 4 != 0) return n;
    const size_t head = past == 0 ? 0 : (sizeof(Reg) - past) / 4;
    return head < n ? head : n;
  }
  LMX_ALWAYS_INLINE static void Store(void* p, Reg a) { Vector::StoreNonTemporal(p, a); }
};

// The pixels of one step of a kernel: kRegs whole registers, or fewer pixels, the first `count` of
// them.
template <class Stores, size_t kRegs>
struct WholeRegisters {
  static constexpr size_t count = kRegs * kWide;
  LMX_ALWAYS_INLINE static Reg Load(const uint8_t* from, size_t r = 0) { return Vector::Load(from + 4 * r * kWide); }
  LMX_ALWAYS_INLINE static void Store(uint8_t* to, Reg a, size_t r = 0) { Stores::Store(to + 4 * r * kWide, a); }
  LMX_ALWAYS_INLINE static Reg Reverse(Reg a) { return Vector::Reverse(a); }
};
template <size_t kRegs>
struct FirstPixels {
  size_t count;
  LMX_ALWAYS_INLINE Reg Load(const uint8_t* from, size_t r = 0) const {
    const size_t n = Of(r);
    return n == 0 ? Vector::Zero() : Vector::LoadFirst(from + 4 * r * kWide, n);
  }
  LMX_ALWAYS_INLINE void Store(uint8_t* to, Reg a, size_t r = 0) const {
    const size_t n = Of(r);
    if (n > 0) Vector::StoreFirst(to + 4 * r * kWide, n, a);
  }
  // Of one register.
  LMX_ALWAYS_INLINE Reg Reverse(Reg a) const {
    uint8_t pixels[sizeof(Reg)];
    Vector::Store(pixels, Vector::Reverse(a));
    return Vector::LoadFirst(pixels + 4 * (kWide - count), count);
  }

 private:
  // How many of them are in register r.
  LMX_ALWAYS_INLINE size_t Of(size_t r) const {
    const size_t before = r * kWide;
    return count <= before ? 0 : count - before < kWide ? count - before : kWide;
  }
};

// Goes over a run of n pixels at `to` in steps: calls step(i, pixels) for the pixels from pixel i
// on.
template <class Stores, size_t kRegs = 1, class Step>
LMX_ALWAYS_INLINE void InSteps(const uint8_t* to, size_t n, const Step& step) {
  constexpr size_t kStep = kRegs * kWide;
  const auto first = [&](size_t from, size_t end) LMX_INLINE_LAMBDA {
    for (size_t i = from; i < end; i += kStep) step(i, FirstPixels<kRegs>{end - i < kStep ? end - i : kStep});
  };
  size_t i = Stores::Head(to, n);
  first(0, i);
  for (; i + kStep <= n; i += kStep) step(i, WholeRegisters<Stores, kRegs>());
  first(i, n);
}

// ----------------------------------------------------------------------------- bitmap-context form

// W = (255 * 65536 + 254) / a in single precision, truncated; 0 for alpha 0. Its use:
//
//   k * 255 / a, truncated, is k * W >> 16, for every alpha a of 1 to 255 and every k of 0 to a.
//
// Range: the dividend is below 2^24, so it is exact in single precision. W is at most the dividend,
// and k * W is below 2^32.
// Error: let Q = 255 * 65536 / a. W is not below Q: where Q is no integer, the dividend reaches the
// next one, and rounding never passes an integer. W exceeds Q by at most 254 / a and half a unit in
// the last place, which is at most 1 / a. So k * W / 65536 exceeds k * 255 / a by at most 255 /
// 65536, which is less than 1 / a. A quotient by a that is no integer lies at least 1 / a below the
// next integer.
// Also:
//   - where k > a, k * W >> 16 is 256 to 65535;
//   - k * W mod 65536 is at most 255 where a divides 255 * k, and at least 65536 / a elsewhere.
// Tests: AllChannelsAndAlphas.ReadContext and AllChannelsAndAlphas.Copies walk all pairs.
LMX_ALWAYS_INLINE Reg QuotientsByAlpha(Reg alpha) {
  const Reg clear = Vector::Equal32(alpha, Vector::Zero());
  return Vector::AndNot(clear, Vector::DivideSingle(255 * 65536 + 254, Vector::Sub32(alpha, clear)));
}

// Straight channels of stored pixels, which have alpha in the lowest byte. The alpha channel
// becomes 255, or 0. A channel above its alpha comes out above 255, except for alpha 0, where all
// become 0.
LMX_ALWAYS_INLINE Channels Straighten(Reg stored, Reg alpha) {
  const Reg quotients = QuotientsByAlpha(alpha);
  const Channels k = Unpack(stored);
  const auto straighten = [](Reg channels, Reg fraction, Reg whole) {
    return Vector::Add16(Vector::MulLow16(channels, whole), Vector::MulHigh16(channels, fraction));
  };
  return {straighten(k.low, Vector::HalvesLow16<0>(quotients), Vector::HalvesLow16<1>(quotients)),
          straighten(k.high, Vector::HalvesHigh16<0>(quotients), Vector::HalvesHigh16<1>(quotients))};
}

LMX_ALWAYS_INLINE bool AnyExceeds(const Channels& straight) {
  return !Vector::IsZero(Vector::And(Vector::Or(straight.low, straight.high), Vector::Set16(0xFF00)));
}

struct ContextForm {
  static constexpr PixelForm kForm = kContextForm;
  static constexpr uint32_t kAlpha = 0xFF;

  LMX_ALWAYS_INLINE static bool AllOpaque(Reg stored) { return Vector::HasBits(stored, Vector::Set32(kAlpha)); }

  // False, with nothing written, when a colour exceeds its alpha.
  LMX_ALWAYS_INLINE static bool Read(Reg stored, Reg* working) {
    if (AllOpaque(stored)) {
      *working = Vector::SwapBytes(stored);
      return true;
    }
    const Reg alpha = Vector::And(stored, Vector::Set32(kAlpha));
    if (Vector::IsZero(alpha)) {
      *working = Vector::Zero();
      return true;
    }
    const Channels straight = Straighten(stored, alpha);
    if (AnyExceeds(straight)) return false;
    const Reg colours = Vector::AndNot(Vector::Set32(kAlpha), Pack(straight));
    *working = Vector::SwapBytes(Vector::Or(colours, alpha));
    return true;
  }

  LMX_ALWAYS_INLINE static Reg Write(Reg working) {
    if (Vector::HasBits(working, Vector::Set32(0xFF000000))) return Vector::SwapBytes(working);
    if (Vector::IsZero(Vector::And(working, Vector::Set32(0xFF000000)))) return Vector::Zero();
    const auto premultiply = [](Reg k) {
      // The alpha channel is multiplied by 255.
      const Reg factor = Vector::Or(Vector::Spread16<0xFF>(k), Vector::Left64<48>(Vector::Set32(0xFF)));
      return Divide255(Vector::MulLow16(k, factor));
    };
    const Channels k = Unpack(working);
    return Vector::SwapBytes(Pack({premultiply(k.low), premultiply(k.high)}));
  }
};

// ------------------------------------------------------------------------------------- buffer form

struct BufferForm {
  static constexpr PixelForm kForm = kBufferForm;
  LMX_ALWAYS_INLINE static bool Read(Reg stored, Reg* working) {
    const Reg transparency = Vector::And(stored, Vector::Set32(0xFF000000));
    const Reg alpha = Vector::Sub32(Vector::Set32(0xFF000000), Vector::Left32<1>(transparency));
    const Reg clear = Vector::Equal32(transparency, Vector::Set32(0x7F000000));
    *working = Vector::Or(Vector::And(stored, Vector::Set32(0xFFFFFF)), Vector::AndNot(clear, alpha));
    return true;
  }

  LMX_ALWAYS_INLINE static Reg Write(Reg working) {
    const Reg halved = Vector::And(Vector::Right32<1>(working), Vector::Set32(0x7F000000));
    const Reg word = Vector::Or(halved, Vector::And(working, Vector::Set32(0xFFFFFF)));
    return Vector::Xor(word, Vector::Set32(0x7F000000));
  }
};

// Working pixels as a form, so that reading and writing are conversions, too. Every register can be
// read wide.
struct WorkingForm {
  static constexpr PixelForm kForm = kWorkingForm;
  LMX_ALWAYS_INLINE static bool Read(Reg stored, Reg* working) { return *working = stored, true; }
  LMX_ALWAYS_INLINE static Reg Write(Reg working) { return working; }
};

// ------------------------------------------------------------------------------------- conversions

// From one form to another, through working pixels.
template <class From, class To>
struct Conversion {
  static constexpr bool kOpaqueStays = false;
  LMX_ALWAYS_INLINE static bool Wide(Reg in, Reg* out) {
    Reg working;
    if (!From::Read(in, &working)) return false;
    *out = To::Write(working);
    return true;
  }
};

// The round trip of a channel k is k where its alpha divides 255 * k, and k - 1 elsewhere.
template <>
struct Conversion<ContextForm, ContextForm> {
  static constexpr bool kOpaqueStays = true;
  LMX_ALWAYS_INLINE static bool Wide(Reg in, Reg* out) {
    const Reg alpha = Vector::And(in, Vector::Set32(0xFF));
    if (ContextForm::AllOpaque(in)) return *out = in, true;
    if (Vector::IsZero(alpha)) return *out = Vector::Zero(), true;
    if (!Vector::IsZero(Vector::SubSaturated8(in, Vector::SpreadLowest8(alpha)))) return false;
    const Reg quotients = QuotientsByAlpha(alpha);
    const auto lessRemainder = [](Reg k, Reg fraction) {
      // The upper half of (k * W mod 65536) * a is 0 where a divides 255 * k, and above 0 elsewhere
      // (QuotientsByAlpha).
      const Reg remainder = Vector::MulHigh16(Vector::MulLow16(k, fraction), Vector::Spread16<0x00>(k));
      return Vector::Sub16(k, Vector::Add16(Vector::Set16(1), Vector::Equal16(remainder, Vector::Zero())));
    };
    const Channels k = Unpack(in);
    *out = Pack({lessRemainder(k.low, Vector::HalvesLow16<0>(quotients)),
                 lessRemainder(k.high, Vector::HalvesHigh16<0>(quotients))});
    return true;
  }
};

// The round trip clears the highest bit and keeps all others.
template <>
struct Conversion<BufferForm, BufferForm> {
  static constexpr bool kOpaqueStays = false;
  LMX_ALWAYS_INLINE static bool Wide(Reg in, Reg* out) {
    return *out = Vector::And(in, Vector::Set32(0x7FFFFFFF)), true;
  }
};

template <class From, class To, class Stores = Temporal>
void Copy(uint8_t* to, const uint8_t* from, size_t n) {
  InSteps<Stores>(to, n, [&](size_t i, const auto& pixels) LMX_INLINE_LAMBDA {
    Reg out;
    if (Conversion<From, To>::Wide(pixels.Load(from + 4 * i), &out)) return pixels.Store(to + 4 * i, out);
    plain::Copy<From, To>(to + 4 * i, from + 4 * i, pixels.count);
  });
}

template <class From, class To, class Stores = Temporal>
void CopyMirrored(uint8_t* to, const uint8_t* from, size_t n) {
  InSteps<Stores>(to, n, [&](size_t i, const auto& pixels) LMX_INLINE_LAMBDA {
    Reg out;
    const uint8_t* const part = from + 4 * (n - i - pixels.count);
    const Reg in = pixels.Reverse(pixels.Load(part));
    if (Conversion<From, To>::Wide(in, &out)) return pixels.Store(to + 4 * i, out);
    plain::CopyMirrored<From, To>(to + 4 * i, part, pixels.count);
  });
}

// Converts the rows of a square; false when a pixel takes the scalar path. One test tells whether
// all rows are opaque context pixels.
template <class From, class To>
LMX_ALWAYS_INLINE bool ConvertSquare(Reg* square) {
  if constexpr (Conversion<From, To>::kOpaqueStays) {
    Reg all = square[0];
    for (size_t i = 1; i < kWide; ++i) all = Vector::And(all, square[i]);
    if (ContextForm::AllOpaque(all)) return true;
  }
  bool isWide = true;
  for (size_t i = 0; i < kWide; ++i) isWide = Conversion<From, To>::Wide(square[i], &square[i]) && isWide;
  return isWide;
}

template <>
LMX_ALWAYS_INLINE bool ConvertSquare<ContextForm, WorkingForm>(Reg* square) {
  Reg all = square[0];
  for (size_t i = 1; i < kWide; ++i) all = Vector::And(all, square[i]);
  if (ContextForm::AllOpaque(all)) {
    for (size_t i = 0; i < kWide; ++i) square[i] = Vector::SwapBytes(square[i]);
    return true;
  }
  bool isWide = true;
  for (size_t i = 0; i < kWide; ++i) isWide = ContextForm::Read(square[i], &square[i]) && isWide;
  return isWide;
}

// Transposes one square.
template <class From, class To>
LMX_ALWAYS_INLINE void TransposeSquare(uint8_t* const* to, const uint8_t* const* from, size_t r, size_t c) {
  Reg square[kWide];
  for (size_t i = 0; i < kWide; ++i) square[i] = Vector::Load(from[r + i] + 4 * c);
  if (!ConvertSquare<From, To>(square)) return plain::TransposePart<From, To>(to, from, kWide, kWide, r, c);
  Vector::Transpose(square);
  for (size_t i = 0; i < kWide; ++i) Vector::Store(to[c + i] + 4 * r, square[i]);
}

// Transposes a part of a square, with fewer rows or columns. Missing lanes count as opaque.
template <class From, class To>
__attribute__((noinline)) void TransposePart(uint8_t* const* to, const uint8_t* const* from, size_t rows,
                                             size_t columns, size_t r, size_t c) {
  const Reg idle = Vector::OnesFrom(columns);
  Reg square[kWide];
  for (size_t i = 0; i < kWide; ++i) {
    square[i] =
        i < rows ? Vector::Or(idle, Vector::LoadFirst(from[r + i] + 4 * c, columns)) : Vector::Set32(0xFFFFFFFF);
  }
  if (!ConvertSquare<From, To>(square)) return plain::TransposePart<From, To>(to, from, rows, columns, r, c);
  Vector::Transpose(square);
  for (size_t i = 0; i < columns; ++i) Vector::StoreFirst(to[c + i] + 4 * r, rows, square[i]);
}

// In blocks of one cache line in both directions. Prefetches what comes kRowsAhead later.
template <class From, class To>
void Transpose(uint8_t* const* to, const uint8_t* const* from, size_t rows, size_t ahead, size_t columns) {
  constexpr size_t kLine = 16;
  static_assert(kLine % kWide == 0);
  for (size_t r = 0; r < rows; r += kLine) {
    const size_t endRow = r + kLine < rows ? r + kLine : rows;
    for (size_t c = 0; c < columns; c += kLine) {
      const size_t endColumn = c + kLine < columns ? c + kLine : columns;
      for (size_t i = r + kRowsAhead; i < endRow + kRowsAhead && i < rows + ahead; ++i) {
        __builtin_prefetch(from[i] + 4 * c);
        __builtin_prefetch(from[i] + 4 * (endColumn - 1));
      }
      for (size_t j = c; j < endColumn && r + kRowsAhead < rows + ahead; ++j) {
        __builtin_prefetch(to[j] + 4 * (r + kRowsAhead), 1);
      }
      for (size_t j = c; j < endColumn; j += kWide) {
        for (size_t i = r; i < endRow; i += kWide) {
          if (i + kWide <= endRow && j + kWide <= endColumn) {
            TransposeSquare<From, To>(to, from, i, j);
          } else {
            const size_t height = endRow - i < kWide ? endRow - i : kWide;
            const size_t width = endColumn - j < kWide ? endColumn - j : kWide;
            TransposePart<From, To>(to, from, height, width, i, j);
          }
        }
      }
    }
  }
}

// Reads, changes the working pixels, and writes. `Change` has the change of kRegs registers (Wide)
// and of one pixel (One).
template <class From, class To, class Stores, class Change>
LMX_ALWAYS_INLINE void Transform(uint8_t* to, const uint8_t* from, const Change& change, size_t n) {
  InSteps<Stores, Change::kRegs>(to, n, [&](size_t i, const auto& pixels) LMX_INLINE_LAMBDA {
    Reg working[Change::kRegs];
    bool isWide = true;
    for (size_t r = 0; r < Change::kRegs; ++r) {
      isWide = From::Read(pixels.Load(from + 4 * i, r), &working[r]) && isWide;
    }
    if (isWide) {
      change.Wide(working);
      for (size_t r = 0; r < Change::kRegs; ++r) pixels.Store(to + 4 * i, To::Write(working[r]), r);
      return;
    }
    const auto one = [&change](uint32_t pixel) LMX_INLINE_LAMBDA { return change.One(pixel); };
    plain::ChangeEach<From, To>(to + 4 * i, from + 4 * i, one, pixels.count);
  });
}

}  // namespace
