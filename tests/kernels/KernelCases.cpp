#include "KernelCases.h"

#include <algorithm>
#include <cstring>
#include <type_traits>
#include <utility>

namespace {

std::uint8_t* OutBytes(const KernelCall& call) {
  return static_cast<std::uint8_t*>(call.output);
}
const std::uint8_t* InBytes(const KernelCall& call) {
  return static_cast<const std::uint8_t*>(call.inputs[0]);
}

// Calls pixel(i) for each pixel of a call.
template <class Pixel>
void ForEachPixel(const KernelCall& call, Pixel pixel) {
  for (std::size_t i = 0; i < call.arguments.n; ++i) pixel(i);
}

template <PixelForm form>
std::uint32_t ReadOne(const std::uint8_t* pixel) {
  return form == kContextForm  ? LMX_Pixel::ReadContext(pixel)
         : form == kBufferForm ? LMX_Pixel::ReadBuffer(pixel)
                               : LMX_Pixel::Load(pixel);
}
template <PixelForm form>
void WriteOne(std::uint8_t* to, std::uint32_t pixel) {
  form == kContextForm  ? LMX_Pixel::WriteContext(to, pixel)
  : form == kBufferForm ? LMX_Pixel::WriteBuffer(to, pixel)
                        : LMX_Pixel::Store(to, pixel);
}
template <PixelForm form>
constexpr Operand kRun = form == kContextForm  ? Operand::ContextPixels
                         : form == kBufferForm ? Operand::BufferPixels
                                               : Operand::Pixels;
template <PixelForm form>
constexpr Operand kRows = form == kContextForm  ? Operand::ContextRows
                          : form == kBufferForm ? Operand::BufferRows
                                                : Operand::WorkingRows;

template <PixelForm form>
constexpr Operand kPairs = form == kContextForm ? Operand::ContextPairs : Operand::BufferPairs;

template <PixelForm form>
constexpr Operand kSlope = form == kContextForm ? Operand::ContextSlope : Operand::BufferSlope;

// The offset in the table of a member of PairKernels or FormKernels.
std::size_t Slot(PixelForm from, PixelForm to, std::size_t offset) {
  return offsetof(RunKernels, between) + (from * kPixelForms + to) * sizeof(PairKernels) + offset;
}
std::size_t Slot(PixelForm form, std::size_t offset) {
  return offsetof(RunKernels, of) + form * sizeof(FormKernels) + offset;
}

// The operation on each pixel between reading and writing, and the slot that does it to a run.
struct Copying {
  static constexpr std::size_t kOffset = offsetof(PairKernels, copy);
  static void Call(const RunKernels& k, PixelForm from, PixelForm to, const KernelCall& c) {
    k.between[from][to].copy(OutBytes(c), InBytes(c), c.arguments.n);
  }
  static std::uint32_t Expected(std::uint32_t pixel, const KernelArguments&) { return pixel; }
};
struct AdjustingHSV {
  static constexpr std::size_t kOffset = offsetof(PairKernels, adjustHSV);
  static void Call(const RunKernels& k, PixelForm from, PixelForm to, const KernelCall& c) {
    k.between[from][to].adjustHSV(OutBytes(c), InBytes(c), &c.arguments.hsv, c.arguments.n);
  }
  static std::uint32_t Expected(std::uint32_t pixel, const KernelArguments& a) {
    return LMX_Pixel::AdjustHSV(pixel, a.hsv);
  }
};
struct AdjustingRGB {
  static constexpr std::size_t kOffset = offsetof(PairKernels, adjustRGB);
  static void Call(const RunKernels& k, PixelForm from, PixelForm to, const KernelCall& c) {
    k.between[from][to].adjustRGB(OutBytes(c), InBytes(c), &c.arguments.rgb, c.arguments.n);
  }
  static std::uint32_t Expected(std::uint32_t pixel, const KernelArguments& a) {
    return LMX_Pixel::AdjustRGB(pixel, a.rgb);
  }
};
struct Negating {
  static constexpr std::size_t kOffset = offsetof(PairKernels, negative);
  static void Call(const RunKernels& k, PixelForm from, PixelForm to, const KernelCall& c) {
    k.between[from][to].negative(OutBytes(c), InBytes(c), c.arguments.n);
  }
  static std::uint32_t Expected(std::uint32_t pixel, const KernelArguments&) { return LMX_Pixel::Negative(pixel); }
};

template <class Change, PixelForm from, PixelForm to>
KernelCase ChangeCase(const std::string& name) {
  return {name,
          Slot(from, to, Change::kOffset),
          kRun<to>,
          false,
          {{kRun<from>, true}},
          [](const RunKernels& k, const KernelCall& c) { Change::Call(k, from, to, c); },
          [](const KernelCall& c) {
            ForEachPixel(c, [&](std::size_t i) {
              WriteOne<to>(OutBytes(c) + 4 * i, Change::Expected(ReadOne<from>(InBytes(c) + 4 * i), c.arguments));
            });
          }};
}

template <PixelForm from, PixelForm to>
KernelCase CopyMirroredCase(const std::string& name) {
  return {name,
          Slot(from, to, offsetof(PairKernels, copyMirrored)),
          kRun<to>,
          false,
          {{kRun<from>, false}},
          [](const RunKernels& k, const KernelCall& c) {
            k.between[from][to].copyMirrored(OutBytes(c), InBytes(c), c.arguments.n);
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

// The addresses of `count` runs, `stride` pixels apart.
template <class Byte, class Run>
std::vector<Byte*> Addresses(Run* first, std::size_t stride, std::size_t count) {
  std::vector<Byte*> addresses;
  for (std::size_t i = 0; i < count; ++i) addresses.push_back(first + 4 * i * stride);
  return addresses;
}

// The number of rows that a kernel may only prefetch.
constexpr std::size_t kAhead = 40;

template <PixelForm from, PixelForm to>
KernelCase TransposeCase(const std::string& name) {
  return {name,
          Slot(from, to, offsetof(PairKernels, transpose)),
          Operand::Columns,
          false,
          {{kRows<from>, false}},
          [](const RunKernels& k, const KernelCall& c) {
            const KernelArguments& a = c.arguments;
            auto rows = Addresses<const std::uint8_t>(InBytes(c), a.pitch, a.n);
            rows.resize(a.n + kAhead, InBytes(c));
            const auto columns = Addresses<std::uint8_t>(OutBytes(c), a.stride, a.columns);
            k.between[from][to].transpose(columns.data(), rows.data(), a.n, kAhead, a.columns);
          },
          [](const KernelCall& c) {
            const KernelArguments& a = c.arguments;
            ForEachPixel(c, [&](std::size_t i) {
              for (std::size_t column = 0; column < a.columns; ++column) {
                WriteOne<to>(OutBytes(c) + 4 * (column * a.stride + i),
                             ReadOne<from>(InBytes(c) + 4 * (i * a.pitch + column)));
              }
            });
          }};
}

template <PixelForm from, PixelForm to>
KernelCase BlendCase(const std::string& name) {
  return {name,
          Slot(from, to, offsetof(PairKernels, blend)),
          kRun<to>,
          false,
          {{kRun<from>, false}},
          [](const RunKernels& k, const KernelCall& c) {
            k.between[from][to].blend(OutBytes(c), InBytes(c), c.arguments.before, c.arguments.fraction, c.arguments.n);
          },
          [](const KernelCall& c) {
            ForEachPixel(c, [&](std::size_t i) {
              const std::uint32_t before = i == 0 ? c.arguments.before : ReadOne<from>(InBytes(c) + 4 * (i - 1));
              const std::uint32_t pixel = ReadOne<from>(InBytes(c) + 4 * i);
              WriteOne<to>(OutBytes(c) + 4 * i, LMX_Pixel::Blend(pixel, before, c.arguments.fraction));
            });
          }};
}

// The rows beyond the slope are only prefetched.
template <PixelForm from, PixelForm to>
KernelCase BlendColumnsCase(const std::string& name) {
  return {name,
          Slot(from, to, offsetof(PairKernels, blendColumns)),
          Operand::Columns,
          false,
          {{kSlope<from>, false}, {Operand::Fractions, false}},
          [](const RunKernels& k, const KernelCall& c) {
            const KernelArguments& a = c.arguments;
            const std::vector<std::uint32_t> downs = SlopeDowns(a);
            auto in = Addresses<const std::uint8_t>(InBytes(c), a.stride, a.columns + 1 + SlopeDown(a));
            auto out = Addresses<std::uint8_t>(OutBytes(c), a.stride, a.columns);
            in.resize(in.size() + kAhead, InBytes(c));
            out.resize(out.size() + kAhead, OutBytes(c));
            k.between[from][to].blendColumns(out.data(), in.data(), downs.data(),
                                             static_cast<const std::uint32_t*>(c.inputs[1]), a.columns, kAhead, a.n);
          },
          [](const KernelCall& c) {
            const KernelArguments& a = c.arguments;
            const std::vector<std::uint32_t> downs = SlopeDowns(a);
            ForEachPixel(c, [&](std::size_t i) {
              const auto pixel = [&](std::size_t row) {
                return ReadOne<from>(InBytes(c) + 4 * ((downs[i] + row) * a.stride + i));
              };
              const std::uint32_t fraction = static_cast<const std::uint32_t*>(c.inputs[1])[i];
              for (std::size_t row = 0; row < a.columns; ++row) {
                WriteOne<to>(OutBytes(c) + 4 * (row * a.stride + i),
                             LMX_Pixel::Blend(pixel(row + 1), pixel(row), fraction));
              }
            });
          }};
}

// Channel `byte` of a pixel; 0 is the lowest.
std::uint32_t Channel(std::uint32_t pixel, int byte) {
  return pixel >> (8 * byte) & 0xFF;
}

// The average of one box. pixel(run) is a run's pixel, units[run] are the units that the box takes.
template <class PixelOfRun>
std::uint32_t BoxOf(const std::vector<std::uint32_t>& units, PixelOfRun pixel) {
  std::uint32_t average = 0;
  for (int k = 0; k < 4; ++k) {
    std::uint64_t sum = 0, all = 0;
    for (std::size_t run = 0; run < units.size(); ++run) {
      if (units[run] == 0) continue;
      sum += std::uint64_t{Channel(pixel(run), k)} * units[run];
      all += units[run];
    }
    average |= static_cast<std::uint32_t>(sum / all) << (8 * k);
  }
  return average;
}

// The units that box `box` takes of each run. Run r has the units from r * ofRun on; the boxes
// begin at ofRun - left.
std::vector<std::uint32_t> UnitsOfRuns(const KernelArguments& a, std::size_t box) {
  const std::int64_t begin = std::int64_t{a.box.ofRun} - a.box.left + static_cast<std::int64_t>(box) * a.box.ofBox;
  std::vector<std::uint32_t> units;
  for (std::size_t run = 0; run < a.runs; ++run) {
    const std::int64_t at = static_cast<std::int64_t>(run) * a.box.ofRun;
    const std::int64_t taken = std::min(begin + a.box.ofBox, at + a.box.ofRun) - std::max(begin, at);
    units.push_back(static_cast<std::uint32_t>(std::max<std::int64_t>(taken, 0)));
  }
  return units;
}

template <PixelForm to>
void ExpectBox(const KernelCall& c, std::size_t box) {
  const std::vector<std::uint32_t> units = UnitsOfRuns(c.arguments, box);
  ForEachPixel(c, [&](std::size_t i) {
    WriteOne<to>(OutBytes(c) + 4 * (box * c.arguments.stride + i), BoxOf(units, [&](std::size_t run) {
                   return LMX_Pixel::Load(InBytes(c) + 4 * (run * c.arguments.stride + i));
                 }));
  });
}

template <PixelForm to>
KernelCase BoxesCase(const std::string& name) {
  return {name,
          Slot(to, offsetof(FormKernels, boxes)),
          Operand::Averages,
          false,
          {{Operand::WorkingRuns, false}},
          [](const RunKernels& k, const KernelCall& c) {
            const KernelArguments& a = c.arguments;
            const auto runs = Addresses<const std::uint8_t>(InBytes(c), a.stride, a.runs);
            const auto averages = Addresses<std::uint8_t>(OutBytes(c), a.stride, a.count);
            k.of[to].boxes(averages.data(), runs.data(), &a.box, a.count, a.n);
          },
          [](const KernelCall& c) {
            for (std::size_t box = 0; box < c.arguments.count; ++box) ExpectBox<to>(c, box);
          }};
}

// The two kernels that compute a box in steps, called as workers call them, since only they read
// the sums.
template <PixelForm to>
KernelCase BoxInStepsCase(const std::string& name, std::size_t slot) {
  return {name,
          slot,
          kRun<to>,
          false,
          {{Operand::WorkingRuns, false}},
          [](const RunKernels& k, const KernelCall& c) {
            const KernelArguments& a = c.arguments;
            const auto runs = Addresses<const std::uint8_t>(InBytes(c), a.stride, a.runs);
            const std::vector<std::uint32_t> units = UnitsOfRuns(a, 0);
            std::vector<std::uint32_t> sums(4 * ((a.n + kBoxSumsStep - 1) / kBoxSumsStep * kBoxSumsStep));
            for (std::size_t run = 0, same; run < a.runs; run += same) {
              for (same = 1; run + same < a.runs && same < kMostBoxRuns && units[run + same] == units[run];) ++same;
              const std::uint32_t some = units[run] / 2, others = units[run] - some;  // all may be 32768
              if (some > 0) k.addToBoxes(sums.data(), runs.data() + run, same, some, a.n);
              if (others > 0) k.addToBoxes(sums.data(), runs.data() + run, same, others, a.n);
            }
            k.of[to].averageBoxes(OutBytes(c), sums.data(), a.box.ofBox, a.n);
          },
          [](const KernelCall& c) { ExpectBox<to>(c, 0); }};
}

template <PixelForm from, PixelForm through>
KernelCase HalveCase(const std::string& name) {
  return {name,
          Slot(from, through, offsetof(PairKernels, halve)),
          Operand::Pixels,
          false,
          {{kPairs<from>, false}},
          [](const RunKernels& k, const KernelCall& c) {
            k.between[from][through].halve(OutBytes(c), InBytes(c), c.arguments.n);
          },
          [](const KernelCall& c) {
            ForEachPixel(c, [&](std::size_t i) {
              std::uint8_t stored[4];
              WriteOne<through>(stored, BoxOf({1, 1}, [&](std::size_t neighbour) {
                                  return ReadOne<from>(InBytes(c) + 4 * (2 * i + neighbour));
                                }));
              LMX_Pixel::Store(OutBytes(c) + 4 * i, ReadOne<through>(stored));
            });
          }};
}

void AddColour(RGBSums* sums, std::uint32_t pixel) {
  sums->red += LMX_Pixel::Red(pixel);
  sums->green += LMX_Pixel::Green(pixel);
  sums->blue += LMX_Pixel::Blue(pixel);
}

template <PixelForm form>
KernelCase SumRGBCase(const std::string& name) {
  return {name,
          Slot(form, offsetof(FormKernels, sumRGB)),
          Operand::RGBTotals,
          true,
          {{kRun<form>, false}},
          [](const RunKernels& k, const KernelCall& c) {
            k.of[form].sumRGB(static_cast<RGBSums*>(c.output), InBytes(c), c.arguments.n);
          },
          [](const KernelCall& c) {
            ForEachPixel(c, [&](std::size_t i) {
              AddColour(static_cast<RGBSums*>(c.output), ReadOne<form>(InBytes(c) + 4 * i));
            });
          }};
}

template <PixelForm form>
KernelCase SumHSVCase(const std::string& name) {
  return {name,
          Slot(form, offsetof(FormKernels, sumHSV)),
          Operand::HSVTotals,
          true,
          {{kRun<form>, false}},
          [](const RunKernels& k, const KernelCall& c) {
            k.of[form].sumHSV(static_cast<HSVSums*>(c.output), InBytes(c), c.arguments.n);
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

// -------------------------------------------------------------------------------------------- list

// A form as a type, so that a lambda can use it as a template argument.
template <PixelForm form>
using Constant = std::integral_constant<PixelForm, form>;

const char* const kFormNames[kPixelForms] = {"_context", "_buffer", "_working"};

std::string Name(const char* kernel, PixelForm form) {
  return std::string(kernel) + kFormNames[form];
}
std::string Name(const char* kernel, PixelForm from, PixelForm to) {
  return Name(kernel, from) + kFormNames[to];
}

template <class Make>
void ForStorageForms(const Make& make) {
  make(Constant<kContextForm>());
  make(Constant<kBufferForm>());
}
template <class Make>
void ForForms(const Make& make) {
  ForStorageForms(make);
  make(Constant<kWorkingForm>());
}
template <class Make>
void ForStoragePairs(const Make& make) {
  ForStorageForms([&](auto from) { ForStorageForms([&](auto to) { make(from, to); }); });
}
template <class Make>
void ForPairs(const Make& make) {
  ForForms([&](auto from) { ForForms([&](auto to) { make(from, to); }); });
}

// The fuzz corpus depends on their order.
std::vector<KernelCase> MakeCases() {
  std::vector<KernelCase> cases;
  const auto add = [&cases](KernelCase&& made) { cases.push_back(std::move(made)); };
  ForPairs([&](auto from, auto to) { add(ChangeCase<Copying, from, to>(Name("copy", from, to))); });
  ForPairs([&](auto from, auto to) { add(TransposeCase<from, to>(Name("transpose", from, to))); });
  ForStoragePairs([&](auto from, auto to) { add(CopyMirroredCase<from, to>(Name("copy_mirrored", from, to))); });
  add(FillCase());
  ForStoragePairs([&](auto from, auto to) { add(ChangeCase<AdjustingHSV, from, to>(Name("adjust_hsv", from, to))); });
  ForStoragePairs([&](auto from, auto to) { add(ChangeCase<AdjustingRGB, from, to>(Name("adjust_rgb", from, to))); });
  ForStoragePairs([&](auto from, auto to) { add(ChangeCase<Negating, from, to>(Name("negative", from, to))); });
  ForStoragePairs([&](auto from, auto to) { add(BlendCase<from, to>(Name("blend", from, to))); });
  ForStoragePairs([&](auto from, auto to) { add(BlendColumnsCase<from, to>(Name("blend_columns", from, to))); });
  ForStorageForms([&](auto form) { add(SumRGBCase<form>(Name("sum_rgb", form))); });
  ForStorageForms([&](auto form) { add(SumHSVCase<form>(Name("sum_hsv", form))); });
  ForForms([&](auto form) { add(BoxesCase<form>(Name("boxes", form))); });
  add(BoxInStepsCase<kWorkingForm>("add_to_boxes", offsetof(RunKernels, addToBoxes)));
  ForForms([&](auto form) {
    add(BoxInStepsCase<form>(Name("average_boxes", form), Slot(form, offsetof(FormKernels, averageBoxes))));
  });
  ForStoragePairs([&](auto from, auto through) { add(HalveCase<from, through>(Name("halve", from, through))); });
  return cases;
}

}  // namespace

const std::vector<KernelCase>& KernelCases() {
  static const std::vector<KernelCase> cases = MakeCases();
  return cases;
}
