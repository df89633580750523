// Workers called directly, where no entry point leads: arguments that entry points never pass, and
// steps of a rotation one by one.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "FakeHost.h"
#include "PrivFlipRotate.h"
#include "PrivShear.h"
#include "PrivStretch.h"
#include "TPQ_AdjustHSV.h"
#include "TPQ_AdjustRGB.h"
#include "TPQ_FlipRotate.h"
#include "support/Random.h"

namespace {

class WorkersTest : public testing::Test {
 protected:
  void SetUp() override { fake::StartPlugin(); }
};

// How often the host was called like that.
std::ptrdiff_t Count(const std::string& call) {
  const std::vector<std::string>& calls = fake::TheHost().calls;
  return std::count(calls.begin(), calls.end(), call);
}

// Opaque pixels, each of another colour.
std::uint32_t Numbered(std::int32_t x, std::int32_t y) {
  return static_cast<std::uint32_t>(0x010203 + 0x100000 * y + 0x10 * x);
}

void Number(fake::Buffer& buffer, std::int32_t width, std::int32_t height) {
  for (std::int32_t y = 0; y < height; ++y) {
    for (std::int32_t x = 0; x < width; ++x) buffer.SetWord(x, y, Numbered(x, y));
  }
}

// ----------------------------------------------------------------------------- steps of a rotation

struct Sizes {
  std::int32_t width;
  std::int32_t height;
};

// What a host may make of a picture: one that lacks a row, or all of whose rows are the same
// memory.
struct Oddity {
  std::int32_t missingRow = -1;
  bool isOneRow = false;
};

// A locked picture of opaque pixels of one colour, so that whoever reads what nobody wrote shows
// it.
struct Stale {
  Stale(const Sizes& size, bool isTemporary, const Oddity& odd)
      : buffer(size.width, size.height),
        context(size.width, 1),
        picture(odd.isOneRow ? context.Handle() : buffer.Handle()) {
    for (std::int32_t y = 0; y < size.height; ++y) {
      for (std::int32_t x = 0; x < size.width; ++x) buffer.SetWord(x, y, 0x00ABCDEF);
    }
    for (std::int32_t x = 0; x < size.width; ++x) context.SetWord(x, 0, 0xFFABCDEF);
    context.context.height = static_cast<std::size_t>(size.height);
    context.context.bytesPerRow = 0;
    if (odd.missingRow >= 0) buffer.MakeRowNil(odd.missingRow);
    picture.Lock();
    picture.unlockOnRelease = isTemporary;
  }
  ~Stale() { picture.unlockOnRelease = false; }

  fake::Buffer buffer;
  fake::Context context;
  LMX_Picture picture;
};

struct RotationSteps {
  Sizes sizes[5];  // of source, turned, sheared, sheared twice, result
  int quarter;
  double alongRows;
  double alongColumns;
  long yield;
  Oddity odd[5];
};

// The result, and how often the host was called.
std::pair<std::vector<std::uint32_t>, std::size_t> Rotated(const RotationSteps& steps, bool haveTemporaries) {
  constexpr unsigned int kClear = 0xFF000000;
  fake::Buffer sourceBuffer(steps.sizes[0].width, steps.sizes[0].height);
  Number(sourceBuffer, steps.sizes[0].width, steps.sizes[0].height);
  if (steps.odd[0].missingRow >= 0) sourceBuffer.MakeRowNil(steps.odd[0].missingRow);
  LMX_Picture source(sourceBuffer.Handle());
  EXPECT_TRUE(source.Lock());
  Stale turned(steps.sizes[1], haveTemporaries, steps.odd[1]), sheared(steps.sizes[2], haveTemporaries, steps.odd[2]);
  Stale twice(steps.sizes[3], haveTemporaries, steps.odd[3]), result(steps.sizes[4], false, steps.odd[4]);
  fake::TheHost().calls.clear();
  if (haveTemporaries) {
    TurnedRows rows(source, turned.picture, steps.quarter, steps.yield);
    ImageRegion image(turned.picture);
    ShearImageHorizontal(rows, sheared.picture, steps.alongRows, kClear, steps.yield, image);
    ShearImageVertical(sheared.picture, twice.picture, steps.alongColumns, kClear, steps.yield, image);
    ShearImageHorizontal(twice.picture, result.picture, steps.alongRows, kClear, steps.yield, image);
  } else {
    const auto turn = std::vector{Priv_Rotate0, Priv_Rotate90, Priv_Rotate180, Priv_Rotate270}.at(
        static_cast<std::size_t>(steps.quarter));
    turn(source, turned.picture, steps.yield);
    Priv_ShearHorizontal(turned.picture, sheared.picture, steps.alongRows, kClear, steps.yield);
    Priv_ShearVertical(sheared.picture, twice.picture, steps.alongColumns, kClear, steps.yield);
    Priv_ShearHorizontal(twice.picture, result.picture, steps.alongRows, kClear, steps.yield);
  }
  std::vector<std::uint32_t> words;
  for (std::int32_t i = 0; i < result.picture.width * result.picture.height; ++i) {
    words.push_back(result.buffer.Word(i % result.picture.width, i / result.picture.width));
  }
  return {words, fake::TheHost().calls.size()};
}

// Whatever the sizes of the temporary pictures are, and where rows of any picture are missing or
// coincide.
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
      if (i % 2 != 0 && random.Below(4) == 0) steps.odd[k].missingRow = random.OneOf(rows);
      if (i % 4 == 0 && k > 0 && k < 4) steps.odd[k].isOneRow = random.Below(4) == 0;
    }
    EXPECT_EQ(Rotated(steps, true), Rotated(steps, false)) << "case " << i;
    if (HasFailure()) break;
  }
}

// ------------------------------------------------------------------------------------------ passes

TEST_F(WorkersTest, PassesThatAreBeyondReachAreNotMade) {
  constexpr std::int32_t kTooLong = 32769;  // for one pixel
  fake::Context wide(kTooLong, 1), high(1, kTooLong), one(1, 1);
  one.SetWord(0, 0, 0xFF123456);
  LMX_Picture wideSource(wide.Handle()), highSource(high.Handle()), result(one.Handle());
  ASSERT_TRUE(wideSource.Lock() && highSource.Lock() && result.Lock());
  Priv_StetchHorizontal(wideSource, result, 0);
  Priv_StetchVertical(highSource, result, 0);
  EXPECT_EQ(one.Word(0, 0), 0xFF123456u);
}

// ---------------------------------------------------------------------------------------- averages

// 2^32 + 65536 pixels, of which only those of one row are there. In 32 bits their count is 65536.
TEST_F(WorkersTest, AveragesDivideByACountThatWraps) {
  constexpr std::int32_t kWidth = 65537, kHeight = 65536;
  fake::Buffer buffer(kWidth, 1), table(kHeight, 1);
  for (std::int32_t x = 0; x < kWidth; ++x) buffer.SetWord(x, 0, 0x000000FF);
  for (std::int32_t y = 0; y < kHeight; ++y) table.SetWord(y, 0, 0);
  table.SetWord(7, 0, static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(buffer.Row(0))));
  buffer.Record().rowTable = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(table.Row(0)));
  buffer.Record().height = kHeight;
  int red = -7, green = -7, blue = -7;
  LMX_GetAverageRGB(buffer.Handle(), 0, 0, kWidth, kHeight, &red, &green, &blue, 0);
  EXPECT_EQ(red, 0);
  EXPECT_EQ(green, 0);
  EXPECT_EQ(blue, 255);
  double hue = -7, saturation = -7, brightness = -7;
  LMX_GetAverageHSV(buffer.Handle(), 0, 0, kWidth, kHeight, &hue, &saturation, &brightness, 0);
  EXPECT_EQ(hue, 240.0);
  EXPECT_EQ(saturation, 65537 / 65536.0);
  EXPECT_EQ(brightness, 65537 / 65536.0 * 0.99609375);
}

TEST_F(WorkersTest, AveragesStoreHueFirstAndBrightnessLast) {
  fake::Buffer buffer(1, 1);
  buffer.SetWord(0, 0, 0x000000FF);
  LMX_Picture source(buffer.Handle());
  ASSERT_TRUE(source.Lock());
  double all = 0;
  PrivGetAverageHSV(source, 0, 0, 0, 0, &all, &all, &all, 0);
  EXPECT_EQ(all, 0.99609375);
  PrivGetAverageHSV(source, 0, 0, 0, 0, &all, &all, nullptr, 0);
  EXPECT_EQ(all, 1.0);
  int shared = 0;
  LMX_GetAverageRGB(buffer.Handle(), 0, 0, 0, 0, &shared, &shared, &shared, 0);
  EXPECT_EQ(shared, 255);
}

// ------------------------------------------------------------------------------ passes and turns

TEST_F(WorkersTest, StretchPassesWithoutPixelsDoNothing) {
  fake::Buffer sourceBuffer(0, 2);
  fake::Buffer resultBuffer(3, 2);
  for (int y = 0; y < 2; ++y) resultBuffer.SetWord(1, y, 0x7F123456);
  LMX_Picture source(sourceBuffer.Handle());
  LMX_Picture result(resultBuffer.Handle());
  ASSERT_TRUE(source.Lock());
  ASSERT_TRUE(result.Lock());
  Priv_StetchHorizontal(source, result, 0);
  for (int y = 0; y < 2; ++y) EXPECT_EQ(resultBuffer.Word(1, y), 0x7F123456u);
  Priv_StetchVertical(result, source, 0);
}

// The entry points turn by 0 to 3 quarters; no worker is for others, and only 1 and 3 exchange
// width and height.
TEST_F(WorkersTest, OtherQuarterTurnsPaintNothing) {
  fake::Buffer sourceBuffer(3, 2);
  Number(sourceBuffer, 3, 2);
  LMX_Picture source(sourceBuffer.Handle());
  ASSERT_TRUE(source.Lock());
  for (const int quarter : {4, 5, 7, -1, -3, INT_MAX, INT_MIN}) {
    SCOPED_TRACE(quarter);
    fake::Buffer resultBuffer(3, 2);
    resultBuffer.SetWord(1, 1, 0x7F123456);
    resultBuffer.picture.name = "new";
    fake::TheHost().newPicture = resultBuffer.Handle();
    fake::TheHost().calls.clear();
    EXPECT_EQ(PrivFlipRotate_NoMask_NonVector(source, false, false, quarter, 1), resultBuffer.Handle());
    EXPECT_EQ(resultBuffer.Word(1, 1), 0x7F123456u);
    EXPECT_EQ(Count("Constructor(new, 3, 2)"), 1);
    EXPECT_EQ(Count("REALYieldToRB()"), 0);
  }
}

// ------------------------------------------------------------------------------------- adjustments

// Every word of a row of opaque red after an adjustment in place; rows are long enough for any
// kernel.
std::uint32_t AdjustedRed(double hue, double saturation, double brightness) {
  constexpr std::int32_t kWidth = 70;
  fake::Buffer buffer(kWidth, 1);
  for (std::int32_t x = 0; x < kWidth; ++x) buffer.SetWord(x, 0, 0x00FF0000);
  LMX_Picture picture(buffer.Handle());
  EXPECT_TRUE(picture.Lock());
  PrivAdjustHSV(picture, picture, 0, 0, kWidth, 1, hue, saturation, brightness, false, 0);
  for (std::int32_t x = 1; x < kWidth; ++x) EXPECT_EQ(buffer.Word(x, 0), buffer.Word(0, 0)) << x;
  return buffer.Word(0, 0);
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

// The entry points refuse a turn and more. A hue wraps once; what is still outside the sectors is
// black, and the first sector goes on below 0.
TEST_F(WorkersTest, HuesWrapOnce) {
  EXPECT_EQ(AdjustedRed(-360, 1, 1), 0x00FF0000u);
  EXPECT_EQ(AdjustedRed(360, 1, 1), 0x00FF0000u);
  // floor(-365 x 1024 / 60) = -6230, with a turn -86: t = (1048576 - 1110 x 1023) x 255 / 1048576 =
  // -21.1, 0xFF...EB
  EXPECT_EQ(AdjustedRed(-365, 1, 1), 0x00FFEB00u);
  EXPECT_EQ(AdjustedRed(-500, 1, 1), 0x00000000u);
  EXPECT_EQ(AdjustedRed(800, 1, 1), 0x00000000u);
}

// Kernels that note which pixels they write before they do their work.
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
  constexpr std::int32_t kWidth = 1100, kHeight = 3;  // more than two pieces
  fake::Buffer sourceBuffer(kWidth, kHeight), resultBuffer(kWidth, kHeight);
  LMX_Picture source(sourceBuffer.Handle()), result(resultBuffer.Handle());
  ASSERT_TRUE(source.Lock() && result.Lock());
  for (const bool inPlace : {false, true}) {
    const WriteNotes notes;
    PrivAdjustHSV(source, inPlace ? source : result, 5, 1, 1080, 0, 60, 1, 1, true, 0);
    fake::Buffer& written = inPlace ? sourceBuffer : resultBuffer;
    for (std::int32_t y = 0; y < kHeight; ++y) {
      for (std::int32_t x = 0; x < kWidth; ++x) ASSERT_EQ(notes.Writes(written.Row(y) + 4 * x), 1) << x << ", " << y;
    }
  }
}

TEST_F(WorkersTest, ShearsConvertTheFrameOnce) {
  fake::Buffer sourceBuffer(3, 2), resultBuffer(20, 20);
  LMX_Picture source(sourceBuffer.Handle()), result(resultBuffer.Handle());
  ASSERT_TRUE(source.Lock() && result.Lock());
  for (const auto worker : {Priv_ShearHorizontal, Priv_ShearVertical}) {
    const WriteNotes notes;
    worker(source, result, 0, 0x00123456, 0);
    EXPECT_LE(notes.conversions, 1);
    EXPECT_EQ(resultBuffer.Word(0, 0), 0x00123456u);
    EXPECT_EQ(resultBuffer.Word(19, 19), 0x00123456u);
  }
}

}  // namespace
