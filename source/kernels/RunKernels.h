// What happens to a run of pixels.
//
// A run is n neighbouring pixels of one row, or of one column that was gathered. The functions of LMX_Pixel.h say what
// an operation does to one pixel; a kernel does the same to a run, as fast as the processor can, with exactly those
// results. Each level of instruction sets fills in what it does better than the level below.
//
// Contract of every kernel, unless its line says otherwise:
//   - n may be 0; nothing has to be aligned;
//   - exactly n pixels of each run are read or written, nothing beyond;
//   - the runs must not overlap.
// Stored runs are in one of the two forms of LMX_Pixel.h; working runs are arrays of working pixels.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "LMX_Pixel.h"

/// How a picture keeps its pixels; the index into the tables below.
enum StorageForm { kContextForm = 0, kBufferForm = 1, kStorageForms = 2 };

/// Pixels whose lines are worked on side by side: a cache line of pixels in a row, and the edge of a transposing tile.
constexpr int kLanes = 16;

/// Sums over pixels; 32 bits wide, and they wrap.
struct RGBSums {
  uint32_t red;
  uint32_t green;
  uint32_t blue;
};

/// Running sums in the order of the pixels: their last bits are part of the result.
struct HSVSums {
  RGBSums rgb;
  double saturation;
  double brightness;
};

/// Channel sums of a box filter, one set for each lane.
struct CoverageSums {
  uint32_t channel[4][kLanes];  // alpha, red, green, blue
};

struct RunKernels {
  /// Stored to working pixels.
  void (*read[kStorageForms])(uint32_t* working, const uint8_t* stored, size_t n);

  /// Working to stored pixels.
  void (*write[kStorageForms])(uint8_t* stored, const uint32_t* working, size_t n);

  /// Reads and writes in one: copy[form of `from`][form of `to`]. `to` may be `from`.
  void (*copy[kStorageForms][kStorageForms])(uint8_t* to, const uint8_t* from, size_t n);

  /// The same from right to left: pixel i of `to` becomes pixel n - 1 - i of `from`.
  void (*copyMirrored[kStorageForms][kStorageForms])(uint8_t* to, const uint8_t* from, size_t n);

  /// Stores n copies of the four bytes at `pixel`.
  void (*fill)(uint8_t* stored, const uint8_t* pixel, size_t n);

  /// Turns n groups of kLanes pixels into kLanes runs, `stride` pixels apart: pixel i of run l is pixel l of group i.
  void (*gatherLanes)(uint32_t* runs, size_t stride, const uint32_t* groups, size_t n);

  /// The way back: kLanes runs into n groups.
  void (*scatterLanes)(uint32_t* groups, const uint32_t* runs, size_t stride, size_t n);

  /// Blends every pixel with the one before it; `before` is the one before the first. `blended` may be `pixels`.
  void (*blendRun)(uint32_t* blended, const uint32_t* pixels, uint32_t before, uint32_t fraction, size_t n);

  /// Blends pixel by pixel, each with a fraction of its own. `blended` may be `pixels` or `before`.
  void (*blendLanes)(uint32_t* blended, const uint32_t* pixels, const uint32_t* before, const uint32_t* fractions,
                     size_t n);

  /// Adds `units` times each channel of n <= kLanes pixels to their sums.
  void (*addCoverage)(CoverageSums* sums, const uint32_t* pixels, uint32_t units, size_t n);

  /// Divides the sums of n <= kLanes pixels by `units` (1 to 32768, at least what was added).
  void (*averageCoverage)(uint32_t* averages, const CoverageSums* sums, uint32_t units, size_t n);

  /// Adjustments of working pixels in place.
  void (*adjustHSV)(uint32_t* pixels, const HSVAdjustment* by, size_t n);
  void (*adjustRGB)(uint32_t* pixels, const RGBAdjustment* by, size_t n);
  void (*negative)(uint32_t* pixels, size_t n);

  /// Adds the colours of n pixels to the sums.
  void (*sumRGB)(RGBSums* sums, const uint32_t* pixels, size_t n);

  /// The same, and each pixel's saturation (max - min) / max and brightness max / 256, in order.
  void (*sumHSV)(HSVSums* sums, const uint32_t* pixels, size_t n);
};

/// The kernels in use.
extern RunKernels gRunKernels;

/// Fills gRunKernels with the best level that this processor has. Called once, when the plug-in starts.
void SelectRunKernels();

/// The levels, each on top of the one before.
void FillPlain(RunKernels* kernels);
