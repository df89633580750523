// What happens to a run of pixels.
//
// A run is n neighbouring pixels of one row, or of one column that was gathered. The functions of
// LMX_Pixel.h say what an operation does to one pixel; a kernel does the same to a run, as fast as
// the processor can, with exactly those results. Each level of instruction sets installs what it
// does better than the level below.
//
// Contract of every kernel, unless its line says otherwise:
//   - n may be 0; nothing has to be aligned;
//   - exactly n pixels of each run are read or written, nothing beyond;
//   - the runs must not overlap.
//
// A kernel has one name: that of its slot below, with a capital letter as a function, plain
// (PlainKernels.h) and wide (Wide*.h), and with underscores in tests and benchmarks.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "KernelLevel.h"
#include "LMX_Boxes.h"
#include "LMX_Pixel.h"

#if defined(__i386__) || defined(__x86_64__)
#define LMX_X86
#endif

/// The forms in which a run's pixels can be: the two storage forms of LMX_Pixel.h, and working
/// pixels.
enum PixelForm : size_t { kContextForm, kBufferForm, kWorkingForm };
constexpr size_t kPixelForms = 3;

/// The most runs of a box that `boxes` takes, and what the sums of `addToBoxes` are made for: a
/// multiple of this many pixels.
constexpr size_t kMostBoxRuns = 32;
constexpr size_t kBoxSumsStep = 16;

/// How far ahead rows are fetched into the cache by what goes down them: each is in another page,
/// where no processor looks by itself.
constexpr int32_t kRowsAhead = 16;

/// Kernels from one form to another. From `copyMirrored` on, only the pairs of storage forms have
/// them.
struct PairKernels {
  /// Reads and writes. `to` may be `from`.
  void (*copy)(uint8_t* to, const uint8_t* from, size_t n);

  /// Turns columns into runs: copies pixel c of the run from[r] to pixel r of the run to[c], for
  /// r < rows and c < columns. From working to working pixels it moves pixels as they are, whatever
  /// their form. `ahead` more runs follow in `from`: they come next, as do the pixels after those
  /// of `to`, and are fetched into the cache.
  void (*transpose)(uint8_t* const* to, const uint8_t* const* from, size_t rows, size_t ahead, size_t columns);

  /// Copies from right to left: pixel i of `to` becomes pixel n - 1 - i of `from`.
  void (*copyMirrored)(uint8_t* to, const uint8_t* from, size_t n);

  /// Reads, adjusts and writes. `to` may be `from`.
  void (*adjustHSV)(uint8_t* to, const uint8_t* from, const HSVAdjustment* by, size_t n);
  void (*adjustRGB)(uint8_t* to, const uint8_t* from, const RGBAdjustment* by, size_t n);
  void (*negative)(uint8_t* to, const uint8_t* from, size_t n);

  /// Reads, blends every pixel with the one before it, and writes. `before` is the working pixel
  /// before the first; `fraction` is the weight of the one before, 0 to 65535.
  void (*blend)(uint8_t* to, const uint8_t* from, uint32_t before, uint32_t fraction, size_t n);

  /// Blends columns along themselves, each with its own displacement and weight: pixel c of the run
  /// to[r] is the mix of pixel c of the run from[r + down[c] + 1] with the one above it, in
  /// from[r + down[c]], whose weight is fraction[c] of 65535. r < rows, c < n, and the `down` of
  /// neighbours differ by 1 at most. All runs from from[0] to the last one that is in use have n
  /// pixels that may be read. In both lists `ahead` more runs follow the last one in use: they come
  /// next, and are fetched into the cache.
  void (*blendColumns)(uint8_t* const* to, const uint8_t* const* from, const uint32_t* down, const uint32_t* fraction,
                       size_t rows, size_t ahead, size_t n);

  /// Averages of neighbours, as working pixels: pixel i of `to` is the mean of the pixels 2 i and
  /// 2 i + 1 of `from`, truncated, written in the second form and read again. n is the number of
  /// averages.
  void (*halve)(uint8_t* to, const uint8_t* from, size_t n);
};

/// Kernels of one form.
struct FormKernels {
  /// Box averages of working pixels, written in this form: makes the runs to[0] to to[count - 1],
  /// each from the runs that its box has, which begin with runs[0]; divides by all the units of a
  /// box. No box has more than kMostBoxRuns runs. A run of `to` may be one of `runs` that no later
  /// box has.
  void (*boxes)(uint8_t* const* to, const uint8_t* const* runs, const BoxUnits* units, size_t count, size_t n);

  /// An average of any number of runs, which addToBoxes has added to the sums: divides by all the
  /// units that were added, as many as a box has, and writes in this form.
  void (*averageBoxes)(uint8_t* to, const uint32_t* sums, uint32_t units, size_t n);

  /// Add n pixels of this form to the sums, in their order. Only the storage forms have them.
  void (*sumRGB)(RGBSums* sums, const uint8_t* stored, size_t n);
  void (*sumHSV)(HSVSums* sums, const uint8_t* stored, size_t n);
};

struct RunKernels {
  /// The level's name: "plain", or the instruction set of the highest level that is installed.
  const char* level;

  /// By the form of what is read, and that of what is written.
  PairKernels between[kPixelForms][kPixelForms];

  /// By form.
  FormKernels of[kPixelForms];

  /// Stores n copies of the four bytes at `pixel`.
  void (*fill)(uint8_t* stored, const uint8_t* pixel, size_t n);

  /// Adds `units` times (1 to 32767) each of `count` runs of working pixels (1 to kMostBoxRuns) to
  /// the sums. There are four sums a pixel, 0 at first, in an order that only this and averageBoxes
  /// know; n is rounded up to kBoxSumsStep.
  void (*addToBoxes)(uint32_t* sums, const uint8_t* const* runs, size_t count, uint32_t units, size_t n);
};

/// The kernels in use, and those with non-temporal stores, for pictures that are too large to stay
/// in the cache.
extern RunKernels gRunKernels;
extern RunKernels gNonTemporalKernels;

/// Installs the best level that this processor has in both. Called once, when the plug-in starts.
void SelectRunKernels();

/// The levels, each on top of the one before; its kernels with non-temporal stores come on top of a
/// level.
void InstallPlain(RunKernels* kernels);
#ifdef LMX_X86
void InstallSse2(RunKernels* kernels);
void InstallSse2NonTemporal(RunKernels* kernels);
void InstallAvx2(RunKernels* kernels);
void InstallAvx2NonTemporal(RunKernels* kernels);
void InstallAvx512(RunKernels* kernels);
void InstallAvx512NonTemporal(RunKernels* kernels);
#endif
#ifdef __wasm_simd128__
void InstallWasm(RunKernels* kernels);  // in playground/
#endif

/// A level: how its kernels get into a table, on top of those below, and whether this processor has
/// its instructions.
struct LevelKernels {
  const char* name;  ///< nullptr where the architecture has no such level
  void (*install)(RunKernels*);
  void (*installNonTemporal)(RunKernels*);  ///< nullptr if it has no such stores
  bool (*runsHere)();
};

/// By KernelLevel.
constexpr int kKernelLevels = static_cast<int>(kLastLevel) + 1;
extern const LevelKernels kLevelKernels[kKernelLevels];

/// Orders non-temporal stores before later stores, as other processors see them.
LMX_ALWAYS_INLINE void FinishNonTemporalStores() {
#ifdef LMX_X86
  __builtin_ia32_sfence();
#endif
}
