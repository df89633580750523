#include "KernelCases.h"

#include <cstring>
#include <limits>

namespace {

constexpr std::size_t kAnyNumber = std::numeric_limits<std::size_t>::max();

std::uint32_t* Out(const KernelCall& call) {
  return static_cast<std::uint32_t*>(call.output);
}
std::uint8_t* OutBytes(const KernelCall& call) {
  return static_cast<std::uint8_t*>(call.output);
}
const std::uint32_t* In(const KernelCall& call, int index = 0) {
  return static_cast<const std::uint32_t*>(call.inputs[index]);
}
const std::uint8_t* InBytes(const KernelCall& call) {
  return static_cast<const std::uint8_t*>(call.inputs[0]);
}

// Calls pixel(i) for each pixel of a call.
template <class Pixel>
void ForEachPixel(const KernelCall& call, Pixel pixel) {
  for (std::size_t i = 0; i < call.arguments.n; ++i) pixel(i);
}

template <StorageForm form>
std::uint32_t ReadOne(const std::uint8_t* stored) {
  return form == kContextForm ? LMX_Pixel::ReadContext(stored) : LMX_Pixel::ReadBuffer(stored);
}
template <StorageForm form>
void WriteOne(std::uint8_t* stored, std::uint32_t pixel) {
  form == kContextForm ? LMX_Pixel::WriteContext(stored, pixel) : LMX_Pixel::WriteBuffer(stored, pixel);
}
template <StorageForm form>
constexpr Operand kStored = form == kContextForm ? Operand::ContextPixels : Operand::BufferPixels;

std::size_t Slot(std::size_t table, StorageForm form) {
  return table + static_cast<std::size_t>(form) * sizeof(void*);
}
std::size_t Slot(std::size_t table, StorageForm from, StorageForm to) {
  return Slot(table + static_cast<std::size_t>(from) * kStorageForms * sizeof(void*), to);
}

template <StorageForm form>
KernelCase ReadCase(const char* name) {
  return {name,
          Slot(offsetof(RunKernels, read), form),
          Operand::Pixels,
          false,
          {{kStored<form>, false}},
          kAnyNumber,
          [](const RunKernels& k, const KernelCall& c) { k.read[form](Out(c), InBytes(c), c.arguments.n); },
          [](const KernelCall& c) {
            ForEachPixel(c, [&](std::size_t i) { Out(c)[i] = ReadOne<form>(InBytes(c) + 4 * i); });
          }};
}

template <StorageForm form>
KernelCase WriteCase(const char* name) {
  return {name,
          Slot(offsetof(RunKernels, write), form),
          kStored<form>,
          false,
          {{Operand::Pixels, false}},
          kAnyNumber,
          [](const RunKernels& k, const KernelCall& c) { k.write[form](OutBytes(c), In(c), c.arguments.n); },
          [](const KernelCall& c) {
            ForEachPixel(c, [&](std::size_t i) { WriteOne<form>(OutBytes(c) + 4 * i, In(c)[i]); });
          }};
}

template <StorageForm from, StorageForm to>
KernelCase CopyCase(const char* name) {
  return {name,
          Slot(offsetof(RunKernels, copy), from, to),
          kStored<to>,
          false,
          {{kStored<from>, true}},
          kAnyNumber,
          [](const RunKernels& k, const KernelCall& c) { k.copy[from][to](OutBytes(c), InBytes(c), c.arguments.n); },
          [](const KernelCall& c) {
            ForEachPixel(c,
                         [&](std::size_t i) { WriteOne<to>(OutBytes(c) + 4 * i, ReadOne<from>(InBytes(c) + 4 * i)); });
          }};
}

template <StorageForm from, StorageForm to>
KernelCase CopyMirroredCase(const char* name) {
  return {name,
          Slot(offsetof(RunKernels, copyMirrored), from, to),
          kStored<to>,
          false,
          {{kStored<from>, false}},
          kAnyNumber,
          [](const RunKernels& k, const KernelCall& c) {
            k.copyMirrored[from][to](OutBytes(c), InBytes(c), c.arguments.n);
          },
          [](const KernelCall& c) {
            ForEachPixel(c, [&](std::size_t i) {
              WriteOne<to>(OutBytes(c) + 4 * (c.arguments.n - 1 - i), ReadOne<from>(InBytes(c) + 4 * i));
            });
          }};
}

KernelCase FillCase() {
  return {"fill",
          offsetof(RunKernels, fill),
          Operand::ContextPixels,
          false,
          {{Operand::OnePixel, false}},
          kAnyNumber,
          [](const RunKernels& k, const KernelCall& c) { k.fill(OutBytes(c), InBytes(c), c.arguments.n); },
          [](const KernelCall& c) {
            ForEachPixel(c, [&](std::size_t i) { std::memcpy(OutBytes(c) + 4 * i, InBytes(c), 4); });
          }};
}

KernelCase GatherCase() {
  return {
      "gather_lanes",
      offsetof(RunKernels, gatherLanes),
      Operand::LaneRuns,
      false,
      {{Operand::Groups, false}},
      kAnyNumber,
      [](const RunKernels& k, const KernelCall& c) { k.gatherLanes(Out(c), c.arguments.stride, In(c), c.arguments.n); },
      [](const KernelCall& c) {
        ForEachPixel(c, [&](std::size_t i) {
          for (std::size_t l = 0; l < kLanes; ++l) Out(c)[l * c.arguments.stride + i] = In(c)[i * kLanes + l];
        });
      }};
}

KernelCase ScatterCase() {
  return {"scatter_lanes",
          offsetof(RunKernels, scatterLanes),
          Operand::Groups,
          false,
          {{Operand::LaneRuns, false}},
          kAnyNumber,
          [](const RunKernels& k, const KernelCall& c) {
            k.scatterLanes(Out(c), In(c), c.arguments.stride, c.arguments.n);
          },
          [](const KernelCall& c) {
            ForEachPixel(c, [&](std::size_t i) {
              for (std::size_t l = 0; l < kLanes; ++l) Out(c)[i * kLanes + l] = In(c)[l * c.arguments.stride + i];
            });
          }};
}

KernelCase BlendRunCase() {
  return {"blend_run",
          offsetof(RunKernels, blendRun),
          Operand::Pixels,
          false,
          {{Operand::Pixels, true}},
          kAnyNumber,
          [](const RunKernels& k, const KernelCall& c) {
            k.blendRun(Out(c), In(c), c.arguments.before, c.arguments.fraction, c.arguments.n);
          },
          [](const KernelCall& c) {
            ForEachPixel(c, [&](std::size_t i) {
              const std::uint32_t before = i == 0 ? c.arguments.before : In(c)[i - 1];
              Out(c)[i] = LMX_Pixel::Blend(In(c)[i], before, c.arguments.fraction);
            });
          }};
}

KernelCase BlendLanesCase() {
  return {"blend_lanes",
          offsetof(RunKernels, blendLanes),
          Operand::Pixels,
          false,
          {{Operand::Pixels, true}, {Operand::Pixels, true}, {Operand::Fractions, false}},
          kAnyNumber,
          [](const RunKernels& k, const KernelCall& c) {
            k.blendLanes(Out(c), In(c, 0), In(c, 1), In(c, 2), c.arguments.n);
          },
          [](const KernelCall& c) {
            ForEachPixel(c, [&](std::size_t i) { Out(c)[i] = LMX_Pixel::Blend(In(c)[i], In(c, 1)[i], In(c, 2)[i]); });
          }};
}

std::uint32_t Channel(std::uint32_t pixel, int index) {
  return pixel >> (24 - 8 * index) & 0xFF;
}

KernelCase AddCoverageCase() {
  return {"add_coverage",
          offsetof(RunKernels, addCoverage),
          Operand::Coverage,
          true,
          {{Operand::Pixels, false}},
          kLanes,
          [](const RunKernels& k, const KernelCall& c) {
            k.addCoverage(static_cast<CoverageSums*>(c.output), In(c), c.arguments.units, c.arguments.n);
          },
          [](const KernelCall& c) {
            auto* sums = static_cast<CoverageSums*>(c.output);
            ForEachPixel(c, [&](std::size_t i) {
              for (int k = 0; k < 4; ++k) sums->channel[k][i] += Channel(In(c)[i], k) * c.arguments.units;
            });
          }};
}

KernelCase AverageCoverageCase() {
  return {"average_coverage",
          offsetof(RunKernels, averageCoverage),
          Operand::Pixels,
          false,
          {{Operand::Coverage, false}},
          kLanes,
          [](const RunKernels& k, const KernelCall& c) {
            k.averageCoverage(Out(c), static_cast<const CoverageSums*>(c.inputs[0]), c.arguments.units, c.arguments.n);
          },
          [](const KernelCall& c) {
            const auto* sums = static_cast<const CoverageSums*>(c.inputs[0]);
            const std::uint32_t units = c.arguments.units;
            ForEachPixel(c, [&](std::size_t i) {
              Out(c)[i] = LMX_Pixel::Pack(sums->channel[0][i] / units, sums->channel[1][i] / units,
                                          sums->channel[2][i] / units, sums->channel[3][i] / units);
            });
          }};
}

KernelCase AdjustHSVCase() {
  return {"adjust_hsv",
          offsetof(RunKernels, adjustHSV),
          Operand::Pixels,
          true,
          {},
          kAnyNumber,
          [](const RunKernels& k, const KernelCall& c) { k.adjustHSV(Out(c), &c.arguments.hsv, c.arguments.n); },
          [](const KernelCall& c) {
            ForEachPixel(c, [&](std::size_t i) { Out(c)[i] = LMX_Pixel::AdjustHSV(Out(c)[i], c.arguments.hsv); });
          }};
}

KernelCase AdjustRGBCase() {
  return {"adjust_rgb",
          offsetof(RunKernels, adjustRGB),
          Operand::Pixels,
          true,
          {},
          kAnyNumber,
          [](const RunKernels& k, const KernelCall& c) { k.adjustRGB(Out(c), &c.arguments.rgb, c.arguments.n); },
          [](const KernelCall& c) {
            ForEachPixel(c, [&](std::size_t i) { Out(c)[i] = LMX_Pixel::AdjustRGB(Out(c)[i], c.arguments.rgb); });
          }};
}

KernelCase NegativeCase() {
  return {
      "negative",
      offsetof(RunKernels, negative),
      Operand::Pixels,
      true,
      {},
      kAnyNumber,
      [](const RunKernels& k, const KernelCall& c) { k.negative(Out(c), c.arguments.n); },
      [](const KernelCall& c) { ForEachPixel(c, [&](std::size_t i) { Out(c)[i] = LMX_Pixel::Negative(Out(c)[i]); }); }};
}

void AddColour(RGBSums* sums, std::uint32_t pixel) {
  sums->red += LMX_Pixel::Red(pixel);
  sums->green += LMX_Pixel::Green(pixel);
  sums->blue += LMX_Pixel::Blue(pixel);
}

KernelCase SumRGBCase() {
  return {
      "sum_rgb",
      offsetof(RunKernels, sumRGB),
      Operand::RGBTotals,
      true,
      {{Operand::Pixels, false}},
      kAnyNumber,
      [](const RunKernels& k, const KernelCall& c) { k.sumRGB(static_cast<RGBSums*>(c.output), In(c), c.arguments.n); },
      [](const KernelCall& c) {
        ForEachPixel(c, [&](std::size_t i) { AddColour(static_cast<RGBSums*>(c.output), In(c)[i]); });
      }};
}

KernelCase SumHSVCase() {
  return {
      "sum_hsv",
      offsetof(RunKernels, sumHSV),
      Operand::HSVTotals,
      true,
      {{Operand::Pixels, false}},
      kAnyNumber,
      [](const RunKernels& k, const KernelCall& c) { k.sumHSV(static_cast<HSVSums*>(c.output), In(c), c.arguments.n); },
      [](const KernelCall& c) {
        auto* sums = static_cast<HSVSums*>(c.output);
        ForEachPixel(c, [&](std::size_t i) {
          AddColour(&sums->rgb, In(c)[i]);
          std::int32_t max = 0, min = 255;
          for (int k = 1; k < 4; ++k) {
            const auto channel = static_cast<std::int32_t>(Channel(In(c)[i], k));
            max = LMX_Pixel::Max(max, channel);
            min = LMX_Pixel::Min(min, channel);
          }
          sums->saturation += max == 0 ? 0.0 : static_cast<double>(max - min) / max;
          sums->brightness += max / 256.0;
        });
      }};
}

}  // namespace

const std::vector<KernelCase>& KernelCases() {
  constexpr StorageForm kContext = kContextForm, kBuffer = kBufferForm;
  static const std::vector<KernelCase> cases = {
      ReadCase<kContext>("read_context"),
      ReadCase<kBuffer>("read_buffer"),
      WriteCase<kContext>("write_context"),
      WriteCase<kBuffer>("write_buffer"),
      CopyCase<kContext, kContext>("copy_context_context"),
      CopyCase<kContext, kBuffer>("copy_context_buffer"),
      CopyCase<kBuffer, kContext>("copy_buffer_context"),
      CopyCase<kBuffer, kBuffer>("copy_buffer_buffer"),
      CopyMirroredCase<kContext, kContext>("copy_mirrored_context_context"),
      CopyMirroredCase<kContext, kBuffer>("copy_mirrored_context_buffer"),
      CopyMirroredCase<kBuffer, kContext>("copy_mirrored_buffer_context"),
      CopyMirroredCase<kBuffer, kBuffer>("copy_mirrored_buffer_buffer"),
      FillCase(),
      GatherCase(),
      ScatterCase(),
      BlendRunCase(),
      BlendLanesCase(),
      AddCoverageCase(),
      AverageCoverageCase(),
      AdjustHSVCase(),
      AdjustRGBCase(),
      NegativeCase(),
      SumRGBCase(),
      SumHSVCase(),
  };
  return cases;
}
