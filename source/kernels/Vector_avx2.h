// Eight pixels in a register: the operations from which the wide kernels are made, in AVX2.
//
// A number in a name is the width of a lane in bits. Unpacking and packing stay within each group
// of 128 bits.
#pragma once

#include <immintrin.h>

#include "ByteOrders.h"
#include "LMX_Pixel.h"

namespace {

struct Vector {
  using Reg = __m256i;
  static constexpr size_t kPixels = 8;

  LMX_ALWAYS_INLINE static Reg Load(const void* p) { return _mm256_loadu_si256(static_cast<const __m256i*>(p)); }
  LMX_ALWAYS_INLINE static void Store(void* p, Reg a) { _mm256_storeu_si256(static_cast<__m256i*>(p), a); }
  // The first n pixels, 1 to kPixels. The others are not touched in memory; loaded, they are 0.
  LMX_ALWAYS_INLINE static Reg LoadFirst(const void* p, size_t n) {
    return _mm256_maskload_epi32(static_cast<const int*>(p), FirstLanes(n));
  }
  // Narrower stores, since masked ones take many times as long on some processors.
  LMX_ALWAYS_INLINE static void StoreFirst(uint8_t* p, size_t n, Reg a) {
    if (n == 8) return Store(p, a);
    __m128i part = _mm256_castsi256_si128(a);
    if ((n & 4) != 0) {
      _mm_storeu_si128(reinterpret_cast<__m128i*>(p), part);
      part = _mm256_extracti128_si256(a, 1);
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
  using Lanes = __m256i;
  LMX_ALWAYS_INLINE static Lanes FirstLanes(size_t n) {
    return _mm256_cmpgt_epi32(Set32(static_cast<uint32_t>(n)), _mm256_set_epi32(7, 6, 5, 4, 3, 2, 1, 0));
  }
  LMX_ALWAYS_INLINE static Reg OnesFrom(size_t n) { return Xor(FirstLanes(n), Set32(0xFFFFFFFF)); }
  LMX_ALWAYS_INLINE static Lanes EqualLanes(Reg a, Reg b) { return Equal32(a, b); }
  // Loads only these lanes of the pixels at p into `a`, where they are 0.
  LMX_ALWAYS_INLINE static Reg LoadLanes(Reg a, Lanes lanes, const void* p, size_t /*n*/) {
    return Or(a, _mm256_maskload_epi32(static_cast<const int*>(p), lanes));
  }

  // To an address that is a multiple of the register's size.
  LMX_ALWAYS_INLINE static void StoreNonTemporal(void* p, Reg a) { _mm256_stream_si256(static_cast<__m256i*>(p), a); }
  LMX_ALWAYS_INLINE static Reg Zero() { return _mm256_setzero_si256(); }
  LMX_ALWAYS_INLINE static Reg Set16(uint32_t v) { return _mm256_set1_epi16(static_cast<short>(v)); }
  LMX_ALWAYS_INLINE static Reg Set32(uint32_t v) { return _mm256_set1_epi32(static_cast<int>(v)); }
  LMX_ALWAYS_INLINE static Reg Set64(long long v) { return _mm256_set1_epi64x(v); }

  LMX_ALWAYS_INLINE static Reg And(Reg a, Reg b) { return _mm256_and_si256(a, b); }
  LMX_ALWAYS_INLINE static Reg AndNot(Reg a, Reg b) { return _mm256_andnot_si256(a, b); }  // ~a & b
  LMX_ALWAYS_INLINE static Reg Or(Reg a, Reg b) { return _mm256_or_si256(a, b); }
  LMX_ALWAYS_INLINE static Reg Xor(Reg a, Reg b) { return _mm256_xor_si256(a, b); }

  LMX_ALWAYS_INLINE static Reg Add16(Reg a, Reg b) { return _mm256_add_epi16(a, b); }
  LMX_ALWAYS_INLINE static Reg Sub16(Reg a, Reg b) { return _mm256_sub_epi16(a, b); }
  LMX_ALWAYS_INLINE static Reg Add32(Reg a, Reg b) { return _mm256_add_epi32(a, b); }
  LMX_ALWAYS_INLINE static Reg Sub32(Reg a, Reg b) { return _mm256_sub_epi32(a, b); }
  LMX_ALWAYS_INLINE static Reg Add64(Reg a, Reg b) { return _mm256_add_epi64(a, b); }
  LMX_ALWAYS_INLINE static Reg Add8(Reg a, Reg b) { return _mm256_add_epi8(a, b); }
  LMX_ALWAYS_INLINE static Reg Sub8(Reg a, Reg b) { return _mm256_sub_epi8(a, b); }
  LMX_ALWAYS_INLINE static Reg AddSaturated8(Reg a, Reg b) { return _mm256_adds_epu8(a, b); }
  LMX_ALWAYS_INLINE static Reg SubSaturated8(Reg a, Reg b) { return _mm256_subs_epu8(a, b); }
  LMX_ALWAYS_INLINE static Reg Average8(Reg a, Reg b) { return _mm256_avg_epu8(a, b); }
  LMX_ALWAYS_INLINE static Reg Average16(Reg a, Reg b) { return _mm256_avg_epu16(a, b); }  // (a + b + 1) / 2
  LMX_ALWAYS_INLINE static Reg MulLow16(Reg a, Reg b) { return _mm256_mullo_epi16(a, b); }
  LMX_ALWAYS_INLINE static Reg MulHigh16(Reg a, Reg b) { return _mm256_mulhi_epu16(a, b); }
  LMX_ALWAYS_INLINE static Reg MulHighSigned16(Reg a, Reg b) { return _mm256_mulhi_epi16(a, b); }
  LMX_ALWAYS_INLINE static Reg MulAddPairs16(Reg a, Reg b) { return _mm256_madd_epi16(a, b); }
  LMX_ALWAYS_INLINE static Reg MulEven32(Reg a, Reg b) { return _mm256_mul_epu32(a, b); }
  LMX_ALWAYS_INLINE static Reg SumBytes(Reg a) { return _mm256_sad_epu8(a, Zero()); }  // of each 64 bits
  LMX_ALWAYS_INLINE static Reg SumPairs32(Reg a) { return Add64(Right64<32>(a), And(a, Set64(0xFFFFFFFF))); }

  LMX_ALWAYS_INLINE static Reg Max8(Reg a, Reg b) { return _mm256_max_epu8(a, b); }  // unsigned
  LMX_ALWAYS_INLINE static Reg Min8(Reg a, Reg b) { return _mm256_min_epu8(a, b); }
  LMX_ALWAYS_INLINE static Reg Max16(Reg a, Reg b) { return _mm256_max_epi16(a, b); }  // signed
  LMX_ALWAYS_INLINE static Reg Min16(Reg a, Reg b) { return _mm256_min_epi16(a, b); }
  LMX_ALWAYS_INLINE static Reg SubSaturated16(Reg a, Reg b) { return _mm256_subs_epu16(a, b); }

  template <int n>
  LMX_ALWAYS_INLINE static Reg Right16(Reg a) {
    return _mm256_srli_epi16(a, n);
  }
  template <int n>
  LMX_ALWAYS_INLINE static Reg Left16(Reg a) {
    return _mm256_slli_epi16(a, n);
  }
  template <int n>
  LMX_ALWAYS_INLINE static Reg Left32(Reg a) {
    return _mm256_slli_epi32(a, n);
  }
  template <int n>
  LMX_ALWAYS_INLINE static Reg Right32(Reg a) {
    return _mm256_srli_epi32(a, n);
  }
  template <int n>
  LMX_ALWAYS_INLINE static Reg Left64(Reg a) {
    return _mm256_slli_epi64(a, n);
  }
  template <int n>
  LMX_ALWAYS_INLINE static Reg Right64(Reg a) {
    return _mm256_srli_epi64(a, n);
  }

  LMX_ALWAYS_INLINE static Reg Equal8(Reg a, Reg b) { return _mm256_cmpeq_epi8(a, b); }
  LMX_ALWAYS_INLINE static Reg Equal16(Reg a, Reg b) { return _mm256_cmpeq_epi16(a, b); }
  LMX_ALWAYS_INLINE static Reg Greater16(Reg a, Reg b) { return _mm256_cmpgt_epi16(a, b); }  // signed
  LMX_ALWAYS_INLINE static Reg Equal32(Reg a, Reg b) { return _mm256_cmpeq_epi32(a, b); }
  LMX_ALWAYS_INLINE static bool IsZero(Reg a) { return _mm256_testz_si256(a, a) != 0; }
  LMX_ALWAYS_INLINE static bool HasBits(Reg a, Reg mask) {
    return _mm256_testc_si256(a, mask) != 0;
  }  // all of the mask's

  // a - b where that is above 0, else a. Both are 0 to 32767, and not equal.
  LMX_ALWAYS_INLINE static Reg SubIfGreater16(Reg a, Reg b) { return _mm256_min_epu16(a, Sub16(a, b)); }

  LMX_ALWAYS_INLINE static Reg UnpackLow8(Reg a) { return _mm256_unpacklo_epi8(a, Zero()); }
  LMX_ALWAYS_INLINE static Reg UnpackHigh8(Reg a) { return _mm256_unpackhi_epi8(a, Zero()); }
  LMX_ALWAYS_INLINE static Reg UnpackLow16(Reg a) { return _mm256_unpacklo_epi16(a, Zero()); }
  LMX_ALWAYS_INLINE static Reg UnpackHigh16(Reg a) { return _mm256_unpackhi_epi16(a, Zero()); }
  LMX_ALWAYS_INLINE static Reg Pack32(Reg low, Reg high) { return _mm256_packs_epi32(low, high); }  // of 0 to 32767
  LMX_ALWAYS_INLINE static Reg Interleave8Low(Reg a, Reg b) { return _mm256_unpacklo_epi8(a, b); }
  LMX_ALWAYS_INLINE static Reg Interleave8High(Reg a, Reg b) { return _mm256_unpackhi_epi8(a, b); }
  LMX_ALWAYS_INLINE static Reg DoubleLow8(Reg a) { return _mm256_unpacklo_epi8(a, a); }
  LMX_ALWAYS_INLINE static Reg DoubleHigh8(Reg a) { return _mm256_unpackhi_epi8(a, a); }
  LMX_ALWAYS_INLINE static Reg DoubleLow32(Reg a) { return _mm256_unpacklo_epi32(a, a); }
  LMX_ALWAYS_INLINE static Reg DoubleHigh32(Reg a) { return _mm256_unpackhi_epi32(a, a); }
  LMX_ALWAYS_INLINE static Reg Pack16(Reg low, Reg high) { return _mm256_packus_epi16(low, high); }

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
    return _mm256_permutevar8x32_epi32(a, _mm256_set_epi32(0, 1, 2, 3, 4, 5, 6, 7));
  }

  // The last pixel of `before`, followed by all but the last of `a`.
  LMX_ALWAYS_INLINE static Reg ShiftIn(Reg before, Reg a) {
    return _mm256_alignr_epi8(a, _mm256_permute2x128_si256(before, a, 0x21), 12);
  }

  // The even, or the odd, pixels of two consecutive registers.
  LMX_ALWAYS_INLINE static Reg EvenPixels(Reg a, Reg b) { return Shuffled<_MM_SHUFFLE(2, 0, 2, 0)>(a, b); }
  LMX_ALWAYS_INLINE static Reg OddPixels(Reg a, Reg b) { return Shuffled<_MM_SHUFFLE(3, 1, 3, 1)>(a, b); }

  // `dividend` divided by each 32-bit lane, in single precision, truncated.
  LMX_ALWAYS_INLINE static Reg DivideSingle(int32_t dividend, Reg divisors) {
    const __m256 single = _mm256_cvtepi32_ps(_mm256_set1_epi32(dividend));
    return _mm256_cvttps_epi32(_mm256_div_ps(single, _mm256_cvtepi32_ps(divisors)));
  }

  // Doubles, half a register of pixels at a time.
  using Doubles = __m256d;
  LMX_ALWAYS_INLINE static Doubles SetDouble(double v) { return _mm256_set1_pd(v); }
  LMX_ALWAYS_INLINE static Doubles LowToDouble(Reg a) { return _mm256_cvtepi32_pd(_mm256_castsi256_si128(a)); }
  LMX_ALWAYS_INLINE static Doubles HighToDouble(Reg a) { return _mm256_cvtepi32_pd(_mm256_extracti128_si256(a, 1)); }
  LMX_ALWAYS_INLINE static Doubles Add(Doubles a, Doubles b) { return _mm256_add_pd(a, b); }
  LMX_ALWAYS_INLINE static Doubles Sub(Doubles a, Doubles b) { return _mm256_sub_pd(a, b); }
  LMX_ALWAYS_INLINE static Doubles Divide(Doubles a, Doubles b) { return _mm256_div_pd(a, b); }
  LMX_ALWAYS_INLINE static double SumOf(Doubles a) {
    const __m128d half = _mm_add_pd(_mm256_castpd256_pd128(a), _mm256_extractf128_pd(a, 1));
    return _mm_cvtsd_f64(half) + _mm_cvtsd_f64(_mm_unpackhi_pd(half, half));
  }

  LMX_ALWAYS_INLINE static uint32_t SumOf64(Reg a) {
    const __m128i half = _mm_add_epi64(_mm256_castsi256_si128(a), _mm256_extracti128_si256(a, 1));
    return static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_add_epi64(half, _mm_srli_si128(half, 8))));
  }

  // Transposes a square of kPixels x kPixels pixels.
  LMX_ALWAYS_INLINE static void Transpose(Reg* r) {
    Reg pairs[8], fours[8];
    for (int i = 0; i < 8; i += 2) {
      pairs[i] = _mm256_unpacklo_epi32(r[i], r[i + 1]);
      pairs[i + 1] = _mm256_unpackhi_epi32(r[i], r[i + 1]);
    }
    for (int i = 0; i < 8; i += 4) {
      fours[i] = _mm256_unpacklo_epi64(pairs[i], pairs[i + 2]);
      fours[i + 1] = _mm256_unpackhi_epi64(pairs[i], pairs[i + 2]);
      fours[i + 2] = _mm256_unpacklo_epi64(pairs[i + 1], pairs[i + 3]);
      fours[i + 3] = _mm256_unpackhi_epi64(pairs[i + 1], pairs[i + 3]);
    }
    for (int i = 0; i < 4; ++i) {
      r[i] = _mm256_permute2x128_si256(fours[i], fours[i + 4], 0x20);
      r[i + 4] = _mm256_permute2x128_si256(fours[i], fours[i + 4], 0x31);
    }
  }

 private:
  // The bytes of each 128 bits in the given order.
  LMX_ALWAYS_INLINE static Reg Bytes(Reg a, __m128i order) {
    return _mm256_shuffle_epi8(a, _mm256_broadcastsi128_si256(order));
  }

  template <int i>
  LMX_ALWAYS_INLINE static Reg Shuffled(Reg a, Reg b) {
    const __m256 pairs = _mm256_shuffle_ps(_mm256_castsi256_ps(a), _mm256_castsi256_ps(b), i);
    return _mm256_permute4x64_epi64(_mm256_castps_si256(pairs), _MM_SHUFFLE(3, 1, 2, 0));
  }
};

}  // namespace
