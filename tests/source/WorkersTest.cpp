// Workers called directly, where no entry point leads: results that nobody asks for, arguments that
// entry points never pass, and the sixteen names of the turns.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <functional>
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
#include "TPQ_Errors.h"
#include "TPQ_FlipRotate.h"
#include "TPQ_FreeRotateByShear.h"
#include "TPQ_Gradient.h"
#include "TPQ_Shear.h"
#include "TPQ_Stretch.h"
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

std::uint32_t Number(const std::pair<std::int32_t, std::int32_t>& at) {
  return Numbered(at.first, at.second);
}

void Number(fake::Buffer& buffer, std::int32_t width, std::int32_t height) {
  for (std::int32_t y = 0; y < height; ++y) {
    for (std::int32_t x = 0; x < width; ++x) buffer.SetWord(x, y, Numbered(x, y));
  }
}

// ------------------------------------------------------------------------------------------- turns

// Which source pixel of W x H a worker puts at (x, y).
struct Turn {
  const char* name;
  void (*worker)(LMX_Picture&, LMX_Picture&, long);
  bool onItsSide;
  std::pair<int, int> (*from)(int x, int y);
};

constexpr int W = 3;
constexpr int H = 2;

const std::vector<Turn>& Turns() {
  static const auto same = [](int x, int y) { return std::pair(x, y); };
  static const auto h = [](int x, int y) { return std::pair(W - 1 - x, y); };
  static const auto v = [](int x, int y) { return std::pair(x, H - 1 - y); };
  static const auto hv = [](int x, int y) { return std::pair(W - 1 - x, H - 1 - y); };
  static const auto turned = [](int x, int y) { return std::pair(y, H - 1 - x); };
  static const auto turnedH = [](int x, int y) { return std::pair(W - 1 - y, H - 1 - x); };
  static const auto turnedV = [](int x, int y) { return std::pair(y, x); };
  static const auto turnedHV = [](int x, int y) { return std::pair(W - 1 - y, x); };
  static const std::vector<Turn> turns = {
      {"0", Priv_Rotate0, false, same},           {"0_H", Priv_Rotate0_H, false, h},
      {"0_V", Priv_Rotate0_V, false, v},          {"0_HV", Priv_Rotate0_HV, false, hv},
      {"90", Priv_Rotate90, true, turned},        {"90_H", Priv_Rotate90_H, true, turnedH},
      {"90_V", Priv_Rotate90_V, true, turnedV},   {"90_HV", Priv_Rotate90_HV, true, turnedHV},
      {"180", Priv_Rotate180, false, hv},         {"180_H", Priv_Rotate180_H, false, v},
      {"180_V", Priv_Rotate180_V, false, h},      {"180_HV", Priv_Rotate180_HV, false, same},
      {"270", Priv_Rotate270, true, turnedHV},    {"270_H", Priv_Rotate270_H, true, turnedV},
      {"270_V", Priv_Rotate270_V, true, turnedH}, {"270_HV", Priv_Rotate270_HV, true, turned},
  };
  return turns;
}

TEST_F(WorkersTest, EveryTurnTakesThePixelsOfItsName) {
  fake::Buffer sourceBuffer(W, H);
  Number(sourceBuffer, W, H);
  LMX_Picture source(sourceBuffer.Handle());
  ASSERT_TRUE(source.Lock());
  for (const Turn& turn : Turns()) {
    SCOPED_TRACE(turn.name);
    const int width = turn.onItsSide ? H : W;
    const int height = turn.onItsSide ? W : H;
    fake::Buffer resultBuffer(width, height);
    LMX_Picture result(resultBuffer.Handle());
    ASSERT_TRUE(result.Lock());
    turn.worker(source, result, 0);
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) EXPECT_EQ(resultBuffer.Word(x, y), Number(turn.from(x, y))) << x << ", " << y;
    }
  }
}

TEST_F(WorkersTest, EveryTurnYieldsBeforeItsRows) {
  fake::Buffer sourceBuffer(W, H);
  Number(sourceBuffer, W, H);
  LMX_Picture source(sourceBuffer.Handle());
  ASSERT_TRUE(source.Lock());
  for (const Turn& turn : Turns()) {
    SCOPED_TRACE(turn.name);
    fake::Buffer resultBuffer(turn.onItsSide ? H : W, turn.onItsSide ? W : H);
    LMX_Picture result(resultBuffer.Handle());
    ASSERT_TRUE(result.Lock());
    fake::TheHost().calls.clear();
    turn.worker(source, result, 1);
    EXPECT_EQ(fake::TheHost().calls, std::vector<std::string>(turn.onItsSide ? W - 1 : H - 1, "REALYieldToRB()"));
  }
}

TEST_F(WorkersTest, ResultsWithoutRowsAreLeftAlone) {
  fake::Buffer sourceBuffer(W, H);
  LMX_Picture source(sourceBuffer.Handle());
  ASSERT_TRUE(source.Lock());
  fake::TheHost().calls.clear();
  for (const Turn& turn : Turns()) {
    fake::Buffer resultBuffer(W, 0);
    LMX_Picture result(resultBuffer.Handle());
    ASSERT_TRUE(result.Lock());
    fake::TheHost().calls.clear();
    turn.worker(source, result, 1);
    EXPECT_TRUE(fake::TheHost().calls.empty()) << turn.name;
  }
}

// A host may make a result of another size. Pixels are counted and placed in what it made; what the
// source lacks is clear.
TEST_F(WorkersTest, EveryTurnFillsAResultOfAnySize) {
  constexpr std::uint32_t kOpaque = 0xFF000000;
  fake::Context sourceContext(W, H);
  for (int i = 0; i < W * H; ++i) sourceContext.SetWord(i % W, i / W, kOpaque | Numbered(i % W, i / W));
  LMX_Picture source(sourceContext.Handle());
  ASSERT_TRUE(source.Lock());
  for (const Turn& turn : Turns()) {
    const int width = turn.onItsSide ? H : W, height = turn.onItsSide ? W : H;
    for (const auto& [moreColumns, moreRows] :
         {std::pair(1, 0), std::pair(-1, 0), std::pair(0, 1), std::pair(0, -1), std::pair(70, 70)}) {
      SCOPED_TRACE(testing::Message() << turn.name << ", " << moreColumns << " more columns, " << moreRows
                                      << " more rows");
      const int columns = width + moreColumns, rows = height + moreRows;
      fake::Context resultContext(columns, rows);
      LMX_Picture result(resultContext.Handle());
      ASSERT_TRUE(result.Lock());
      fake::TheHost().calls.clear();
      turn.worker(source, result, columns + 1);  // is reached by every second row
      EXPECT_EQ(Count("REALYieldToRB()"), (rows - 1) / 2);
      for (int y = 0; y < rows; ++y) {
        for (int x = 0; x < columns; ++x) {
          const auto [fromX, fromY] = turn.from(x, y);
          const bool isInside = fromX >= 0 && fromX < W && fromY >= 0 && fromY < H;
          ASSERT_EQ(resultContext.Word(x, y), isInside ? kOpaque | Numbered(fromX, fromY) : 0) << x << ", " << y;
        }
      }
    }
  }
}

// Leaves out the first and the last row, which stay where they are, for whoever reaches beyond the
// others.
void HideOuterRows(fake::Buffer& picture) {
  picture.Record().rowTable += 4;
  picture.Record().height -= 2;
}
void HideOuterRows(fake::Context& picture) {
  picture.context.data = picture.Pixel(0, 1);
  picture.context.height -= 2;
}

// A result that is longer than the source has rows, by one pixel after a whole tile: what it finds
// there.
template <class Picture>
void CheckTurnBeyondTheSource(std::uint32_t opaque, const std::function<std::uint32_t(std::uint32_t last)>& beyond) {
  constexpr int kRows = 65;
  Picture sourcePicture(1, kRows + 2);
  for (int y = 0; y < kRows + 2; ++y) sourcePicture.SetWord(0, y, opaque | Numbered(y - 1, 0));
  HideOuterRows(sourcePicture);
  LMX_Picture source(sourcePicture.Handle());
  ASSERT_TRUE(source.Lock());
  for (const bool isUp : {false, true}) {
    SCOPED_TRACE(isUp);
    fake::Buffer resultBuffer(kRows + 1, 1);
    LMX_Picture result(resultBuffer.Handle());
    ASSERT_TRUE(result.Lock());
    (isUp ? Priv_Rotate90 : Priv_Rotate90_V)(source, result, 0);
    for (int x = 0; x < kRows; ++x) EXPECT_EQ(resultBuffer.Word(x, 0), Numbered(isUp ? kRows - 1 - x : x, 0)) << x;
    EXPECT_EQ(resultBuffer.Word(kRows, 0), beyond(resultBuffer.Word(kRows - 1, 0)));
  }
}

TEST_F(WorkersTest, ATurnBeyondABufferStaysAtItsLastRow) {
  CheckTurnBeyondTheSource<fake::Buffer>(0, [](std::uint32_t last) { return last; });
}

TEST_F(WorkersTest, ATurnBeyondAContextFindsClearPixels) {
  CheckTurnBeyondTheSource<fake::Context>(0xFF000000, [](std::uint32_t) { return 0x7F000000u; });
}

TEST_F(WorkersTest, TurnsLeaveOutMissingRowsOfTheResult) {
  constexpr int kColumns = 70;  // more than a tile
  fake::Buffer sourceBuffer(kColumns, H);
  Number(sourceBuffer, kColumns, H);
  LMX_Picture source(sourceBuffer.Handle());
  ASSERT_TRUE(source.Lock());
  for (const bool isBackward : {false, true}) {
    SCOPED_TRACE(isBackward);
    fake::Buffer resultBuffer(H, kColumns);
    for (const int missing : {10, 66}) resultBuffer.MakeRowNil(missing);
    LMX_Picture result(resultBuffer.Handle());
    ASSERT_TRUE(result.Lock());
    (isBackward ? Priv_Rotate90_HV : Priv_Rotate90_V)(source, result, 0);
    for (int y = 0; y < kColumns; ++y) {
      if (y == 10 || y == 66) continue;
      for (int x = 0; x < H; ++x) {
        EXPECT_EQ(resultBuffer.Word(x, y), Numbered(isBackward ? kColumns - 1 - y : y, x)) << x << ", " << y;
      }
    }
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

TEST_F(WorkersTest, AveragesLeaveOutWhatNobodyAskedFor) {
  fake::Buffer buffer(1, 1);
  buffer.SetWord(0, 0, 0x000000FF);  // opaque blue
  LMX_Picture source(buffer.Handle());
  ASSERT_TRUE(source.Lock());
  for (int asked = 0; asked < 8; ++asked) {
    SCOPED_TRACE(asked);
    double hue = -7, saturation = -7, brightness = -7;
    PrivGetAverageHSV(source, 0, 0, 0, 0, asked & 1 ? &hue : nullptr, asked & 2 ? &saturation : nullptr,
                      asked & 4 ? &brightness : nullptr, 0);
    EXPECT_EQ(hue, asked & 1 ? 240.0 : -7.0);
    EXPECT_EQ(saturation, asked & 2 ? 1.0 : -7.0);
    EXPECT_EQ(brightness, asked & 4 ? 0.99609375 : -7.0);

    int red = -7, green = -7, blue = -7;
    LMX_GetAverageRGB(buffer.Handle(), 0, 0, 0, 0, asked & 1 ? &red : nullptr, asked & 2 ? &green : nullptr,
                      asked & 4 ? &blue : nullptr, 0);
    EXPECT_EQ(red, asked & 1 ? 0 : -7);
    EXPECT_EQ(green, asked & 2 ? 0 : -7);
    EXPECT_EQ(blue, asked & 4 ? 255 : -7);
  }
}

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

// --------------------------------------------------------------------------------------- gradients

TEST_F(WorkersTest, GradientsFillThePictureWhateverTheSizeGiven) {
  for (const int given : {0, 1, 100}) {
    fake::Buffer single(2, 2);
    LMX_Picture picture(single.Handle());
    ASSERT_TRUE(picture.Lock());
    PrivMakeGradient(picture, given, given, 0x00102030, 0x00405060, 0);
    for (int x = 0; x < 2; ++x) {
      EXPECT_EQ(single.Word(x, 0), 0x00102030u);
      EXPECT_EQ(single.Word(x, 1), 0x00405060u);
    }

    fake::Buffer twice(2, 4);
    LMX_Picture other(twice.Handle());
    ASSERT_TRUE(other.Lock());
    PrivMakeDoubleGradient(other, given, given, 0x00102030, 0x00405060, 0x00708090, 0);
    const std::uint32_t rows[] = {0x00102030, 0x00405060, 0x00405060, 0x00708090};
    for (int y = 0; y < 4; ++y) EXPECT_EQ(twice.Word(1, y), rows[y]);
  }
}

// --------------------------------------------------------------------------- called by the entries

TEST_F(WorkersTest, BodiesLockTheirSource) {
  REALpictureStruct unusable = {"source", 9, nullptr};
  gLMX_Error = 99;
  EXPECT_EQ(PrivShear_Frame_NonVector(&unusable, 2, 2, 0.5, true, 0, 0), nullptr);
  EXPECT_EQ(PrivFreeRotateByShear_Frame_NonVector(&unusable, 10, 0, 0), nullptr);
  EXPECT_EQ(gLMX_Error, 99) << "neither sets a code";
  EXPECT_EQ(PrivFlipRotate_NonVector(&unusable, false, false, 0, 0), nullptr);
  EXPECT_EQ(gLMX_Error, 4);
  gLMX_Error = 99;
  EXPECT_EQ(PrivStretch_NonVector(&unusable, 2, 2, 0), nullptr);
  EXPECT_EQ(gLMX_Error, 4);
}

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

TEST_F(WorkersTest, StretchPassesWorkAlone) {
  fake::Buffer sourceBuffer(3, 1);
  for (int x = 0; x < 3; ++x) sourceBuffer.SetWord(x, 0, 60u * static_cast<unsigned>(x + 1));
  fake::Buffer resultBuffer(2, 1);
  LMX_Picture source(sourceBuffer.Handle());
  LMX_Picture result(resultBuffer.Handle());
  ASSERT_TRUE(source.Lock());
  ASSERT_TRUE(result.Lock());
  Priv_StetchHorizontal(source, result, 0);
  // 21845 units of each source pixel, of which a destination pixel takes 32767.
  EXPECT_EQ(resultBuffer.Word(0, 0), (60u * 21845 + 120u * 10922) / 32767);
  EXPECT_EQ(resultBuffer.Word(1, 0), (120u * 10923 + 180u * 21844) / 32767);

  fake::Buffer columnBuffer(1, 3);
  for (int y = 0; y < 3; ++y) columnBuffer.SetWord(0, y, 60u * static_cast<unsigned>(y + 1));
  fake::Buffer shortBuffer(1, 2);
  LMX_Picture column(columnBuffer.Handle());
  LMX_Picture shorter(shortBuffer.Handle());
  ASSERT_TRUE(column.Lock());
  ASSERT_TRUE(shorter.Lock());
  Priv_StetchVertical(column, shorter, 0);
  EXPECT_EQ(shortBuffer.Word(0, 0), resultBuffer.Word(0, 0));
  EXPECT_EQ(shortBuffer.Word(0, 1), resultBuffer.Word(1, 0));
}

TEST_F(WorkersTest, ShearsOfNothingAreAllFrame) {
  fake::Buffer sourceBuffer(0, 0);
  LMX_Picture source(sourceBuffer.Handle());
  ASSERT_TRUE(source.Lock());
  for (const auto worker : {Priv_ShearHorizontal, Priv_ShearVertical}) {
    fake::Buffer resultBuffer(2, 2);
    LMX_Picture result(resultBuffer.Handle());
    ASSERT_TRUE(result.Lock());
    worker(source, result, 0.5, 0x00123456, 0);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(resultBuffer.Word(i % 2, i / 2), 0x00123456u);
  }
}

// Columns of a result go down to the row before a missing one, where what follows is written, too.
TEST_F(WorkersTest, AVerticalShearStaysBeforeAMissingRowOfTheResult) {
  constexpr std::int32_t kColumns = 20, kRows = 5;  // more than are made together
  constexpr std::uint32_t kUntouched = 0x7F123456;
  fake::Buffer sourceBuffer(kColumns, kRows);
  Number(sourceBuffer, kColumns, kRows);
  LMX_Picture source(sourceBuffer.Handle());
  ASSERT_TRUE(source.Lock());
  for (std::int32_t missing = 0; missing < kRows; ++missing) {
    fake::Buffer resultBuffer(kColumns, kRows);
    for (std::int32_t i = 0; i < kColumns * kRows; ++i) resultBuffer.SetWord(i % kColumns, i / kColumns, kUntouched);
    resultBuffer.MakeRowNil(missing);
    LMX_Picture result(resultBuffer.Handle());
    ASSERT_TRUE(result.Lock());
    Priv_ShearVertical(source, result, 0, 0xFF000000, 0);
    for (std::int32_t y = 0; y < kRows; ++y) {
      for (std::int32_t x = 0; x < kColumns; ++x) {
        const std::int32_t from = y == missing - 1 ? kRows - 1 : y;
        EXPECT_EQ(resultBuffer.Word(x, y), y < missing ? Numbered(x, from) : kUntouched)
            << x << ", " << y << " without row " << missing;
      }
    }
  }
}

// The entry points turn by 0 to 3 quarters; no worker is for others, and only 1 and 3 exchange
// width and height.
TEST_F(WorkersTest, OtherQuarterTurnsPaintNothing) {
  fake::Buffer sourceBuffer(W, H);
  Number(sourceBuffer, W, H);
  LMX_Picture source(sourceBuffer.Handle());
  ASSERT_TRUE(source.Lock());
  for (const int quarter : {4, 5, 7, -1, -3, INT_MAX, INT_MIN}) {
    SCOPED_TRACE(quarter);
    fake::Buffer resultBuffer(W, H);
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

TEST_F(WorkersTest, FlagsAreExactlyFalseOrTrue) {
  fake::Buffer sourceBuffer(W, H);
  Number(sourceBuffer, W, H);
  for (int quarter = 0; quarter < 4; ++quarter) {
    for (const auto& [flipH, flipV] : {std::pair(2, 0), std::pair(0, 2), std::pair(1, 255), std::pair(128, 1)}) {
      fake::Buffer resultBuffer(quarter % 2 == 0 ? W : H, quarter % 2 == 0 ? H : W);
      resultBuffer.SetWord(1, 1, 0x7F123456);
      fake::TheHost().newPicture = resultBuffer.Handle();
      EXPECT_EQ(PrivFlipRotate_NonVector(sourceBuffer.Handle(), static_cast<std::uint8_t>(flipH),
                                         static_cast<std::uint8_t>(flipV), quarter, 1),
                resultBuffer.Handle());
      EXPECT_EQ(resultBuffer.Word(1, 1), 0x7F123456u);
    }
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
  fake::Buffer sourceBuffer(W, H), resultBuffer(20, 20);
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
