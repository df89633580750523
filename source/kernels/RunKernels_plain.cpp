// The plain kernels: each is the definition of LMX_Pixel.h, applied n times.
#include "RunKernels.h"

namespace {

template <StorageForm form>
LMX_EXPAND uint32_t Read(const uint8_t* stored) {
  return form == kBufferForm ? LMX_Pixel::ReadBuffer(stored) : LMX_Pixel::ReadContext(stored);
}

template <StorageForm form>
LMX_EXPAND void Write(uint8_t* stored, uint32_t pixel) {
  form == kBufferForm ? LMX_Pixel::WriteBuffer(stored, pixel) : LMX_Pixel::WriteContext(stored, pixel);
}

template <StorageForm form>
void ReadRun(uint32_t* working, const uint8_t* stored, size_t n) {
  for (size_t i = 0; i < n; ++i) working[i] = Read<form>(stored + 4 * i);
}

template <StorageForm form>
void WriteRun(uint8_t* stored, const uint32_t* working, size_t n) {
  for (size_t i = 0; i < n; ++i) Write<form>(stored + 4 * i, working[i]);
}

template <StorageForm from_form, StorageForm to_form>
void CopyRun(uint8_t* to, const uint8_t* from, size_t n) {
  for (size_t i = 0; i < n; ++i) Write<to_form>(to + 4 * i, Read<from_form>(from + 4 * i));
}

template <StorageForm from_form, StorageForm to_form>
void CopyRunMirrored(uint8_t* to, const uint8_t* from, size_t n) {
  for (size_t i = 0; i < n; ++i) Write<to_form>(to + 4 * i, Read<from_form>(from + 4 * (n - 1 - i)));
}

void FillRun(uint8_t* stored, const uint8_t* pixel, size_t n) {
  for (size_t i = 0; i < n; ++i) memcpy(stored + 4 * i, pixel, 4);
}

template <StorageForm from_form, StorageForm to_form>
void AdjustRunHSV(uint8_t* to, const uint8_t* from, const HSVAdjustment* by, size_t n) {
  for (size_t i = 0; i < n; ++i) Write<to_form>(to + 4 * i, LMX_Pixel::AdjustHSV(Read<from_form>(from + 4 * i), *by));
}

template <StorageForm from_form, StorageForm to_form>
void AdjustRunRGB(uint8_t* to, const uint8_t* from, const RGBAdjustment* by, size_t n) {
  for (size_t i = 0; i < n; ++i) Write<to_form>(to + 4 * i, LMX_Pixel::AdjustRGB(Read<from_form>(from + 4 * i), *by));
}

template <StorageForm from_form, StorageForm to_form>
void NegativeRun(uint8_t* to, const uint8_t* from, size_t n) {
  for (size_t i = 0; i < n; ++i) Write<to_form>(to + 4 * i, LMX_Pixel::Negative(Read<from_form>(from + 4 * i)));
}

template <StorageForm from_form, StorageForm to_form>
void BlendRun(uint8_t* to, const uint8_t* from, uint32_t before, uint32_t fraction, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    const uint32_t pixel = Read<from_form>(from + 4 * i);
    Write<to_form>(to + 4 * i, LMX_Pixel::Blend(pixel, before, fraction));
    before = pixel;
  }
}

template <StorageForm form>
void SumRunRGB(RGBSums* sums, const uint8_t* stored, size_t n) {
  for (size_t i = 0; i < n; ++i) LMX_Pixel::AddRGB(sums, Read<form>(stored + 4 * i));
}

template <StorageForm form>
void SumRunHSV(HSVSums* sums, const uint8_t* stored, size_t n) {
  for (size_t i = 0; i < n; ++i) LMX_Pixel::AddHSV(sums, Read<form>(stored + 4 * i));
}

void GatherLanes(uint32_t* runs, size_t stride, const uint32_t* groups, size_t pitch, size_t n) {
  for (size_t lane = 0; lane < kLanes; ++lane) {
    for (size_t i = 0; i < n; ++i) runs[lane * stride + i] = groups[i * pitch + lane];
  }
}

void ScatterLanes(uint32_t* groups, size_t pitch, const uint32_t* runs, size_t stride, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    for (size_t lane = 0; lane < kLanes; ++lane) groups[i * pitch + lane] = runs[lane * stride + i];
  }
}

void Mix(uint32_t* averages, const uint32_t* first, const uint32_t* second, uint32_t ofSecond, uint32_t units,
         size_t n) {
  for (size_t i = 0; i < n; ++i) averages[i] = LMX_Pixel::Mix(first[i], second[i], ofSecond, units);
}

void AddCoverage(uint32_t* sums, const uint32_t* runs, size_t stride, size_t count, uint32_t units, size_t n) {
  for (size_t run = 0; run < count; ++run) {
    for (size_t i = 0; i < n; ++i) LMX_Pixel::AddCoverage(sums + 4 * i, runs[run * stride + i], units);
  }
}

void AverageCoverage(uint32_t* averages, const uint32_t* sums, uint32_t units, size_t n) {
  for (size_t i = 0; i < n; ++i) averages[i] = LMX_Pixel::AverageCoverage(sums + 4 * i, units);
}

template <StorageForm from_form, StorageForm to_form>
void FillForms(RunKernels* kernels) {
  kernels->copy[from_form][to_form] = CopyRun<from_form, to_form>;
  kernels->copyMirrored[from_form][to_form] = CopyRunMirrored<from_form, to_form>;
  kernels->adjustHSV[from_form][to_form] = AdjustRunHSV<from_form, to_form>;
  kernels->adjustRGB[from_form][to_form] = AdjustRunRGB<from_form, to_form>;
  kernels->negative[from_form][to_form] = NegativeRun<from_form, to_form>;
  kernels->blend[from_form][to_form] = BlendRun<from_form, to_form>;
}

template <StorageForm form>
void FillForm(RunKernels* kernels) {
  kernels->read[form] = ReadRun<form>;
  kernels->write[form] = WriteRun<form>;
  kernels->sumRGB[form] = SumRunRGB<form>;
  kernels->sumHSV[form] = SumRunHSV<form>;
  FillForms<form, kContextForm>(kernels);
  FillForms<form, kBufferForm>(kernels);
}

}  // namespace

void FillPlain(RunKernels* kernels) {
  kernels->level = "plain";
  FillForm<kContextForm>(kernels);
  FillForm<kBufferForm>(kernels);
  kernels->fill = FillRun;
  kernels->gatherLanes = GatherLanes;
  kernels->scatterLanes = ScatterLanes;
  kernels->mix = Mix;
  kernels->addCoverage = AddCoverage;
  kernels->averageCoverage = AverageCoverage;
}
