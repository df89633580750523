// The kernels of every level over whole domains, compared with plain arithmetic that shares nothing
// with the product: blends, averages and sums. Two tests compare kernels with each other: long sums
// of saturations, and boxes stored over their runs.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "Exhaustive.h"
#include "support/ModelPicture.h"
#include "support/Random.h"

namespace {

// ------------------------------------------------------------------------------------------ blends

std::vector<std::uint32_t> ManyFractions() {
  std::vector<std::uint32_t> fractions = {0, 1, 2, 3, 65532, 65533, 65534, 65535};
  for (std::uint32_t power = 4; power < 65536; power *= 2) {
    for (const std::uint32_t fraction : {power - 1, power, power + 1, 65535 - power}) fractions.push_back(fraction);
  }
  Random random(2);
  while (fractions.size() < 160) fractions.push_back(random.Below(65536));
  return fractions;
}

// The result of a kernel for pairs of pixels. Every second pixel of the run comes after the one
// with which it is blended.
void BlendPairs(const NamedKernels& level, PixelForm form, const Pixels& pixels, const Pixels& before,
                std::uint32_t fraction, Pixels* actual) {
  Pixels pairs, blended(2 * pixels.size());
  for (std::size_t i = 0; i < pixels.size(); ++i) pairs.insert(pairs.end(), {before[i], pixels[i]});
  level.kernels.between[form][form].blend(Bytes(blended), Bytes(pairs), 0, fraction, pairs.size());
  for (std::size_t i = 0; i < pixels.size(); ++i) (*actual)[i] = blended[2 * i + 1];
}

// Every pair of numbers up to 255, one for the pixel and one for the pixel before it, with many
// fractions. pixel(number, other) makes a pixel. The others are all pairs, too, in places that
// change with the fraction.
template <class Pixel>
void BlendAllPairs(PixelForm form, Pixel pixel) {
  const std::vector<NamedKernels> levels = LevelsHere();
  for (const std::uint32_t fraction : ManyFractions()) {
    Pixels pixels, before, expected;
    for (std::uint32_t i = fraction % kDomainStep; i < 65536; i += kDomainStep) {
      const std::uint32_t rotated = (i + fraction * 13) % 65536;
      pixels.push_back(pixel(i % 256, rotated % 256));
      before.push_back(pixel(i / 256, rotated / 256));
      expected.push_back(model::Blend(pixels.back(), before.back(), fraction));
    }
    Pixels actual(pixels.size());
    for (const NamedKernels& level : levels) {
      BlendPairs(level, form, pixels, before, fraction, &actual);
      ASSERT_TRUE(SameRun(pixels, expected, actual, level.level)) << "fraction " << fraction;
    }
  }
}

// In all channels of opaque pixels, which buffers keep as they are.
TEST(AllChannelsAndChannelsBefore, Blend) {
  BlendAllPairs(kBufferForm, [](std::uint32_t i, std::uint32_t rotated) { return i * 0x00010001 | rotated << 8; });
}

// Without a colour: in a context the alpha alone, in the lowest byte.
TEST(AllAlphasAndAlphasBefore, Blend) {
  BlendAllPairs(kContextForm, [](std::uint32_t alpha, std::uint32_t) { return alpha; });
}

TEST(AllFractions, Blend) {
  constexpr std::uint32_t kEdges[] = {0, 1, 2, 127, 128, 254, 255};
  const std::vector<NamedKernels> levels = LevelsHere();
  Pixels pixels, before;
  for (const std::uint32_t a : kEdges) {
    for (const std::uint32_t b : kEdges) {
      pixels.push_back(a * 0x00010001 | 0x5500);
      before.push_back(b * 0x00010001 | 0xAA00);
    }
  }
  Pixels expected(pixels.size()), actual(pixels.size());
  for (std::uint32_t fraction = 0; fraction < 65536; fraction += kDomainStep) {
    for (std::size_t i = 0; i < pixels.size(); ++i) expected[i] = model::Blend(pixels[i], before[i], fraction);
    for (const NamedKernels& level : levels) {
      BlendPairs(level, kBufferForm, pixels, before, fraction, &actual);
      ASSERT_TRUE(SameRun(pixels, expected, actual, level.level)) << "fraction " << fraction;
    }
  }
}

// ------------------------------------------------------------------------------------------- boxes

// Opaque pixels of a buffer.
Pixels Opaque(const Pixels& channels) {
  Pixels pixels;
  for (const std::uint32_t channel : channels)
    pixels.push_back(channel | (channel * 7 % 256) << 8 | (255 - channel) << 16);
  return pixels;
}

Pixels EveryChannel() {
  Pixels channels(256);
  for (std::uint32_t i = 0; i < 256; ++i) channels[i] = i;
  return Opaque(channels);
}

// The same as working pixels.
Pixels Working(Pixels opaque) {
  for (std::uint32_t& pixel : opaque) pixel |= 0xFF000000;
  return opaque;
}

// All distances between two channel values with all weights, for the units at which the arithmetic
// changes and some others.
TEST(AllDistancesAndWeights, BoxOfTwo) {
  const std::vector<NamedKernels> levels = LevelsHere();
  Pixels first, second;
  for (std::uint32_t i = 0; i < 256; ++i) {
    first.push_back(i | 255 << 8 | (255 - i) << 16);
    second.push_back(0 | i << 8 | 255 << 16);
  }
  const Pixels workingFirst = Working(first), workingSecond = Working(second);
  const std::uint8_t* const runs[] = {Bytes(workingFirst), Bytes(workingSecond)};
  Pixels expected(first.size()), actual(first.size());
  std::uint8_t* const to = Bytes(actual);
  for (const std::uint32_t units : {32768u, 32767u, 32766u, 32740u, 32705u, 32704u}) {
    const std::uint32_t step = kDomainStep * (units > 32766 || units == 32704 ? 1 : 13);
    for (std::uint32_t last = 1; last < units; last += step) {
      for (std::size_t i = 0; i < first.size(); ++i)
        expected[i] = model::Mix(first[i], units - last, second[i], last, units);
      const BoxUnits box = {std::max(units - last, last), units, units - last};
      for (const NamedKernels& level : levels) {
        level.kernels.of[kBufferForm].boxes(&to, runs, &box, 1, actual.size());
        ASSERT_TRUE(SameRun(first, expected, actual, level.level)) << last << " of " << units;
      }
    }
  }
}

// The average of a constant colour is the colour, for any units.
TEST(AllUnitsOfManyRuns, BoxesOfOneColour) {
  const std::vector<NamedKernels> levels = LevelsHere();
  const Pixels colours = EveryChannel(), working = Working(colours);
  Pixels actual(colours.size());
  std::uint8_t* const to = Bytes(actual);
  const std::vector<const std::uint8_t*> runs(kMostBoxRuns, Bytes(working));
  for (std::uint32_t ofRun = 32768 / (kMostBoxRuns - 2) + 1; ofRun <= 32768; ofRun += ofRun < 1200 ? 1 : 97) {
    for (const std::uint32_t ofBox : {32768u, 32767u, 32750u, 32704u}) {
      for (std::uint32_t left = 1; left <= ofRun; left += 1 + ofRun / 5) {
        const BoxUnits box = {ofRun, ofBox, left};
        for (const NamedKernels& level : levels) {
          level.kernels.of[kBufferForm].boxes(&to, runs.data(), &box, 1, actual.size());
          ASSERT_TRUE(SameRun(colours, colours, actual, level.level)) << ofRun << ", " << ofBox << ", " << left;
        }
      }
    }
  }
}

// An average may be stored over a run that no later box needs. If a box takes at least as much as a
// run has, box i may be stored over run i.
TEST(Boxes, MayTakeThePlaceOfTheirRuns) {
  constexpr std::size_t kRuns = 20, kMost = 100;
  Random random(3);
  Pixels pixels(kRuns * kMost);
  for (std::uint32_t& pixel : pixels) pixel = random.Word();
  for (const NamedKernels& level : LevelsHere()) {
    for (const BoxUnits& box :
         {BoxUnits{29491, 32767, 29491}, {32768, 32768, 32768}, {16384, 32768, 16384}, {9000, 32750, 4000}}) {
      for (const std::size_t n : std::vector<std::size_t>{1, 7, 16, 33, kMost}) {
        const std::size_t count = (kRuns - 1) * box.ofRun / box.ofBox;
        Pixels apart(kRuns * kMost), inPlace = pixels;
        const std::uint8_t* runs[kRuns];
        std::uint8_t* to[kRuns];
        for (std::size_t i = 0; i < kRuns; ++i) {
          runs[i] = Bytes(std::as_const(pixels)) + 4 * i * n;
          to[i] = Bytes(apart) + 4 * i * n;
        }
        level.kernels.of[kWorkingForm].boxes(to, runs, &box, count, n);
        for (std::size_t i = 0; i < kRuns; ++i) runs[i] = to[i] = Bytes(inPlace) + 4 * i * n;
        level.kernels.of[kWorkingForm].boxes(to, runs, &box, count, n);
        EXPECT_EQ(std::memcmp(inPlace.data(), apart.data(), 4 * count * n), 0) << level.level << ", " << n;
      }
    }
  }
}

// All units of a box, from half of a whole one on. Units of one colour give the lowest sum that
// yields the colour. With one unit of the next darker colour, they give the highest sum that yields
// the darker one.
TEST(AllUnits, AverageBoxes) {
  const std::vector<NamedKernels> levels = LevelsHere();
  const Pixels colours = EveryChannel();
  Pixels darker = colours, actual(colours.size());
  for (std::uint32_t& pixel : darker) {
    for (int shift = 0; shift < 24; shift += 8) pixel -= (pixel >> shift & 0xFF) > 0 ? 1u << shift : 0;
  }
  const Pixels workingColours = Working(colours), workingDarker = Working(darker);
  const std::uint8_t* const run = Bytes(workingColours);
  const std::uint8_t* const darkerRun = Bytes(workingDarker);
  constexpr std::uint32_t kFewRuns = kWholeBox - kMostMissing;  // boxes of few runs have at least this many units
  for (std::uint32_t units = kWholeBox / 2; units <= kWholeBox;
       units = units < kFewRuns ? std::min(units + kDomainStep, kFewRuns) : units + 1) {
    for (const NamedKernels& level : levels) {
      Pixels sums(4 * colours.size());
      level.kernels.addToBoxes(sums.data(), &run, 1, units - 1, colours.size());
      level.kernels.addToBoxes(sums.data(), &run, 1, 1, colours.size());
      level.kernels.of[kBufferForm].averageBoxes(Bytes(actual), sums.data(), units, colours.size());
      ASSERT_TRUE(SameRun(colours, colours, actual, level.level)) << "units " << units;
      std::fill(sums.begin(), sums.end(), 0);
      level.kernels.addToBoxes(sums.data(), &run, 1, units - 1, colours.size());
      level.kernels.addToBoxes(sums.data(), &darkerRun, 1, 1, colours.size());
      level.kernels.of[kBufferForm].averageBoxes(Bytes(actual), sums.data(), units, colours.size());
      ASSERT_TRUE(SameRun(colours, darker, actual, level.level)) << "units " << units << ", one of the next";
    }
  }
}

TEST(AllPairsOfChannels, Halve) {
  Pixels pairs, expected;
  for (std::uint32_t a = 0; a < 256; ++a) {
    for (std::uint32_t b = 0; b < 256; ++b) {
      pairs.insert(pairs.end(), {a | b << 8 | a << 16, b | a << 8 | 255 << 16});
      expected.push_back((a + b) / 2 | (a + b) / 2 << 8 | (a + 255) / 2 << 16 | 0xFF000000);
    }
  }
  for (const NamedKernels& level : LevelsHere()) {
    Pixels actual(expected.size());
    level.kernels.between[kBufferForm][kBufferForm].halve(Bytes(actual), Bytes(std::as_const(pairs)), actual.size());
    EXPECT_TRUE(SameRun(expected, expected, actual, level.level));
  }
}

// -------------------------------------------------------------------------------------------- sums

// Every pair of a maximum and a minimum, in every order of the channels, all added to one sum.
TEST(AllMaximaAndMinima, SumHSV) {
  Pixels pixels;
  for (std::uint32_t max = 0; max < 256; ++max) {
    for (std::uint32_t min = 0; min <= max; ++min) {
      const std::uint32_t middle = min + (max - min) * (max % 3) / 2;
      const std::uint32_t places[6][3] = {{max, middle, min}, {max, min, middle}, {middle, max, min},
                                          {min, max, middle}, {middle, min, max}, {min, middle, max}};
      const auto& place = places[(max + min * 5) % 6];
      pixels.push_back(max / 2 << 24 | place[0] << 16 | place[1] << 8 | place[2]);
    }
  }
  model::Sums expected;
  for (const std::uint32_t pixel : pixels) expected.Add(pixel);
  for (const NamedKernels& level : LevelsHere()) {
    HSVSums sums = {};
    level.kernels.of[kBufferForm].sumHSV(&sums, Bytes(pixels), pixels.size());
    EXPECT_EQ(std::memcmp(&sums.saturation, &expected.saturation, sizeof sums.saturation), 0)
        << level.level << std::hexfloat << ": expected " << expected.saturation << ", got " << sums.saturation;
    EXPECT_EQ(sums.brightness, expected.brightness) << level.level;
    EXPECT_EQ(sums.rgb.red, static_cast<std::uint32_t>(expected.red)) << level.level;
    EXPECT_EQ(sums.rgb.green, static_cast<std::uint32_t>(expected.green)) << level.level;
    EXPECT_EQ(sums.rgb.blue, static_cast<std::uint32_t>(expected.blue)) << level.level;
  }
}

// Long enough to exceed many powers of two, in runs of all lengths.
TEST(SaturationSums, AreThoseOfOneTermAfterTheOther) {
  Random random(7);
  Pixels pixels(1 << 20);
  for (std::uint32_t& pixel : pixels) pixel = random.Word() & 0x7FFFFFFF;
  const RunKernels plainKernels = KernelsOf("plain");
  for (const NamedKernels& level : LevelsHere()) {
    HSVSums expected = {}, actual = {};
    for (std::size_t i = 0; i < pixels.size();) {
      const std::size_t n = std::min<std::size_t>(1 + random.Below(5000), pixels.size() - i);
      const auto* const run = reinterpret_cast<const std::uint8_t*>(&pixels[i]);
      plainKernels.of[kBufferForm].sumHSV(&expected, run, n);
      level.kernels.of[kBufferForm].sumHSV(&actual, run, n);
      ASSERT_EQ(std::memcmp(&expected.saturation, &actual.saturation, sizeof(double)), 0) << level.level << ", " << i;
      ASSERT_EQ(expected.brightness, actual.brightness) << level.level << ", " << i;
      i += n;
    }
    EXPECT_GT(actual.saturation, 262144.0);
  }
}

TEST(Sums, OfColoursWrap) {
  const Pixels pixels(1000, 0xFF0201FF);  // alpha 255, red 1, green 2, blue 255
  for (const NamedKernels& level : LevelsHere()) {
    RGBSums sums = {0xFFFFFFFF, 0x7FFFFFFF, 0xFFFFFF00};
    level.kernels.of[kContextForm].sumRGB(&sums, Bytes(pixels), pixels.size());
    EXPECT_EQ(sums.red, 999u) << level.level;
    EXPECT_EQ(sums.green, 0x7FFFFFFFu + 2000u) << level.level;
    EXPECT_EQ(sums.blue, 255000u - 256u) << level.level;
  }
}

}  // namespace
