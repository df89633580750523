// The guards of pixel memory stop the process: at both ends of the pixels, of every scattered row
// and of the row table, and for pictures that are not locked or may only be read.

#include <gtest/gtest.h>

#include "host/Host.h"

namespace {

using host::Flush;
using host::Host;
using host::Picture;
using host::PictureShape;
using host::Storage;

// Kept by the optimiser; the process must die by a signal of the machine.
void Touch(std::uint8_t* address) {
  *static_cast<volatile std::uint8_t*>(address) = 1;
}

PictureShape Shape(Storage storage, Flush flush, bool scattered = false) {
  PictureShape shape{5, 3, storage};
  shape.layout.flush = flush;
  shape.layout.scattered = scattered;
  return shape;
}

TEST(GuardDeathTest, LastPixelTouchesThePageAfter) {
  for (Storage storage : {Storage::BitmapContext, Storage::Buffer}) {
    const Picture picture(Shape(storage, Flush::End));
    Touch(picture.PixelAddress(4, 2) + 3);
    EXPECT_DEATH(Touch(picture.PixelAddress(4, 2) + 4), "");
  }
}

TEST(GuardDeathTest, FirstPixelTouchesThePageBefore) {
  for (Storage storage : {Storage::BitmapContext, Storage::Buffer}) {
    const Picture picture(Shape(storage, Flush::Start));
    Touch(picture.PixelAddress(0, 0));
    EXPECT_DEATH(Touch(picture.PixelAddress(0, 0) - 1), "");
  }
}

TEST(GuardDeathTest, LastPixelOfPaddedRowsTouchesThePageAfter) {
  PictureShape shape = Shape(Storage::BitmapContext, Flush::End);
  shape.layout.padding = 13;
  const Picture picture(shape);
  EXPECT_EQ(picture.PixelAddress(0, 1) - picture.PixelAddress(0, 0), 33);
  EXPECT_DEATH(Touch(picture.PixelAddress(4, 2) + 4), "");
}

TEST(GuardDeathTest, EveryScatteredRowHasItsGuards) {
  const Picture atEnd(Shape(Storage::Buffer, Flush::End, true));
  const Picture atStart(Shape(Storage::Buffer, Flush::Start, true));
  for (int y = 0; y < 3; ++y) {
    EXPECT_DEATH(Touch(atEnd.PixelAddress(4, y) + 4), "") << y;
    EXPECT_DEATH(Touch(atStart.PixelAddress(0, y) - 1), "") << y;
  }
}

class GuardedCallDeathTest : public testing::Test {
 protected:
  GuardedCallDeathTest() { host_.Load(ODD_PLUGIN); }

  Host host_;
};

TEST_F(GuardedCallDeathTest, PluginReadsInsideOnly) {
  for (Storage storage : {Storage::BitmapContext, Storage::Buffer}) {
    const Picture picture({5, 3, storage});
    EXPECT_EQ(host_.Call("ReadByte", {picture, 4, 2}).result, storage == Storage::Buffer ? 0xDE : 0xDB);
    EXPECT_DEATH(host_.Call("ReadByte", {picture, 5, 2}), "");
  }
}

TEST_F(GuardedCallDeathTest, RowTableEndsAtThePageAfterItAndIsReadOnly) {
  const Picture picture({5, 3, Storage::Buffer});
  host_.Call("ReadTableByte", {picture, 11, false});
  EXPECT_DEATH(host_.Call("ReadTableByte", {picture, 12, false}), "");
  EXPECT_DEATH(host_.Call("ReadTableByte", {picture, 0, true}), "");
}

TEST_F(GuardedCallDeathTest, BufferRecordIsReadOnly) {
  const Picture picture({5, 3, Storage::Buffer});
  EXPECT_DEATH(host_.Call("WriteRecord", {picture}), "");
}

TEST_F(GuardedCallDeathTest, UnlockedPixelsAreClosed) {
  for (bool scattered : {false, true}) {
    const Picture picture(Shape(Storage::Buffer, Flush::End, scattered));
    host_.Call("ReadByte", {picture, 0, 0});
    EXPECT_DEATH(host_.Call("ReadByteUnlocked", {picture, 0, 0}), "");
  }
}

TEST_F(GuardedCallDeathTest, ReadOnlyPicturesCannotBeWritten) {
  Picture picture({5, 3, Storage::Buffer});
  picture.SetReadOnly(true);
  picture.Fill(0x00112233);
  EXPECT_EQ(host_.Call("ReadByte", {picture, 0, 0}).result, 0x33);
  EXPECT_DEATH(host_.Call("Fill", {picture, host::Colour{0}}), "");
  picture.SetReadOnly(false);
  host_.Call("Fill", {picture, host::Colour{0x01020304}});
  EXPECT_EQ(picture.Stored(0, 0), 0x04030201u);
}

TEST_F(GuardedCallDeathTest, WhatTheProgramOpensInAYieldIsClosedAfterIt) {
  Picture closed({5, 3, Storage::Buffer}), locked({5, 3, Storage::Buffer});
  closed.PixelAddress(0, 0);
  host_.onYield = [&] { closed.Fill(1); };
  host_.Call("Yield", {locked, 1});
  EXPECT_EQ(closed.Stored(0, 0), 1u);
  EXPECT_DEATH(
      {
        std::uint8_t* pixel = closed.PixelAddress(0, 0);
        int turn = 0;
        host_.onYield = [&] {
          if (++turn == 1) closed.Fill(2);
          if (turn == 2) Touch(pixel);
        };
        host_.Call("Yield", {locked, 2});
      },
      "");
}

TEST_F(GuardedCallDeathTest, HandlesPointNowhere) {
  const Picture picture({5, 3, Storage::Buffer});
  EXPECT_DEATH(Touch(reinterpret_cast<std::uint8_t*>(picture.Handle())), "");
}

}  // namespace
