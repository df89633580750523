// The SSE2 intrinsics that Vector_sse2.h uses, in WebAssembly's 128 bits, so that the wide kernels
// compile unchanged. The compiler's own header of this name is for x86 only. SIMDe has all of them,
// but makes many of them loops over lanes: with it the kernels took four times as long as the plain
// ones.
#pragma once

#include <wasm_simd128.h>

using __m128i = v128_t;
using __m128 = v128_t;
using __m128d = v128_t;

#define LMX_SSE2 static inline __attribute__((always_inline))
#define _MM_SHUFFLE(d, c, b, a) ((d) << 6 | (c) << 4 | (b) << 2 | (a))

// A line each.
// clang-format off

// Loads and stores. There are no non-temporal ones.
LMX_SSE2 v128_t _mm_loadu_si128(const v128_t* p) { return wasm_v128_load(p); }
LMX_SSE2 v128_t _mm_load_si128(const v128_t* p) { return wasm_v128_load(p); }
LMX_SSE2 void _mm_storeu_si128(v128_t* p, v128_t a) { wasm_v128_store(p, a); }
LMX_SSE2 void _mm_store_si128(v128_t* p, v128_t a) { wasm_v128_store(p, a); }
LMX_SSE2 void _mm_stream_si128(v128_t* p, v128_t a) { wasm_v128_store(p, a); }

LMX_SSE2 v128_t _mm_loadl_epi64(const v128_t* p) { return wasm_v128_load64_zero(p); }
LMX_SSE2 void _mm_storel_epi64(v128_t* p, v128_t a) { wasm_v128_store64_lane(p, a, 0); }

LMX_SSE2 v128_t _mm_setzero_si128() { return wasm_i32x4_const(0, 0, 0, 0); }
LMX_SSE2 v128_t _mm_set1_epi8(char v) { return wasm_i8x16_splat(v); }
LMX_SSE2 v128_t _mm_set1_epi16(short v) { return wasm_i16x8_splat(v); }
LMX_SSE2 v128_t _mm_set1_epi32(int v) { return wasm_i32x4_splat(v); }
LMX_SSE2 v128_t _mm_set1_epi64x(long long v) { return wasm_i64x2_splat(v); }
LMX_SSE2 v128_t _mm_set_epi32(int d, int c, int b, int a) { return wasm_i32x4_make(a, b, c, d); }
LMX_SSE2 v128_t _mm_cvtsi32_si128(int v) { return wasm_i32x4_make(v, 0, 0, 0); }
LMX_SSE2 int _mm_cvtsi128_si32(v128_t a) { return wasm_i32x4_extract_lane(a, 0); }

LMX_SSE2 v128_t _mm_and_si128(v128_t a, v128_t b) { return wasm_v128_and(a, b); }
LMX_SSE2 v128_t _mm_andnot_si128(v128_t a, v128_t b) { return wasm_v128_andnot(b, a); }
LMX_SSE2 v128_t _mm_or_si128(v128_t a, v128_t b) { return wasm_v128_or(a, b); }
LMX_SSE2 v128_t _mm_xor_si128(v128_t a, v128_t b) { return wasm_v128_xor(a, b); }

LMX_SSE2 v128_t _mm_add_epi8(v128_t a, v128_t b) { return wasm_i8x16_add(a, b); }
LMX_SSE2 v128_t _mm_add_epi16(v128_t a, v128_t b) { return wasm_i16x8_add(a, b); }
LMX_SSE2 v128_t _mm_add_epi32(v128_t a, v128_t b) { return wasm_i32x4_add(a, b); }
LMX_SSE2 v128_t _mm_add_epi64(v128_t a, v128_t b) { return wasm_i64x2_add(a, b); }
LMX_SSE2 v128_t _mm_sub_epi8(v128_t a, v128_t b) { return wasm_i8x16_sub(a, b); }
LMX_SSE2 v128_t _mm_sub_epi16(v128_t a, v128_t b) { return wasm_i16x8_sub(a, b); }
LMX_SSE2 v128_t _mm_sub_epi32(v128_t a, v128_t b) { return wasm_i32x4_sub(a, b); }
LMX_SSE2 v128_t _mm_sub_epi64(v128_t a, v128_t b) { return wasm_i64x2_sub(a, b); }
LMX_SSE2 v128_t _mm_adds_epu8(v128_t a, v128_t b) { return wasm_u8x16_add_sat(a, b); }
LMX_SSE2 v128_t _mm_subs_epu8(v128_t a, v128_t b) { return wasm_u8x16_sub_sat(a, b); }
LMX_SSE2 v128_t _mm_adds_epu16(v128_t a, v128_t b) { return wasm_u16x8_add_sat(a, b); }
LMX_SSE2 v128_t _mm_subs_epu16(v128_t a, v128_t b) { return wasm_u16x8_sub_sat(a, b); }
LMX_SSE2 v128_t _mm_adds_epi16(v128_t a, v128_t b) { return wasm_i16x8_add_sat(a, b); }
LMX_SSE2 v128_t _mm_subs_epi16(v128_t a, v128_t b) { return wasm_i16x8_sub_sat(a, b); }
LMX_SSE2 v128_t _mm_avg_epu8(v128_t a, v128_t b) { return wasm_u8x16_avgr(a, b); }
LMX_SSE2 v128_t _mm_avg_epu16(v128_t a, v128_t b) { return wasm_u16x8_avgr(a, b); }
LMX_SSE2 v128_t _mm_max_epu8(v128_t a, v128_t b) { return wasm_u8x16_max(a, b); }
LMX_SSE2 v128_t _mm_min_epu8(v128_t a, v128_t b) { return wasm_u8x16_min(a, b); }
LMX_SSE2 v128_t _mm_max_epi16(v128_t a, v128_t b) { return wasm_i16x8_max(a, b); }
LMX_SSE2 v128_t _mm_min_epi16(v128_t a, v128_t b) { return wasm_i16x8_min(a, b); }

LMX_SSE2 v128_t _mm_mullo_epi16(v128_t a, v128_t b) { return wasm_i16x8_mul(a, b); }
LMX_SSE2 v128_t _mm_madd_epi16(v128_t a, v128_t b) { return wasm_i32x4_dot_i16x8(a, b); }
LMX_SSE2 v128_t _mm_mulhi_epu16(v128_t a, v128_t b) {
  return wasm_i16x8_shuffle(wasm_u32x4_extmul_low_u16x8(a, b), wasm_u32x4_extmul_high_u16x8(a, b), 1, 3, 5, 7, 9, 11,
                            13, 15);
}
LMX_SSE2 v128_t _mm_mulhi_epi16(v128_t a, v128_t b) {
  return wasm_i16x8_shuffle(wasm_i32x4_extmul_low_i16x8(a, b), wasm_i32x4_extmul_high_i16x8(a, b), 1, 3, 5, 7, 9, 11, 13, 15);
}
LMX_SSE2 v128_t _mm_mul_epu32(v128_t a, v128_t b) {
  return wasm_u64x2_extmul_low_u32x4(wasm_i32x4_shuffle(a, a, 0, 2, 0, 2), wasm_i32x4_shuffle(b, b, 0, 2, 0, 2));
}
LMX_SSE2 v128_t _mm_sad_epu8(v128_t a, v128_t b) {
  const v128_t difference = wasm_v128_or(wasm_u8x16_sub_sat(a, b), wasm_u8x16_sub_sat(b, a));
  const v128_t fours = wasm_u32x4_extadd_pairwise_u16x8(wasm_u16x8_extadd_pairwise_u8x16(difference));
  return wasm_i64x2_add(wasm_v128_and(fours, wasm_i64x2_splat(0xFFFFFFFF)), wasm_u64x2_shr(fours, 32));
}

LMX_SSE2 v128_t _mm_slli_epi16(v128_t a, int n) { return wasm_i16x8_shl(a, static_cast<uint32_t>(n)); }
LMX_SSE2 v128_t _mm_srli_epi16(v128_t a, int n) { return wasm_u16x8_shr(a, static_cast<uint32_t>(n)); }
LMX_SSE2 v128_t _mm_srai_epi16(v128_t a, int n) { return wasm_i16x8_shr(a, static_cast<uint32_t>(n)); }
LMX_SSE2 v128_t _mm_slli_epi32(v128_t a, int n) { return wasm_i32x4_shl(a, static_cast<uint32_t>(n)); }
LMX_SSE2 v128_t _mm_srli_epi32(v128_t a, int n) { return wasm_u32x4_shr(a, static_cast<uint32_t>(n)); }
LMX_SSE2 v128_t _mm_srai_epi32(v128_t a, int n) { return wasm_i32x4_shr(a, static_cast<uint32_t>(n)); }
LMX_SSE2 v128_t _mm_slli_epi64(v128_t a, int n) { return wasm_i64x2_shl(a, static_cast<uint32_t>(n)); }
LMX_SSE2 v128_t _mm_srli_epi64(v128_t a, int n) { return wasm_u64x2_shr(a, static_cast<uint32_t>(n)); }

LMX_SSE2 v128_t _mm_cmpeq_epi8(v128_t a, v128_t b) { return wasm_i8x16_eq(a, b); }
LMX_SSE2 v128_t _mm_cmpeq_epi16(v128_t a, v128_t b) { return wasm_i16x8_eq(a, b); }
LMX_SSE2 v128_t _mm_cmpeq_epi32(v128_t a, v128_t b) { return wasm_i32x4_eq(a, b); }
LMX_SSE2 v128_t _mm_cmpgt_epi8(v128_t a, v128_t b) { return wasm_i8x16_gt(a, b); }
LMX_SSE2 v128_t _mm_cmplt_epi16(v128_t a, v128_t b) { return wasm_i16x8_lt(a, b); }
LMX_SSE2 v128_t _mm_cmplt_epi32(v128_t a, v128_t b) { return wasm_i32x4_lt(a, b); }
LMX_SSE2 v128_t _mm_cmpgt_epi16(v128_t a, v128_t b) { return wasm_i16x8_gt(a, b); }
LMX_SSE2 v128_t _mm_cmpgt_epi32(v128_t a, v128_t b) { return wasm_i32x4_gt(a, b); }
LMX_SSE2 int _mm_movemask_epi8(v128_t a) { return static_cast<int>(wasm_i8x16_bitmask(a)); }

LMX_SSE2 v128_t _mm_packs_epi32(v128_t a, v128_t b) { return wasm_i16x8_narrow_i32x4(a, b); }
LMX_SSE2 v128_t _mm_packs_epi16(v128_t a, v128_t b) { return wasm_i8x16_narrow_i16x8(a, b); }
LMX_SSE2 v128_t _mm_packus_epi16(v128_t a, v128_t b) { return wasm_u8x16_narrow_i16x8(a, b); }
LMX_SSE2 v128_t _mm_unpacklo_epi8(v128_t a, v128_t b) {
  return wasm_i8x16_shuffle(a, b, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
}
LMX_SSE2 v128_t _mm_unpackhi_epi8(v128_t a, v128_t b) {
  return wasm_i8x16_shuffle(a, b, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31);
}
LMX_SSE2 v128_t _mm_unpacklo_epi16(v128_t a, v128_t b) { return wasm_i16x8_shuffle(a, b, 0, 8, 1, 9, 2, 10, 3, 11); }
LMX_SSE2 v128_t _mm_unpackhi_epi16(v128_t a, v128_t b) {
  return wasm_i16x8_shuffle(a, b, 4, 12, 5, 13, 6, 14, 7, 15);
}
LMX_SSE2 v128_t _mm_unpacklo_epi32(v128_t a, v128_t b) { return wasm_i32x4_shuffle(a, b, 0, 4, 1, 5); }
LMX_SSE2 v128_t _mm_unpackhi_epi32(v128_t a, v128_t b) { return wasm_i32x4_shuffle(a, b, 2, 6, 3, 7); }
LMX_SSE2 v128_t _mm_unpacklo_epi64(v128_t a, v128_t b) { return wasm_i64x2_shuffle(a, b, 0, 2); }
LMX_SSE2 v128_t _mm_unpackhi_epi64(v128_t a, v128_t b) { return wasm_i64x2_shuffle(a, b, 1, 3); }

// With constants: lane k of the result is lane (i >> 2 * k) & 3 of its source.
#define _mm_shuffle_epi32(a, i) wasm_i32x4_shuffle(a, a, (i)&3, (i) >> 2 & 3, (i) >> 4 & 3, (i) >> 6 & 3)
#define _mm_shuffle_ps(a, b, i) wasm_i32x4_shuffle(a, b, (i)&3, (i) >> 2 & 3, 4 + ((i) >> 4 & 3), 4 + ((i) >> 6 & 3))
#define _mm_shufflelo_epi16(a, i) wasm_i16x8_shuffle(a, a, (i)&3, (i) >> 2 & 3, (i) >> 4 & 3, (i) >> 6 & 3, 4, 5, 6, 7)
#define _mm_shufflehi_epi16(a, i) \
  wasm_i16x8_shuffle(a, a, 0, 1, 2, 3, 4 + ((i)&3), 4 + ((i) >> 2 & 3), 4 + ((i) >> 4 & 3), 4 + ((i) >> 6 & 3))
#define _mm_srli_si128(a, n)                                                                                   \
  wasm_i8x16_shuffle(a, _mm_setzero_si128(), n, (n) + 1, (n) + 2, (n) + 3, (n) + 4, (n) + 5, (n) + 6, (n) + 7, \
                     (n) + 8, (n) + 9, (n) + 10, (n) + 11, (n) + 12, (n) + 13, (n) + 14, (n) + 15)

#define _mm_slli_si128(a, n)                                                                                      \
  wasm_i8x16_shuffle(_mm_setzero_si128(), a, 16 - (n), 17 - (n), 18 - (n), 19 - (n), 20 - (n), 21 - (n), 22 - (n), \
                     23 - (n), 24 - (n), 25 - (n), 26 - (n), 27 - (n), 28 - (n), 29 - (n), 30 - (n), 31 - (n))

LMX_SSE2 v128_t _mm_castsi128_ps(v128_t a) { return a; }
LMX_SSE2 v128_t _mm_castps_si128(v128_t a) { return a; }

// What does not fit becomes the lowest integer.
LMX_SSE2 v128_t _mm_cvttps_epi32(v128_t a) {
  const v128_t fits = wasm_f32x4_lt(a, wasm_f32x4_splat(2147483648.0F));
  return wasm_v128_bitselect(wasm_i32x4_trunc_sat_f32x4(a), wasm_i32x4_splat(INT32_MIN), fits);
}
LMX_SSE2 v128_t _mm_cvtepi32_ps(v128_t a) { return wasm_f32x4_convert_i32x4(a); }
LMX_SSE2 v128_t _mm_set1_ps(float v) { return wasm_f32x4_splat(v); }
LMX_SSE2 v128_t _mm_add_ps(v128_t a, v128_t b) { return wasm_f32x4_add(a, b); }
LMX_SSE2 v128_t _mm_sub_ps(v128_t a, v128_t b) { return wasm_f32x4_sub(a, b); }
LMX_SSE2 v128_t _mm_mul_ps(v128_t a, v128_t b) { return wasm_f32x4_mul(a, b); }
LMX_SSE2 v128_t _mm_div_ps(v128_t a, v128_t b) { return wasm_f32x4_div(a, b); }

LMX_SSE2 v128_t _mm_set1_pd(double v) { return wasm_f64x2_splat(v); }
LMX_SSE2 v128_t _mm_cvtepi32_pd(v128_t a) { return wasm_f64x2_convert_low_i32x4(a); }
LMX_SSE2 v128_t _mm_add_pd(v128_t a, v128_t b) { return wasm_f64x2_add(a, b); }
LMX_SSE2 v128_t _mm_sub_pd(v128_t a, v128_t b) { return wasm_f64x2_sub(a, b); }
LMX_SSE2 v128_t _mm_mul_pd(v128_t a, v128_t b) { return wasm_f64x2_mul(a, b); }
LMX_SSE2 v128_t _mm_div_pd(v128_t a, v128_t b) { return wasm_f64x2_div(a, b); }
LMX_SSE2 v128_t _mm_unpackhi_pd(v128_t a, v128_t b) { return wasm_i64x2_shuffle(a, b, 1, 3); }
LMX_SSE2 double _mm_cvtsd_f64(v128_t a) { return wasm_f64x2_extract_lane(a, 0); }

// clang-format on
