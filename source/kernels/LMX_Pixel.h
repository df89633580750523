// One pixel: what reading, writing, adjusting and blending mean. The kernels apply these functions
// to runs.
//
// A working pixel is 0xAARRGGBB with straight alpha: 255 opaque, 0 transparent. A stored pixel is
// four bytes in one of two forms:
//   context  alpha, red, green, blue in memory, colours premultiplied by alpha;
//   buffer   a little-endian word 0xTTRRGGBB, straight colours, T a transparency from 0 (opaque) to
//            127 (clear).
// All arithmetic is on integers but for two sums, and every division truncates.
//
// All functions are always inlined: the linker must never keep, for all levels, a copy that was
// compiled for one instruction set.
#pragma once

#include <stdint.h>
#include <string.h>

#define LMX_ALWAYS_INLINE inline __attribute__((always_inline))
#define LMX_INLINE_LAMBDA __attribute__((always_inline))  // the same, after the parameters of a lambda

/// What an HSV adjustment does to each pixel.
struct HSVAdjustment {
  int32_t hueShift;         ///< in 1/1024 of 60 degrees: -6144 to 6143, or INT32_MIN for a NaN
  int32_t saturationScale;  ///< in 1/1024: 0 to 999 x 1024, whole numbers only
  int32_t valueScale;       ///< the same
};

/// What an RGB adjustment adds to each channel: -255 to 255.
struct RGBAdjustment {
  int32_t red;
  int32_t green;
  int32_t blue;
};

/// Sums over pixels. They are 32 bits wide and wrap.
struct RGBSums {
  uint32_t red;
  uint32_t green;
  uint32_t blue;
};

/// Sums over pixels in their order, on which the last bits of `saturation` depend.
struct HSVSums {
  RGBSums rgb;
  double saturation;  ///< of (max - min) / max, 0 for black
  double brightness;  ///< of max / 256
};

struct LMX_Pixel {
  // -------------------------------------------------------------------------------------- channels

  LMX_ALWAYS_INLINE static uint32_t Alpha(uint32_t pixel) { return pixel >> 24; }
  LMX_ALWAYS_INLINE static uint32_t Red(uint32_t pixel) { return pixel >> 16 & 0xFF; }
  LMX_ALWAYS_INLINE static uint32_t Green(uint32_t pixel) { return pixel >> 8 & 0xFF; }
  LMX_ALWAYS_INLINE static uint32_t Blue(uint32_t pixel) { return pixel & 0xFF; }

  LMX_ALWAYS_INLINE static uint32_t Pack(uint32_t alpha, uint32_t red, uint32_t green, uint32_t blue) {
    return alpha << 24 | red << 16 | green << 8 | blue;
  }

  // --------------------------------------------------------------------------------- stored pixels

  /// A colour above its alpha comes out above 255 and carries into the channel to its left.
  /// Rationale: the carry is part of the result for malformed pictures. The largest quotient, 255 *
  /// 255 / 1, has 16 bits.
  LMX_ALWAYS_INLINE static uint32_t ReadContext(const uint8_t* stored) {
    const uint32_t alpha = stored[0];
    if (alpha == 0) return 0;
    if (alpha == 255) return Pack(255, stored[1], stored[2], stored[3]);
    return (alpha << 24) + ((stored[1] * 255u / alpha) << 16) + ((stored[2] * 255u / alpha) << 8) +
           stored[3] * 255u / alpha;
  }

  LMX_ALWAYS_INLINE static void WriteContext(uint8_t* stored, uint32_t pixel) {
    const uint32_t alpha = Alpha(pixel);
    stored[0] = static_cast<uint8_t>(alpha);
    stored[1] = static_cast<uint8_t>(Red(pixel) * alpha / 255);
    stored[2] = static_cast<uint8_t>(Green(pixel) * alpha / 255);
    stored[3] = static_cast<uint8_t>(Blue(pixel) * alpha / 255);
  }

  /// A transparency above 127, which no well-formed picture has, wraps in the eight bits of alpha.
  LMX_ALWAYS_INLINE static uint32_t ReadBuffer(const uint8_t* stored) {
    uint32_t word;
    memcpy(&word, stored, sizeof word);
    const uint32_t transparency = word >> 24;
    const uint32_t alpha = transparency == 127 ? 0 : (255 - 2 * transparency) & 0xFF;
    return alpha << 24 | (word & 0xFFFFFF);
  }

  /// Keeps seven bits of alpha: 1 reads back as 0, and 254 as 255.
  LMX_ALWAYS_INLINE static void WriteBuffer(uint8_t* stored, uint32_t pixel) {
    const uint32_t word = ((pixel >> 1 & 0x7F000000) | (pixel & 0xFFFFFF)) ^ 0x7F000000;
    memcpy(stored, &word, sizeof word);
  }

  /// A working pixel in memory, at any address.
  LMX_ALWAYS_INLINE static uint32_t Load(const uint8_t* working) {
    uint32_t pixel;
    memcpy(&pixel, working, sizeof pixel);
    return pixel;
  }
  LMX_ALWAYS_INLINE static void Store(uint8_t* working, uint32_t pixel) { memcpy(working, &pixel, sizeof pixel); }

  // ------------------------------------------------------------------------------------------- HSV

  /// Hue: 0 to 6143 in 1/1024 of 60 degrees (0 red, 2048 green, 4096 blue), -1 for a grey.
  /// Saturation: 0 to 1024. Value, the largest channel, and alpha: 0 to 255. Red wins a tie, then
  /// green. The products have 18 bits: 255 * 1024.
  LMX_ALWAYS_INLINE static void RGBToHSV_1024(unsigned long pixel, long& hue, long& saturation, long& value,
                                              long& alpha) {
    const uint32_t word = static_cast<uint32_t>(pixel);
    const int32_t red = static_cast<int32_t>(Red(word));
    const int32_t green = static_cast<int32_t>(Green(word));
    const int32_t blue = static_cast<int32_t>(Blue(word));
    const int32_t max = Max(red, Max(green, blue));
    const int32_t delta = max - Min(red, Min(green, blue));
    hue = -1;
    saturation = 0;
    value = max;
    alpha = static_cast<long>(Alpha(word));
    if (delta == 0) return;
    saturation = delta * 1024 / max;
    if (max == red) {
      hue = (green - blue) * 1024 / delta;
    } else if (max == green) {
      hue = 2048 + (blue - red) * 1024 / delta;
    } else {
      hue = 4096 + (red - green) * 1024 / delta;
    }
    if (hue < 0) hue += 6144;
  }

  /// The inverse, for a saturation of 0 to 1024 and a value of 0 to 255. A saturation of 0 gives a
  /// grey, whatever the hue. Otherwise a hue below -1023 or above 6143 gives black. The sector is a
  /// truncated quotient, so hues from -1023 to -1 are in sector 0, with a distance of up to 2047.
  /// Truncation lowers a channel by less than 1. The largest product, 1048576 * 255, has 28 bits.
  LMX_ALWAYS_INLINE static uint32_t HSVToRGB_1024(long hue, long saturation, long value, long alpha) {
    const uint32_t a = static_cast<uint32_t>(alpha);
    const uint32_t v = static_cast<uint32_t>(value);
    if (saturation == 0) return Pack(a, v, v, v);
    if (hue < -1023 || hue > 6143) return Pack(a, 0, 0, 0);
    const int32_t s = static_cast<int32_t>(saturation);
    const int32_t sector = static_cast<int32_t>(hue) / 1024;
    const int32_t fraction = static_cast<int32_t>(hue) - sector * 1024;
    const int32_t distance = sector % 2 == 0 ? 1024 - fraction : fraction;
    const uint32_t p = static_cast<uint32_t>((1024 - s) * static_cast<int32_t>(v) / 1024);
    const uint32_t tq = static_cast<uint32_t>((1048576 - distance * s) * static_cast<int32_t>(v) / 1048576);
    switch (sector) {
      case 0:
        return Pack(a, v, tq, p);
      case 1:
        return Pack(a, tq, v, p);
      case 2:
        return Pack(a, p, v, tq);
      case 3:
        return Pack(a, p, tq, v);
      case 4:
        return Pack(a, tq, p, v);
      default:
        return Pack(a, v, p, tq);
    }
  }

  /// Alpha stays. The saturation is at most 1023: a fully saturated colour loses one unit of it
  /// even when nothing is scaled. The largest product, 1024 * 999 * 1024, has 30 bits.
  LMX_ALWAYS_INLINE static uint32_t AdjustHSV(uint32_t pixel, const HSVAdjustment& by) {
    long hue, saturation, value, alpha;
    RGBToHSV_1024(pixel, hue, saturation, value, alpha);
    hue = WrappedSum(static_cast<int32_t>(hue), by.hueShift);
    if (hue < 0) hue += 6144;
    if (hue > 6143) hue -= 6144;
    saturation = Min(static_cast<int32_t>(saturation) * by.saturationScale / 1024, 1023);
    value = Min(static_cast<int32_t>(value) * by.valueScale / 1024, 255);
    return HSVToRGB_1024(hue, saturation, value, alpha);
  }

  // ------------------------------------------------------------------------------ other operations

  /// Alpha stays; each colour is clamped to 0 to 255.
  LMX_ALWAYS_INLINE static uint32_t AdjustRGB(uint32_t pixel, const RGBAdjustment& by) {
    return Pack(Alpha(pixel), AdjustChannel(Red(pixel), by.red), AdjustChannel(Green(pixel), by.green),
                AdjustChannel(Blue(pixel), by.blue));
  }

  /// The colour negative, fully transparent.
  LMX_ALWAYS_INLINE static uint32_t Negative(uint32_t pixel) { return ~pixel & 0xFFFFFF; }

  /// A pixel mixed with the one before it in its line. `fraction`, 0 to 65535, is the weight of the
  /// one before; the pixel has the weight 65535 - fraction. The largest sum, 255 * 65535, has 24
  /// bits.
  LMX_ALWAYS_INLINE static uint32_t Blend(uint32_t pixel, uint32_t before, uint32_t fraction) {
    return Pack(BlendChannel(Alpha(pixel), Alpha(before), fraction), BlendChannel(Red(pixel), Red(before), fraction),
                BlendChannel(Green(pixel), Green(before), fraction), BlendChannel(Blue(pixel), Blue(before), fraction));
  }

  // ------------------------------------------------------------------------------------ box filter

  /// Adds `units` times each channel to the four sums of a box. A box has at most 32768 units, so a
  /// sum is at most 255 * 32768, below 2^23.
  LMX_ALWAYS_INLINE static void AddToBox(uint32_t* sums, uint32_t pixel, uint32_t units) {
    sums[0] += Alpha(pixel) * units;
    sums[1] += Red(pixel) * units;
    sums[2] += Green(pixel) * units;
    sums[3] += Blue(pixel) * units;
  }

  /// The average of a box, of which `units` were added in all.
  LMX_ALWAYS_INLINE static uint32_t BoxAverage(const uint32_t* sums, uint32_t units) {
    return Pack(sums[0] / units, sums[1] / units, sums[2] / units, sums[3] / units);
  }

  // ------------------------------------------------------------------------------------------ sums

  LMX_ALWAYS_INLINE static void AddRGB(RGBSums* sums, uint32_t pixel) {
    sums->red += Red(pixel);
    sums->green += Green(pixel);
    sums->blue += Blue(pixel);
  }

  LMX_ALWAYS_INLINE static void AddHSV(HSVSums* sums, uint32_t pixel) {
    AddRGB(&sums->rgb, pixel);
    const int32_t red = static_cast<int32_t>(Red(pixel));
    const int32_t green = static_cast<int32_t>(Green(pixel));
    const int32_t blue = static_cast<int32_t>(Blue(pixel));
    const int32_t max = Max(red, Max(green, blue));
    const int32_t min = Min(red, Min(green, blue));
    if (max != 0) sums->saturation += static_cast<double>(max - min) / max;
    sums->brightness += max * 0.00390625;
  }

  LMX_ALWAYS_INLINE static int32_t Max(int32_t a, int32_t b) { return a > b ? a : b; }
  LMX_ALWAYS_INLINE static int32_t Min(int32_t a, int32_t b) { return a < b ? a : b; }

 private:
  LMX_ALWAYS_INLINE static int32_t WrappedSum(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
  }

  LMX_ALWAYS_INLINE static uint32_t AdjustChannel(uint32_t channel, int32_t delta) {
    return static_cast<uint32_t>(Min(Max(static_cast<int32_t>(channel) + delta, 0), 255));
  }

  LMX_ALWAYS_INLINE static uint32_t BlendChannel(uint32_t channel, uint32_t before, uint32_t fraction) {
    return (channel * (65535 - fraction) + before * fraction) / 65535;
  }
};
