// Four pixels in a register: the operations from which the wide kernels are made, in SSE2.
//
// A number in a name is the width of a lane in bits. The wider sets do the same to each group of
// 128 bits.
#pragma once

#include <emmintrin.h>

#include "LMX_Pixel.h"

namespace {

struct Vector {
  using Reg = __m128i;
  static constexpr size_t kPixels = 4;

  LMX_ALWAYS_INLINE static Reg Load(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
  LMX_ALWAYS_INLINE static void Store(void* p, Reg a) { _mm_storeu_si128(static_cast<__m128i*>(p), a); }

  // The first n pixels, 1 to kPixels. The others are not touched in memory; loaded, they are 0.
  LMX_ALWAYS_INLINE static Reg LoadFirst(const void* p, size_t n) {
    if (n == kPixels) return Load(p);
    const uint8_t* const from = static_cast<const uint8_t*>(p);
    const Reg last = n & 1 ? _mm_cvtsi32_si128(static_cast<int>(LMX_Pixel::Load(from + 4 * (n - 1)))) : Zero();
    return n == 1 ? last : _mm_unpacklo_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(from)), last);
  }
  LMX_ALWAYS_INLINE static void StoreFirst(void* p, size_t n, Reg a) {
    if (n == kPixels) return Store(p, a);
    uint8_t* to = static_cast<uint8_t*>(p);
    if (n & 2) {
      _mm_storel_epi64(reinterpret_cast<__m128i*>(to), a);
      a = _mm_srli_si128(a, 8);
      to += 8;
    }
    if (n & 1) LMX_Pixel::Store(to, static_cast<uint32_t>(_mm_cvtsi128_si32(a)));
  }

  // Lanes: a mask of 32-bit lanes. FirstLanes selects the first n; OnesFrom(n) has all bits set in
  // the others.
  using Lanes = __m128i;
  LMX_ALWAYS_INLINE static Lanes FirstLanes(size_t n) {
    return _mm_cmpgt_epi32(Set32(static_cast<uint32_t>(n)), _mm_set_epi32(3, 2, 1, 0));
  }
  LMX_ALWAYS_INLINE static Reg OnesFrom(size_t n) { return Xor(FirstLanes(n), Set32(0xFFFFFFFF)); }
  LMX_ALWAYS_INLINE static Lanes EqualLanes(Reg a, Reg b) { return Equal32(a, b); }
  // Loads these lanes of the first n pixels at p into `a`, where they are 0. Reads all n pixels.
  LMX_ALWAYS_INLINE static Reg LoadLanes(Reg a, Lanes lanes, const void* p, size_t n) {
    return Or(a, And(LoadFirst(p, n), lanes));
  }

  // To an address that is a multiple of the register's size.
  LMX_ALWAYS_INLINE static void StoreNonTemporal(void* p, Reg a) { _mm_stream_si128(static_cast<__m128i*>(p), a); }
  LMX_ALWAYS_INLINE static Reg Zero() { return _mm_setzero_si128(); }
  LMX_ALWAYS_INLINE static Reg Set16(uint32_t v) { return _mm_set1_epi16(static_cast<short>(v)); }
  LMX_ALWAYS_INLINE static Reg Set32(uint32_t v) { return _mm_set1_epi32(static_cast<int>(v)); }
  LMX_ALWAYS_INLINE static Reg Set64(long long v) { return _mm_set1_epi64x(v); }

  LMX_ALWAYS_INLINE static Reg And(Reg a, Reg b) { return _mm_and_si128(a, b); }
  LMX_ALWAYS_INLINE static Reg AndNot(Reg a, Reg b) { return _mm_andnot_si128(a, b); }  // ~a & b
  LMX_ALWAYS_INLINE static Reg Or(Reg a, Reg b) { return _mm_or_si128(a, b); }
  LMX_ALWAYS_INLINE static Reg Xor(Reg a, Reg b) { return _mm_xor_si128(a, b); }

  LMX_ALWAYS_INLINE static Reg Add16(Reg a, Reg b) { return _mm_add_epi16(a, b); }
  LMX_ALWAYS_INLINE static Reg Sub16(Reg a, Reg b) { return _mm_sub_epi16(a, b); }
  LMX_ALWAYS_INLINE static Reg Add32(Reg a, Reg b) { return _mm_add_epi32(a, b); }
  LMX_ALWAYS_INLINE static Reg Sub32(Reg a, Reg b) { return _mm_sub_epi32(a, b); }
  LMX_ALWAYS_INLINE static Reg Add64(Reg a, Reg b) { return _mm_add_epi64(a, b); }
  LMX_ALWAYS_INLINE static Reg Add8(Reg a, Reg b) { return _mm_add_epi8(a, b); }
  LMX_ALWAYS_INLINE static Reg Sub8(Reg a, Reg b) { return _mm_sub_epi8(a, b); }
  LMX_ALWAYS_INLINE static Reg AddSaturated8(Reg a, Reg b) { return _mm_adds_epu8(a, b); }
  LMX_ALWAYS_INLINE static Reg SubSaturated8(Reg a, Reg b) { return _mm_subs_epu8(a, b); }
  LMX_ALWAYS_INLINE static Reg Average8(Reg a, Reg b) { return _mm_avg_epu8(a, b); }
  LMX_ALWAYS_INLINE static Reg Average16(Reg a, Reg b) { return _mm_avg_epu16(a, b); }  // (a + b + 1) / 2
  LMX_ALWAYS_INLINE static Reg MulLow16(Reg a, Reg b) { return _mm_mullo_epi16(a, b); }
  LMX_ALWAYS_INLINE static Reg MulHigh16(Reg a, Reg b) { return _mm_mulhi_epu16(a, b); }
  LMX_ALWAYS_INLINE static Reg MulHighSigned16(Reg a, Reg b) { return _mm_mulhi_epi16(a, b); }
  LMX_ALWAYS_INLINE static Reg MulAddPairs16(Reg a, Reg b) { return _mm_madd_epi16(a, b); }
  LMX_ALWAYS_INLINE static Reg MulEven32(Reg a, Reg b) { return _mm_mul_epu32(a, b); }
  LMX_ALWAYS_INLINE static Reg SumBytes(Reg a) { return _mm_sad_epu8(a, Zero()); }  // of each 64 bits
  LMX_ALWAYS_INLINE static Reg SumPairs32(Reg a) { return Add64(Right64<32>(a), And(a, Set64(0xFFFFFFFF))); }

  LMX_ALWAYS_INLINE static Reg Max8(Reg a, Reg b) { return _mm_max_epu8(a, b); }  // unsigned
  LMX_ALWAYS_INLINE static Reg Min8(Reg a, Reg b) { return _mm_min_epu8(a, b); }
  LMX_ALWAYS_INLINE static Reg Max16(Reg a, Reg b) { return _mm_max_epi16(a, b); }  // signed
  LMX_ALWAYS_INLINE static Reg Min16(Reg a, Reg b) { return _mm_min_epi16(a, b); }
  LMX_ALWAYS_INLINE static Reg SubSaturated16(Reg a, Reg b) { return _mm_subs_epu16(a, b); }

  template <int n>
  LMX_ALWAYS_INLINE static Reg Right16(Reg a) {
    return _mm_srli_epi16(a, n);
  }
  template <int n>
  LMX_ALWAYS_INLINE static Reg Left16(Reg a) {
    return _mm_slli_epi16(a, n);
  }
  template <int n>
  LMX_ALWAYS_INLINE static Reg Left32(Reg a) {
    return _mm_slli_epi32(a, n);
  }
  template <int n>
  LMX_ALWAYS_INLINE static Reg Right32(Reg a) {
    return _mm_srli_epi32(a, n);
  }
  template <int n>
  LMX_ALWAYS_INLINE static Reg Left64(Reg a) {
    return _mm_slli_epi64(a, n);
  }
  template <int n>
  LMX_ALWAYS_INLINE static Reg Right64(Reg a) {
    return _mm_srli_epi64(a, n);
  }

  LMX_ALWAYS_INLINE static Reg Equal8(Reg a, Reg b) { return _mm_cmpeq_epi8(a, b); }
  LMX_ALWAYS_INLINE static Reg Equal16(Reg a, Reg b) { return _mm_cmpeq_epi16(a, b); }
  LMX_ALWAYS_INLINE static Reg Greater16(Reg a, Reg b) { return _mm_cmpgt_epi16(a, b); }  // signed
  LMX_ALWAYS_INLINE static Reg Equal32(Reg a, Reg b) { return _mm_cmpeq_epi32(a, b); }
  LMX_ALWAYS_INLINE static bool IsZero(Reg a) { return _mm_movemask_epi8(_mm_cmpeq_epi8(a, Zero())) == 0xFFFF; }
  LMX_ALWAYS_INLINE static bool HasBits(Reg a, Reg mask) { return IsZero(AndNot(a, mask)); }  // all of the mask's

  // a - b where that is above 0, else a. Both are 0 to 32767, and not equal.
  LMX_ALWAYS_INLINE static Reg SubIfGreater16(Reg a, Reg b) { return Sub16(a, And(Greater16(a, b), b)); }

  LMX_ALWAYS_INLINE static Reg UnpackLow8(Reg a) { return _mm_unpacklo_epi8(a, Zero()); }
  LMX_ALWAYS_INLINE static Reg UnpackHigh8(Reg a) { return _mm_unpackhi_epi8(a, Zero()); }
  LMX_ALWAYS_INLINE static Reg UnpackLow16(Reg a) { return _mm_unpacklo_epi16(a, Zero()); }
  LMX_ALWAYS_INLINE static Reg UnpackHigh16(Reg a) { return _mm_unpackhi_epi16(a, Zero()); }
  LMX_ALWAYS_INLINE static Reg Pack32(Reg low, Reg high) { return _mm_packs_epi32(low, high); }  // of 0 to 32767
  LMX_ALWAYS_INLINE static Reg Interleave8Low(Reg a, Reg b) { return _mm_unpacklo_epi8(a, b); }
  LMX_ALWAYS_INLINE static Reg Interleave8High(Reg a, Reg b) { return _mm_unpackhi_epi8(a, b); }
  LMX_ALWAYS_INLINE static Reg DoubleLow8(Reg a) { return _mm_unpacklo_epi8(a, a); }
  LMX_ALWAYS_INLINE static Reg DoubleHigh8(Reg a) { return _mm_unpackhi_epi8(a, a); }
  LMX_ALWAYS_INLINE static Reg DoubleLow32(Reg a) { return _mm_unpacklo_epi32(a, a); }
  LMX_ALWAYS_INLINE static Reg DoubleHigh32(Reg a) { return _mm_unpackhi_epi32(a, a); }
  LMX_ALWAYS_INLINE static Reg Pack16(Reg low, Reg high) { return _mm_packus_epi16(low, high); }

  // Four 16-bit lanes of each 64 bits, chosen by two bits each.
  template <int i>
  LMX_ALWAYS_INLINE static Reg Spread16(Reg a) {
    return _mm_shufflehi_epi16(_mm_shufflelo_epi16(a, i), i);
  }

  // The lower (0) or upper (1) half of each pixel, copied to the four lanes where UnpackLow8 and
  // UnpackHigh8 put its channels.
  template <int half>
  LMX_ALWAYS_INLINE static Reg HalvesLow16(Reg a) {
    return Spread16<(half == 0 ? 0xA0 : 0xF5)>(DoubleLow32(a));
  }
  template <int half>
  LMX_ALWAYS_INLINE static Reg HalvesHigh16(Reg a) {
    return Spread16<(half == 0 ? 0xA0 : 0xF5)>(DoubleHigh32(a));
  }

  // The lowest byte of each pixel, in all four bytes of it. The upper three are 0 before.
  LMX_ALWAYS_INLINE static Reg SpreadLowest8(Reg a) {
    const Reg pairs = _mm_or_si128(a, _mm_slli_epi32(a, 8));
    return _mm_or_si128(pairs, _mm_slli_epi32(pairs, 16));
  }

  LMX_ALWAYS_INLINE static Reg SwapBytes(Reg a) {
    const Reg pairs = _mm_or_si128(_mm_slli_epi16(a, 8), _mm_srli_epi16(a, 8));
    return Spread16<_MM_SHUFFLE(2, 3, 0, 1)>(pairs);
  }
  LMX_ALWAYS_INLINE static Reg Reverse(Reg a) { return _mm_shuffle_epi32(a, _MM_SHUFFLE(0, 1, 2, 3)); }

  // The last pixel of `before`, followed by all but the last of `a`.
  LMX_ALWAYS_INLINE static Reg ShiftIn(Reg before, Reg a) {
    return _mm_or_si128(_mm_srli_si128(before, 12), _mm_slli_si128(a, 4));
  }

  // The even, or the odd, pixels of two consecutive registers.
  LMX_ALWAYS_INLINE static Reg EvenPixels(Reg a, Reg b) { return Shuffled<_MM_SHUFFLE(2, 0, 2, 0)>(a, b); }
  LMX_ALWAYS_INLINE static Reg OddPixels(Reg a, Reg b) { return Shuffled<_MM_SHUFFLE(3, 1, 3, 1)>(a, b); }

  // `dividend` divided by each 32-bit lane, in single precision, truncated.
  LMX_ALWAYS_INLINE static Reg DivideSingle(int32_t dividend, Reg divisors) {
    return _mm_cvttps_epi32(_mm_div_ps(_mm_cvtepi32_ps(_mm_set1_epi32(dividend)), _mm_cvtepi32_ps(divisors)));
  }

  // Doubles, half a register of pixels at a time.
  using Doubles = __m128d;
  LMX_ALWAYS_INLINE static Doubles SetDouble(double v) { return _mm_set1_pd(v); }
  LMX_ALWAYS_INLINE static Doubles LowToDouble(Reg a) { return _mm_cvtepi32_pd(a); }
  LMX_ALWAYS_INLINE static Doubles HighToDouble(Reg a) { return _mm_cvtepi32_pd(_mm_unpackhi_epi64(a, a)); }
  LMX_ALWAYS_INLINE static Doubles Add(Doubles a, Doubles b) { return _mm_add_pd(a, b); }
  LMX_ALWAYS_INLINE static Doubles Sub(Doubles a, Doubles b) { return _mm_sub_pd(a, b); }
  LMX_ALWAYS_INLINE static Doubles Divide(Doubles a, Doubles b) { return _mm_div_pd(a, b); }
  LMX_ALWAYS_INLINE static double SumOf(Doubles a) { return _mm_cvtsd_f64(a) + _mm_cvtsd_f64(_mm_unpackhi_pd(a, a)); }

  LMX_ALWAYS_INLINE static uint32_t SumOf64(Reg a) {
    return static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_add_epi64(a, _mm_srli_si128(a, 8))));
  }

  // Transposes a square of kPixels x kPixels pixels.
  LMX_ALWAYS_INLINE static void Transpose(Reg* r) {
    const Reg a = _mm_unpacklo_epi32(r[0], r[1]), b = _mm_unpacklo_epi32(r[2], r[3]);
    const Reg c = _mm_unpackhi_epi32(r[0], r[1]), d = _mm_unpackhi_epi32(r[2], r[3]);
    r[0] = _mm_unpacklo_epi64(a, b);
    r[1] = _mm_unpackhi_epi64(a, b);
    r[2] = _mm_unpacklo_epi64(c, d);
    r[3] = _mm_unpackhi_epi64(c, d);
  }

 private:
  template <int i>
  LMX_ALWAYS_INLINE static Reg Shuffled(Reg a, Reg b) {
    return _mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b), i));
  }
};

}  // namespace
