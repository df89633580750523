// One record for each kernel: its operands, how to make inputs, how to call it, and what it
// computes. Tests and benchmarks use the same list.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "kernels/RunKernels.h"
#include "support/Random.h"

/// The most columns that are transposed, and the most pixels of a gap between two runs.
constexpr std::size_t kMostColumns = 40;
constexpr std::size_t kMostGap = 20;

/// The kind of an operand, which gives its size.
enum class Operand {
  ContextPixels,  ///< a stored run; any address
  BufferPixels,   ///< the same in the other form
  Pixels,         ///< a working run
  OnePixel,       ///< one stored pixel
  ContextRows,    ///< n stored runs of `columns` pixels, `pitch` apart
  BufferRows,     ///< the same in the other form
  WorkingRows,    ///< the same with working pixels
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

/// The arguments other than runs. Each kernel uses some of them.
struct KernelArguments {
  std::size_t n;
  std::size_t stride;
  std::size_t columns;
  std::size_t pitch;
  std::size_t count;  // number of boxes
  std::size_t runs;   // number of runs of which the boxes are made
  std::int32_t slope;
  std::uint32_t before;
  std::uint32_t fraction;
  BoxUnits box;
  HSVAdjustment hsv;
  RGBAdjustment rgb;
};

/// The most inputs that a kernel has.
constexpr std::size_t kMostInputs = 2;

/// One call of a kernel.
struct KernelCall {
  KernelArguments arguments;
  void* output;
  const void* inputs[kMostInputs];
};

struct KernelInput {
  Operand operand;
  bool mayBeOutput;
};

struct KernelCase {
  std::string name;  ///< words and underscores: the kernel's name, and its forms
  std::size_t slot;  ///< its offset in the table, in bytes
  Operand output;
  bool addsToOutput;  ///< the output is read, too: sums
  std::vector<KernelInput> inputs;
  void (*call)(const RunKernels& kernels, const KernelCall& call);
  void (*expect)(const KernelCall& call);  ///< computes the output pixel by pixel, by LMX_Pixel; never called in place
};

/// Every kernel of the table.
const std::vector<KernelCase>& KernelCases();

/// For a slope: how far down each of n columns begins, at 16.16 per column; and the largest of
/// these.
std::vector<std::uint32_t> SlopeDowns(const KernelArguments& arguments);
std::size_t SlopeDown(const KernelArguments& arguments);

/// The size of an operand, and the alignment of its address.
std::size_t SizeOf(Operand operand, const KernelArguments& arguments);
std::size_t AlignmentOf(Operand operand);

/// Arguments for n pixels, often at the limits of their ranges.
KernelArguments MakeArguments(std::size_t n, Random& random);

/// Sets the units of boxes, the number of boxes, and the number of runs that they need.
void SetBoxes(const BoxUnits& units, std::size_t count, KernelArguments* arguments);

/// Makes the contents of an operand: runs that are all opaque, all clear, or mostly so; well-formed
/// and malformed; grey and coloured. `operand` is an input, or an output that is also read.
void MakeOperand(Operand operand, const KernelArguments& arguments, Random& random, void* bytes);

/// Makes well-formed pixels for benchmarks, all opaque or of any alpha. If the operand does not
/// consist of pixels whose alpha could matter, returns false and does nothing.
bool MakeOrdinaryPixels(Operand operand, const KernelArguments& arguments, bool opaque, Random& random, void* bytes);
