// Runs of pixels compared with pixel-by-pixel loops: inside both pictures, across any of their
// edges, outside them, longer than one piece, and in rows that a picture lacks.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <iterator>
#include <new>
#include <vector>

#include "LMX_Runs.h"
#include "LinkedTest.h"
#include "support/Random.h"

namespace {

using host::Defects;

constexpr std::int32_t kWidth = 1300;  // more than two pieces, in which runs are processed that are not inside
constexpr std::int32_t kHeight = 3;

// Buffers can lack rows: row y if bit y modulo 32 of `missing` is set.
host::PictureShape ShapeOf(bool isBuffer, std::int32_t width, std::int32_t height, unsigned missing) {
  std::vector<int> rows;
  for (std::int32_t y = 0; y < height; ++y) {
    if ((missing >> y % 32 & 1) != 0) rows.push_back(y);
  }
  return isBuffer ? Buffer(width, height, WithoutRows(rows)) : Context(width, height);
}

// A picture of either form with any content that a host may give it.
struct TestPicture : LockedPicture {
  TestPicture(bool isBuffer, Random& random, std::int32_t width = kWidth, std::int32_t height = kHeight,
              unsigned missing = 0)
      : LockedPicture(ShapeOf(isBuffer, width, height, missing)) {
    for (std::int32_t y = 0; y < height; ++y) {
      for (std::int32_t x = 0; x < width; ++x) {
        const std::uint32_t alpha = random.Below(3) == 0 ? random.Below(256) : 255;
        wrapper.WritePixel(picture.PixelAddress(x, y), alpha << 24 | (random.Word() & 0xFFFFFF));
      }
    }
  }

  bool Holds(std::int32_t x, std::int32_t y) const {
    return x >= 0 && x < wrapper.width && y >= 0 && y < wrapper.height && wrapper.RowAddress(y) != nullptr;
  }

  /// The working pixel at a place; clear outside the picture and in missing rows.
  std::uint32_t Read(std::int32_t x, std::int32_t y) const {
    return Holds(x, y) ? wrapper.ReadPixel(wrapper.RowAddress(y) + 4 * x) : 0;
  }

  /// All bytes of a picture that lacks no row.
  std::vector<std::uint8_t> Bytes() const {
    std::vector<std::uint8_t> bytes;
    for (std::int32_t y = 0; y < wrapper.height; ++y) {
      bytes.insert(bytes.end(), wrapper.RowAddress(y), wrapper.RowAddress(y) + 4 * wrapper.width);
    }
    return bytes;
  }
};

// The places from which a run is read and to which it is written.
struct Places {
  PixelPosition to;
  PixelPosition from;
  std::int32_t n;
};

using Operation = std::function<void(const Places&)>;
// The working pixel that is written at place i. read(0) is the first pixel that the run reads from
// the source's row.
using Meaning = std::function<std::uint32_t(const std::function<std::uint32_t(std::int32_t)>& read, std::int32_t i,
                                            std::int32_t n)>;

class RunsTest : public LinkedTest {
 protected:
  static void Check(const Operation& operation, const Meaning& meaning) {
    Random random(1);
    for (const int forms : {0, 1, 2, 3}) {
      for (const std::int32_t n : {0, 1, 2, 511, 512, 513, 1024, 1025, 1200, kWidth, 2 * kWidth}) {
        for (int trial = 0; trial < 6; ++trial) {
          TestPicture source(forms % 2 != 0, random), result(forms / 2 != 0, random);
          const std::int32_t fromX = random.Between(-700, 700), toX = random.Between(-700, 700);
          const std::int32_t fromY = random.Between(-1, kHeight), toY = random.Between(-1, kHeight);
          const bool isInside = trial < 2;  // both runs, if the pictures are large enough
          CheckOnce(
              operation, meaning, source, result,
              {{result.wrapper, isInside ? std::max(0, std::min(toX, kWidth - n)) : toX, isInside ? 1 : toY},
               {source.wrapper, isInside ? std::max(0, std::min(fromX, kWidth - n)) : fromX, isInside ? 2 : fromY},
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
  Check(
      [](const Places& at) { FillRun(at.to.picture, at.to.x, at.to.y, at.n, StoredPixel(at.to.picture, 0x80FF4020)); },
      [](auto&, std::int32_t, std::int32_t) { return 0x80FF4020u; });
}

TEST_F(RunsTest, Adjusts) {
  const HSVAdjustment hsv = {1000, 2048, 1024};
  Check([&](const Places& at) { AdjustRun(at.to, at.from, at.n, hsv); },
        [&](auto& read, std::int32_t i, std::int32_t) { return LMX_Pixel::AdjustHSV(read(i), hsv); });
  const RGBAdjustment rgb = {30, -20, 255};
  Check([&](const Places& at) { AdjustRun(at.to, at.from, at.n, rgb); },
        [&](auto& read, std::int32_t i, std::int32_t) { return LMX_Pixel::AdjustRGB(read(i), rgb); });
  Check([](const Places& at) { NegateRun(at.to, at.from, at.n, nullptr); },
        [](auto& read, std::int32_t i, std::int32_t) { return LMX_Pixel::Negative(read(i)); });
  Check([&](const Places& at) { NegateRun(at.to, at.from, at.n, &hsv); },
        [&](auto& read, std::int32_t i, std::int32_t) {
          return LMX_Pixel::Negative(LMX_Pixel::AdjustHSV(read(i), hsv));
        });
}

TEST_F(RunsTest, Blends) {
  Check([](const Places& at) { BlendRun(at.to, at.from, at.n, 0xFF203040, 20000); },
        [](auto& read, std::int32_t i, std::int32_t) {
          return LMX_Pixel::Blend(read(i), i == 0 ? 0xFF203040 : read(i - 1), 20000);
        });
}

// A working pixel, written in a form and read back.
std::uint32_t Through(PixelForm form, std::uint32_t pixel) {
  std::uint8_t stored[4];
  form == kContextForm ? LMX_Pixel::WriteContext(stored, pixel) : LMX_Pixel::WriteBuffer(stored, pixel);
  return form == kContextForm ? LMX_Pixel::ReadContext(stored) : LMX_Pixel::ReadBuffer(stored);
}

std::uint8_t* Bytes(std::uint32_t* pixels) {
  return reinterpret_cast<std::uint8_t*>(pixels);
}

TEST_F(RunsTest, Halves) {
  for (const PixelForm form : {kContextForm, kBufferForm}) {
    Check(
        [form](const Places& at) {
          std::vector<std::uint32_t> working(static_cast<std::size_t>(at.n) + 1);
          HalveRun(Bytes(working.data()), at.from, at.n, form);
          WriteRun(at.to.picture, at.to.x, at.to.y, at.n, working.data());
        },
        [form](auto& read, std::int32_t i, std::int32_t) {
          std::uint32_t sums[4] = {};
          for (const std::int32_t j : {2 * i, 2 * i + 1}) LMX_Pixel::AddToBox(sums, read(j), 1);
          return Through(form, LMX_Pixel::BoxAverage(sums, 2));
        });
  }
}

// Rows of a picture, anywhere, as runs of its columns. Runs as columns of another picture, or as
// rows of working pixels.
TEST_F(RunsTest, ColumnsAreRuns) {
  Random random(5);
  std::uint32_t pixels[kTile][kTile], turned[kTile][kTile];
  std::uint8_t *columns[kTile], *rows[kTile];
  for (std::int32_t i = 0; i < kTile; ++i) columns[i] = Bytes(pixels[i]), rows[i] = Bytes(turned[i]);
  for (int trial = 0; trial < 300; ++trial) {
    const TestPicture source(trial % 2 != 0, random), result(trial / 2 % 2 != 0, random);
    const std::int32_t n = random.Between(1, kTile), lines = random.Between(1, kHeight);
    const std::int32_t x = random.OneOf({0, -3, 7, kWidth - n, kWidth - 5}), y = random.Between(-1, 1);
    SCOPED_TRACE(testing::Message() << n << " columns of " << lines << " from (" << x << ", " << y << ")");
    ReadColumns({source.wrapper, x, y}, n, lines, columns);
    for (std::int32_t i = 0; i < n; ++i) {
      for (std::int32_t j = 0; j < lines; ++j) ASSERT_EQ(pixels[i][j], source.Read(x + i, y + j)) << i << ", " << j;
    }
    std::vector<std::uint8_t> expected = result.Bytes();
    for (std::int32_t i = 0; i < n; ++i) {
      for (std::int32_t j = 0; j < lines; ++j) {
        result.wrapper.WritePixel(columns[i] + 4 * j, pixels[i][j]);
        if (!result.Holds(x + i, y + j)) continue;
        std::copy_n(columns[i] + 4 * j, 4, &expected[static_cast<std::size_t>(4 * ((y + j) * kWidth + x + i))]);
      }
    }
    WriteColumns({result.wrapper, x, y}, n, lines, columns);
    ASSERT_TRUE(result.Bytes() == expected);
    ColumnsToRows(rows, columns, FormOf(result.wrapper), n, lines);
    for (std::int32_t i = 0; i < n; ++i) {
      for (std::int32_t j = 0; j < lines; ++j) {
        ASSERT_EQ(turned[j][i], result.wrapper.ReadPixel(columns[i] + 4 * j)) << i << ", " << j;
      }
    }
  }
}

// Columns of one picture become rows of another, in both directions: all inside, across any edge,
// and with missing rows, at which the walk stops.
TEST_F(RunsTest, ColumnsBecomeRows) {
  constexpr std::int32_t kLong = 150;  // more than two pieces, in which runs are processed
  Random random(6);
  for (int trial = 0; trial < 100; ++trial) {
    const bool isBuffer = trial % 2 != 0;
    const bool isInside = trial / 4 % 2 != 0;
    const unsigned missing = isBuffer && !isInside ? random.Word() & random.Word() & random.Word() : 0;
    const TestPicture source(isBuffer, random, 300, kLong, missing);
    const TestPicture result(trial / 2 % 2 != 0, random, kLong, 300);
    const std::int32_t n = random.OneOf({1, 7, 16, 64, 65, 256}), pixels = isInside ? kLong : random.Between(1, kLong);
    const std::int32_t x = isInside ? 300 - n : random.Between(-20, 300), toX = isInside ? 0 : random.Between(-90, 90);
    const std::int32_t rowStep = random.OneOf({1, -1}), y = rowStep < 0 ? 299 : isInside ? 0 : random.Between(-9, 99);
    const auto direction = random.OneOf({ColumnWalk::kDown, ColumnWalk::kUp});
    const ColumnWalk walk(source.wrapper, direction == ColumnWalk::kDown ? 0 : kLong - 1, direction);
    SCOPED_TRACE(testing::Message() << n << " columns of " << pixels << " from " << x << " to (" << toX << ", " << y
                                    << "), steps " << direction << " and " << rowStep);
    std::vector<std::uint8_t> expected = result.Bytes();
    ColumnWalk along = walk;
    for (std::int32_t i = 0; i < pixels; ++i, along.Next()) {
      for (std::int32_t j = 0; j < n; ++j) {
        const std::int32_t row = y + j * rowStep;
        if (!result.Holds(toX + i, row)) continue;
        result.wrapper.WritePixel(&expected[static_cast<std::size_t>(4 * (row * kLong + toX + i))],
                                  source.Read(x + j, along.Row()));
      }
    }
    TransposeRuns({result.wrapper, toX, y}, rowStep, walk, x, n, pixels);
    ASSERT_TRUE(result.Bytes() == expected);
  }
}

// Columns are displaced along themselves, each by its own number of rows and fraction. Nothing else
// changes.
TEST_F(RunsTest, ColumnsAreBlendedWithWhatIsAbove) {
  constexpr std::int32_t kWide = 40, kHigh = 170;
  Random random(7);
  for (int trial = 0; trial < 200; ++trial) {
    const TestPicture source(trial % 2 != 0, random, kWide, kHigh);
    const TestPicture result(trial / 2 % 2 != 0, random, kWide, kHigh);
    const std::int32_t n = random.Between(1, kMostColumns), rows = random.OneOf({0, 1, 16, 63, 64, 65, 140});
    ColumnShears shears = {};
    for (std::int32_t c = 0, down = random.OneOf({0, 8}); c < n; ++c) {
      shears.down[c] = static_cast<std::uint32_t>(down);
      shears.fraction[c] = random.OneOf({0u, 1u, 65535u, static_cast<unsigned>(random.Below(65536))});
      down = std::max(down + random.Between(-1, 1), 0);
    }
    const std::int32_t x = random.Between(0, kWide - n), toX = random.Between(0, kWide - n);
    const std::int32_t y = random.Between(0, 3), toY = random.Between(0, kHigh - rows);
    SCOPED_TRACE(testing::Message() << rows << " rows of " << n << " columns from (" << x << ", " << y << ") to ("
                                    << toX << ", " << toY << ")");
    std::vector<std::uint8_t> expected = result.Bytes();
    for (std::int32_t r = 0; r < rows; ++r) {
      for (std::int32_t c = 0; c < n; ++c) {
        const std::int32_t above = y + r + static_cast<std::int32_t>(shears.down[c]);
        const std::uint32_t blended =
            LMX_Pixel::Blend(source.Read(x + c, above + 1), source.Read(x + c, above), shears.fraction[c]);
        result.wrapper.WritePixel(&expected[static_cast<std::size_t>(4 * ((toY + r) * kWide + toX + c))], blended);
      }
    }
    BlendColumns({result.wrapper, toX, toY}, {source.wrapper, x, y}, n, rows, shears);
    ASSERT_TRUE(result.Bytes() == expected);
  }
}

// Whatever the stack contained before.
TEST_F(RunsTest, SumsOfRunsBeginAtNothing) {
  for (const std::int32_t n : {1, 15, 16, 17, RunSums::kMostSums - 1, RunSums::kMostSums}) {
    SCOPED_TRACE(n);
    std::vector<std::uint32_t> first, second, averages(static_cast<std::size_t>(n));
    for (std::uint32_t i = 0; i < static_cast<std::uint32_t>(n); ++i) {
      first.push_back(i * 0x01030507);
      second.push_back(~i * 0x05010B03);
    }
    alignas(RunSums) std::uint8_t memory[sizeof(RunSums)];
    std::fill(std::begin(memory), std::end(memory), std::uint8_t{0xA5});
    RunSums* const sums = new (memory) RunSums(n);
    const std::uint8_t* const runs[] = {Bytes(first.data()), Bytes(second.data())};
    sums->Add(runs, 1, 20000);
    sums->Add(runs + 1, 1, 12768);
    sums->Average(Bytes(averages.data()), kWorkingForm, 32768);
    for (std::size_t i = 0; i < averages.size(); ++i) {
      std::uint32_t expected[4] = {};
      LMX_Pixel::AddToBox(expected, first[i], 20000);
      LMX_Pixel::AddToBox(expected, second[i], 12768);
      ASSERT_EQ(averages[i], LMX_Pixel::BoxAverage(expected, 32768)) << i;
    }
  }
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
        SumRun({picture.wrapper, x, y}, kCount, &rgb);
        SumRun({picture.wrapper, x, y}, kCount, &hsv);
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

// ------------------------------------------------------------------------------- several at a time

constexpr std::int32_t kRun = 7;

// Calls check(picture, x) for pictures of both forms that may lack any row, and for runs across any
// of their edges.
void ForGroups(const std::function<void(const TestPicture&, std::int32_t x)>& check) {
  Random random(3);
  for (const bool isBuffer : {false, true}) {
    for (unsigned missing = 0; missing < (isBuffer ? 1u << kHeight : 1u); ++missing) {
      for (const std::int32_t x : {-kRun - 1, -3, 0, 20, kWidth - kRun, kWidth - 4, kWidth}) {
        SCOPED_TRACE(testing::Message() << "from " << x << ", buffer " << isBuffer << ", missing " << missing);
        check(TestPicture(isBuffer, random, kWidth, kHeight, missing), x);
      }
    }
  }
}

// The rows of a group, in steps of 1 or -1.
using Rows = std::vector<std::int32_t>;

constexpr std::int32_t kCount = kHeight + 2;

// From above or below the picture to the other side.
Rows RowsInSteps(std::int32_t step) {
  Rows rows = {step > 0 ? -1 : kHeight};
  while (rows.size() < kCount) rows.push_back(rows.back() + step);
  return rows;
}

// A walk continues from group to group.
constexpr std::int32_t kGroups[] = {2, kCount - 2};

ColumnWalk WalkFor(const LMX_Picture& picture, std::int32_t step) {
  return step > 0 ? ColumnWalk(picture, 0) : ColumnWalk(picture, kHeight - 1, ColumnWalk::kUp);
}

Rows RowsOf(ColumnWalk walk) {
  Rows rows;
  for (std::int32_t i = 0; i < kCount; ++i, walk.Next()) rows.push_back(walk.Row());
  return rows;
}

void ExpectRuns(const TestPicture& picture, std::int32_t x, const Rows& rows, const std::uint8_t* const* runs) {
  for (std::int32_t i = 0; i < kCount; ++i) {
    for (std::int32_t j = 0; j < kRun; ++j) {
      EXPECT_EQ(picture.wrapper.ReadPixel(runs[i] + 4 * j), picture.Read(x + j, rows[static_cast<std::size_t>(i)]))
          << "run " << i << ", pixel " << j;
    }
  }
}

TEST_F(RunsTest, FindsGroups) {
  ForGroups([](const TestPicture& picture, std::int32_t x) {
    std::uint32_t scratch[kCount * kRun];
    const std::uint8_t* runs[kCount];
    for (const std::int32_t step : {1, -1}) {
      const Rows rows = RowsInSteps(step);
      StoredRuns({picture.wrapper, x, rows[0]}, step, kRun, kCount, scratch, runs);
      ExpectRuns(picture, x, rows, runs);

      ColumnWalk walk = WalkFor(picture.wrapper, step);
      const Rows walked = RowsOf(walk);
      std::int32_t done = 0;
      for (const std::int32_t count : kGroups) {
        StoredRuns(walk, x, kRun, count, scratch + done * kRun, runs + done);
        done += count;
      }
      ExpectRuns(picture, x, walked, runs);
    }
  });
}

// A different pixel at each place.
std::uint32_t Written(std::int32_t i, std::int32_t j) {
  return 0xFF000000u + static_cast<std::uint32_t>(0x10000 * i + j);
}

void WriteRuns(const LMX_Picture& picture, std::int32_t first, std::int32_t count, std::uint8_t* const* runs) {
  for (std::int32_t i = 0; i < count; ++i) {
    for (std::int32_t j = 0; j < kRun; ++j) picture.WritePixel(runs[i] + 4 * j, Written(first + i, j));
  }
}

// Checks that each row has the last run that was written to it, and that nothing else has changed.
void ExpectWritten(const TestPicture& picture, const std::vector<std::uint32_t>& before, std::int32_t x,
                   const Rows& rows) {
  for (std::int32_t row = 0; row < kHeight; ++row) {
    const auto run = std::find(rows.rbegin(), rows.rend(), row);
    const auto number = static_cast<std::int32_t>(rows.rend() - run) - 1;
    for (std::int32_t column = 0; column < kWidth; ++column) {
      const bool isIn = number >= 0 && column >= x && column < x + kRun && picture.Holds(column, row);
      const std::uint32_t old = before[static_cast<std::size_t>(row * kWidth + column)];
      EXPECT_EQ(picture.Read(column, row), isIn ? Written(number, column - x) : old) << column << ", " << row;
    }
  }
}

std::vector<std::uint32_t> PixelsOf(const TestPicture& picture) {
  std::vector<std::uint32_t> pixels;
  for (std::int32_t i = 0; i < kWidth * kHeight; ++i) pixels.push_back(picture.Read(i % kWidth, i / kWidth));
  return pixels;
}

TEST_F(RunsTest, FillsGroups) {
  ForGroups([](const TestPicture& picture, std::int32_t x) {
    const std::vector<std::uint32_t> before = PixelsOf(picture);
    constexpr std::uint32_t kPixel = 0xFF123456;
    FillRuns({picture.wrapper, x, -1}, kRun, kHeight, StoredPixel(picture.wrapper, kPixel));  // all rows but the last
    for (std::int32_t row = 0; row < kHeight; ++row) {
      for (std::int32_t column = 0; column < kWidth; ++column) {
        const bool isIn = row < kHeight - 1 && column >= x && column < x + kRun && picture.Holds(column, row);
        const std::uint32_t old = before[static_cast<std::size_t>(row * kWidth + column)];
        EXPECT_EQ(picture.Read(column, row), isIn ? kPixel : old) << column << ", " << row;
      }
    }
  });
}

TEST_F(RunsTest, WritesGroups) {
  ForGroups([](const TestPicture& picture, std::int32_t x) {
    std::uint32_t scratch[kCount * kRun] = {};
    std::uint8_t* runs[kCount];
    for (const std::int32_t step : {1, -1}) {
      std::vector<std::uint32_t> before = PixelsOf(picture);
      const Rows rows = RowsInSteps(step);
      const PixelPosition at = {picture.wrapper, x, rows[0]};
      WritableRuns(at, step, kRun, kCount, scratch, runs);
      WriteRuns(picture.wrapper, 0, kCount, runs);
      PutRuns(at, step, kRun, kCount, scratch, runs);
      ExpectWritten(picture, before, x, rows);

      before = PixelsOf(picture);
      ColumnWalk walk = WalkFor(picture.wrapper, step);
      const Rows walked = RowsOf(walk);
      std::int32_t done = 0;
      for (const std::int32_t count : kGroups) {
        WritableRuns(walk, x, kRun, count, scratch, runs);
        WriteRuns(picture.wrapper, done, count, runs);
        PutRuns(walk, x, kRun, count, scratch, runs);
        done += count;
      }
      ExpectWritten(picture, before, x, walked);
    }
  });
}

// Too large for the cache, with all rows in the same memory. A temporary picture gets ordinary
// stores, any other one non-temporal stores; the pixels are the same.
TEST_F(RunsTest, FillsLargePicturesTemporaryOrNot) {
  Defects oneRow;
  oneRow.bytesPerRow = 0;
  for (const bool isTemporary : {false, true}) {
    LockedPicture large(Context(65536, 64, oneRow));
    large.wrapper.unlockOnRelease = isTemporary;
    FillRun(large.wrapper, 0, 63, 65536, StoredPixel(large.wrapper, 0xFF123456));
    large.wrapper.unlockOnRelease = false;  // the test's own picture
    for (int x = 0; x < 65536; ++x) ASSERT_EQ(large.picture.Stored(x, 0), 0xFF123456u) << x;
  }
}

}  // namespace
