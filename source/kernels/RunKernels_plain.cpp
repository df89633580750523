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

void GatherLanes(uint32_t* runs, size_t stride, const uint32_t* groups, size_t n) {
  for (size_t lane = 0; lane < kLanes; ++lane) {
    for (size_t i = 0; i < n; ++i) runs[lane * stride + i] = groups[i * kLanes + lane];
  }
}

void ScatterLanes(uint32_t* groups, const uint32_t* runs, size_t stride, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    for (size_t lane = 0; lane < kLanes; ++lane) groups[i * kLanes + lane] = runs[lane * stride + i];
  }
}

void BlendRun(uint32_t* blended, const uint32_t* pixels, uint32_t before, uint32_t fraction, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    const uint32_t pixel = pixels[i];
    blended[i] = LMX_Pixel::Blend(pixel, before, fraction);
    before = pixel;
  }
}

void BlendLanes(uint32_t* blended, const uint32_t* pixels, const uint32_t* before, const uint32_t* fractions,
                size_t n) {
  for (size_t i = 0; i < n; ++i) blended[i] = LMX_Pixel::Blend(pixels[i], before[i], fractions[i]);
}

void AddCoverage(CoverageSums* sums, const uint32_t* pixels, uint32_t units, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    sums->channel[0][i] += LMX_Pixel::Alpha(pixels[i]) * units;
    sums->channel[1][i] += LMX_Pixel::Red(pixels[i]) * units;
    sums->channel[2][i] += LMX_Pixel::Green(pixels[i]) * units;
    sums->channel[3][i] += LMX_Pixel::Blue(pixels[i]) * units;
  }
}

void AverageCoverage(uint32_t* averages, const CoverageSums* sums, uint32_t units, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    averages[i] = LMX_Pixel::Pack(sums->channel[0][i] / units, sums->channel[1][i] / units, sums->channel[2][i] / units,
                                  sums->channel[3][i] / units);
  }
}

void AdjustHSV(uint32_t* pixels, const HSVAdjustment* by, size_t n) {
  for (size_t i = 0; i < n; ++i) pixels[i] = LMX_Pixel::AdjustHSV(pixels[i], *by);
}

void AdjustRGB(uint32_t* pixels, const RGBAdjustment* by, size_t n) {
  for (size_t i = 0; i < n; ++i) pixels[i] = LMX_Pixel::AdjustRGB(pixels[i], *by);
}

void Negative(uint32_t* pixels, size_t n) {
  for (size_t i = 0; i < n; ++i) pixels[i] = LMX_Pixel::Negative(pixels[i]);
}

LMX_EXPAND void AddRGB(RGBSums* sums, uint32_t pixel) {
  sums->red += LMX_Pixel::Red(pixel);
  sums->green += LMX_Pixel::Green(pixel);
  sums->blue += LMX_Pixel::Blue(pixel);
}

void SumRGB(RGBSums* sums, const uint32_t* pixels, size_t n) {
  for (size_t i = 0; i < n; ++i) AddRGB(sums, pixels[i]);
}

void SumHSV(HSVSums* sums, const uint32_t* pixels, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    const int32_t red = static_cast<int32_t>(LMX_Pixel::Red(pixels[i]));
    const int32_t green = static_cast<int32_t>(LMX_Pixel::Green(pixels[i]));
    const int32_t blue = static_cast<int32_t>(LMX_Pixel::Blue(pixels[i]));
    const int32_t max = LMX_Pixel::Max(red, LMX_Pixel::Max(green, blue));
    const int32_t min = LMX_Pixel::Min(red, LMX_Pixel::Min(green, blue));
    if (max != 0) sums->saturation += static_cast<double>(max - min) / max;
    sums->brightness += max * 0.00390625;
    AddRGB(&sums->rgb, pixels[i]);
  }
}

template <StorageForm form>
void FillForm(RunKernels* kernels) {
  kernels->read[form] = ReadRun<form>;
  kernels->write[form] = WriteRun<form>;
  kernels->copy[form][kContextForm] = CopyRun<form, kContextForm>;
  kernels->copy[form][kBufferForm] = CopyRun<form, kBufferForm>;
  kernels->copyMirrored[form][kContextForm] = CopyRunMirrored<form, kContextForm>;
  kernels->copyMirrored[form][kBufferForm] = CopyRunMirrored<form, kBufferForm>;
}

}  // namespace

void FillPlain(RunKernels* kernels) {
  FillForm<kContextForm>(kernels);
  FillForm<kBufferForm>(kernels);
  kernels->fill = FillRun;
  kernels->gatherLanes = GatherLanes;
  kernels->scatterLanes = ScatterLanes;
  kernels->blendRun = BlendRun;
  kernels->blendLanes = BlendLanes;
  kernels->addCoverage = AddCoverage;
  kernels->averageCoverage = AverageCoverage;
  kernels->adjustHSV = AdjustHSV;
  kernels->adjustRGB = AdjustRGB;
  kernels->negative = Negative;
  kernels->sumRGB = SumRGB;
  kernels->sumHSV = SumHSV;
}
