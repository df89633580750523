// Installs the kernels of one level in a table. Included after the kernels and the three forms.
#pragma once

namespace {

template <class From, class To>
void InstallPair(RunKernels* kernels) {
  PairKernels& pair = kernels->between[From::kForm][To::kForm];
  pair.copy = Copy<From, To>;
  pair.transpose = Transpose<From, To>;
  if constexpr (From::kForm != kWorkingForm && To::kForm != kWorkingForm) {
    pair.copyMirrored = CopyMirrored<From, To>;
    pair.adjustHSV = AdjustHSV<From, To>;
    pair.adjustRGB = AdjustRGB<From, To>;
    pair.negative = Negative<From, To>;
    pair.blend = Blend<From, To>;
    pair.blendColumns = BlendColumns<From, To>;
    pair.halve = Halve<From, To>;
  }
}

template <class Form>
void InstallForm(RunKernels* kernels) {
  InstallPair<Form, ContextForm>(kernels);
  InstallPair<Form, BufferForm>(kernels);
  InstallPair<Form, WorkingForm>(kernels);
  FormKernels& form = kernels->of[Form::kForm];
  form.boxes = Boxes<Form>;
  form.averageBoxes = AverageBoxes<Form>;
  if constexpr (Form::kForm != kWorkingForm) {
    form.sumRGB = SumRGB<Form>;
    form.sumHSV = SumHSV<Form>;
  }
}

void InstallKernels(RunKernels* kernels) {
  InstallForm<ContextForm>(kernels);
  InstallForm<BufferForm>(kernels);
  InstallForm<WorkingForm>(kernels);
  kernels->fill = Fill;
  kernels->addToBoxes = AddToBoxes;
}

}  // namespace
