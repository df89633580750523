// Sixteen pixels in a register: the operations from which the wide kernels are made, in AVX-512 (F
// and BW).
//
// A number in a name is the width of a lane in bits. Unpacking and packing stay within each group
// of 128 bits.
#pragma once

#include <immintrin.h>

#include "ByteOrders.h"
#include "LMX_Pixel.h"

namespace {

struct Vector {
  using Reg = __m512i;
  static constexpr size_t kPixels = 16;

  LMX_ALWAYS_INLINE static Reg Load(const void* p) { return _mm512_loadu_si512(p); }
  LMX_ALWAYS_INLINE static void Store(void* p, Reg a) { _mm512_storeu_si512(p, a); }
  // The first n pixels, 1 to kPixels. The others are not touched in memory; loaded, they are 0.
  LMX_ALWAYS_INLINE static Reg LoadFirst(const void* p, size_t n) { return _mm512_maskz_loadu_epi32(FirstLanes(n), p); }
  LMX_ALWAYS_INLINE static void StoreFirst(uint8_t* p, size_t n, Reg a) {
    if (n > 8) return _mm512_mask_storeu_epi32(p, FirstLanes(n), a);
    __m128i part = _mm512_castsi512_si128(a);
    if (n == 8) return _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), _mm512_castsi512_si256(a));
    if ((n & 4) != 0) {
      _mm_storeu_si128(reinterpret_cast<__m128i*>(p), part);
      part = _mm512_extracti32x4_epi32(a, 1);
      p += 16;
    }
    if ((n & 2) != 0) {
      _mm_storel_epi64(reinterpret_cast<__m128i*>(p), part);
      part = _mm_unpackhi_epi64(part, part);
      p += 8;
    }
    if ((n & 1) != 0) LMX_Pixel::Store(p, static_cast<uint32_t>(_mm_cvtsi128_si32(part)));
  }

  // Lanes: a mask of 32-bit lanes. FirstLanes selects the first n; OnesFrom(n) has all bits set in
  // the others.
  using Lanes = __mmask16;
  LMX_ALWAYS_INLINE static Lanes FirstLanes(size_t n) { return static_cast<Lanes>(0xFFFFu >> (kPixels - n)); }
  LMX_ALWAYS_INLINE static Reg OnesFrom(size_t n) {
    return _mm512_maskz_set1_epi32(static_cast<Lanes>(~FirstLanes(n)), -1);
  }
  LMX_ALWAYS_INLINE static Lanes EqualLanes(Reg a, Reg b) { return _mm512_cmpeq_epi32_mask(a, b); }
  // Loads only these lanes of the pixels at p into `a`, where they are 0.
  LMX_ALWAYS_INLINE static Reg LoadLanes(Reg a, Lanes lanes, const void* p, size_t /*n*/) {
    return _mm512_mask_loadu_epi32(a, lanes, p);
  }

  // To an address that is a multiple of the register's size.
  LMX_ALWAYS_INLINE static void StoreNonTemporal(void* p, Reg a) { _mm512_stream_si512(static_cast<__m512i*>(p), a); }
  LMX_ALWAYS_INLINE static Reg Zero() { return _mm512_setzero_si512(); }
  LMX_ALWAYS_INLINE static Reg Set16(uint32_t v) { return _mm512_set1_epi16(static_cast<short>(v)); }
  LMX_ALWAYS_INLINE static Reg Set32(uint32_t v) { return _mm512_set1_epi32(static_cast<int>(v)); }
  LMX_ALWAYS_INLINE static Reg Set64(long long v) { return _mm512_set1_epi64(v); }

  LMX_ALWAYS_INLINE static Reg And(Reg a, Reg b) { return _mm512_and_si512(a, b); }
  LMX_ALWAYS_INLINE static Reg AndNot(Reg a, Reg b) { return _mm512_andnot_si512(a, b); }  // ~a & b
  LMX_ALWAYS_INLINE static Reg Or(Reg a, Reg b) { return _mm512_or_si512(a, b); }
  LMX_ALWAYS_INLINE static Reg Xor(Reg a, Reg b) { return _mm512_xor_si512(a, b); }

  LMX_ALWAYS_INLINE static Reg Add16(Reg a, Reg b) { return _mm512_add_epi16(a, b); }
  LMX_ALWAYS_INLINE static Reg Sub16(Reg a, Reg b) { return _mm512_sub_epi16(a, b); }
  LMX_ALWAYS_INLINE static Reg Add32(Reg a, Reg b) { return _mm512_add_epi32(a, b); }
  LMX_ALWAYS_INLINE static Reg Sub32(Reg a, Reg b) { return _mm512_sub_epi32(a, b); }
  LMX_ALWAYS_INLINE static Reg Add64(Reg a, Reg b) { return _mm512_add_epi64(a, b); }
  LMX_ALWAYS_INLINE static Reg Add8(Reg a, Reg b) { return _mm512_add_epi8(a, b); }
  LMX_ALWAYS_INLINE static Reg Sub8(Reg a, Reg b) { return _mm512_sub_epi8(a, b); }
  LMX_ALWAYS_INLINE static Reg AddSaturated8(Reg a, Reg b) { return _mm512_adds_epu8(a, b); }
  LMX_ALWAYS_INLINE static Reg SubSaturated8(Reg a, Reg b) { return _mm512_subs_epu8(a, b); }
  LMX_ALWAYS_INLINE static Reg Average8(Reg a, Reg b) { return _mm512_avg_epu8(a, b); }
  LMX_ALWAYS_INLINE static Reg Average16(Reg a, Reg b) { return _mm512_avg_epu16(a, b); }  // (a + b + 1) / 2
  LMX_ALWAYS_INLINE static Reg MulLow16(Reg a, Reg b) { return _mm512_mullo_epi16(a, b); }
  LMX_ALWAYS_INLINE static Reg MulHigh16(Reg a, Reg b) { return _mm512_mulhi_epu16(a, b); }
  LMX_ALWAYS_INLINE static Reg MulHighSigned16(Reg a, Reg b) { return _mm512_mulhi_epi16(a, b); }
  LMX_ALWAYS_INLINE static Reg MulAddPairs16(Reg a, Reg b) { return _mm512_madd_epi16(a, b); }
  LMX_ALWAYS_INLINE static Reg MulEven32(Reg a, Reg b) { return _mm512_mul_epu32(a, b); }
  LMX_ALWAYS_INLINE static Reg SumBytes(Reg a) { return _mm512_sad_epu8(a, Zero()); }  // of each 64 bits
  LMX_ALWAYS_INLINE static Reg SumPairs32(Reg a) { return Add64(Right64<32>(a), And(a, Set64(0xFFFFFFFF))); }

  LMX_ALWAYS_INLINE static Reg Max8(Reg a, Reg b) { return _mm512_max_epu8(a, b); }  // unsigned
  LMX_ALWAYS_INLINE static Reg Min8(Reg a, Reg b) { return _mm512_min_epu8(a, b); }
  LMX_ALWAYS_INLINE static Reg Max16(Reg a, Reg b) { return _mm512_max_epi16(a, b); }  // signed
  LMX_ALWAYS_INLINE static Reg Min16(Reg a, Reg b) { return _mm512_min_epi16(a, b); }
  LMX_ALWAYS_INLINE static Reg SubSaturated16(Reg a, Reg b) { return _mm512_subs_epu16(a, b); }

  template <int n>
  LMX_ALWAYS_INLINE static Reg Right16(Reg a) {
    return _mm512_srli_epi16(a, n);
  }
  template <int n>
  LMX_ALWAYS_INLINE static Reg Left16(Reg a) {
    return _mm512_slli_epi16(a, n);
  }
  template <int n>
  LMX_ALWAYS_INLINE static Reg Left32(Reg a) {
    return _mm512_slli_epi32(a, n);
  }
  template <int n>
  LMX_ALWAYS_INLINE static Reg Right32(Reg a) {
    return _mm512_srli_epi32(a, n);
  }
  template <int n>
  LMX_ALWAYS_INLINE static Reg Left64(Reg a) {
    return _mm512_slli_epi64(a, n);
  }
  template <int n>
  LMX_ALWAYS_INLINE static Reg Right64(Reg a) {
    return _mm512_srli_epi64(a, n);
  }

  LMX_ALWAYS_INLINE static Reg Equal8(Reg a, Reg b) { return _mm512_movm_epi8(_mm512_cmpeq_epi8_mask(a, b)); }
  LMX_ALWAYS_INLINE static Reg Equal16(Reg a, Reg b) { return _mm512_movm_epi16(_mm512_cmpeq_epi16_mask(a, b)); }
  LMX_ALWAYS_INLINE static Reg Greater16(Reg a, Reg b) {
    return _mm512_movm_epi16(_mm512_cmpgt_epi16_mask(a, b));
  }  // signed
  LMX_ALWAYS_INLINE static Reg Equal32(Reg a, Reg b) {
    return _mm512_maskz_set1_epi32(_mm512_cmpeq_epi32_mask(a, b), -1);
  }
  LMX_ALWAYS_INLINE static bool IsZero(Reg a) { return _mm512_test_epi32_mask(a, a) == 0; }
  LMX_ALWAYS_INLINE static bool HasBits(Reg a, Reg mask) { return IsZero(AndNot(a, mask)); }  // all of the mask's

  // a - b where that is above 0, else a. Both are 0 to 32767, and not equal.
  LMX_ALWAYS_INLINE static Reg SubIfGreater16(Reg a, Reg b) { return _mm512_min_epu16(a, Sub16(a, b)); }

  LMX_ALWAYS_INLINE static Reg UnpackLow8(Reg a) { return _mm512_unpacklo_epi8(a, Zero()); }
  LMX_ALWAYS_INLINE static Reg UnpackHigh8(Reg a) { return _mm512_unpackhi_epi8(a, Zero()); }
  LMX_ALWAYS_INLINE static Reg UnpackLow16(Reg a) { return _mm512_unpacklo_epi16(a, Zero()); }
  LMX_ALWAYS_INLINE static Reg UnpackHigh16(Reg a) { return _mm512_unpackhi_epi16(a, Zero()); }
  LMX_ALWAYS_INLINE static Reg Pack32(Reg low, Reg high) { return _mm512_packs_epi32(low, high); }  // of 0 to 32767
  LMX_ALWAYS_INLINE static Reg Interleave8Low(Reg a, Reg b) { return _mm512_unpacklo_epi8(a, b); }
  LMX_ALWAYS_INLINE static Reg Interleave8High(Reg a, Reg b) { return _mm512_unpackhi_epi8(a, b); }
  LMX_ALWAYS_INLINE static Reg DoubleLow8(Reg a) { return _mm512_unpacklo_epi8(a, a); }
  LMX_ALWAYS_INLINE static Reg DoubleHigh8(Reg a) { return _mm512_unpackhi_epi8(a, a); }
  LMX_ALWAYS_INLINE static Reg DoubleLow32(Reg a) { return _mm512_unpacklo_epi32(a, a); }
  LMX_ALWAYS_INLINE static Reg DoubleHigh32(Reg a) { return _mm512_unpackhi_epi32(a, a); }
  LMX_ALWAYS_INLINE static Reg Pack16(Reg low, Reg high) { return _mm512_packus_epi16(low, high); }

  // Shuffles of bytes; ByteOrders says what each does.
  template <int i>
  LMX_ALWAYS_INLINE static Reg Spread16(Reg a) {
    return Bytes(a, ByteOrders::Spread16<i>());
  }
  template <int half>
  LMX_ALWAYS_INLINE static Reg HalvesLow16(Reg a) {
    return Bytes(a, ByteOrders::HalvesLow16<half>());
  }
  template <int half>
  LMX_ALWAYS_INLINE static Reg HalvesHigh16(Reg a) {
    return Bytes(a, ByteOrders::HalvesHigh16<half>());
  }
  LMX_ALWAYS_INLINE static Reg SpreadLowest8(Reg a) { return Bytes(a, ByteOrders::SpreadLowest8()); }
  LMX_ALWAYS_INLINE static Reg SwapBytes(Reg a) { return Bytes(a, ByteOrders::SwapBytes()); }
  LMX_ALWAYS_INLINE static Reg Reverse(Reg a) {
    return _mm512_permutexvar_epi32(_mm512_set_epi32(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15), a);
  }

  // The last pixel of `before`, followed by all but the last of `a`.
  LMX_ALWAYS_INLINE static Reg ShiftIn(Reg before, Reg a) {
    const Reg follow = _mm512_set_epi32(30, 29, 28, 27, 26, 25, 24, 23, 22, 21, 20, 19, 18, 17, 16, 15);
    return _mm512_permutex2var_epi32(before, follow, a);
  }

  // The even, or the odd, pixels of two consecutive registers.
  LMX_ALWAYS_INLINE static Reg EvenPixels(Reg a, Reg b) {
    const Reg even = _mm512_set_epi32(30, 28, 26, 24, 22, 20, 18, 16, 14, 12, 10, 8, 6, 4, 2, 0);
    return _mm512_permutex2var_epi32(a, even, b);
  }
  LMX_ALWAYS_INLINE static Reg OddPixels(Reg a, Reg b) {
    const Reg odd = _mm512_set_epi32(31, 29, 27, 25, 23, 21, 19, 17, 15, 13, 11, 9, 7, 5, 3, 1);
    return _mm512_permutex2var_epi32(a, odd, b);
  }

  // `dividend` divided by each 32-bit lane, in single precision, truncated.
  LMX_ALWAYS_INLINE static Reg DivideSingle(int32_t dividend, Reg divisors) {
    const __m512 single = _mm512_cvtepi32_ps(_mm512_set1_epi32(dividend));
    return _mm512_cvttps_epi32(_mm512_div_ps(single, _mm512_cvtepi32_ps(divisors)));
  }

  // Doubles, half a register of pixels at a time.
  using Doubles = __m512d;
  LMX_ALWAYS_INLINE static Doubles SetDouble(double v) { return _mm512_set1_pd(v); }
  LMX_ALWAYS_INLINE static Doubles LowToDouble(Reg a) { return _mm512_cvtepi32_pd(_mm512_castsi512_si256(a)); }
  LMX_ALWAYS_INLINE static Doubles HighToDouble(Reg a) { return _mm512_cvtepi32_pd(_mm512_extracti64x4_epi64(a, 1)); }
  LMX_ALWAYS_INLINE static Doubles Add(Doubles a, Doubles b) { return _mm512_add_pd(a, b); }
  LMX_ALWAYS_INLINE static Doubles Sub(Doubles a, Doubles b) { return _mm512_sub_pd(a, b); }
  LMX_ALWAYS_INLINE static Doubles Divide(Doubles a, Doubles b) { return _mm512_div_pd(a, b); }
  LMX_ALWAYS_INLINE static double SumOf(Doubles a) {
    const __m256d half = _mm256_add_pd(_mm512_castpd512_pd256(a), _mm512_extractf64x4_pd(a, 1));
    const __m128d quarter = _mm_add_pd(_mm256_castpd256_pd128(half), _mm256_extractf128_pd(half, 1));
    return _mm_cvtsd_f64(quarter) + _mm_cvtsd_f64(_mm_unpackhi_pd(quarter, quarter));
  }

  LMX_ALWAYS_INLINE static uint32_t SumOf64(Reg a) {
    const __m256i half = _mm256_add_epi64(_mm512_castsi512_si256(a), _mm512_extracti64x4_epi64(a, 1));
    const __m128i quarter = _mm_add_epi64(_mm256_castsi256_si128(half), _mm256_extracti128_si256(half, 1));
    return static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_add_epi64(quarter, _mm_srli_si128(quarter, 8))));
  }

  // Transposes a square of kPixels x kPixels pixels: first 4 x 4 pixels in each group of 128 bits,
  // then the groups.
  LMX_ALWAYS_INLINE static void Transpose(Reg* r) {
    Reg columns[16];  // columns[i + k] has, in its groups, the columns k, 4 + k, 8 + k, 12 + k of the rows i to i + 3
    for (int i = 0; i < 16; i += 4) {
      const Reg a = _mm512_unpacklo_epi32(r[i], r[i + 1]), b = _mm512_unpacklo_epi32(r[i + 2], r[i + 3]);
      const Reg c = _mm512_unpackhi_epi32(r[i], r[i + 1]), d = _mm512_unpackhi_epi32(r[i + 2], r[i + 3]);
      columns[i] = _mm512_unpacklo_epi64(a, b);
      columns[i + 1] = _mm512_unpackhi_epi64(a, b);
      columns[i + 2] = _mm512_unpacklo_epi64(c, d);
      columns[i + 3] = _mm512_unpackhi_epi64(c, d);
    }
    for (int k = 0; k < 4; ++k) {
      const Reg a = _mm512_shuffle_i32x4(columns[k], columns[4 + k], 0x88);
      const Reg b = _mm512_shuffle_i32x4(columns[8 + k], columns[12 + k], 0x88);
      const Reg c = _mm512_shuffle_i32x4(columns[k], columns[4 + k], 0xDD);
      const Reg d = _mm512_shuffle_i32x4(columns[8 + k], columns[12 + k], 0xDD);
      r[k] = _mm512_shuffle_i32x4(a, b, 0x88);
      r[4 + k] = _mm512_shuffle_i32x4(c, d, 0x88);
      r[8 + k] = _mm512_shuffle_i32x4(a, b, 0xDD);
      r[12 + k] = _mm512_shuffle_i32x4(c, d, 0xDD);
    }
  }

 private:
  // The bytes of each 128 bits in the given order.
  LMX_ALWAYS_INLINE static Reg Bytes(Reg a, __m128i order) {
    return _mm512_shuffle_epi8(a, _mm512_broadcast_i32x4(order));
  }
};

}  // namespace
