// The plain kernels: each is the definition of LMX_Pixel.h, applied n times.
#include "RunKernels.h"

namespace {

template <PixelForm form>
LMX_EXPAND uint32_t Read(const uint8_t* pixel) {
  switch (form) {
    case kContextForm:
      return LMX_Pixel::ReadContext(pixel);
    case kBufferForm:
      return LMX_Pixel::ReadBuffer(pixel);
    default:
      return LMX_Pixel::Load(pixel);
  }
}

template <PixelForm form>
LMX_EXPAND void Write(uint8_t* to, uint32_t pixel) {
  switch (form) {
    case kContextForm:
      return LMX_Pixel::WriteContext(to, pixel);
    case kBufferForm:
      return LMX_Pixel::WriteBuffer(to, pixel);
    default:
      return LMX_Pixel::Store(to, pixel);
  }
}

template <PixelForm from_form, PixelForm to_form>
void CopyRun(uint8_t* to, const uint8_t* from, size_t n) {
  for (size_t i = 0; i < n; ++i) Write<to_form>(to + 4 * i, Read<from_form>(from + 4 * i));
}

template <PixelForm from_form, PixelForm to_form>
void CopyRunMirrored(uint8_t* to, const uint8_t* from, size_t n) {
  for (size_t i = 0; i < n; ++i) Write<to_form>(to + 4 * i, Read<from_form>(from + 4 * (n - 1 - i)));
}

void FillRun(uint8_t* stored, const uint8_t* pixel, size_t n) {
  for (size_t i = 0; i < n; ++i) memcpy(stored + 4 * i, pixel, 4);
}

template <PixelForm from_form, PixelForm to_form>
void AdjustRunHSV(uint8_t* to, const uint8_t* from, const HSVAdjustment* by, size_t n) {
  for (size_t i = 0; i < n; ++i) Write<to_form>(to + 4 * i, LMX_Pixel::AdjustHSV(Read<from_form>(from + 4 * i), *by));
}

template <PixelForm from_form, PixelForm to_form>
void AdjustRunRGB(uint8_t* to, const uint8_t* from, const RGBAdjustment* by, size_t n) {
  for (size_t i = 0; i < n; ++i) Write<to_form>(to + 4 * i, LMX_Pixel::AdjustRGB(Read<from_form>(from + 4 * i), *by));
}

template <PixelForm from_form, PixelForm to_form>
void NegativeRun(uint8_t* to, const uint8_t* from, size_t n) {
  for (size_t i = 0; i < n; ++i) Write<to_form>(to + 4 * i, LMX_Pixel::Negative(Read<from_form>(from + 4 * i)));
}

template <PixelForm from_form, PixelForm to_form>
void BlendRun(uint8_t* to, const uint8_t* from, uint32_t before, uint32_t fraction, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    const uint32_t pixel = Read<from_form>(from + 4 * i);
    Write<to_form>(to + 4 * i, LMX_Pixel::Blend(pixel, before, fraction));
    before = pixel;
  }
}

template <PixelForm from_form, PixelForm to_form>
void BlendColumns(uint8_t* const* to, const uint8_t* const* from, const uint32_t* down, const uint32_t* fraction,
                  size_t rows, size_t /*ahead*/, size_t n) {
  for (size_t c = 0; c < n; ++c) {
    uint32_t above = rows == 0 ? 0 : Read<from_form>(from[down[c]] + 4 * c);
    for (size_t r = 0; r < rows; ++r) {
      const uint32_t pixel = Read<from_form>(from[r + down[c] + 1] + 4 * c);
      Write<to_form>(to[r] + 4 * c, LMX_Pixel::Blend(pixel, above, fraction[c]));
      above = pixel;
    }
  }
}

template <PixelForm form>
void SumRunRGB(RGBSums* sums, const uint8_t* stored, size_t n) {
  for (size_t i = 0; i < n; ++i) LMX_Pixel::AddRGB(sums, Read<form>(stored + 4 * i));
}

template <PixelForm form>
void SumRunHSV(HSVSums* sums, const uint8_t* stored, size_t n) {
  for (size_t i = 0; i < n; ++i) LMX_Pixel::AddHSV(sums, Read<form>(stored + 4 * i));
}

template <PixelForm from_form, PixelForm to_form>
void Transpose(uint8_t* const* to, const uint8_t* const* from, size_t rows, size_t /*ahead*/, size_t columns) {
  for (size_t c = 0; c < columns; ++c) {
    for (size_t r = 0; r < rows; ++r) Write<to_form>(to[c] + 4 * r, Read<from_form>(from[r] + 4 * c));
  }
}

template <PixelForm form>
void Boxes(uint8_t* const* to, const uint8_t* const* runs, const BoxUnits* units, size_t count, size_t n) {
  BoxWalk walk(*units);
  for (size_t i = 0; i < count; ++i) {
    const Box box = walk.Next();
    for (size_t x = 0; x < n; ++x) {
      uint32_t sums[4] = {};
      for (size_t run = 0; run < box.count; ++run) {
        const uint32_t taken = run == 0 ? box.first : run + 1 < box.count ? units->ofRun : box.last;
        LMX_Pixel::AddToBox(sums, LMX_Pixel::Load(runs[run] + 4 * x), taken);
      }
      Write<form>(to[i] + 4 * x, LMX_Pixel::BoxAverage(sums, units->ofBox));
    }
    runs += box.advance;
  }
}

void AddToBoxes(uint32_t* sums, const uint8_t* const* runs, size_t count, uint32_t units, size_t n) {
  for (size_t run = 0; run < count; ++run) {
    for (size_t i = 0; i < n; ++i) LMX_Pixel::AddToBox(sums + 4 * i, LMX_Pixel::Load(runs[run] + 4 * i), units);
  }
}

template <PixelForm form>
void AverageBoxes(uint8_t* to, const uint32_t* sums, uint32_t units, size_t n) {
  for (size_t i = 0; i < n; ++i) Write<form>(to + 4 * i, LMX_Pixel::BoxAverage(sums + 4 * i, units));
}

template <PixelForm from_form, PixelForm through_form>
void Halve(uint8_t* to, const uint8_t* from, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    uint32_t sums[4] = {};
    LMX_Pixel::AddToBox(sums, Read<from_form>(from + 8 * i), 1);
    LMX_Pixel::AddToBox(sums, Read<from_form>(from + 8 * i + 4), 1);
    uint8_t stored[4];
    Write<through_form>(stored, LMX_Pixel::BoxAverage(sums, 2));
    LMX_Pixel::Store(to + 4 * i, Read<through_form>(stored));
  }
}

template <PixelForm from_form, PixelForm to_form>
void FillMoves(RunKernels* kernels) {
  kernels->copy[from_form][to_form] = CopyRun<from_form, to_form>;
  kernels->transpose[from_form][to_form] = Transpose<from_form, to_form>;
}

template <PixelForm from_form, PixelForm to_form>
void FillChanges(RunKernels* kernels) {
  kernels->copyMirrored[from_form][to_form] = CopyRunMirrored<from_form, to_form>;
  kernels->adjustHSV[from_form][to_form] = AdjustRunHSV<from_form, to_form>;
  kernels->adjustRGB[from_form][to_form] = AdjustRunRGB<from_form, to_form>;
  kernels->negative[from_form][to_form] = NegativeRun<from_form, to_form>;
  kernels->blend[from_form][to_form] = BlendRun<from_form, to_form>;
  kernels->blendColumns[from_form][to_form] = BlendColumns<from_form, to_form>;
  kernels->halve[from_form][to_form] = Halve<from_form, to_form>;
}

template <PixelForm form>
void FillForm(RunKernels* kernels) {
  FillMoves<form, kContextForm>(kernels);
  FillMoves<form, kBufferForm>(kernels);
  FillMoves<form, kWorkingForm>(kernels);
  kernels->boxes[form] = Boxes<form>;
  kernels->averageBoxes[form] = AverageBoxes<form>;
}

template <PixelForm form>
void FillStorageForm(RunKernels* kernels) {
  FillForm<form>(kernels);
  FillChanges<form, kContextForm>(kernels);
  FillChanges<form, kBufferForm>(kernels);
  kernels->sumRGB[form] = SumRunRGB<form>;
  kernels->sumHSV[form] = SumRunHSV<form>;
}

}  // namespace

void FillPlain(RunKernels* kernels) {
  kernels->level = "plain";
  FillStorageForm<kContextForm>(kernels);
  FillStorageForm<kBufferForm>(kernels);
  FillForm<kWorkingForm>(kernels);
  kernels->fill = FillRun;
  kernels->addToBoxes = AddToBoxes;
}
