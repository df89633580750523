// What happens to a run of pixels. Only LMX_Runs calls the kernels.
//
// A run is n neighbouring pixels of one row, or of one column that was transposed. LMX_Pixel.h says
// what an operation does to one pixel. A kernel does the same to a run, as fast as the processor
// can, with exactly those results. Each level of instruction sets installs its kernels over those
// of the level below.
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

/// The most runs that a box of `boxes` may have. The sums of `addToBoxes` are made for a multiple
/// of kBoxSumsStep pixels.
constexpr size_t kMostBoxRuns = 32;
constexpr size_t kBoxSumsStep = 16;

/// How many rows ahead the kernels that go down columns prefetch. Each row is in another page, and
/// processors do not prefetch across pages.
constexpr int32_t kRowsAhead = 16;

/// Kernels from one form to another. `copy` and `transpose` exist for all pairs, the others for
/// pairs of storage forms only.
struct PairKernels {
  /// Reads and writes. `to` may be `from`.
  void (*copy)(uint8_t* to, const uint8_t* from, size_t n);

  /// Turns columns into runs: copies pixel c of the run from[r] to pixel r of the run to[c], for r
  /// < rows and c < columns. From working to working pixels it moves pixels as they are, whatever
  /// their form. After the runs in use, `from` lists `ahead` more. The caller will need those next,
  /// and the pixels of `to` after the written ones: both are prefetched.
  void (*transpose)(uint8_t* const* to, const uint8_t* const* from, size_t rows, size_t ahead, size_t columns);

  /// Flips: copies from right to left. Pixel i of `to` becomes pixel n - 1 - i of `from`.
  void (*copyMirrored)(uint8_t* to, const uint8_t* from, size_t n);

  /// Reads, adjusts and writes. `to` may be `from`.
  void (*adjustHSV)(uint8_t* to, const uint8_t* from, const HSVAdjustment* by, size_t n);
  void (*adjustRGB)(uint8_t* to, const uint8_t* from, const RGBAdjustment* by, size_t n);
  void (*negative)(uint8_t* to, const uint8_t* from, size_t n);

  /// Reads, blends every pixel with the one before it, and writes: LMX_Pixel::Blend. `before` is
  /// the working pixel before the first one; `fraction`, 0 to 65535, is the weight of the pixel
  /// before.
  void (*blend)(uint8_t* to, const uint8_t* from, uint32_t before, uint32_t fraction, size_t n);

  /// Blends columns along themselves, each with its own displacement and weight. For r < rows and c
  /// < n, pixel c of the run to[r] mixes pixel c of the run from[r + down[c] + 1] with the one
  /// above it, in from[r + down[c]], which has the weight fraction[c] of 65535. The `down` of
  /// neighbours differ by at most 1. All runs from from[0] to the last one in use have n readable
  /// pixels. Both lists have `ahead` more runs after the last one in use. The caller will need
  /// those next: they are prefetched.
  void (*blendColumns)(uint8_t* const* to, const uint8_t* const* from, const uint32_t* down, const uint32_t* fraction,
                       size_t rows, size_t ahead, size_t n);

  /// Averages of neighbours, as working pixels. Pixel i of `to` is the truncated mean of the pixels
  /// 2 i and 2 i + 1 of `from`, written in the second form and read again. n is the number of
  /// averages.
  void (*halve)(uint8_t* to, const uint8_t* from, size_t n);
};

/// Kernels of one form.
struct FormKernels {
  /// Box averages of working pixels, written in this form. Makes the runs to[0] to to[count - 1],
  /// one for each box (LMX_Boxes.h); the first box begins with runs[0]. Divides by the units of a
  /// box. No box has more than kMostBoxRuns runs. A run of `to` may be one of `runs` that no later
  /// box needs.
  void (*boxes)(uint8_t* const* to, const uint8_t* const* runs, const BoxUnits* units, size_t count, size_t n);

  /// The average of any number of runs that addToBoxes has added. Divides by `units`, 16384 to
  /// 32768, which is the number of units that were added. Writes in this form.
  void (*averageBoxes)(uint8_t* to, const uint32_t* sums, uint32_t units, size_t n);

  /// Add n pixels to the sums, in their order. Only the storage forms have them.
  void (*sumRGB)(RGBSums* sums, const uint8_t* stored, size_t n);
  void (*sumHSV)(HSVSums* sums, const uint8_t* stored, size_t n);
};

struct RunKernels {
  /// The level's name: that of the highest level that is installed.
  const char* level;

  /// By the form that is read, and the form that is written.
  PairKernels between[kPixelForms][kPixelForms];

  /// By form.
  FormKernels of[kPixelForms];

  /// Stores n copies of the four bytes at `pixel`.
  void (*fill)(uint8_t* stored, const uint8_t* pixel, size_t n);

  /// Adds `units` times each of `count` runs of working pixels to the sums; `units` is 1 to 32767,
  /// and `count` 1 to kMostBoxRuns. There are four sums for each pixel, 0 at first, in an order
  /// that only this and averageBoxes know. They are made for n rounded up to a multiple of
  /// kBoxSumsStep.
  void (*addToBoxes)(uint32_t* sums, const uint8_t* const* runs, size_t count, uint32_t units, size_t n);
};

/// The kernels in use, and those with non-temporal stores, for results that are too large for the
/// cache.
extern RunKernels gRunKernels;
extern RunKernels gNonTemporalKernels;

/// Installs the highest level that this processor has in both tables. Called once, when the plug-in
/// starts.
void SelectRunKernels();

/// Each installs the kernels of one level over those of the level below. The kernels with
/// non-temporal stores are installed over their own level.
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

/// A level: how its kernels are installed, and whether this processor has its instructions.
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
