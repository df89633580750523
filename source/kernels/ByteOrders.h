// Orders of bytes for the byte shuffles of AVX2 and AVX-512, which are the same in each 128 bits.
#pragma once

#include <emmintrin.h>

#include "LMX_Pixel.h"

namespace {

struct ByteOrders {
  // Four 16-bit lanes of each 64 bits, chosen by two bits each.
  template <int i>
  LMX_ALWAYS_INLINE static __m128i Spread16() {
    constexpr int first = i & 3, second = i >> 2 & 3, third = i >> 4 & 3, fourth = i >> 6;
    return Words(first, second, third, fourth, 4 + first, 4 + second, 4 + third, 4 + fourth);
  }

  // The lower (0) or upper (1) half of each pixel, copied to the four lanes where UnpackLow8 and
  // UnpackHigh8 put its channels.
  template <int half>
  LMX_ALWAYS_INLINE static __m128i HalvesLow16() {
    return Words(half, half, half, half, 2 + half, 2 + half, 2 + half, 2 + half);
  }
  template <int half>
  LMX_ALWAYS_INLINE static __m128i HalvesHigh16() {
    return Words(4 + half, 4 + half, 4 + half, 4 + half, 6 + half, 6 + half, 6 + half, 6 + half);
  }

  // The lowest byte of each pixel, in all four bytes of it.
  LMX_ALWAYS_INLINE static __m128i SpreadLowest8() {
    return _mm_set_epi8(12, 12, 12, 12, 8, 8, 8, 8, 4, 4, 4, 4, 0, 0, 0, 0);
  }

  LMX_ALWAYS_INLINE static __m128i SwapBytes() {
    return _mm_set_epi8(12, 13, 14, 15, 8, 9, 10, 11, 4, 5, 6, 7, 0, 1, 2, 3);
  }

 private:
  // 16-bit lanes, each as its two bytes.
  LMX_ALWAYS_INLINE static __m128i Words(int a, int b, int c, int d, int e, int f, int g, int h) {
    const auto pair = [](int word) LMX_INLINE_LAMBDA { return static_cast<short>((2 * word + 1) << 8 | 2 * word); };
    return _mm_set_epi16(pair(h), pair(g), pair(f), pair(e), pair(d), pair(c), pair(b), pair(a));
  }
};

}  // namespace
