// AVX-512 by SIMDe, which implements every intrinsic as portable code: includes its native names,
// and adds what its version in Debian 12 lacks.
#pragma once

#define SIMDE_ENABLE_NATIVE_ALIASES
#include <simde/x86/avx512.h>
//
#include <cstdint>
#include <cstring>

namespace emulated {

// Applies an operation to the low half and the high half of each operand, and joins the results.
template <class Operation>
inline __m512i ByHalves(__m512i a, Operation operation) {
  const __m512i low = _mm512_castsi256_si512(operation(_mm512_castsi512_si256(a)));
  return _mm512_inserti64x4(low, operation(_mm512_extracti64x4_epi64(a, 1)), 1);
}
template <class Operation>
inline __m512i ByHalves(__m512i a, __m512i b, Operation operation) {
  const __m512i low = _mm512_castsi256_si512(operation(_mm512_castsi512_si256(a), _mm512_castsi512_si256(b)));
  return _mm512_inserti64x4(low, operation(_mm512_extracti64x4_epi64(a, 1), _mm512_extracti64x4_epi64(b, 1)), 1);
}

}  // namespace emulated

#undef _mm512_mulhi_epu16
#define _mm512_mulhi_epu16(a, b) emulated::ByHalves(a, b, [](__m256i x, __m256i y) { return _mm256_mulhi_epu16(x, y); })
#undef _mm512_madd_epi16
#define _mm512_madd_epi16(a, b) emulated::ByHalves(a, b, [](__m256i x, __m256i y) { return _mm256_madd_epi16(x, y); })
#undef _mm512_shufflelo_epi16
#define _mm512_shufflelo_epi16(a, i) emulated::ByHalves(a, [](__m256i x) { return _mm256_shufflelo_epi16(x, i); })
#undef _mm512_shufflehi_epi16
#define _mm512_shufflehi_epi16(a, i) emulated::ByHalves(a, [](__m256i x) { return _mm256_shufflehi_epi16(x, i); })

// Masks are made from lanes and expanded to lanes again.
#undef _mm512_cmpeq_epi16_mask
#define _mm512_cmpeq_epi16_mask(a, b) \
  _mm512_movepi16_mask(emulated::ByHalves(a, b, [](__m256i x, __m256i y) { return _mm256_cmpeq_epi16(x, y); }))
#undef _mm512_cmpgt_epi16_mask
#define _mm512_cmpgt_epi16_mask(a, b) \
  _mm512_movepi16_mask(emulated::ByHalves(a, b, [](__m256i x, __m256i y) { return _mm256_cmpgt_epi16(x, y); }))

// Masked loads and stores must not touch what their mask leaves out: it may be inaccessible.
namespace emulated {

inline __m512i LoadLanes(__m512i a, std::uint32_t lanes, const void* p) {
  std::uint32_t words[16];
  std::memcpy(words, &a, sizeof words);
  for (int i = 0; i < 16; ++i) {
    if (lanes >> i & 1) std::memcpy(&words[i], static_cast<const char*>(p) + 4 * i, 4);
  }
  std::memcpy(&a, words, sizeof words);
  return a;
}
inline void StoreLanes(void* p, std::uint32_t lanes, __m512i a) {
  std::uint32_t words[16];
  std::memcpy(words, &a, sizeof words);
  for (int i = 0; i < 16; ++i) {
    if (lanes >> i & 1) std::memcpy(static_cast<char*>(p) + 4 * i, &words[i], 4);
  }
}

}  // namespace emulated

#undef _mm512_mask_loadu_epi32
#define _mm512_mask_loadu_epi32(a, lanes, p) emulated::LoadLanes(a, lanes, p)
#undef _mm512_maskz_loadu_epi32
#define _mm512_maskz_loadu_epi32(lanes, p) emulated::LoadLanes(_mm512_setzero_si512(), lanes, p)
#undef _mm512_mask_storeu_epi32
#define _mm512_mask_storeu_epi32(p, lanes, a) emulated::StoreLanes(p, lanes, a)

#undef _mm512_stream_si512
#define _mm512_stream_si512(p, a) std::memcpy(p, &static_cast<const __m512i&>(a), 64)

namespace emulated {

// Converts each lane.
template <class From, class To, class Result, class Register>
inline Result Converted(const Register& a) {
  From from[sizeof(Register) / sizeof(From)];
  To to[sizeof(Result) / sizeof(To)];
  std::memcpy(from, &a, sizeof a);
  for (std::size_t i = 0; i < sizeof to / sizeof *to; ++i) to[i] = static_cast<To>(from[i]);
  Result result;
  std::memcpy(&result, to, sizeof result);
  return result;
}

}  // namespace emulated

#undef _mm512_cvtepi32_ps
#define _mm512_cvtepi32_ps(a) emulated::Converted<std::int32_t, float, __m512>(a)
#undef _mm512_cvttps_epi32
#define _mm512_cvttps_epi32(a) emulated::Converted<float, std::int32_t, __m512i>(a)
#undef _mm512_mulhi_epi16
#define _mm512_mulhi_epi16(a, b) emulated::ByHalves(a, b, [](__m256i x, __m256i y) { return _mm256_mulhi_epi16(x, y); })
#undef _mm512_cvtepi32_pd
#define _mm512_cvtepi32_pd(a) emulated::Converted<std::int32_t, double, __m512d>(a)
