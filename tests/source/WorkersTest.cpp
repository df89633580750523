// Workers called directly, where no entry point leads: arguments that entry points never pass,
// pictures that share memory, and the single steps of a rotation.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "LinkedTest.h"
#include "PrivFlipRotate.h"
#include "PrivShear.h"
#include "PrivStretch.h"
#include "TPQ_AdjustHSV.h"
#include "TPQ_AdjustRGB.h"
#include "TPQ_FlipRotate.h"
#include "support/Random.h"

namespace {

using host::Picture;
using host::PictureShape;

class WorkersTest : public LinkedTest {};

// Opaque pixels, each of another colour.
void Number(Picture& buffer) {
  for (int y = 0; y < buffer.Height(); ++y) {
    for (int x = 0; x < buffer.Width(); ++x) {
      buffer.SetStored(x, y, static_cast<std::uint32_t>(0x010203 + 0x100000 * y + 0x10 * x));
    }
  }
}

// ----------------------------------------------------------------------------- steps of a rotation

struct Sizes {
  std::int32_t width;
  std::int32_t height;
};

// Defects that a host's picture may have: one row is missing, or all rows are the same memory.
struct Oddity {
  std::vector<int> missingRows;
  bool isOneRow = false;
};

PictureShape ShapeOf(const Sizes& size, const Oddity& odd) {
  PictureShape shape = Buffer(size.width, size.height, WithoutRows(odd.missingRows));
  if (!odd.isOneRow) return shape;
  shape = Context(size.width, size.height);
  shape.defects.bytesPerRow = 0;
  return shape;
}

// A locked picture of opaque pixels of one colour, so that reading an unwritten pixel is noticed.
struct Stale : LockedPicture {
  Stale(const Sizes& size, bool isTemporary, const Oddity& odd) : LockedPicture(ShapeOf(size, odd)) {
    picture.Fill(odd.isOneRow ? 0xFFABCDEF : 0x00ABCDEF);
    wrapper.unlockOnRelease = isTemporary;
  }
  ~Stale() { wrapper.unlockOnRelease = false; }
};

struct RotationSteps {
  Sizes sizes[5];  // sizes of source, turned, sheared, sheared twice, result
  int quarter;
  double alongRows;
  double alongColumns;
  long yield;
  Oddity odd[5];
};

// The contents of the result after the steps.
std::vector<std::uint32_t> Rotated(const RotationSteps& steps, bool haveTemporaries) {
  constexpr unsigned int kClear = 0xFF000000;
  LockedPicture source(ShapeOf(steps.sizes[0], steps.odd[0]));
  Number(source.picture);
  Stale turned(steps.sizes[1], haveTemporaries, steps.odd[1]), sheared(steps.sizes[2], haveTemporaries, steps.odd[2]);
  Stale twice(steps.sizes[3], haveTemporaries, steps.odd[3]), result(steps.sizes[4], false, steps.odd[4]);
  if (haveTemporaries) {
    TurnedRows rows(source.wrapper, turned.wrapper, steps.quarter, steps.yield);
    ImageRegion image(turned.wrapper);
    ShearImageHorizontal(rows, sheared.wrapper, steps.alongRows, kClear, steps.yield, image);
    ShearImageVertical(sheared.wrapper, twice.wrapper, steps.alongColumns, kClear, steps.yield, image);
    ShearImageHorizontal(twice.wrapper, result.wrapper, steps.alongRows, kClear, steps.yield, image);
  } else {
    const auto turn = std::vector{Priv_Rotate0, Priv_Rotate90, Priv_Rotate180, Priv_Rotate270}.at(
        static_cast<std::size_t>(steps.quarter));
    turn(source.wrapper, turned.wrapper, steps.yield);
    Priv_ShearHorizontal(turned.wrapper, sheared.wrapper, steps.alongRows, kClear, steps.yield);
    Priv_ShearVertical(sheared.wrapper, twice.wrapper, steps.alongColumns, kClear, steps.yield);
    Priv_ShearHorizontal(twice.wrapper, result.wrapper, steps.alongRows, kClear, steps.yield);
  }
  return result.picture.StoredPixels();
}

// For any sizes of the temporary pictures, and where rows of any picture are missing or coincide.
TEST_F(WorkersTest, ARotationNeedsNoMoreOfItsTemporaryPicturesThanItMakes) {
  Random random(1);
  for (int i = 0; i < 200; ++i) {
    const auto size = [&](std::int32_t more) { return random.Between(1, 60) + more; };
    RotationSteps steps = {{},
                           random.Between(0, 3),
                           random.Between(-414, 414) / 1000.0,
                           random.Between(-707, 707) / 1000.0,
                           random.Between(0, 300),
                           {}};
    const Sizes source = {size(0), size(0)};
    const Sizes turned = steps.quarter % 2 == 0 ? source : Sizes{source.height, source.width};
    const std::int32_t width = turned.width + static_cast<std::int32_t>(turned.height * std::fabs(steps.alongRows)) + 1;
    const std::int32_t height = turned.height + static_cast<std::int32_t>(width * std::fabs(steps.alongColumns)) + 1;
    const Sizes planned[] = {source, turned, {width, turned.height}, {width, height}, {width, height}};
    for (int k = 0; k < 5; ++k) {
      const bool isOther = k > 0 && random.Below(4) == 0;
      steps.sizes[k] = isOther ? Sizes{size(random.Between(0, 40)), size(random.Between(0, 40))} : planned[k];
      const std::int32_t last = steps.sizes[k].height - 1;
      const std::int32_t rows[] = {0, last / 2, last};
      if (i % 2 != 0 && random.Below(4) == 0) steps.odd[k].missingRows = {random.OneOf(rows)};
      if (i % 4 == 0 && k > 0 && k < 4) steps.odd[k].isOneRow = random.Below(4) == 0;
    }
    host_.ResetCounts();
    const std::vector<std::uint32_t> result = Rotated(steps, true);
    const std::vector<std::string> calls = Calls();
    host_.ResetCounts();
    EXPECT_EQ(result, Rotated(steps, false)) << "case " << i;
    EXPECT_EQ(calls, Calls()) << "case " << i;
    if (HasFailure()) break;
  }
}

// ------------------------------------------------------------------------------------------ passes

// Passes from or to no pixels, or from more than 32768 pixels to one.
TEST_F(WorkersTest, PassesThatCannotBeMadeAreNotMade) {
  for (const int from : {0, 32769}) {
    LockedPicture wide(Context(from, 1)), high(Context(1, from)), result(Context(1, 1));
    Priv_StetchHorizontal(wide.wrapper, result.wrapper, 0);
    Priv_StetchVertical(high.wrapper, result.wrapper, 0);
    EXPECT_EQ(result.picture.Stored(0, 0), host::kUnwritten) << from;
    LockedPicture nothing(Context(0, 0));
    Priv_StetchHorizontal(result.wrapper, nothing.wrapper, 0);
    Priv_StetchVertical(result.wrapper, nothing.wrapper, 0);
  }
}

// ---------------------------------------------------------------------------------------- averages

// 2^32 + 65536 pixels; only one row exists. In 32 bits their count is 65536.
TEST_F(WorkersTest, AveragesDivideByACountThatWraps) {
  constexpr int kWidth = 65537, kHeight = 65536;
  PictureShape shape = {kWidth, kHeight, host::Storage::Buffer};
  shape.layout.sparse = true;
  shape.defects.bytesPerRow = 0;
  for (int y = 0; y < kHeight; ++y) {
    if (y != 7) shape.defects.nilRows.push_back(y);
  }
  Picture picture(shape);
  picture.SetStoredRow(7, std::vector<std::uint32_t>(kWidth, 0x000000FF));
  int red = -7, green = -7, blue = -7;
  LMX_GetAverageRGB(picture.Handle(), 0, 0, kWidth, kHeight, &red, &green, &blue, 0);
  EXPECT_EQ(red, 0);
  EXPECT_EQ(green, 0);
  EXPECT_EQ(blue, 255);
  double hue = -7, saturation = -7, brightness = -7;
  LMX_GetAverageHSV(picture.Handle(), 0, 0, kWidth, kHeight, &hue, &saturation, &brightness, 0);
  EXPECT_EQ(hue, 240.0);
  EXPECT_EQ(saturation, 65537 / 65536.0);
  EXPECT_EQ(brightness, 65537 / 65536.0 * 0.99609375);
}

TEST_F(WorkersTest, AveragesStoreHueFirstAndBrightnessLast) {
  LockedPicture source(Buffer(1, 1));
  source.picture.Fill(0x000000FF);
  double all = 0;
  PrivGetAverageHSV(source.wrapper, 0, 0, 0, 0, &all, &all, &all, 0);
  EXPECT_EQ(all, 0.99609375);
  PrivGetAverageHSV(source.wrapper, 0, 0, 0, 0, &all, &all, nullptr, 0);
  EXPECT_EQ(all, 1.0);
  int shared = 0;
  LMX_GetAverageRGB(source.picture.Handle(), 0, 0, 0, 0, &shared, &shared, &shared, 0);
  EXPECT_EQ(shared, 255);
}

// ------------------------------------------------------------------------------------------- turns

// The entry points turn by 0 to 3 quarters. No worker handles other numbers, and only 1 and 3
// exchange width and height.
TEST_F(WorkersTest, OtherQuarterTurnsPaintNothing) {
  LockedPicture source(Buffer(3, 2));
  for (const int quarter : {4, 5, 7, -1, -3, INT_MAX, INT_MIN}) {
    SCOPED_TRACE(quarter);
    const Picture result = Returned(PrivFlipRotate_NoMask_NonVector(source.wrapper, false, false, quarter, 1));
    ASSERT_EQ(result.Width(), 3);
    EXPECT_EQ(result.StoredPixels(), std::vector<std::uint32_t>(6, host::kUnwritten));
    EXPECT_EQ(host_.Calls(host::Service::YieldToRB), 0);
  }
}

// ------------------------------------------------------------------------------------- adjustments

// The equal words of a row of opaque red after an adjustment in place. The row is long enough for
// any kernel.
std::uint32_t AdjustedRed(double hue, double saturation, double brightness) {
  constexpr int kWidth = 70;
  LockedPicture red(Buffer(kWidth, 1));
  red.picture.Fill(0x00FF0000);
  PrivAdjustHSV(red.wrapper, red.wrapper, 0, 0, kWidth, 1, hue, saturation, brightness, false, 0);
  const std::uint32_t word = red.picture.Stored(0, 0);
  EXPECT_EQ(red.picture.StoredPixels(), std::vector<std::uint32_t>(kWidth, word));
  return word;
}

// The entry points refuse negative factors. Here a product below 0 counts as 0.
TEST_F(WorkersTest, NegativeFactorsActAsZero) {
  for (const double factor : {-1.0, -1.9, -2.0, -64.0, -999.0, -1000.0, -32768.0, -65537.0, -2000000.0}) {
    SCOPED_TRACE(factor);
    EXPECT_EQ(AdjustedRed(0, factor, 1), 0x00FFFFFFu);
    EXPECT_EQ(AdjustedRed(0, 1, factor), 0x00000000u);
    EXPECT_EQ(AdjustedRed(0, factor, factor), 0x00000000u);
  }
}

// The entry points refuse a turn or more. A hue wraps once. A hue that is then still outside the
// sectors gives black, and the first sector continues below 0.
TEST_F(WorkersTest, HuesWrapOnce) {
  EXPECT_EQ(AdjustedRed(-360, 1, 1), 0x00FF0000u);
  EXPECT_EQ(AdjustedRed(360, 1, 1), 0x00FF0000u);
  // floor(-365 x 1024 / 60) = -6230, with a turn -86: t = (1048576 - 1110 x 1023) x 255 / 1048576 =
  // -21.1, 0xFF...EB
  EXPECT_EQ(AdjustedRed(-365, 1, 1), 0x00FFEB00u);
  EXPECT_EQ(AdjustedRed(-500, 1, 1), 0x00000000u);
  EXPECT_EQ(AdjustedRed(800, 1, 1), 0x00000000u);
}

// Kernels that record which pixels they write, and then do their work.
class WriteNotes {
 public:
  WriteNotes() : kernels_(gRunKernels) {
    current_ = this;
    gRunKernels.between[kBufferForm][kBufferForm].adjustHSV = [](auto* to, auto* from, auto* by, std::size_t n) {
      current_->Note(to, n);
      current_->kernels_.between[kBufferForm][kBufferForm].adjustHSV(to, from, by, n);
    };
    gRunKernels.between[kBufferForm][kBufferForm].negative = [](auto* to, auto* from, std::size_t n) {
      current_->Note(to, n);
      current_->kernels_.between[kBufferForm][kBufferForm].negative(to, from, n);
    };
    gRunKernels.between[kWorkingForm][kBufferForm].copy = [](auto* to, auto* from, std::size_t n) {
      current_->conversions += static_cast<int>(n);
      current_->kernels_.between[kWorkingForm][kBufferForm].copy(to, from, n);
    };
  }
  ~WriteNotes() { gRunKernels = kernels_; }
  WriteNotes(const WriteNotes&) = delete;
  WriteNotes& operator=(const WriteNotes&) = delete;

  int Writes(const std::uint8_t* pixel) const {
    const auto found = writes_.find(pixel);
    return found == writes_.end() ? 0 : found->second;
  }

  int conversions = 0;  ///< of working pixels into stored ones

 private:
  void Note(const std::uint8_t* to, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) ++writes_[to + 4 * i];
  }

  static WriteNotes* current_;
  const RunKernels kernels_;
  std::map<const std::uint8_t*, int> writes_;
};
WriteNotes* WriteNotes::current_ = nullptr;

TEST_F(WorkersTest, NegativesWriteEveryPixelOnce) {
  constexpr int kWidth = 1100, kHeight = 3;  // more than two pieces
  LockedPicture source(Buffer(kWidth, kHeight)), result(Buffer(kWidth, kHeight));
  for (LockedPicture* const written : {&source, &result}) {
    const WriteNotes notes;
    PrivAdjustHSV(source.wrapper, written->wrapper, 5, 1, 1080, 0, 60, 1, 1, true, 0);
    for (int y = 0; y < kHeight; ++y) {
      for (int x = 0; x < kWidth; ++x) {
        ASSERT_EQ(notes.Writes(written->picture.PixelAddress(x, y)), 1) << x << ", " << y;
      }
    }
  }
}

TEST_F(WorkersTest, ShearsConvertTheFrameOnce) {
  LockedPicture source(Buffer(3, 2)), result(Buffer(20, 20));
  for (const auto worker : {Priv_ShearHorizontal, Priv_ShearVertical}) {
    const WriteNotes notes;
    worker(source.wrapper, result.wrapper, 0, 0x00123456, 0);
    EXPECT_LE(notes.conversions, 1);
    EXPECT_EQ(result.picture.Stored(0, 0), 0x00123456u);
    EXPECT_EQ(result.picture.Stored(19, 19), 0x00123456u);
  }
}

}  // namespace
