// One record per kernel: its operands, how to make inputs, how to call it, and what it computes.
// The tests and the benchmarks go through the same list.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "kernels/RunKernels.h"
#include "support/Random.h"

/// The most columns that are transposed, and the most pixels between two runs.
constexpr std::size_t kMostColumns = 40;
constexpr std::size_t kMostGap = 20;

/// What lies at a pointer that a kernel gets, and so how many bytes.
enum class Operand {
  ContextPixels,  ///< a stored run; any address
  BufferPixels,   ///< the same in the other form
  Pixels,         ///< a working run
  OnePixel,       ///< a single stored pixel
  ContextRows,    ///< n stored runs of `columns` pixels, `pitch` apart
  BufferRows,     ///< the same in the other form
  WorkingRows,    ///< the same, working pixels
  Columns,        ///< `columns` runs of n pixels of any form, `stride` apart
  RGBTotals,      ///< RGBSums
  HSVTotals,      ///< HSVSums
  WorkingRuns,    ///< `runs` runs of working pixels, `stride` apart
  Averages,       ///< `count` runs of n pixels of any form, `stride` apart
  ContextPairs,   ///< a stored run of 2 n pixels
  BufferPairs,    ///< the same in the other form
  ContextSlope,   ///< `columns` + 1 + SlopeDown() stored runs of n pixels, `stride` apart
  BufferSlope,    ///< the same in the other form
  Fractions,      ///< n weights of 0 to 65535, as 32-bit words
};

/// The arguments that are no runs. Each kernel uses some.
struct KernelArguments {
  std::size_t n;
  std::size_t stride;
  std::size_t columns;
  std::size_t pitch;
  std::size_t count;  // boxes
  std::size_t runs;   // of which they are made
  std::int32_t slope;
  std::uint32_t before;
  std::uint32_t fraction;
  BoxUnits box;
  HSVAdjustment hsv;
  RGBAdjustment rgb;
};

/// One call.
struct KernelCall {
  KernelArguments arguments;
  void* output;
  const void* inputs[3];
};

struct KernelInput {
  Operand operand;
  bool mayBeOutput;
};

struct KernelCase {
  std::string name;  ///< words and underscores: the kernel's name, and its forms
  std::size_t slot;  ///< where the table keeps it, in bytes
  Operand output;
  bool addsToOutput;  ///< the output is an input, too: sums, and pixels that are changed in place
  std::vector<KernelInput> inputs;
  void (*call)(const RunKernels& kernels, const KernelCall& call);
  void (*define)(const KernelCall& call);  ///< one pixel after the other, by LMX_Pixel; never in place
};

/// Every kernel of the table.
const std::vector<KernelCase>& KernelCases();

/// How far down each of n columns begins that a slope displaces, in 16.16 a column; and the largest
/// of that.
std::vector<std::uint32_t> SlopeDowns(const KernelArguments& arguments);
std::size_t SlopeDown(const KernelArguments& arguments);

/// Bytes of an operand, and the address that it needs.
std::size_t SizeOf(Operand operand, const KernelArguments& arguments);
std::size_t AlignmentOf(Operand operand);

/// Arguments for n pixels: often the edges of their ranges.
KernelArguments MakeArguments(std::size_t n, Random& random);

/// Sets the boxes, as many of them, and the runs that they have.
void SetBoxes(const BoxUnits& units, std::size_t count, KernelArguments* arguments);

/// Contents of an operand: runs that are wholly opaque, wholly clear, mostly the one or the other,
/// well-formed and malformed, grey and coloured. `operand` can be an input, or an output that is
/// added to.
void MakeOperand(Operand operand, const KernelArguments& arguments, Random& random, void* bytes);

/// Well-formed pixels that are all opaque or of any alpha, for times; false, and nothing done,
/// where an operand's bytes are no pixels with an alpha that could matter.
bool MakeOrdinaryPixels(Operand operand, const KernelArguments& arguments, bool opaque, Random& random, void* bytes);
