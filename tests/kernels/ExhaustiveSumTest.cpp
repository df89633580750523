// The kernels of every level over whole domains, against plain arithmetic that shares nothing with the product: blends,
// averages and sums.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "Exhaustive.h"
#include "PlainPixel.h"
#include "support/Random.h"

namespace {

// -------------------------------------------------------------------------------------------------------------- blends

std::vector<std::uint32_t> ManyFractions() {
  std::vector<std::uint32_t> fractions = {0, 1, 2, 3, 65532, 65533, 65534, 65535};
  for (std::uint32_t power = 4; power < 65536; power *= 2) {
    for (const std::uint32_t fraction : {power - 1, power, power + 1, 65535 - power}) fractions.push_back(fraction);
  }
  Random random(2);
  while (fractions.size() < 160) fractions.push_back(random.Below(65536));
  return fractions;
}

// Every channel with every channel before it: pixel i has i % 256 in its channels, the one before i / 256, in places
// that change with the fraction.
TEST(AllChannelsAndChannelsBefore, Blends) {
  const std::vector<NamedKernels> levels = LevelsHere();
  Pixels pixels(65536), before(65536), fractions(65536), expected(65536), actual(65536);
  for (const std::uint32_t fraction : ManyFractions()) {
    for (std::uint32_t i = 0; i < 65536; ++i) {
      const std::uint32_t rotated = (i + fraction * 13) % 65536;
      pixels[i] = i % 256 * 0x00010001 | rotated % 256 * 0x01000100;
      before[i] = i / 256 * 0x00010001 | rotated / 256 * 0x01000100;
      fractions[i] = fraction;
      expected[i] = plain::Blend(pixels[i], before[i], fraction);
    }
    for (const NamedKernels& level : levels) {
      level.kernels.blendLanes(actual.data(), pixels.data(), before.data(), fractions.data(), actual.size());
      ASSERT_TRUE(SameRun(pixels, expected, actual, level.level)) << "lanes, fraction " << fraction;
      // The same pairs in a run: each pixel follows the one that it is blended with.
      Pixels pairs(2 * 65536), blended(2 * 65536);
      for (std::size_t i = 0; i < 65536; ++i) pairs[2 * i] = before[i], pairs[2 * i + 1] = pixels[i];
      level.kernels.blendRun(blended.data(), pairs.data(), 0, fraction, pairs.size());
      for (std::size_t i = 0; i < 65536; ++i) actual[i] = blended[2 * i + 1];
      ASSERT_TRUE(SameRun(pixels, expected, actual, level.level)) << "run, fraction " << fraction;
    }
  }
}

TEST(AllFractions, Blends) {
  constexpr std::uint32_t kEdges[] = {0, 1, 2, 127, 128, 254, 255};
  const std::vector<NamedKernels> levels = LevelsHere();
  Pixels pixels, before, fractions(65536 / 64);
  for (const std::uint32_t a : kEdges) {
    for (const std::uint32_t b : kEdges) {
      pixels.push_back(a * 0x00010001 | b * 0x01000000 | 0x5500);
      before.push_back(b * 0x00010001 | a * 0x01000000 | 0xAA00);
    }
  }
  Pixels expected(pixels.size()), actual(pixels.size()), same(pixels.size());
  for (std::uint32_t fraction = 0; fraction < 65536; ++fraction) {
    for (std::size_t i = 0; i < pixels.size(); ++i) expected[i] = plain::Blend(pixels[i], before[i], fraction);
    same.assign(pixels.size(), fraction);
    for (const NamedKernels& level : levels) {
      level.kernels.blendLanes(actual.data(), pixels.data(), before.data(), same.data(), actual.size());
      ASSERT_TRUE(SameRun(pixels, expected, actual, level.level)) << "fraction " << fraction;
    }
  }
}

// ------------------------------------------------------------------------------------------------------------ averages

// Truncation shows at the two ends of each quotient, so these decide: all quotients, all units.
TEST(AllUnitsAndQuotients, AverageCoverage) {
  const std::vector<NamedKernels> levels = LevelsHere();
  Pixels expected(kLanes), actual(kLanes);
  for (std::uint32_t units = 1; units <= 32768; ++units) {
    for (std::uint32_t first = 0; first < 256; first += kLanes) {
      CoverageSums sums;
      for (std::uint32_t lane = 0; lane < kLanes; ++lane) {
        const std::uint32_t quotient = first + lane;
        const std::uint32_t lowest = quotient * units;
        const std::uint32_t highest = quotient < 255 ? lowest + units - 1 : lowest;
        sums.channel[0][lane] = sums.channel[2][lane] = lowest;
        sums.channel[1][lane] = sums.channel[3][lane] = highest;
        expected[lane] = quotient * 0x01010101;
      }
      for (const NamedKernels& level : levels) {
        level.kernels.averageCoverage(actual.data(), &sums, units, kLanes);
        ASSERT_TRUE(SameRun(expected, expected, actual, level.level)) << "units " << units;
      }
    }
  }
}

TEST(AllUnitsAndChannels, AddCoverage) {
  const std::vector<NamedKernels> levels = LevelsHere();
  for (std::uint32_t units = 1; units <= 32768; ++units) {
    Pixels pixels(kLanes);
    for (std::uint32_t i = 0; i < kLanes; ++i) pixels[i] = (units * kLanes + i) * 0x9E3779B1u | (i == 5 ? ~0u : 0u);
    for (const NamedKernels& level : levels) {
      CoverageSums sums;
      for (auto& channel : sums.channel) std::fill(std::begin(channel), std::end(channel), 1000000000u);
      level.kernels.addCoverage(&sums, pixels.data(), units, kLanes);
      for (std::size_t i = 0; i < kLanes; ++i) {
        for (std::size_t k = 0; k < 4; ++k) {
          const auto channel = static_cast<std::uint32_t>(plain::Split(pixels[i])[k]);
          ASSERT_EQ(sums.channel[k][i], 1000000000u + channel * units) << level.level << ", units " << units;
        }
      }
    }
  }
}

// ---------------------------------------------------------------------------------------------------------------- sums

// Every pair of a maximum and a minimum, in all places of the channels, one after the other into one sum.
TEST(AllMaximaAndMinima, SumHSV) {
  Pixels pixels;
  for (std::uint32_t max = 0; max < 256; ++max) {
    for (std::uint32_t min = 0; min <= max; ++min) {
      const std::uint32_t middle = min + (max - min) * (max % 3) / 2;
      const std::uint32_t places[6][3] = {{max, middle, min}, {max, min, middle}, {middle, max, min},
                                          {min, max, middle}, {middle, min, max}, {min, middle, max}};
      const auto& place = places[(max + min * 5) % 6];
      pixels.push_back(max << 24 | place[0] << 16 | place[1] << 8 | place[2]);
    }
  }
  double saturation = 0, brightness = 0;
  std::uint32_t red = 0, green = 0, blue = 0;
  for (const std::uint32_t pixel : pixels) {
    const auto k = plain::Split(pixel);
    const std::int64_t max = std::max({k[1], k[2], k[3]}), min = std::min({k[1], k[2], k[3]});
    saturation += max == 0 ? 0.0 : static_cast<double>(max - min) / static_cast<double>(max);
    brightness += static_cast<double>(max) * 0.00390625;
    red += static_cast<std::uint32_t>(k[1]);
    green += static_cast<std::uint32_t>(k[2]);
    blue += static_cast<std::uint32_t>(k[3]);
  }
  for (const NamedKernels& level : LevelsHere()) {
    HSVSums sums = {};
    level.kernels.sumHSV(&sums, pixels.data(), pixels.size());
    EXPECT_EQ(std::memcmp(&sums.saturation, &saturation, sizeof saturation), 0)
        << level.level << std::hexfloat << ": expected " << saturation << ", got " << sums.saturation;
    EXPECT_EQ(sums.brightness, brightness) << level.level;
    EXPECT_EQ(sums.rgb.red, red) << level.level;
    EXPECT_EQ(sums.rgb.green, green) << level.level;
    EXPECT_EQ(sums.rgb.blue, blue) << level.level;
  }
}

TEST(Sums, OfColoursWrap) {
  const Pixels pixels(1000, 0xFF0102FF);
  for (const NamedKernels& level : LevelsHere()) {
    RGBSums sums = {0xFFFFFFFF, 0x7FFFFFFF, 0xFFFFFF00};
    level.kernels.sumRGB(&sums, pixels.data(), pixels.size());
    EXPECT_EQ(sums.red, 999u) << level.level;
    EXPECT_EQ(sums.green, 0x7FFFFFFFu + 2000u) << level.level;
    EXPECT_EQ(sums.blue, 255000u - 256u) << level.level;
  }
}

}  // namespace
