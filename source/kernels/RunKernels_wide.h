// The wide kernels, for any width of register: a unit per level includes its Vector header, and then this one.
#pragma once

#include "WideBoxes.h"
#include "WideColour.h"
#include "WideGeometry.h"

namespace {

template <PixelForm from, PixelForm to, class From, class To>
void FillMoves(RunKernels* kernels) {
  kernels->copy[from][to] = Convert<From, To>;
  kernels->transpose[from][to] = Transpose<From, To>;
}

template <PixelForm from, PixelForm to, class From, class To>
void FillChanges(RunKernels* kernels) {
  kernels->copyMirrored[from][to] = ConvertMirrored<From, To>;
  kernels->adjustHSV[from][to] = AdjustHSV<From, To>;
  kernels->adjustRGB[from][to] = AdjustRGB<From, To>;
  kernels->negative[from][to] = Negative<From, To>;
  kernels->blend[from][to] = Blend<From, To>;
  kernels->halve[from][to] = Halve<From, To>;
}

template <PixelForm form, class Form>
void FillForm(RunKernels* kernels) {
  FillMoves<form, kContextForm, Form, ContextForm>(kernels);
  FillMoves<form, kBufferForm, Form, BufferForm>(kernels);
  FillMoves<form, kWorkingForm, Form, WorkingForm>(kernels);
  kernels->box[form][kContextForm] = Box<Form, ContextForm>;
  kernels->box[form][kBufferForm] = Box<Form, BufferForm>;
  kernels->addToBoxes[form] = AddToBoxes<Form>;
}

template <PixelForm form, class Form>
void FillStorageForm(RunKernels* kernels) {
  FillForm<form, Form>(kernels);
  FillChanges<form, kContextForm, Form, ContextForm>(kernels);
  FillChanges<form, kBufferForm, Form, BufferForm>(kernels);
  kernels->sumRGB[form] = SumRGB<Form>;
  kernels->sumHSV[form] = SumHSV<Form>;
  kernels->averageBoxes[form] = AverageBoxes<Form>;
}

void FillWide(RunKernels* kernels) {
  FillStorageForm<kContextForm, ContextForm>(kernels);
  FillStorageForm<kBufferForm, BufferForm>(kernels);
  FillForm<kWorkingForm, WorkingForm>(kernels);
  kernels->fill = Fill;
}

}  // namespace
