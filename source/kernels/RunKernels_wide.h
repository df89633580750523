// The wide kernels, for any width of register: a unit per level includes its Vector header, and then this one.
#pragma once

#include "WideBoxes.h"
#include "WideColour.h"
#include "WideGeometry.h"

namespace {

template <PixelForm from, PixelForm to, class From, class To, class Stores>
void FillMoves(RunKernels* kernels) {
  kernels->copy[from][to] = Convert<From, To, Stores>;
  kernels->transpose[from][to] = Transpose<From, To, Stores>;
}

// What goes into a picture, whichever way it is stored.
template <PixelForm from, PixelForm to, class From, class To, class Stores>
void FillWrites(RunKernels* kernels) {
  FillMoves<from, to, From, To, Stores>(kernels);
  kernels->copyMirrored[from][to] = ConvertMirrored<From, To, Stores>;
  kernels->adjustRGB[from][to] = AdjustRGB<From, To, Stores>;
}

template <class Stores>
void FillAllWrites(RunKernels* kernels) {
  FillWrites<kContextForm, kContextForm, ContextForm, ContextForm, Stores>(kernels);
  FillWrites<kContextForm, kBufferForm, ContextForm, BufferForm, Stores>(kernels);
  FillWrites<kBufferForm, kContextForm, BufferForm, ContextForm, Stores>(kernels);
  FillWrites<kBufferForm, kBufferForm, BufferForm, BufferForm, Stores>(kernels);
  FillMoves<kWorkingForm, kWorkingForm, WorkingForm, WorkingForm, Stores>(kernels);
  kernels->fill = Fill<Stores>;
  kernels->boxes[kContextForm] = Boxes<ContextForm, Stores>;
  kernels->boxes[kBufferForm] = Boxes<BufferForm, Stores>;
}

template <PixelForm from, PixelForm to, class From, class To>
void FillChanges(RunKernels* kernels) {
  kernels->adjustHSV[from][to] = AdjustHSV<From, To>;
  kernels->negative[from][to] = Negative<From, To>;
  kernels->blend[from][to] = Blend<From, To>;
  kernels->blendColumns[from][to] = BlendColumns<From, To>;
  kernels->halve[from][to] = Halve<From, To>;
}

template <PixelForm form, class Form>
void FillStorageForm(RunKernels* kernels) {
  FillChanges<form, kContextForm, Form, ContextForm>(kernels);
  FillChanges<form, kBufferForm, Form, BufferForm>(kernels);
  FillMoves<form, kWorkingForm, Form, WorkingForm, Cached>(kernels);
  FillMoves<kWorkingForm, form, WorkingForm, Form, Cached>(kernels);
  kernels->sumRGB[form] = SumRGB<Form>;
  kernels->sumHSV[form] = SumHSV<Form>;
  kernels->averageBoxes[form] = AverageBoxes<Form>;
}

void FillWide(RunKernels* kernels) {
  FillAllWrites<Cached>(kernels);
  FillStorageForm<kContextForm, ContextForm>(kernels);
  FillStorageForm<kBufferForm, BufferForm>(kernels);
  kernels->boxes[kWorkingForm] = Boxes<WorkingForm, Cached>;
  kernels->addToBoxes = AddToBoxes;
  kernels->averageBoxes[kWorkingForm] = AverageBoxes<WorkingForm>;
}

}  // namespace
