// The pixel functions: named cases with values worked out by hand, and whole domains compared with
// plain arithmetic.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <vector>

#include "kernels/LMX_Pixel.h"
#include "support/ModelPixel.h"

namespace {

// Hue, saturation, value, alpha.
using HSV = std::array<long, 4>;

std::uint32_t ReadContext(std::uint32_t bigEndian) {
  const std::uint32_t memory = __builtin_bswap32(bigEndian);
  return LMX_Pixel::ReadContext(reinterpret_cast<const std::uint8_t*>(&memory));
}

std::uint32_t WriteContext(std::uint32_t pixel) {
  std::uint32_t memory = 0x5A5A5A5A;
  LMX_Pixel::WriteContext(reinterpret_cast<std::uint8_t*>(&memory), pixel);
  return __builtin_bswap32(memory);
}

std::uint32_t ReadBuffer(std::uint32_t word) {
  return LMX_Pixel::ReadBuffer(reinterpret_cast<const std::uint8_t*>(&word));
}

std::uint32_t WriteBuffer(std::uint32_t pixel) {
  std::uint32_t word = 0x5A5A5A5A;
  LMX_Pixel::WriteBuffer(reinterpret_cast<std::uint8_t*>(&word), pixel);
  return word;
}

HSV ToHSV(std::uint32_t pixel) {
  HSV hsv = {77, 77, 77, 77};
  LMX_Pixel::RGBToHSV_1024(pixel, hsv[0], hsv[1], hsv[2], hsv[3]);
  return hsv;
}

std::uint32_t FromHSV(const HSV& hsv) {
  return LMX_Pixel::HSVToRGB_1024(hsv[0], hsv[1], hsv[2], hsv[3]);
}

HSV PlainToHSV(std::uint32_t pixel) {
  const model::Hsv hsv = model::HsvFromPixel(pixel);
  return {hsv.hue, hsv.saturation, hsv.value, hsv.alpha};
}

std::uint32_t PlainFromHSV(const HSV& hsv) {
  return model::PixelFromHsv({static_cast<std::int32_t>(hsv[0]), static_cast<std::int32_t>(hsv[1]),
                              static_cast<std::int32_t>(hsv[2]), static_cast<std::int32_t>(hsv[3])});
}

// ----------------------------------------------------------------------------------- stored pixels

TEST(ContextPixel, ClearReadsAsZeroWhateverItsColour) {
  EXPECT_EQ(ReadContext(0x00FFFFFF), 0x00000000u);
  EXPECT_EQ(ReadContext(0x00010203), 0x00000000u);
}

TEST(ContextPixel, OpaquePassesUntouched) {
  EXPECT_EQ(ReadContext(0xFF102030), 0xFF102030u);
  EXPECT_EQ(WriteContext(0xFF102030), 0xFF102030u);
}

TEST(ContextPixel, ColoursAreDividedByAlphaAndTruncated) {
  EXPECT_EQ(ReadContext(0x80644000), 0x80C77F00u);  // 100 x 255 / 128 = 199.2, 64 x 255 / 128 = 127.5
}

TEST(ContextPixel, ColourAboveItsAlphaCarriesIntoTheNeighbour) {
  EXPECT_EQ(ReadContext(0x80000081), 0x80000100u);  // blue 129 x 255 / 128 = 256
  EXPECT_EQ(ReadContext(0x80008100), 0x80010000u);  // green carries into red
  EXPECT_EQ(ReadContext(0x80810000), 0x81000000u);  // red carries into alpha
  EXPECT_EQ(ReadContext(0x01FF0000), 0xFF010000u);  // red 65025 = 0xFE01: 0x01000000 + 0xFE010000
  EXPECT_EQ(ReadContext(0x01FFFFFF), 0x01000000u + 0xFE010000u + 0x00FE0100u + 0x0000FE01u);
}

TEST(ContextPixel, ColoursAreMultipliedByAlphaAndTruncated) {
  EXPECT_EQ(WriteContext(0x80FF7F01), 0x80803F00u);  // 127 x 128 / 255 = 63.7, 128 / 255 = 0.5
  EXPECT_EQ(WriteContext(0x00FFFFFF), 0x00000000u);
}

TEST(ContextPixel, HalfTransparentRoundTripLosesAUnit) {
  EXPECT_EQ(WriteContext(ReadContext(0x80640000)), 0x80630000u);  // 100 -> 199 -> 99
}

TEST(BufferPixel, TransparencyIsTheRestOfAlpha) {
  EXPECT_EQ(ReadBuffer(0x00123456), 0xFF123456u);
  EXPECT_EQ(ReadBuffer(0x01123456), 0xFD123456u);
  EXPECT_EQ(ReadBuffer(0x7E123456), 0x03123456u);
  EXPECT_EQ(ReadBuffer(0x7F123456), 0x00123456u);
}

TEST(BufferPixel, TransparencyAbove127Wraps) {
  EXPECT_EQ(ReadBuffer(0x80123456), 0xFF123456u);  // 255 - 256
  EXPECT_EQ(ReadBuffer(0xFF123456), 0x01123456u);  // 255 - 510
}

TEST(BufferPixel, KeepsSevenBitsOfAlpha) {
  EXPECT_EQ(WriteBuffer(0xFF123456), 0x00123456u);
  EXPECT_EQ(WriteBuffer(0xFE123456), 0x00123456u);
  EXPECT_EQ(WriteBuffer(0x01123456), 0x7F123456u);
  EXPECT_EQ(WriteBuffer(0x00123456), 0x7F123456u);
  EXPECT_EQ(ReadBuffer(WriteBuffer(0xFE000000)), 0xFF000000u);
  EXPECT_EQ(ReadBuffer(WriteBuffer(0x01000000)), 0x00000000u);
}

// --------------------------------------------------------------------------------------------- HSV

TEST(RGBToHSV, GreysHaveNoHue) {
  EXPECT_EQ(ToHSV(0xFF000000), (HSV{-1, 0, 0, 255}));
  EXPECT_EQ(ToHSV(0xFFFFFFFF), (HSV{-1, 0, 255, 255}));
  for (std::uint32_t grey = 0; grey < 256; ++grey) {
    EXPECT_EQ(ToHSV(0xFF000000 + grey * 0x010101), (HSV{-1, 0, static_cast<long>(grey), 255}));
  }
}

TEST(RGBToHSV, ReferencePoints) {
  EXPECT_EQ(ToHSV(0xFFFF0000), (HSV{0, 1024, 255, 255}));
  EXPECT_EQ(ToHSV(0xFFFFFF00), (HSV{1024, 1024, 255, 255}));  // red wins the tie
  EXPECT_EQ(ToHSV(0xFF00FF00), (HSV{2048, 1024, 255, 255}));
  EXPECT_EQ(ToHSV(0xFF00FFFF), (HSV{3072, 1024, 255, 255}));  // green wins the tie
  EXPECT_EQ(ToHSV(0xFF0000FF), (HSV{4096, 1024, 255, 255}));
  EXPECT_EQ(ToHSV(0xFFFF00FF), (HSV{5120, 1024, 255, 255}));  // red wins the tie: -1024 + 6144
}

TEST(RGBToHSV, NegativeQuotientIsCutTowardsZeroAndThenWrapped) {
  EXPECT_EQ(ToHSV(0xFFFF0001), (HSV{6140, 1024, 255, 255}));  // -1024 / 255 = -4.02
}

TEST(RGBToHSV, ClearPixelsConvertTheirColour) {
  EXPECT_EQ(ToHSV(0x00FF0000), (HSV{0, 1024, 255, 0}));
  EXPECT_EQ(ToHSV(0x00000000), (HSV{-1, 0, 0, 0}));
}

TEST(RGBToHSV, SaturationAndHueAreTruncated) {
  // max 200, delta 150: saturation 768; hue 50 x 1024 / 150 = 341.3
  EXPECT_EQ(ToHSV(0x80C86432), (HSV{341, 768, 200, 128}));
  // green 7, delta 4: saturation 4096 / 7 = 585.1; hue 2048 + -3 x 1024 / 4 = 1280
  EXPECT_EQ(ToHSV(0x01060703), (HSV{1280, 585, 7, 1}));
}

TEST(HSVToRGB, SaturationZeroIsAGreyOfAnyHue) {
  for (const long hue : {-1L, 0L, 5000L, 9999L, -123456L}) {
    EXPECT_EQ(FromHSV({hue, 0, 77, 9}), 0x094D4D4Du) << hue;
  }
}

TEST(HSVToRGB, FullSaturationHasAnExactlyZeroMinimum) {
  EXPECT_EQ(FromHSV({0, 1024, 255, 255}), 0xFFFF0000u);
  EXPECT_EQ(FromHSV({2048, 1024, 255, 255}), 0xFF00FF00u);
  EXPECT_EQ(FromHSV({4096, 1024, 255, 255}), 0xFF0000FFu);
}

TEST(HSVToRGB, AlmostFullSaturationTruncatesToZero) {
  EXPECT_EQ(FromHSV({5120, 1023, 255, 255}), 0xFFFF00FFu);
}

TEST(HSVToRGB, EachSectorPutsItsChannels) {
  // saturation 1/2, value 200: p = 100; a quarter into a sector t = (1 - 3/8) x 200 = 125, q = (1 -
  // 1/8) x 200 = 175
  EXPECT_EQ(FromHSV({256, 512, 200, 255}), 0xFFC87D64u);
  EXPECT_EQ(FromHSV({1280, 512, 200, 255}), 0xFFAFC864u);
  EXPECT_EQ(FromHSV({2304, 512, 200, 255}), 0xFF64C87Du);
  EXPECT_EQ(FromHSV({3328, 512, 200, 255}), 0xFF64AFC8u);
  EXPECT_EQ(FromHSV({4352, 512, 200, 255}), 0xFF7D64C8u);
  EXPECT_EQ(FromHSV({5376, 512, 200, 255}), 0xFFC864AFu);
}

TEST(HSVToRGB, HueOutsideTheCircleIsBlackUnlessGrey) {
  for (const long hue : {-1024L, -1025L, -6144L, -2147483647L - 1, 6144L, 100000L, 2147483647L}) {
    EXPECT_EQ(FromHSV({hue, 1, 255, 200}), 0xC8000000u) << hue;
  }
}

TEST(HSVToRGB, HuesJustBelowZeroAreInTheFirstSector) {
  // p = 512 x 100 / 1024 = 50; t = (1048576 - 1524 x 512) x 100 / 1048576 = 25.6, and 49.95 for
  // 1025
  EXPECT_EQ(FromHSV({-500, 512, 100, 255}), 0xFF641932u);
  EXPECT_EQ(FromHSV({-1, 512, 100, 255}), 0xFF643132u);
  // t = (1048576 - 2047 x 512) x 100 / 1048576 = 0.05
  EXPECT_EQ(FromHSV({-1023, 512, 100, 255}), 0xFF640032u);
  // t = (1048576 - 1424 x 1024) x 255 / 1048576 = -99.6. No bit is masked: -99 x 256 is 0xFFFF9D00.
  EXPECT_EQ(FromHSV({-400, 1024, 255, 16}), 0xFFFF9D00u);
}

TEST(HSVToRGB, RoundTripMayLowerAChannel) {
  // hue 1280 is a quarter into sector 1: p = 439 x 7 / 1024 = 3.001, q = (1048576 - 256 x 585) x 7
  // / 1048576 = 6.0003
  EXPECT_EQ(FromHSV(ToHSV(0x01060703)), 0x01060703u);
  // 0x0A0907: saturation 3 x 1024 / 10 = 307, hue 2 x 1024 / 3 = 682; p = 717 x 10 / 1024 = 7.002,
  // and t = (1048576 - 342 x 307) x 10 / 1048576 = 8.998, a unit below the 9 that it was
  EXPECT_EQ(FromHSV(ToHSV(0xFF0A0907)), 0xFF0A0807u);
}

// ----------------------------------------------------------------------------------- whole domains

TEST(AllColours, ToHSV) {
  for (std::uint32_t colour = 0; colour < 1 << 24; ++colour) {
    const std::uint32_t pixel = colour * 2654435761u << 24 | colour;  // some alpha
    ASSERT_EQ(ToHSV(pixel), PlainToHSV(pixel)) << std::hex << pixel;
  }
}

// Every hue; saturations and values at their limits and on a grid between them.
TEST(AllHues, ToRGB) {
  std::vector<long> saturations = {0, 1, 2, 3, 511, 513, 1021, 1022, 1023, 1024};
  for (long s = 13; s < 1024; s += 47) saturations.push_back(s);
  std::vector<long> values = {0, 1, 2, 3, 127, 128, 253, 254, 255};
  for (long v = 7; v < 256; v += 11) values.push_back(v);
  for (long hue = -1100; hue < 6200; ++hue) {
    for (const long saturation : saturations) {
      for (const long value : values) {
        ASSERT_EQ(FromHSV({hue, saturation, value, 0x5A}), PlainFromHSV({hue, saturation, value, 0x5A}))
            << hue << ", " << saturation << ", " << value;
      }
    }
  }
}

TEST(AllSaturationsAndValues, ToRGB) {
  for (const long hue : {0L,    1L,    1023L, 1024L, 1537L, 2047L, 2048L, 2500L, 3071L,  3072L,
                         4095L, 4096L, 5119L, 5120L, 6143L, 6144L, -1L,   -600L, -1023L, -1024L}) {
    for (long saturation = 0; saturation <= 1024; ++saturation) {
      for (long value = 0; value < 256; ++value) {
        ASSERT_EQ(FromHSV({hue, saturation, value, 255}), PlainFromHSV({hue, saturation, value, 255}))
            << hue << ", " << saturation << ", " << value;
      }
    }
  }
}

}  // namespace
