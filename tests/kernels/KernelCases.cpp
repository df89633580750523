#include "KernelCases.h"

#include <cstring>

namespace {

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
          [](const RunKernels& k, const KernelCall& c) { k.write[form](OutBytes(c), In(c), c.arguments.n); },
          [](const KernelCall& c) {
            ForEachPixel(c, [&](std::size_t i) { WriteOne<form>(OutBytes(c) + 4 * i, In(c)[i]); });
          }};
}

// What happens to each pixel between reading and writing, and which slot does it to a run.
struct Copying {
  static constexpr std::size_t kTable = offsetof(RunKernels, copy);
  static void Call(const RunKernels& k, StorageForm from, StorageForm to, const KernelCall& c) {
    k.copy[from][to](OutBytes(c), InBytes(c), c.arguments.n);
  }
  static std::uint32_t Define(std::uint32_t pixel, const KernelArguments&) { return pixel; }
};
struct AdjustingHSV {
  static constexpr std::size_t kTable = offsetof(RunKernels, adjustHSV);
  static void Call(const RunKernels& k, StorageForm from, StorageForm to, const KernelCall& c) {
    k.adjustHSV[from][to](OutBytes(c), InBytes(c), &c.arguments.hsv, c.arguments.n);
  }
  static std::uint32_t Define(std::uint32_t pixel, const KernelArguments& a) {
    return LMX_Pixel::AdjustHSV(pixel, a.hsv);
  }
};
struct AdjustingRGB {
  static constexpr std::size_t kTable = offsetof(RunKernels, adjustRGB);
  static void Call(const RunKernels& k, StorageForm from, StorageForm to, const KernelCall& c) {
    k.adjustRGB[from][to](OutBytes(c), InBytes(c), &c.arguments.rgb, c.arguments.n);
  }
  static std::uint32_t Define(std::uint32_t pixel, const KernelArguments& a) {
    return LMX_Pixel::AdjustRGB(pixel, a.rgb);
  }
};
struct Negating {
  static constexpr std::size_t kTable = offsetof(RunKernels, negative);
  static void Call(const RunKernels& k, StorageForm from, StorageForm to, const KernelCall& c) {
    k.negative[from][to](OutBytes(c), InBytes(c), c.arguments.n);
  }
  static std::uint32_t Define(std::uint32_t pixel, const KernelArguments&) { return LMX_Pixel::Negative(pixel); }
};

template <class Change, StorageForm from, StorageForm to>
KernelCase ChangeCase(const char* name) {
  return {name,
          Slot(Change::kTable, from, to),
          kStored<to>,
          false,
          {{kStored<from>, true}},
          [](const RunKernels& k, const KernelCall& c) { Change::Call(k, from, to, c); },
          [](const KernelCall& c) {
            ForEachPixel(c, [&](std::size_t i) {
              WriteOne<to>(OutBytes(c) + 4 * i, Change::Define(ReadOne<from>(InBytes(c) + 4 * i), c.arguments));
            });
          }};
}

template <StorageForm from, StorageForm to>
KernelCase CopyMirroredCase(const char* name) {
  return {name,
          Slot(offsetof(RunKernels, copyMirrored), from, to),
          kStored<to>,
          false,
          {{kStored<from>, false}},
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
          [](const RunKernels& k, const KernelCall& c) { k.fill(OutBytes(c), InBytes(c), c.arguments.n); },
          [](const KernelCall& c) {
            ForEachPixel(c, [&](std::size_t i) { std::memcpy(OutBytes(c) + 4 * i, InBytes(c), 4); });
          }};
}

KernelCase GatherCase() {
  return {"gather_lanes",
          offsetof(RunKernels, gatherLanes),
          Operand::LaneRuns,
          false,
          {{Operand::Groups, false}},
          [](const RunKernels& k, const KernelCall& c) {
            k.gatherLanes(Out(c), c.arguments.stride, In(c), c.arguments.pitch, c.arguments.n);
          },
          [](const KernelCall& c) {
            ForEachPixel(c, [&](std::size_t i) {
              for (std::size_t l = 0; l < kLanes; ++l)
                Out(c)[l * c.arguments.stride + i] = In(c)[i * c.arguments.pitch + l];
            });
          }};
}

KernelCase ScatterCase() {
  return {"scatter_lanes",
          offsetof(RunKernels, scatterLanes),
          Operand::Groups,
          false,
          {{Operand::LaneRuns, false}},
          [](const RunKernels& k, const KernelCall& c) {
            k.scatterLanes(Out(c), c.arguments.pitch, In(c), c.arguments.stride, c.arguments.n);
          },
          [](const KernelCall& c) {
            ForEachPixel(c, [&](std::size_t i) {
              for (std::size_t l = 0; l < kLanes; ++l)
                Out(c)[i * c.arguments.pitch + l] = In(c)[l * c.arguments.stride + i];
            });
          }};
}

template <StorageForm from, StorageForm to>
KernelCase BlendCase(const char* name) {
  return {name,
          Slot(offsetof(RunKernels, blend), from, to),
          kStored<to>,
          false,
          {{kStored<from>, false}},
          [](const RunKernels& k, const KernelCall& c) {
            k.blend[from][to](OutBytes(c), InBytes(c), c.arguments.before, c.arguments.fraction, c.arguments.n);
          },
          [](const KernelCall& c) {
            ForEachPixel(c, [&](std::size_t i) {
              const std::uint32_t before = i == 0 ? c.arguments.before : ReadOne<from>(InBytes(c) + 4 * (i - 1));
              const std::uint32_t pixel = ReadOne<from>(InBytes(c) + 4 * i);
              WriteOne<to>(OutBytes(c) + 4 * i, LMX_Pixel::Blend(pixel, before, c.arguments.fraction));
            });
          }};
}

// Channel `byte` of a pixel, counted from the lowest.
std::uint32_t Channel(std::uint32_t pixel, int byte) {
  return pixel >> (8 * byte) & 0xFF;
}

KernelCase MixCase() {
  return {"mix",
          offsetof(RunKernels, mix),
          Operand::Pixels,
          false,
          {{Operand::Pixels, true}, {Operand::Pixels, true}},
          [](const RunKernels& k, const KernelCall& c) {
            k.mix(Out(c), In(c, 0), In(c, 1), c.arguments.ofSecond, c.arguments.units, c.arguments.n);
          },
          [](const KernelCall& c) {
            const std::uint32_t units = c.arguments.units, ofSecond = c.arguments.ofSecond;
            ForEachPixel(c, [&](std::size_t i) {
              Out(c)[i] = 0;
              for (int k = 0; k < 4; ++k) {
                const std::uint32_t sum =
                    Channel(In(c, 0)[i], k) * (units - ofSecond) + Channel(In(c, 1)[i], k) * ofSecond;
                Out(c)[i] |= sum / units << (8 * k);
              }
            });
          }};
}

KernelCase AddCoverageCase() {
  return {"add_coverage",
          offsetof(RunKernels, addCoverage),
          Operand::Coverage,
          true,
          {{Operand::Runs, false}},
          [](const RunKernels& k, const KernelCall& c) {
            k.addCoverage(Out(c), In(c), c.arguments.stride, c.arguments.count, c.arguments.part, c.arguments.n);
          },
          [](const KernelCall& c) {
            for (std::size_t run = 0; run < c.arguments.count; ++run) {
              const std::uint32_t* const pixels = In(c) + run * c.arguments.stride;
              ForEachPixel(c, [&](std::size_t i) {
                for (std::size_t k = 0; k < 4; ++k) {
                  Out(c)[4 * i + k] += Channel(pixels[i], static_cast<int>(k)) * c.arguments.part;
                }
              });
            }
          }};
}

KernelCase AverageCoverageCase() {
  return {"average_coverage",
          offsetof(RunKernels, averageCoverage),
          Operand::Pixels,
          false,
          {{Operand::Coverage, false}},
          [](const RunKernels& k, const KernelCall& c) {
            k.averageCoverage(Out(c), In(c), c.arguments.units, c.arguments.n);
          },
          [](const KernelCall& c) {
            ForEachPixel(c, [&](std::size_t i) {
              Out(c)[i] = 0;
              for (std::size_t k = 0; k < 4; ++k) Out(c)[i] |= In(c)[4 * i + k] / c.arguments.units << (8 * k);
            });
          }};
}

void AddColour(RGBSums* sums, std::uint32_t pixel) {
  sums->red += LMX_Pixel::Red(pixel);
  sums->green += LMX_Pixel::Green(pixel);
  sums->blue += LMX_Pixel::Blue(pixel);
}

template <StorageForm form>
KernelCase SumRGBCase(const char* name) {
  return {name,
          Slot(offsetof(RunKernels, sumRGB), form),
          Operand::RGBTotals,
          true,
          {{kStored<form>, false}},
          [](const RunKernels& k, const KernelCall& c) {
            k.sumRGB[form](static_cast<RGBSums*>(c.output), InBytes(c), c.arguments.n);
          },
          [](const KernelCall& c) {
            ForEachPixel(c, [&](std::size_t i) {
              AddColour(static_cast<RGBSums*>(c.output), ReadOne<form>(InBytes(c) + 4 * i));
            });
          }};
}

template <StorageForm form>
KernelCase SumHSVCase(const char* name) {
  return {name,
          Slot(offsetof(RunKernels, sumHSV), form),
          Operand::HSVTotals,
          true,
          {{kStored<form>, false}},
          [](const RunKernels& k, const KernelCall& c) {
            k.sumHSV[form](static_cast<HSVSums*>(c.output), InBytes(c), c.arguments.n);
          },
          [](const KernelCall& c) {
            auto* sums = static_cast<HSVSums*>(c.output);
            ForEachPixel(c, [&](std::size_t i) {
              const std::uint32_t pixel = ReadOne<form>(InBytes(c) + 4 * i);
              AddColour(&sums->rgb, pixel);
              std::int32_t max = 0, min = 255;
              for (int k = 0; k < 3; ++k) {
                const auto channel = static_cast<std::int32_t>(Channel(pixel, k));
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
      ChangeCase<Copying, kContext, kContext>("copy_context_context"),
      ChangeCase<Copying, kContext, kBuffer>("copy_context_buffer"),
      ChangeCase<Copying, kBuffer, kContext>("copy_buffer_context"),
      ChangeCase<Copying, kBuffer, kBuffer>("copy_buffer_buffer"),
      CopyMirroredCase<kContext, kContext>("copy_mirrored_context_context"),
      CopyMirroredCase<kContext, kBuffer>("copy_mirrored_context_buffer"),
      CopyMirroredCase<kBuffer, kContext>("copy_mirrored_buffer_context"),
      CopyMirroredCase<kBuffer, kBuffer>("copy_mirrored_buffer_buffer"),
      FillCase(),
      ChangeCase<AdjustingHSV, kContext, kContext>("adjust_hsv_context_context"),
      ChangeCase<AdjustingHSV, kContext, kBuffer>("adjust_hsv_context_buffer"),
      ChangeCase<AdjustingHSV, kBuffer, kContext>("adjust_hsv_buffer_context"),
      ChangeCase<AdjustingHSV, kBuffer, kBuffer>("adjust_hsv_buffer_buffer"),
      ChangeCase<AdjustingRGB, kContext, kContext>("adjust_rgb_context_context"),
      ChangeCase<AdjustingRGB, kContext, kBuffer>("adjust_rgb_context_buffer"),
      ChangeCase<AdjustingRGB, kBuffer, kContext>("adjust_rgb_buffer_context"),
      ChangeCase<AdjustingRGB, kBuffer, kBuffer>("adjust_rgb_buffer_buffer"),
      ChangeCase<Negating, kContext, kContext>("negative_context_context"),
      ChangeCase<Negating, kContext, kBuffer>("negative_context_buffer"),
      ChangeCase<Negating, kBuffer, kContext>("negative_buffer_context"),
      ChangeCase<Negating, kBuffer, kBuffer>("negative_buffer_buffer"),
      BlendCase<kContext, kContext>("blend_context_context"),
      BlendCase<kContext, kBuffer>("blend_context_buffer"),
      BlendCase<kBuffer, kContext>("blend_buffer_context"),
      BlendCase<kBuffer, kBuffer>("blend_buffer_buffer"),
      SumRGBCase<kContext>("sum_rgb_context"),
      SumRGBCase<kBuffer>("sum_rgb_buffer"),
      SumHSVCase<kContext>("sum_hsv_context"),
      SumHSVCase<kBuffer>("sum_hsv_buffer"),
      GatherCase(),
      ScatterCase(),
      MixCase(),
      AddCoverageCase(),
      AverageCoverageCase(),
  };
  return cases;
}
