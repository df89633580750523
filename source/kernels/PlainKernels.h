// The plain kernels: each applies the functions of LMX_Pixel.h n times. The wide kernels must equal
// them, and call them for pixels that the wide arithmetic does not cover.
//
// Everything is in an anonymous namespace and always inlined, so that no two levels share a
// function.
#pragma once

#include "RunKernels.h"

namespace {
namespace plain {

// ------------------------------------------------------------------------------------------- forms

struct ContextForm {
  static constexpr PixelForm kForm = kContextForm;
};
struct BufferForm {
  static constexpr PixelForm kForm = kBufferForm;
};
struct WorkingForm {
  static constexpr PixelForm kForm = kWorkingForm;
};

// Reads and writes one pixel of a form.
template <class Form>
LMX_ALWAYS_INLINE uint32_t Read(const uint8_t* pixel) {
  if constexpr (Form::kForm == kContextForm) {
    return LMX_Pixel::ReadContext(pixel);
  } else if constexpr (Form::kForm == kBufferForm) {
    return LMX_Pixel::ReadBuffer(pixel);
  } else {
    return LMX_Pixel::Load(pixel);
  }
}
template <class Form>
LMX_ALWAYS_INLINE void Write(uint8_t* to, uint32_t pixel) {
  if constexpr (Form::kForm == kContextForm) {
    LMX_Pixel::WriteContext(to, pixel);
  } else if constexpr (Form::kForm == kBufferForm) {
    LMX_Pixel::WriteBuffer(to, pixel);
  } else {
    LMX_Pixel::Store(to, pixel);
  }
}

// ------------------------------------------------------------------------------- pixel after pixel

// Reads, changes and writes n pixels.
template <class From, class To, class Change>
LMX_ALWAYS_INLINE void ChangeEach(uint8_t* to, const uint8_t* from, const Change& change, size_t n) {
  for (size_t i = 0; i < n; ++i) Write<To>(to + 4 * i, change(Read<From>(from + 4 * i)));
}

template <class From, class To>
LMX_ALWAYS_INLINE void Copy(uint8_t* to, const uint8_t* from, size_t n) {
  ChangeEach<From, To>(
      to, from, [](uint32_t pixel) LMX_INLINE_LAMBDA { return pixel; }, n);
}

template <class From, class To>
LMX_ALWAYS_INLINE void CopyMirrored(uint8_t* to, const uint8_t* from, size_t n) {
  for (size_t i = 0; i < n; ++i) Write<To>(to + 4 * i, Read<From>(from + 4 * (n - 1 - i)));
}

LMX_ALWAYS_INLINE void Fill(uint8_t* stored, const uint8_t* pixel, size_t n) {
  for (size_t i = 0; i < n; ++i) memcpy(stored + 4 * i, pixel, 4);
}

template <class From, class To>
LMX_ALWAYS_INLINE void AdjustHSV(uint8_t* to, const uint8_t* from, const HSVAdjustment* by, size_t n) {
  ChangeEach<From, To>(
      to, from, [by](uint32_t pixel) LMX_INLINE_LAMBDA { return LMX_Pixel::AdjustHSV(pixel, *by); }, n);
}

template <class From, class To>
LMX_ALWAYS_INLINE void AdjustRGB(uint8_t* to, const uint8_t* from, const RGBAdjustment* by, size_t n) {
  ChangeEach<From, To>(
      to, from, [by](uint32_t pixel) LMX_INLINE_LAMBDA { return LMX_Pixel::AdjustRGB(pixel, *by); }, n);
}

template <class From, class To>
LMX_ALWAYS_INLINE void Negative(uint8_t* to, const uint8_t* from, size_t n) {
  ChangeEach<From, To>(to, from, LMX_Pixel::Negative, n);
}

template <class From, class To>
LMX_ALWAYS_INLINE void Blend(uint8_t* to, const uint8_t* from, uint32_t before, uint32_t fraction, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    const uint32_t pixel = Read<From>(from + 4 * i);
    Write<To>(to + 4 * i, LMX_Pixel::Blend(pixel, before, fraction));
    before = pixel;
  }
}

// ----------------------------------------------------------------------------------------- columns

// One row of BlendColumns: n columns from column c on. Column i mixes the runs from[down[i]] and
// from[down[i] + 1].
template <class From, class To>
LMX_ALWAYS_INLINE void BlendRow(uint8_t* to, const uint8_t* const* from, const uint32_t* down, const uint32_t* fraction,
                                size_t c, size_t n) {
  for (size_t i = c; i < c + n; ++i) {
    const uint32_t above = Read<From>(from[down[i]] + 4 * i), pixel = Read<From>(from[down[i] + 1] + 4 * i);
    Write<To>(to + 4 * i, LMX_Pixel::Blend(pixel, above, fraction[i]));
  }
}

template <class From, class To>
LMX_ALWAYS_INLINE void BlendColumns(uint8_t* const* to, const uint8_t* const* from, const uint32_t* down,
                                    const uint32_t* fraction, size_t rows, size_t /*ahead*/, size_t n) {
  for (size_t r = 0; r < rows; ++r) BlendRow<From, To>(to[r], from + r, down, fraction, 0, n);
}

// The part of a transposition from row r and column c on.
template <class From, class To>
LMX_ALWAYS_INLINE void TransposePart(uint8_t* const* to, const uint8_t* const* from, size_t rows, size_t columns,
                                     size_t r, size_t c) {
  for (size_t j = c; j < c + columns; ++j) {
    for (size_t i = r; i < r + rows; ++i) Write<To>(to[j] + 4 * i, Read<From>(from[i] + 4 * j));
  }
}

template <class From, class To>
LMX_ALWAYS_INLINE void Transpose(uint8_t* const* to, const uint8_t* const* from, size_t rows, size_t /*ahead*/,
                                 size_t columns) {
  TransposePart<From, To>(to, from, rows, columns, 0, 0);
}

// -------------------------------------------------------------------------------------------- sums

template <class Form>
LMX_ALWAYS_INLINE void SumRGB(RGBSums* sums, const uint8_t* stored, size_t n) {
  for (size_t i = 0; i < n; ++i) LMX_Pixel::AddRGB(sums, Read<Form>(stored + 4 * i));
}

template <class Form>
LMX_ALWAYS_INLINE void SumHSV(HSVSums* sums, const uint8_t* stored, size_t n) {
  for (size_t i = 0; i < n; ++i) LMX_Pixel::AddHSV(sums, Read<Form>(stored + 4 * i));
}

// ------------------------------------------------------------------------------------------- boxes

template <class To>
LMX_ALWAYS_INLINE void Boxes(uint8_t* const* to, const uint8_t* const* runs, const BoxUnits* units, size_t count,
                             size_t n) {
  BoxWalk walk(*units);
  for (size_t i = 0; i < count; ++i) {
    const Box box = walk.Next();
    if (box.count == 1) {
      Copy<WorkingForm, To>(to[i], runs[0], n);  // the average of one pixel
    } else {
      for (size_t x = 0; x < n; ++x) {
        uint32_t sums[4] = {};
        for (size_t run = 0; run < box.count; ++run) {
          const uint32_t taken = run == 0 ? box.first : run + 1 < box.count ? units->ofRun : box.last;
          LMX_Pixel::AddToBox(sums, LMX_Pixel::Load(runs[run] + 4 * x), taken);
        }
        Write<To>(to[i] + 4 * x, LMX_Pixel::BoxAverage(sums, units->ofBox));
      }
    }
    runs += box.advance;
  }
}

LMX_ALWAYS_INLINE void AddToBoxes(uint32_t* sums, const uint8_t* const* runs, size_t count, uint32_t units, size_t n) {
  for (size_t run = 0; run < count; ++run) {
    for (size_t i = 0; i < n; ++i) LMX_Pixel::AddToBox(sums + 4 * i, LMX_Pixel::Load(runs[run] + 4 * i), units);
  }
}

template <class To>
LMX_ALWAYS_INLINE void AverageBoxes(uint8_t* to, const uint32_t* sums, uint32_t units, size_t n) {
  for (size_t i = 0; i < n; ++i) Write<To>(to + 4 * i, LMX_Pixel::BoxAverage(sums + 4 * i, units));
}

template <class From, class Through>
LMX_ALWAYS_INLINE void Halve(uint8_t* to, const uint8_t* from, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    uint32_t sums[4] = {};
    LMX_Pixel::AddToBox(sums, Read<From>(from + 8 * i), 1);
    LMX_Pixel::AddToBox(sums, Read<From>(from + 8 * i + 4), 1);
    uint8_t stored[4];
    Write<Through>(stored, LMX_Pixel::BoxAverage(sums, 2));
    LMX_Pixel::Store(to + 4 * i, Read<Through>(stored));
  }
}

}  // namespace plain
}  // namespace
