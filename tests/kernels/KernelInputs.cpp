// Makes the inputs of the kernels' case list.
#include <algorithm>
#include <cstring>

#include "KernelCases.h"

namespace {

constexpr std::size_t kMostRuns = 50;  // KernelRig has space for twice as many

// The alphas of a run. Kernels may treat blocks that are all opaque or all clear in another way.
enum class Alphas { Opaque, Clear, OpaqueAndClear, OpaqueButOne, ClearButOne, Any };
enum class Colours { Any, Extreme, Grey };

struct Style {
  Alphas alphas;
  Colours colours;
  bool wellFormed;        // context: no colour above its alpha; buffer: no transparency above 127
  std::size_t odd;        // the pixel that differs from the others
  std::size_t malformed;  // a pixel whose colour is malformed even in a well-formed run
};

Style MakeStyle(std::size_t pixels, Random& random) {
  constexpr Alphas kAlphas[] = {Alphas::Opaque,       Alphas::Clear,       Alphas::OpaqueAndClear,
                                Alphas::OpaqueButOne, Alphas::ClearButOne, Alphas::Any,
                                Alphas::Any,          Alphas::Any};
  constexpr Colours kColours[] = {Colours::Any, Colours::Any, Colours::Extreme, Colours::Grey};
  const std::uint32_t count = static_cast<std::uint32_t>(std::max<std::size_t>(pixels, 1));
  return {random.OneOf(kAlphas), random.OneOf(kColours), random.Below(4) != 0, random.Below(count),
          random.Below(4) == 0 ? random.Below(count) : pixels};
}

std::uint32_t MakeAlpha(const Style& style, std::size_t i, Random& random) {
  const std::uint32_t any = random.Below(256);
  switch (style.alphas) {
    case Alphas::Opaque:
      return 255;
    case Alphas::Clear:
      return 0;
    case Alphas::OpaqueAndClear:
      return any < 128 ? 0 : 255;
    case Alphas::OpaqueButOne:
      return i == style.odd ? any : 255;
    case Alphas::ClearButOne:
      return i == style.odd ? any : 0;
    case Alphas::Any:
      break;
  }
  constexpr std::uint32_t kEdges[] = {0, 1, 2, 127, 128, 253, 254, 255};
  return any < 32 ? random.OneOf(kEdges) : random.Below(256);
}

// Red, green and blue, each at most `most`.
std::uint32_t MakeColour(const Style& style, std::uint32_t most, Random& random) {
  std::uint32_t colour[3];
  for (std::uint32_t& channel : colour) {
    const std::uint32_t extremes[] = {0, most, 0, most, most / 2, most > 0 ? most - 1 : 0};
    channel = style.colours == Colours::Extreme ? random.OneOf(extremes) : random.Below(most + 1);
  }
  if (style.colours == Colours::Grey) colour[1] = colour[2] = colour[0];
  return colour[0] << 16 | colour[1] << 8 | colour[2];
}

bool IsOneOf(Operand operand, std::initializer_list<Operand> operands) {
  return std::find(operands.begin(), operands.end(), operand) != operands.end();
}

std::uint32_t MakePixel(Operand form, const Style& style, std::size_t i, Random& random) {
  const std::uint32_t alpha = MakeAlpha(style, i, random);
  const bool wellFormed = style.wellFormed && i != style.malformed;
  if (IsOneOf(form, {Operand::ContextPixels, Operand::ContextRows, Operand::ContextPairs, Operand::ContextSlope})) {
    return __builtin_bswap32(alpha << 24 | MakeColour(style, wellFormed ? alpha : 255, random));
  }
  if (IsOneOf(form, {Operand::BufferPixels, Operand::BufferRows, Operand::BufferPairs, Operand::BufferSlope})) {
    const std::uint32_t transparency = wellFormed ? 127 - alpha / 2 : 255 - alpha;
    return transparency << 24 | MakeColour(style, 255, random);
  }
  return alpha << 24 | MakeColour(style, 255, random);
}

void MakePixels(Operand form, std::size_t count, const Style& style, Random& random, void* bytes) {
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint32_t pixel = MakePixel(form, style, i, random);
    std::memcpy(static_cast<std::uint8_t*>(bytes) + 4 * i, &pixel, 4);
  }
}

std::uint32_t MakeFraction(Random& random) {
  constexpr std::uint32_t kEdges[] = {0, 1, 2, 255, 256, 32767, 32768, 65280, 65534, 65535};
  return random.Below(2) == 0 ? random.OneOf(kEdges) : random.Below(65536);
}

RGBSums MakeRGBSums(Random& random) {
  const auto sum = [&] { return random.Below(2) == 0 ? 0 : random.Word(); };
  return {sum(), sum(), sum()};
}

// Saturation sums just below a power of two, which they exceed while the kernel adds.
HSVSums MakeHSVSums(Random& random) {
  constexpr double kEdges[] = {0.0, 0.0, 0.99999999, 3.99609375, 1023.999999999, 1048575.9999, 0.1, 7.333333333333};
  const double saturation = random.Below(2) == 0 ? random.OneOf(kEdges) : random.Word() / 4294967296.0 * 3e6;
  return {MakeRGBSums(random), saturation, random.Below(1 << 24) / 256.0};
}

// Runs of as many units as a box takes, or half of that, or more, or less; the shortest ones make
// boxes of kMostBoxRuns runs.
BoxUnits MakeBoxUnits(Random& random) {
  constexpr std::uint32_t kOfBox[] = {32704, 32705, 32766, 32767, 32767, 32768, 32768};
  const std::uint32_t ofBox = random.Below(4) != 0 ? random.OneOf(kOfBox) : 32704 + random.Below(65);
  constexpr std::uint32_t kFewest = 32768 / (kMostBoxRuns - 2) + 1;
  const std::uint32_t ofRuns[] = {ofBox,
                                  ofBox / 2,
                                  3 * ofBox,
                                  kFewest,
                                  kFewest + random.Below(32768 - kFewest),
                                  16384 + random.Below(16384),
                                  16384 + random.Below(16384),
                                  32768 + random.Below(100000)};
  const std::uint32_t ofRun = random.OneOf(ofRuns);
  const std::uint32_t lefts[] = {1, ofRun, ofRun - 1, 1 + random.Below(ofRun), 1 + random.Below(ofRun)};
  return {ofRun, ofBox, random.OneOf(lefts)};
}

// The size of `count` runs of n pixels, `stride` pixels apart.
std::size_t SizeOfRuns(std::size_t count, std::size_t stride, std::size_t n) {
  return count == 0 || n == 0 ? 0 : 4 * ((count - 1) * stride + n);
}

}  // namespace

std::vector<std::uint32_t> SlopeDowns(const KernelArguments& arguments) {
  std::vector<std::uint32_t> downs;
  const auto n = static_cast<std::int64_t>(arguments.n);
  const std::int64_t first = arguments.slope < 0 ? -n * arguments.slope : 0;
  for (std::int64_t c = 0; c < n; ++c) downs.push_back(static_cast<std::uint32_t>((first + c * arguments.slope) >> 16));
  return downs;
}

std::size_t SlopeDown(const KernelArguments& arguments) {
  const std::vector<std::uint32_t> downs = SlopeDowns(arguments);
  return downs.empty() ? 0 : std::max(downs.front(), downs.back());
}

std::size_t SizeOf(Operand operand, const KernelArguments& arguments) {
  switch (operand) {
    case Operand::ContextPixels:
    case Operand::BufferPixels:
    case Operand::Pixels:
      return 4 * arguments.n;
    case Operand::OnePixel:
      return 4;
    case Operand::ContextRows:
    case Operand::BufferRows:
    case Operand::WorkingRows:
      return SizeOfRuns(arguments.n, arguments.pitch, arguments.columns);
    case Operand::Columns:
      return SizeOfRuns(arguments.columns, arguments.stride, arguments.n);
    case Operand::RGBTotals:
      return sizeof(RGBSums);
    case Operand::HSVTotals:
      return sizeof(HSVSums);
    case Operand::WorkingRuns:
      return SizeOfRuns(arguments.runs, arguments.stride, arguments.n);
    case Operand::Averages:
      return SizeOfRuns(arguments.count, arguments.stride, arguments.n);
    case Operand::ContextPairs:
    case Operand::BufferPairs:
      return 8 * arguments.n;
    case Operand::ContextSlope:
    case Operand::BufferSlope:
      return SizeOfRuns(arguments.columns + 1 + SlopeDown(arguments), arguments.stride, arguments.n);
    case Operand::Fractions:
      return 4 * arguments.n;
  }
  return 0;
}

std::size_t AlignmentOf(Operand operand) {
  switch (operand) {
    case Operand::ContextPixels:
    case Operand::BufferPixels:
    case Operand::OnePixel:
    case Operand::ContextRows:
    case Operand::BufferRows:
    case Operand::Columns:
    case Operand::Averages:
    case Operand::ContextPairs:
    case Operand::BufferPairs:
    case Operand::ContextSlope:
    case Operand::BufferSlope:
      return 1;
    case Operand::HSVTotals:
      return alignof(HSVSums);
    default:
      return alignof(std::uint32_t);
  }
}

void SetBoxes(const BoxUnits& units, std::size_t count, KernelArguments* arguments) {
  arguments->box = units;
  arguments->count = count;
  const std::uint64_t taken = std::uint64_t{units.ofRun} - units.left + std::uint64_t{units.ofBox} * count;
  arguments->runs = static_cast<std::size_t>((taken + units.ofRun - 1) / units.ofRun);
}

KernelArguments MakeArguments(std::size_t n, Random& random) {
  constexpr std::int32_t kShifts[] = {0, 1, -1, 1024, -1024, 3071, 6143, -6144, INT32_MIN};
  constexpr std::int32_t kFactors[] = {0, 1, 1, 2, 3, 255, 999};
  constexpr std::int32_t kDeltas[] = {0, 1, -1, 127, -128, 255, -255};
  const auto factor = [&] { return 1024 * (random.Below(2) == 0 ? random.OneOf(kFactors) : random.Between(0, 999)); };
  const auto delta = [&] { return random.Below(2) == 0 ? random.OneOf(kDeltas) : random.Between(-255, 255); };
  KernelArguments arguments = {};
  arguments.n = n;
  arguments.stride = n + (random.Below(2) == 0 ? 0 : random.Below(kMostGap + 1));
  constexpr std::uint32_t kColumns[] = {0, 1, 4, 8, 16, 24, 32};
  arguments.columns = random.Below(2) == 0 ? random.OneOf(kColumns) : random.Below(kMostColumns + 1);
  arguments.pitch = arguments.columns + (random.Below(2) == 0 ? 0 : random.Below(kMostGap + 1));
  // At most kMostColumns rows in all, and at most one row per column.
  const std::int32_t steepest = static_cast<std::int32_t>(65536 * std::min<std::size_t>(kMostColumns, n + 1) / (n + 1));
  const std::int32_t slopes[] = {0, steepest, -steepest, steepest / 3, random.Between(-steepest, steepest)};
  arguments.slope = random.OneOf(slopes);
  arguments.before = random.Word();
  arguments.fraction = MakeFraction(random);
  SetBoxes(MakeBoxUnits(random), 1 + random.Below(8), &arguments);
  while (arguments.runs > kMostRuns) SetBoxes(arguments.box, arguments.count - 1, &arguments);
  const std::int32_t shift = random.Below(2) == 0 ? random.OneOf(kShifts) : random.Between(-6144, 6143);
  const std::int32_t saturation = factor(), value = factor();
  arguments.hsv = {shift, saturation, value};
  const std::int32_t red = delta(), green = delta(), blue = delta();
  arguments.rgb = {red, green, blue};
  return arguments;
}

void MakeOperand(Operand operand, const KernelArguments& arguments, Random& random, void* bytes) {
  switch (operand) {
    case Operand::RGBTotals:
      *static_cast<RGBSums*>(bytes) = MakeRGBSums(random);
      return;
    case Operand::HSVTotals: {
      const HSVSums sums = MakeHSVSums(random);
      auto* totals = static_cast<HSVSums*>(bytes);  // padding bytes stay as they are
      totals->rgb = sums.rgb;
      totals->saturation = sums.saturation;
      totals->brightness = sums.brightness;
      return;
    }
    case Operand::Fractions:
      for (std::size_t i = 0; i < arguments.n; ++i) static_cast<std::uint32_t*>(bytes)[i] = MakeFraction(random);
      return;
    default:
      const std::size_t count = SizeOf(operand, arguments) / 4;
      MakePixels(operand, count, MakeStyle(count, random), random, bytes);
  }
}

bool MakeOrdinaryPixels(Operand operand, const KernelArguments& arguments, bool opaque, Random& random, void* bytes) {
  constexpr Operand kOthers[] = {Operand::OnePixel,  Operand::Columns,   Operand::Averages,
                                 Operand::RGBTotals, Operand::HSVTotals, Operand::Fractions};
  if (std::find(std::begin(kOthers), std::end(kOthers), operand) != std::end(kOthers)) return false;
  const std::size_t count = SizeOf(operand, arguments) / 4;
  MakePixels(operand, count, {opaque ? Alphas::Opaque : Alphas::Any, Colours::Any, true, 0, count}, random, bytes);
  return true;
}
