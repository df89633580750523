// Runs of pixels against what they mean pixel by pixel: inside both pictures, reaching over any of their edges, beside
// them, and longer than what is taken at a time.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "FakeHost.h"
#include "LMX_Runs.h"
#include "support/Random.h"

namespace {

constexpr std::int32_t kWidth = 1300;  // more than two of the pieces in which runs go that are not inside
constexpr std::int32_t kHeight = 3;

// A picture of either form, with any pixels that a host may give it.
class TestPicture {
 public:
  TestPicture(bool isBuffer, Random& random) {
    if (isBuffer) {
      buffer_ = std::make_unique<fake::Buffer>(kWidth, kHeight);
    } else {
      context_ = std::make_unique<fake::Context>(kWidth, kHeight);
    }
    wrapper = std::make_unique<LMX_Picture>(isBuffer ? buffer_->Handle() : context_->Handle());
    EXPECT_TRUE(wrapper->Lock());
    for (std::int32_t y = 0; y < kHeight; ++y) {
      for (std::int32_t x = 0; x < kWidth; ++x) {
        const std::uint32_t alpha = random.Below(3) == 0 ? random.Below(256) : 255;
        wrapper->WritePixel(wrapper->RowAddress(y) + 4 * x, alpha << 24 | (random.Word() & 0xFFFFFF));
      }
    }
  }

  /// The working pixel there, clear where the picture ends.
  std::uint32_t Read(std::int32_t x, std::int32_t y) const {
    const bool isInside = x >= 0 && x < kWidth && y >= 0 && y < kHeight;
    return isInside ? wrapper->ReadPixel(wrapper->RowAddress(y) + 4 * x) : 0;
  }

  std::vector<std::uint8_t> Bytes() const {
    std::vector<std::uint8_t> bytes;
    for (std::int32_t y = 0; y < kHeight; ++y) {
      bytes.insert(bytes.end(), wrapper->RowAddress(y), wrapper->RowAddress(y) + 4 * kWidth);
    }
    return bytes;
  }

 private:
  std::unique_ptr<fake::Buffer> buffer_;
  std::unique_ptr<fake::Context> context_;

 public:
  std::unique_ptr<LMX_Picture> wrapper;  // goes first, and unlocks one of them
};

// Where a run is read and written.
struct Places {
  PixelPosition to;
  PixelPosition from;
  std::int32_t n;
};

using Operation = std::function<void(const Places&)>;
// The i-th working pixel that is written, from those of the source's row, of which 0 is the first that is read.
using Meaning = std::function<std::uint32_t(const std::function<std::uint32_t(std::int32_t)>& read, std::int32_t i,
                                            std::int32_t n)>;

class RunsTest : public testing::Test {
 protected:
  void SetUp() override { fake::StartPlugin(); }

  static void Check(const Operation& operation, const Meaning& meaning) {
    Random random(1);
    for (const int forms : {0, 1, 2, 3}) {
      for (const std::int32_t n : {0, 1, 2, 511, 512, 513, 1024, 1025, 1200, kWidth, 2 * kWidth}) {
        for (int trial = 0; trial < 6; ++trial) {
          TestPicture source(forms % 2 != 0, random), result(forms / 2 != 0, random);
          const std::int32_t fromX = random.Between(-700, 700), toX = random.Between(-700, 700);
          const std::int32_t fromY = random.Between(-1, kHeight), toY = random.Between(-1, kHeight);
          const bool isInside = trial < 2;  // both runs, if there is room for them
          CheckOnce(
              operation, meaning, source, result,
              {{*result.wrapper, isInside ? std::max(0, std::min(toX, kWidth - n)) : toX, isInside ? 1 : toY},
               {*source.wrapper, isInside ? std::max(0, std::min(fromX, kWidth - n)) : fromX, isInside ? 2 : fromY},
               n});
          if (HasFailure()) return;
        }
      }
    }
  }

 private:
  static void CheckOnce(const Operation& operation, const Meaning& meaning, const TestPicture& source,
                        const TestPicture& result, const Places& at) {
    SCOPED_TRACE(testing::Message() << at.n << " pixels from (" << at.from.x << ", " << at.from.y << ") to (" << at.to.x
                                    << ", " << at.to.y << "), forms " << FormOf(at.from.picture) << " and "
                                    << FormOf(at.to.picture));
    std::vector<std::uint8_t> expected = result.Bytes();
    const auto read = [&](std::int32_t i) { return source.Read(at.from.x + i, at.from.y); };
    for (std::int32_t i = 0; i < at.n; ++i) {
      const std::int32_t x = at.to.x + i;
      if (x < 0 || x >= kWidth || at.to.y < 0 || at.to.y >= kHeight) continue;
      at.to.picture.WritePixel(&expected[static_cast<std::size_t>(4 * (at.to.y * kWidth + x))], meaning(read, i, at.n));
    }
    const std::vector<std::uint8_t> before = source.Bytes();
    operation(at);
    EXPECT_TRUE(result.Bytes() == expected);
    EXPECT_TRUE(source.Bytes() == before) << "the source has changed";
  }
};

TEST_F(RunsTest, Copies) {
  Check([](const Places& at) { CopyRun(at.to, at.from, at.n); },
        [](auto& read, std::int32_t i, std::int32_t) { return read(i); });
}

TEST_F(RunsTest, CopiesMirrored) {
  Check([](const Places& at) { CopyRunMirrored(at.to, at.from, at.n); },
        [](auto& read, std::int32_t i, std::int32_t n) { return read(n - 1 - i); });
}

TEST_F(RunsTest, ReadsAndWrites) {
  Check(
      [](const Places& at) {
        std::vector<std::uint32_t> working(static_cast<std::size_t>(at.n), 0x12345678);
        ReadRun(at.from.picture, at.from.x, at.from.y, at.n, working.data());
        WriteRun(at.to.picture, at.to.x, at.to.y, at.n, working.data());
      },
      [](auto& read, std::int32_t i, std::int32_t) { return read(i); });
}

TEST_F(RunsTest, Fills) {
  Check([](const Places& at) { FillRun(at.to.picture, at.to.x, at.to.y, at.n, 0x80FF4020); },
        [](auto&, std::int32_t, std::int32_t) { return 0x80FF4020u; });
}

TEST_F(RunsTest, Adjusts) {
  const HSVAdjustment hsv = {1000, 2048, 1024};
  Check([&](const Places& at) { AdjustRun(at.to, at.from, at.n, hsv); },
        [&](auto& read, std::int32_t i, std::int32_t) { return LMX_Pixel::AdjustHSV(read(i), hsv); });
  const RGBAdjustment rgb = {30, -20, 255};
  Check([&](const Places& at) { AdjustRun(at.to, at.from, at.n, rgb); },
        [&](auto& read, std::int32_t i, std::int32_t) { return LMX_Pixel::AdjustRGB(read(i), rgb); });
  Check([](const Places& at) { NegateRun(at.to, at.from, at.n); },
        [](auto& read, std::int32_t i, std::int32_t) { return LMX_Pixel::Negative(read(i)); });
}

TEST_F(RunsTest, Blends) {
  Check([](const Places& at) { BlendRun(at.to, at.from, at.n, 0xFF203040, 20000); },
        [](auto& read, std::int32_t i, std::int32_t) {
          return LMX_Pixel::Blend(read(i), i == 0 ? 0xFF203040 : read(i - 1), 20000);
        });
}

TEST_F(RunsTest, Halves) {
  Check([](const Places& at) { HalveRun(at.to, at.from, at.n); },
        [](auto& read, std::int32_t i, std::int32_t) {
          std::uint32_t sums[4] = {};
          for (const std::int32_t j : {2 * i, 2 * i + 1}) LMX_Pixel::AddToBox(sums, read(j), 1);
          return LMX_Pixel::BoxAverage(sums, 2);
        });
}

TEST_F(RunsTest, SumsWhatIsInside) {
  Random random(2);
  for (const bool isBuffer : {false, true}) {
    const TestPicture picture(isBuffer, random);
    for (const std::int32_t x : {-40, 0, 7, 1290}) {
      for (const std::int32_t y : {-1, 0, kHeight - 1, kHeight}) {
        SCOPED_TRACE(testing::Message() << "from (" << x << ", " << y << ")");
        RGBSums rgb = {1, 2, 3}, expectedRgb = rgb;
        HSVSums hsv = {{4, 5, 6}, 0.5, 0.25}, expectedHsv = hsv;
        constexpr std::int32_t kCount = 600;
        for (std::int32_t i = std::max(x, 0); i < std::min(x + kCount, kWidth) && y >= 0 && y < kHeight; ++i) {
          LMX_Pixel::AddRGB(&expectedRgb, picture.Read(i, y));
          LMX_Pixel::AddHSV(&expectedHsv, picture.Read(i, y));
        }
        SumRun({*picture.wrapper, x, y}, kCount, &rgb);
        SumRun({*picture.wrapper, x, y}, kCount, &hsv);
        for (const auto channel : {&RGBSums::red, &RGBSums::green, &RGBSums::blue}) {
          EXPECT_EQ(rgb.*channel, expectedRgb.*channel);
          EXPECT_EQ(hsv.rgb.*channel, expectedHsv.rgb.*channel);
        }
        EXPECT_EQ(hsv.saturation, expectedHsv.saturation);
        EXPECT_EQ(hsv.brightness, expectedHsv.brightness);
      }
    }
  }
}

}  // namespace
