// The wide kernels, for any width of register: a unit per level includes its Vector header, and then this one.
#pragma once

#include "WideColour.h"
#include "WideGeometry.h"

namespace {

template <StorageForm from, StorageForm to, class From, class To>
void FillForms(RunKernels* kernels) {
  kernels->copy[from][to] = Convert<From, To>;
  kernels->copyMirrored[from][to] = ConvertMirrored<From, To>;
  kernels->adjustHSV[from][to] = AdjustHSV<From, To>;
  kernels->adjustRGB[from][to] = AdjustRGB<From, To>;
  kernels->negative[from][to] = Negative<From, To>;
  kernels->blend[from][to] = Blend<From, To>;
}

template <StorageForm form, class Form>
void FillForm(RunKernels* kernels) {
  kernels->read[form] = Read<Form>;
  kernels->write[form] = Write<Form>;
  kernels->sumRGB[form] = SumRGB<Form>;
  kernels->sumHSV[form] = SumHSV<Form>;
  FillForms<form, kContextForm, Form, ContextForm>(kernels);
  FillForms<form, kBufferForm, Form, BufferForm>(kernels);
}

void FillWide(RunKernels* kernels) {
  FillForm<kContextForm, ContextForm>(kernels);
  FillForm<kBufferForm, BufferForm>(kernels);
  kernels->fill = Fill;
  kernels->gatherLanes = GatherLanes;
  kernels->scatterLanes = ScatterLanes;
  kernels->mix = Mix;
  kernels->addCoverage = AddCoverage;
  kernels->averageCoverage = AverageCoverage;
}

}  // namespace
