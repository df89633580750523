// The kernels of every level over whole domains, compared with plain arithmetic that shares nothing
// with the product: stored pixels and adjustments.
#include <gtest/gtest.h>

#include <vector>

#include "Exhaustive.h"
#include "support/ModelPixel.h"
#include "support/Random.h"

namespace {

using host::Storage;

// Every channel value with every alpha, in each of the three channels. The other channels are
// random first, then well-formed.
template <class Domain>
void AddChannelsAndAlphas(Domain& domain) {
  Random random(1);
  for (const int place : {0, 8, 16}) {
    for (std::uint32_t alpha = 0; alpha < 256; ++alpha) {
      for (std::uint32_t channel = 0; channel < 256; ++channel) {
        const std::uint32_t mask = ~(0xFF000000u | 0xFFu << place);
        const std::uint32_t others = random.Word();
        const std::uint32_t modest = random.Below(alpha + 1) * 0x010101;
        const std::uint32_t pixel = alpha << 24 | channel << place;
        if (!domain.Add(pixel | (others & mask)) || !domain.Add(pixel | (modest & mask))) return;
      }
    }
  }
}

TEST(AllChannelsAndAlphas, ReadContext) {
  Domain domain(
      [](const RunKernels& k, Pixels& out, const Pixels& in) {
        k.between[kContextForm][kWorkingForm].copy(Bytes(out), Bytes(in), in.size());
      },
      [](std::uint32_t memory) { return model::ReadPixel(Storage::BitmapContext, __builtin_bswap32(memory)); });
  struct Swapped {
    decltype(domain)& to;
    bool Add(std::uint32_t word) { return to.Add(__builtin_bswap32(word)); }
  } swapped = {domain};
  AddChannelsAndAlphas(swapped);
}

TEST(AllChannelsAndAlphas, WriteContext) {
  Domain domain(
      [](const RunKernels& k, Pixels& out, const Pixels& in) {
        k.between[kWorkingForm][kContextForm].copy(Bytes(out), Bytes(in), in.size());
      },
      [](std::uint32_t pixel) { return __builtin_bswap32(model::WritePixel(Storage::BitmapContext, pixel)); });
  AddChannelsAndAlphas(domain);
}

TEST(AllChannelsAndAlphas, ReadBuffer) {
  Domain domain([](const RunKernels& k, Pixels& out,
                   const Pixels& in) { k.between[kBufferForm][kWorkingForm].copy(Bytes(out), Bytes(in), in.size()); },
                [](std::uint32_t word) { return model::ReadPixel(Storage::Buffer, word); });
  AddChannelsAndAlphas(domain);
}

TEST(AllChannelsAndAlphas, WriteBuffer) {
  Domain domain([](const RunKernels& k, Pixels& out,
                   const Pixels& in) { k.between[kWorkingForm][kBufferForm].copy(Bytes(out), Bytes(in), in.size()); },
                [](std::uint32_t pixel) { return model::WritePixel(Storage::Buffer, pixel); });
  AddChannelsAndAlphas(domain);
}

std::uint32_t ReadMemory(PixelForm form, std::uint32_t memory) {
  return form == kBufferForm ? model::ReadPixel(Storage::Buffer, memory)
                             : model::ReadPixel(Storage::BitmapContext, __builtin_bswap32(memory));
}

std::uint32_t WriteMemory(PixelForm form, std::uint32_t pixel) {
  return form == kBufferForm ? model::WritePixel(Storage::Buffer, pixel)
                             : __builtin_bswap32(model::WritePixel(Storage::BitmapContext, pixel));
}

TEST(AllChannelsAndAlphas, Copies) {
  for (const PixelForm from : {kContextForm, kBufferForm}) {
    for (const PixelForm to : {kContextForm, kBufferForm}) {
      SCOPED_TRACE(testing::Message() << "form " << from << " to form " << to);
      Domain domain([=](const RunKernels& k, Pixels& out,
                        const Pixels& in) { k.between[from][to].copy(Bytes(out), Bytes(in), in.size()); },
                    [=](std::uint32_t memory) { return WriteMemory(to, ReadMemory(from, memory)); });
      struct InMemory {
        decltype(domain)& to;
        PixelForm form;
        bool Add(std::uint32_t word) { return to.Add(form == kBufferForm ? word : __builtin_bswap32(word)); }
      } inMemory = {domain, from};
      AddChannelsAndAlphas(inMemory);
    }
  }
}

TEST(AllChannelsAndAlphas, Negative) {
  Domain domain(
      [](const RunKernels& k, Pixels& out, const Pixels& in) {
        k.between[kBufferForm][kBufferForm].negative(Bytes(out), Bytes(in), out.size());
      },
      [](std::uint32_t pixel) { return 0x7FFFFFFF - pixel % 0x1000000; });
  AddChannelsAndAlphas(domain);
}

// --------------------------------------------------------------------------------------------- HSV

class AllColours : public testing::TestWithParam<HSVAdjustment> {};

TEST_P(AllColours, AdjustHSV) {
  const HSVAdjustment by = GetParam();
  Domain domain(
      [=](const RunKernels& k, Pixels& out, const Pixels& in) {
        k.between[kBufferForm][kBufferForm].adjustHSV(Bytes(out), Bytes(in), &by, out.size());
      },
      [=](std::uint32_t pixel) {
        const std::uint32_t transparency = pixel & 0xFF000000;
        return transparency | (model::AdjustHsv(pixel, by.hueShift, by.saturationScale, by.valueScale) & 0xFFFFFF);
      });
  for (std::uint32_t colour = 0; colour < 1 << 24; colour += kDomainStep) {
    if (!domain.Add((colour * 2654435761u << 24 & 0x7F000000) | colour)) return;
  }
}

INSTANTIATE_TEST_SUITE_P(SomeAdjustments, AllColours,
                         testing::Values(HSVAdjustment{0, 1024, 1024}, HSVAdjustment{1024, 1024, 1024},
                                         HSVAdjustment{-6144, 2 * 1024, 1024}, HSVAdjustment{6143, 3 * 1024, 2 * 1024},
                                         HSVAdjustment{-2357, 999 * 1024, 999 * 1024}, HSVAdjustment{777, 0, 1024},
                                         HSVAdjustment{777, 1024, 0}, HSVAdjustment{INT32_MIN, 1024, 1024}),
                         [](const testing::TestParamInfo<HSVAdjustment>& adjustment) {
                           return "Number" + std::to_string(adjustment.index);
                         });

// Few colours, but every shift. Many exceed a turn, and the hue stays outside the circle.
TEST(AllShifts, AdjustHSV) {
  const std::vector<NamedKernels> levels = LevelsHere();
  Pixels colours;
  for (const std::uint32_t red : {0u, 1u, 100u, 254u, 255u}) {
    for (const std::uint32_t green : {0u, 3u, 101u, 255u}) {
      for (const std::uint32_t blue : {0u, 2u, 99u, 200u, 255u}) colours.push_back(red << 16 | green << 8 | blue);
    }
  }
  constexpr std::int32_t kMost = 14400;
  std::vector<std::int32_t> shifts = {INT32_MIN, INT32_MIN + 1, -65536 - 1024, -65536,        -32768,
                                      32767,     65536,         65536 + 1024,  INT32_MAX - 1, INT32_MAX};
  constexpr std::int32_t kStep = kDomainStep;
  for (std::int32_t shift = -kMost; shift <= kMost; shift += kStep) shifts.push_back(shift);
  for (const std::int32_t shift : shifts) {
    const std::int32_t turn = shift & 0xFFFF;
    const HSVAdjustment by = {shift, 1024 * (turn % 4), 1024 * (turn % 3)};
    Pixels expected;
    for (const std::uint32_t colour : colours) {
      expected.push_back(model::AdjustHsv(colour, shift, by.saturationScale, by.valueScale) & 0xFFFFFF);
    }
    for (const NamedKernels& level : levels) {
      Pixels actual = colours;
      level.kernels.between[kBufferForm][kBufferForm].adjustHSV(Bytes(actual), Bytes(actual), &by, actual.size());
      ASSERT_TRUE(SameRun(colours, expected, actual, level.level)) << "shift " << shift;
    }
  }
}

// --------------------------------------------------------------------------------------------- RGB

TEST(AllChannelsAndDeltas, AdjustRGB) {
  const std::vector<NamedKernels> levels = LevelsHere();
  Pixels inputs(256 * 3);
  for (std::uint32_t i = 0; i < inputs.size(); ++i) {
    inputs[i] = (i * 77 << 24 & 0x7F000000) | (i % 256) << 16 | (i * 3 + 1) % 256 << 8 | (255 - i % 256);
  }
  for (std::int32_t delta = -255; delta <= 255; ++delta) {
    const RGBAdjustment by = {delta, -delta, delta > 0 ? delta - 255 : delta + 255};
    Pixels expected;
    for (const std::uint32_t pixel : inputs) expected.push_back(model::AdjustRgb(pixel, by.red, by.green, by.blue));
    for (const NamedKernels& level : levels) {
      Pixels actual = inputs;
      level.kernels.between[kBufferForm][kBufferForm].adjustRGB(Bytes(actual), Bytes(actual), &by, actual.size());
      ASSERT_TRUE(SameRun(inputs, expected, actual, level.level)) << "delta " << delta;
    }
  }
}

}  // namespace
