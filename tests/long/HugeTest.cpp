// Methods on whole pictures of gigabytes, which take seconds each and up to 6 GiB of memory: no
// test of a build, but of scripts/endure.
#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <cstdio>

#include "SparseFixture.h"
#include "support/Model.h"

namespace {

using host::Colour;
using host::Picture;
using lazy::FlipRotated;

constexpr bool kHas64Bits = sizeof(void*) == 8;
// 3.4 GiB of pixels, or what a 32-bit process has room for twice.
constexpr int kSide = kHas64Bits ? 30000 : 15000;
constexpr int kRows = 64;  // of each band
constexpr int kStep = 101;
constexpr std::uint32_t kFrame = 0x20402010;

double GibibytesOf(int width, int height) {
  return 4.0 * width * height / (1 << 30);
}

class Huge : public sparse::Pictures {
 protected:
  static void TearDownTestSuite() {
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    std::printf("%ld MiB resident at most\n", usage.ru_maxrss / 1024);
  }

  // Skips where a result, or the source that is changed, has no room.
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
      CheckRows(got, FlipRotated(source_.lazy, flipH, false, quarter), kStep);
    }
  }
}

TEST_F(Huge, FlipRotateOfMoreThan4GiB) {
  Prepare(33000, 33000, GibibytesOf(33000, 33000));
  for (int quarter = 0; quarter < 2 && !IsSkipped(); ++quarter) {
    const Picture got = Make("FlipRotate", {source_.picture, false, true, 90 * quarter, 0});
    CheckRows(got, FlipRotated(source_.lazy, false, true, quarter), kStep);
  }
}

TEST_F(Huge, ShearHorizontal) {
  Prepare(kSide, kSide, GibibytesOf(kSide, kSide));
  if (IsSkipped()) return;
  const Picture got = Make("ShearHorizontal", {source_.picture, kSide, kSide, 0.37, Colour{kFrame}, 0});
  CheckRows(got, lazy::ShearedHorizontally(source_.lazy, kSide, kSide, 0.37, kFrame), kStep);
}

TEST_F(Huge, ShearVertical) {
  Prepare(kSide, kSide, GibibytesOf(kSide, kSide));
  if (IsSkipped()) return;
  const Picture got = Make("ShearVertical", {source_.picture, kSide, kSide, -0.73, Colour{kFrame}, 0});
  CheckRows(got, lazy::ShearedVertically(source_.lazy, kSide, kSide, -0.73, kFrame), kStep);
}

// Three pictures at a time, the source and two that are written.
TEST_F(Huge, FreeRotateByShear) {
  constexpr int kLess = kHas64Bits ? 24000 : 11000;
  constexpr double kDegrees = 1.0;
  Prepare(kLess, kLess, 2.2 * GibibytesOf(kLess, kLess));
  if (IsSkipped()) return;
  const Picture got = Make("FreeRotateByShear", {source_.picture, kDegrees, Colour{0}, 0});
  ASSERT_TRUE(got);
  CheckRows(got, lazy::Rotated(source_.lazy, kDegrees, got.Width(), got.Height()), 5 * kStep);
}

TEST_F(Huge, StretchToLess) {
  Prepare(kSide, kSide, 1);
  if (IsSkipped()) return;
  const Picture got = Make("Stretch", {source_.picture, 301, 211, 0});
  CheckRows(got, lazy::Stretched(source_.lazy, 301, 211), 30);
  const Picture half = Make("Stretch", {source_.picture, kSide / 2, 19, 0});
  CheckRows(half, lazy::Stretched(source_.lazy, kSide / 2, 19), 18);
}

TEST_F(Huge, StretchToMore) {
  Prepare(70, 50, GibibytesOf(kSide, kSide));
  if (IsSkipped()) return;
  const sparse::Source all = MakeSource(70, kRows, kRows);
  const Picture got = Make("Stretch", {all.picture, kSide, kSide, 0});
  CheckRows(got, lazy::Stretched(all.lazy, kSide, kSide), 5 * kStep);
}

TEST_F(Huge, Trim) {
  Prepare(kSide, kSide, GibibytesOf(kSide, kSide));
  if (IsSkipped()) return;
  const Picture got = Make("Trim", {source_.picture, -5, 3, kSide, kSide, Colour{0}, 0});
  CheckRows(got, lazy::Trimmed(source_.lazy, -5, 3, kSide, kSide), kStep);
}

// The copies and the changes in place, of all but the first column and row.
TEST_F(Huge, Adjustments) {
  Prepare(kSide, kSide, GibibytesOf(kSide, kSide));
  if (IsSkipped()) return;
  const auto changedBy = [this](auto define) {
    const lazy::Picture& source = source_.lazy;
    return lazy::Picture{source.width, source.height, [&source, define](std::int64_t x, std::int64_t y) {
                           model::StoredPicture pixel(model::Form::BitmapContext, 1, 1, source.word(x, y));
                           return x == 0 || y == 0 ? pixel.words[0] : define(pixel).changed->words[0];
                         }};
  };
  const auto rgb = changedBy([](const model::StoredPicture& pixel) {
    return model::AdjustRgbInPlace(&pixel, {0, 0, 0, 0}, {30, -40, 50}, 0);
  });
  const auto hsv = changedBy([](const model::StoredPicture& pixel) {
    return model::AdjustHsvInPlace(&pixel, {0, 0, 0, 0}, {123.0, 2.0, 1.0, false}, 0);
  });
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

// 2.1 thousand million pixels, so that not only the sums wrap, but also their count.
TEST_F(Huge, Averages) {
  const int side = kHas64Bits ? 46341 : kSide;
  Prepare(side, side, 1);
  if (IsSkipped()) return;
  std::array<std::uint32_t, 3> sums = {};
  double saturation = 0, brightness = 0;
  for (int y = 0; y < side; ++y) {
    if (source_.lazy.word(0, y) == 0) continue;
    for (int x = 0; x < side; ++x) {
      const std::uint32_t word = source_.lazy.word(x, y);
      std::array<std::uint32_t, 3> channels = {word >> 16 & 0xFF, word >> 8 & 0xFF, word & 0xFF};
      for (std::size_t i = 0; i < 3; ++i) sums[i] += channels[i];
      const double greatest = *std::max_element(channels.begin(), channels.end());
      const double least = *std::min_element(channels.begin(), channels.end());
      saturation += greatest == 0 ? 0 : (greatest - least) / greatest;
      brightness += greatest / 256;
    }
  }
  const auto count = static_cast<std::int32_t>(static_cast<std::uint32_t>(std::int64_t{side} * side));
  const auto rgb = host_.Call("GetAverageRGB", {source_.picture, 0, 0, side, side, 0, 0, 0, 0}).arguments;
  const auto hsv = host_.Call("GetAverageHSV", {source_.picture, 0, 0, side, side, 0.0, 0.0, 0.0, 0}).arguments;
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(rgb[5 + i].AsInteger(), static_cast<std::int32_t>(sums[i]) / count);
  EXPECT_EQ(hsv[6].AsDouble(), saturation / count);
  EXPECT_EQ(hsv[7].AsDouble(), brightness / count);
}

TEST_F(Huge, Gradients) {
  if (!sparse::HasMemory(GibibytesOf(kSide, kSide))) GTEST_SKIP() << "not enough memory";
  const std::uint32_t a = 0x00FF2040, b = 0x4010C0FF, c = 0xC0FFFFFF;
  const auto make = [](std::size_t, int width, int height) {
    return model::StoredPicture(model::Form::BitmapContext, width, height);
  };
  const auto column = [](const model::Outcome& narrow) {
    return lazy::Picture{kSide, kSide, [words = narrow.made[0].words](std::int64_t, std::int64_t y) {
                           return words[static_cast<std::size_t>(y)];
                         }};
  };
  CheckRows(Make("MakeGradient", {kSide, kSide, Colour{a}, Colour{b}, 0}),
            column(model::MakeGradient(1, kSide, a, b, 0, make)), kStep);
  CheckRows(Make("MakeDoubleGradient", {kSide, kSide, Colour{a}, Colour{b}, Colour{c}, 0}),
            column(model::MakeDoubleGradient(1, kSide, a, b, c, 0, make)), kStep);
}

}  // namespace
