// Methods on whole pictures of gigabytes. They take seconds each and up to 6 GiB of memory, so they
// run in scripts/endure, not in every build.
#include <sys/resource.h>

#include <cstdio>

#include "SparseFixture.h"

namespace {

using host::Colour;
using host::Picture;
using host::Storage;
using model::FlipRotated;
using model::Lines;

constexpr bool kHas64Bits = sizeof(void*) == 8;
// 3.4 GiB of pixels, or the most that fits into a 32-bit process twice.
constexpr int kSide = kHas64Bits ? 30000 : 15000;
constexpr int kRows = 64;  // rows of each band
constexpr int kStep = 101;
constexpr std::uint32_t kFrame = 0x20402010;

double GibibytesOf(int width, int height) {
  return 4.0 * width * height / (1 << 30);
}

// The working pixels after a temporary picture has stored them.
model::Picture Stored(const model::Picture& picture) {
  return model::Stored(picture, Storage::BitmapContext);
}

model::Picture Stretched(const model::Picture& source, int width, int height) {
  const model::Picture rows = model::Stretched(source, Lines::Rows, width, source.height);
  return model::Stretched(Stored(rows), Lines::Columns, width, height);
}

class Huge : public sparse::Pictures {
 protected:
  static void TearDownTestSuite() {
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    std::printf("%ld MiB resident at most\n", usage.ru_maxrss / 1024);
  }

  // Skips the test if there is not enough memory for the result or the changed source.
  void Prepare(int width, int height, double gibibytes) {
    if (!sparse::HasMemory(gibibytes)) GTEST_SKIP() << "takes " << gibibytes << " GiB of memory";
    source_ = MakeSource(width, height, kRows);
    if (!source_.picture) GTEST_SKIP() << "a process of this ABI has not enough addresses";
  }

  sparse::Source source_;
};

TEST_F(Huge, FlipRotate) {
  Prepare(kSide, kSide + 7, GibibytesOf(kSide, kSide + 7));
  for (int quarter = 0; quarter < 4 && !IsSkipped(); ++quarter) {
    for (const bool flipH : {false, true}) {
      SCOPED_TRACE(testing::Message() << quarter << " quarters" << (flipH ? ", mirrored" : ""));
      const Picture got = Make("FlipRotate", {source_.picture, flipH, false, 90 * quarter, 0});
      CheckRows(got, FlipRotated(source_.pixels, flipH, false, quarter), kStep);
    }
  }
}

TEST_F(Huge, FlipRotateOfMoreThan4GiB) {
  Prepare(33000, 33000, GibibytesOf(33000, 33000));
  for (int quarter = 0; quarter < 2 && !IsSkipped(); ++quarter) {
    const Picture got = Make("FlipRotate", {source_.picture, false, true, 90 * quarter, 0});
    CheckRows(got, FlipRotated(source_.pixels, false, true, quarter), kStep);
  }
}

TEST_F(Huge, ShearHorizontal) {
  Prepare(kSide, kSide, GibibytesOf(kSide, kSide));
  if (IsSkipped()) return;
  const Picture got = Make("ShearHorizontal", {source_.picture, kSide, kSide, 0.37, Colour{kFrame}, 0});
  CheckRows(got, model::Sheared(source_.pixels, Lines::Rows, kSide, kSide, 0.37, kFrame), kStep);
}

TEST_F(Huge, ShearVertical) {
  Prepare(kSide, kSide, GibibytesOf(kSide, kSide));
  if (IsSkipped()) return;
  const Picture got = Make("ShearVertical", {source_.picture, kSide, kSide, -0.73, Colour{kFrame}, 0});
  CheckRows(got, model::Sheared(source_.pixels, Lines::Columns, kSide, kSide, -0.73, kFrame), kStep);
}

// Three pictures exist at a time: the source and two that are written.
TEST_F(Huge, FreeRotateByShear) {
  constexpr int kLess = kHas64Bits ? 24000 : 11000;
  constexpr double kDegrees = 1.0;
  Prepare(kLess, kLess, 2.2 * GibibytesOf(kLess, kLess));
  if (IsSkipped()) return;
  const Picture got = Make("FreeRotateByShear", {source_.picture, kDegrees, Colour{0}, 0});
  model::Picture expected = source_.pixels;
  for (const model::RotationStep& step : model::RotationSteps(kLess, kLess, kDegrees)) {
    expected = step.make(Stored(expected), step.width, step.height);
  }
  CheckRows(got, expected, 5 * kStep);
}

TEST_F(Huge, StretchToLess) {
  Prepare(kSide, kSide, 1);
  if (IsSkipped()) return;
  const Picture got = Make("Stretch", {source_.picture, 301, 211, 0});
  CheckRows(got, Stretched(source_.pixels, 301, 211), 30);
  const Picture half = Make("Stretch", {source_.picture, kSide / 2, 19, 0});
  CheckRows(half, Stretched(source_.pixels, kSide / 2, 19), 18);
}

TEST_F(Huge, StretchToMore) {
  Prepare(70, 50, GibibytesOf(kSide, kSide));
  if (IsSkipped()) return;
  const sparse::Source all = MakeSource(70, kRows, kRows);
  const Picture got = Make("Stretch", {all.picture, kSide, kSide, 0});
  CheckRows(got, Stretched(all.pixels, kSide, kSide), 5 * kStep);
}

TEST_F(Huge, Trim) {
  Prepare(kSide, kSide, GibibytesOf(kSide, kSide));
  if (IsSkipped()) return;
  const Picture got = Make("Trim", {source_.picture, -5, 3, kSide, kSide, Colour{0}, 0});
  CheckRows(got, model::Trimmed(source_.pixels, {-5, 3, kSide, kSide}, 0), kStep);
}

// All adjustments, copying and in place, of everything except the first column and row.
TEST_F(Huge, Adjustments) {
  Prepare(kSide, kSide, GibibytesOf(kSide, kSide));
  if (IsSkipped()) return;
  const model::Rectangle most = {1, 1, kSide, kSide};
  const auto rgb = Adjusted(source_.pixels, most, model::RgbChange{30, -40, 50});
  const auto hsv = Adjusted(source_.pixels, most, model::HsvChange{123.0, 2.0, 1.0, false});
  CheckRows(Make("AdjustRGB", {source_.picture, 1, 1, kSide, kSide, 30, -40, 50, 0}), rgb, kStep);
  CheckRows(Make("AdjustHSV", {source_.picture, 1, 1, kSide, kSide, 123.0, 2.0, 1.0, false, 0}), hsv, kStep);
  host_.Call("AdjustHSV_InPlace", {source_.picture, 1, 1, kSide, kSide, 123.0, 2.0, 1.0, false, 0});
  CheckRows(source_.picture, hsv, kStep);
  source_ = {};
  Prepare(kSide, kSide, GibibytesOf(kSide, kSide));
  host_.Call("AdjustRGB_InPlace", {source_.picture, 1, 1, kSide, kSide, 30, -40, 50, 0});
  EXPECT_EQ(LastError(), 0);
  CheckRows(source_.picture, rgb, kStep);
}

// 2.1 thousand million pixels, so that both the sums and their count wrap.
TEST_F(Huge, Averages) {
  const int side = kHas64Bits ? 46341 : kSide;
  Prepare(side, side, 1);
  if (IsSkipped()) return;
  model::Sums sums;
  for (int y = 0; y < side; ++y) {
    if (source_.pixels.At(0, y) == 0) continue;
    for (int x = 0; x < side; ++x) sums.Add(source_.pixels.At(x, y));
  }
  sums.count = static_cast<std::int32_t>(static_cast<std::uint32_t>(std::int64_t{side} * side));
  const auto rgb = host_.Call("GetAverageRGB", {source_.picture, 0, 0, side, side, 0, 0, 0, 0}).arguments;
  const auto hsv = host_.Call("GetAverageHSV", {source_.picture, 0, 0, side, side, 0.0, 0.0, 0.0, 0}).arguments;
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(rgb[5 + i].AsInteger(), sums.MeanRgb()[i]);
    EXPECT_EQ(hsv[5 + i].AsDouble(), sums.MeanHsv()[i]);
  }
}

TEST_F(Huge, Gradients) {
  if (!sparse::HasMemory(GibibytesOf(kSide, kSide))) GTEST_SKIP() << "not enough memory";
  const std::uint32_t a = 0x00FF2040, b = 0x4010C0FF, c = 0xC0FFFFFF;
  CheckRows(Make("MakeGradient", {kSide, kSide, Colour{a}, Colour{b}, 0}), model::Gradient(kSide, kSide, {a, b}),
            kStep);
  CheckRows(Make("MakeDoubleGradient", {kSide, kSide, Colour{a}, Colour{b}, Colour{c}, 0}),
            model::Gradient(kSide, kSide, {a, b, c}), kStep);
}

}  // namespace
