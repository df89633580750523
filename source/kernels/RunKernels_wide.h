// The wide kernels, for any register width. The source file of a level includes its Vector header
// and then this one.
#pragma once

#include "WideBoxes.h"
#include "WideColour.h"
#include "WideGeometry.h"
//
#include "InstallKernels.h"

namespace {

template <class From, class To>
void InstallNonTemporalPair(RunKernels* kernels) {
  PairKernels& pair = kernels->between[From::kForm][To::kForm];
  pair.copy = Copy<From, To, NonTemporal>;
  pair.copyMirrored = CopyMirrored<From, To, NonTemporal>;
  pair.adjustRGB = AdjustRGB<From, To, NonTemporal>;
}

// The kernels that are limited by memory. Unused by a level that has no non-temporal stores.
[[maybe_unused]] void InstallNonTemporal(RunKernels* kernels) {
  InstallNonTemporalPair<ContextForm, ContextForm>(kernels);
  InstallNonTemporalPair<ContextForm, BufferForm>(kernels);
  InstallNonTemporalPair<BufferForm, ContextForm>(kernels);
  InstallNonTemporalPair<BufferForm, BufferForm>(kernels);
  kernels->of[kContextForm].boxes = Boxes<ContextForm, NonTemporal>;
  kernels->of[kBufferForm].boxes = Boxes<BufferForm, NonTemporal>;
  kernels->fill = Fill<NonTemporal>;
}

}  // namespace
