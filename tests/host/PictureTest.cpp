// Pictures: both storage forms, every layout, every defect, stored words, references and locks.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "host/Host.h"

namespace {

using host::Colour;
using host::Error;
using host::Flush;
using host::Host;
using host::kUnwritten;
using host::Picture;
using host::PictureShape;
using host::Snapshot;
using host::Storage;

std::vector<PictureShape> Layouts() {
  std::vector<PictureShape> shapes;
  for (Flush flush : {Flush::End, Flush::Start}) {
    for (int padding : {0, 4, 13, 5000}) {
      for (Storage storage : {Storage::BitmapContext, Storage::Buffer}) {
        shapes.push_back({7, 5, storage, {padding, false, flush}, {}});
      }
    }
    shapes.push_back({7, 5, Storage::Buffer, {0, true, flush}, {}});
  }
  for (int distance : {0, -28, -40, 12}) {
    for (Storage storage : {Storage::BitmapContext, Storage::Buffer}) {
      shapes.push_back({7, 5, storage});
      shapes.back().defects.bytesPerRow = distance;
    }
  }
  return shapes;
}

std::vector<std::uint32_t> Ramp(const Picture& picture) {
  std::vector<std::uint32_t> words(static_cast<std::size_t>(picture.Width() * picture.Height()));
  for (std::size_t i = 0; i < words.size(); ++i) words[i] = 0x01020304u * static_cast<std::uint32_t>(i + 1);
  return words;
}

TEST(Picture, StartsUnwritten) {
  for (const PictureShape& shape : Layouts()) {
    const std::vector<std::uint32_t> words = Picture(shape).StoredPixels();
    EXPECT_EQ(words.size(), 35u);
    EXPECT_EQ(std::count(words.begin(), words.end(), kUnwritten), 35);
  }
}

TEST(Picture, KeepsWordsInEveryLayout) {
  for (const PictureShape& shape : Layouts()) {
    if (shape.defects.bytesPerRow.value_or(100) < 28 && shape.defects.bytesPerRow.value_or(100) > -28) continue;
    Picture picture(shape);
    const std::vector<std::uint32_t> words = Ramp(picture);
    picture.SetStoredPixels(words);
    EXPECT_EQ(picture.StoredPixels(), words);
    for (int y = 0; y < 5; ++y) {
      for (int x = 0; x < 7; ++x) EXPECT_EQ(picture.Stored(x, y), words[static_cast<std::size_t>(7 * y + x)]);
    }
    picture.SetStored(6, 4, 9);
    EXPECT_EQ(picture.Stored(6, 4), 9u);
    EXPECT_EQ(picture.Stored(5, 4), words[33]);
    EXPECT_TRUE(picture.PaddingIntact());
  }
}

TEST(Picture, StoresBytesInTheOrderOfTheForm) {
  Picture context({1, 1, Storage::BitmapContext}), buffer({1, 1, Storage::Buffer});
  context.Fill(0x11223344);
  buffer.Fill(0x11223344);
  EXPECT_EQ(std::memcmp(context.PixelAddress(0, 0), "\x11\x22\x33\x44", 4), 0);
  EXPECT_EQ(std::memcmp(buffer.PixelAddress(0, 0), "\x44\x33\x22\x11", 4), 0);
}

TEST(Picture, ScatteredRowsLieInNoOrder) {
  const Picture picture({4, 50, Storage::Buffer, {0, true, Flush::End}, {}});
  int upwards = 0;
  for (int y = 1; y < 50; ++y) {
    const auto distance = picture.PixelAddress(0, y) - picture.PixelAddress(0, y - 1);
    EXPECT_GT(std::abs(distance), 4096);
    upwards += distance < 0;
  }
  EXPECT_GT(upwards, 5);
}

TEST(Picture, BuffersLieInTheLowAddresses) {
  for (bool scattered : {false, true}) {
    const Picture picture({1000, 1000, Storage::Buffer, {0, scattered, Flush::End}, {}});
    EXPECT_LE(reinterpret_cast<std::uintptr_t>(picture.PixelAddress(999, 999)), UINT32_MAX);
  }
}

TEST(Picture, LargePicturesAreMade) {
  Picture picture({4000, 3000, Storage::Buffer, {0, true, Flush::End}, {}});
  picture.SetStored(3999, 2999, 5);
  EXPECT_EQ(picture.StoredPixels().back(), 5u);
  EXPECT_THROW(Picture({100000, 100000}), Error);
}

TEST(Picture, SizesWithoutPixels) {
  for (Storage storage : {Storage::BitmapContext, Storage::Buffer}) {
    for (const auto& [width, height] : {std::pair{0, 0}, {0, 5}, {5, 0}, {-3, 4}, {4, -3}, {-1, -1}}) {
      const Picture picture({width, height, storage});
      EXPECT_TRUE(picture.StoredPixels().empty());
      EXPECT_EQ(picture.Width(), width);
      EXPECT_THROW(static_cast<void>(picture.Stored(0, 0)), Error);
    }
  }
}

TEST(Picture, RefusesContradictions) {
  const auto make = [](Storage storage, auto change) {
    PictureShape shape{4, 3, storage};
    change(shape);
    return Picture(shape);
  };
  EXPECT_THROW(make(Storage::BitmapContext, [](PictureShape& s) { s.layout.scattered = true; }), Error);
  EXPECT_THROW(make(Storage::Buffer, [](PictureShape& s) { s.layout.padding = -1; }), Error);
  EXPECT_THROW(make(Storage::Buffer, [](PictureShape& s) { s.layout = {4, true, Flush::End}; }), Error);
  EXPECT_THROW(make(Storage::Buffer, [](PictureShape& s) { s.defects.bitsPerPixel = 16; }), Error);
  const auto scatter = [](PictureShape& s) { s.layout.scattered = true, s.defects.bytesPerRow = 0; };
  EXPECT_THROW(make(Storage::Buffer, scatter), Error);
  const auto spread = [](PictureShape& s) { s.layout.sparse = true, s.defects.bytesPerRow = 20; };
  EXPECT_THROW(make(Storage::BitmapContext, spread), Error);
  EXPECT_THROW(make(Storage::Buffer, [](PictureShape& s) { s.defects.nilRows = {3}; }), Error);
  EXPECT_THROW(make(Storage::BitmapContext, [](PictureShape& s) { s.defects.nilRowTable = true; }), Error);
}

TEST(Picture, OutsideIsRefused) {
  Picture picture({4, 3});
  for (const auto& [x, y] : {std::pair{-1, 0}, {0, -1}, {4, 0}, {0, 3}}) {
    EXPECT_THROW(static_cast<void>(picture.Stored(x, y)), Error);
    EXPECT_THROW(picture.SetStored(x, y, 0), Error);
  }
  EXPECT_THROW(picture.SetStoredPixels(std::vector<std::uint32_t>(11)), Error);
  EXPECT_THROW(static_cast<void>(Picture().Width()), Error);
}

TEST(Picture, HashIsFnv1aOfGeometryAndWords) {
  Picture picture({2, 1, Storage::Buffer});
  picture.SetStoredPixels({0x01020304, 0xA0B0C0D0});
  std::uint64_t expected = 0xCBF29CE484222325;
  for (int byte : {2, 0, 0, 0, 1, 0, 0, 0, 4, 3, 2, 1, 0xD0, 0xC0, 0xB0, 0xA0}) {
    expected = (expected ^ static_cast<std::uint64_t>(byte)) * 0x100000001B3;
  }
  EXPECT_EQ(picture.Hash(), expected);
  Picture tall({1, 2, Storage::Buffer});
  tall.SetStoredPixels(picture.StoredPixels());
  EXPECT_NE(tall.Hash(), expected);
}

TEST(Picture, SamePixelsComparesFormSizeAndWords) {
  Picture a({2, 1, Storage::Buffer}), b({2, 1, Storage::Buffer, {0, true, Flush::Start}, {}});
  EXPECT_TRUE(a.SamePixels(b));
  b.SetStored(1, 0, 0);
  EXPECT_FALSE(a.SamePixels(b));
  EXPECT_FALSE(a.SamePixels(Picture({2, 1, Storage::BitmapContext})));
  EXPECT_FALSE(a.SamePixels(Picture({1, 2, Storage::Buffer})));
}

TEST(Picture, SnapshotSeesEveryByte) {
  PictureShape shape{3, 3, Storage::BitmapContext};
  shape.layout.padding = 6;
  Picture picture(shape);
  const Snapshot before = picture.TakeSnapshot();
  EXPECT_TRUE(before == picture.TakeSnapshot());
  std::uint8_t* padding = picture.PixelAddress(2, 1) + 4;
  for (int i = 0; i < 6; ++i) {
    padding[i] ^= 1;
    EXPECT_TRUE(before != picture.TakeSnapshot()) << i;
    EXPECT_FALSE(picture.PaddingIntact()) << i;
    padding[i] ^= 1;
  }
  EXPECT_TRUE(picture.PaddingIntact());
  picture.SetStored(2, 2, 0);
  EXPECT_TRUE(before != picture.TakeSnapshot());
  EXPECT_TRUE(picture.PaddingIntact());
}

TEST(Picture, PaddingDiffersFromPlaceToPlace) {
  const Picture picture({3, 3, Storage::BitmapContext, {6, false, Flush::End}, {}});
  EXPECT_NE(std::memcmp(picture.PixelAddress(2, 0) + 4, picture.PixelAddress(2, 1) + 4, 6), 0);
}

TEST(Picture, StraightPixelsRoundToNearest) {
  Picture context({4, 1, Storage::BitmapContext});
  context.SetStraight({0xFF123456, 0x00FFFFFF, 0x80FF0001, 0x01FF7F80});
  EXPECT_EQ(context.StoredPixels(), (std::vector<std::uint32_t>{0xFF123456, 0, 0x80800001, 0x01010001}));
  context.SetStoredPixels({0x80400180, 0x03020100, 0x80FF0000, 0x00FFFFFF});
  EXPECT_EQ(context.Straight(), (std::vector<std::uint32_t>{0x808002FF, 0x03AA5500, 0x80FF0000, 0}));

  Picture buffer({4, 1, Storage::Buffer});
  buffer.SetStraight({0xFF123456, 0x00FFFFFF, 0x80ABCDEF, 0x01000000});
  EXPECT_EQ(buffer.StoredPixels(), (std::vector<std::uint32_t>{0x00123456, 0x7FFFFFFF, 0x3FABCDEF, 0x7F000000}));
  EXPECT_EQ(buffer.Straight(), (std::vector<std::uint32_t>{0xFF123456, 0x00FFFFFF, 0x81ABCDEF, 0x00000000}));
}

TEST(Picture, StraightPixelsOfEveryAlphaComeBack) {
  Picture context({256, 256, Storage::BitmapContext});
  std::vector<std::uint32_t> stored;
  for (std::uint32_t a = 0; a < 256; ++a) {
    for (std::uint32_t k = 0; k < 256; ++k) stored.push_back(a << 24 | (a == 0 ? 0 : std::min(k, a) * 0x010101));
  }
  context.SetStoredPixels(stored);
  context.SetStraight(context.Straight());
  EXPECT_EQ(context.StoredPixels(), stored);
}

TEST(Picture, CountsReferences) {
  Picture picture({1, 1});
  EXPECT_EQ(picture.References(), 1);
  {
    const Picture copy = picture;
    EXPECT_TRUE(copy == picture);
    EXPECT_EQ(picture.References(), 2);
  }
  EXPECT_EQ(picture.References(), 1);
  const Picture moved = std::move(picture);
  EXPECT_EQ(moved.References(), 1);
  EXPECT_EQ(moved.PluginReferences(), 0);
  EXPECT_NE(Picture({1, 1}).Id(), moved.Id());
}

// The description of a locked picture for the plug-in.
class Described : public testing::Test {
 protected:
  Described() { host_.Load(ODD_PLUGIN); }
  int Kind(const PictureShape& shape) { return host_.Call("Kind", {Picture(shape)}).result.AsInteger(); }

  Host host_;
};

TEST_F(Described, TypesAndData) {
  EXPECT_EQ(Kind({4, 3, Storage::BitmapContext}), 8);
  EXPECT_EQ(Kind({4, 3, Storage::Buffer}), 10);
  for (Storage storage : {Storage::BitmapContext, Storage::Buffer}) {
    const int type = storage == Storage::Buffer ? 10 : 8;
    PictureShape shape{4, 3, storage};
    shape.defects.pictureType = 9;
    EXPECT_EQ(Kind(shape), 9);
    shape.defects = {};
    shape.defects.nilData = true;
    EXPECT_EQ(Kind(shape), -type);
    shape.defects = {};
    shape.defects.refusesLock = true;
    EXPECT_EQ(Kind(shape), 0);
  }
}

TEST_F(Described, PluginReachesEveryPixelOfEveryLayout) {
  for (const PictureShape& shape : Layouts()) {
    const Picture picture(shape);
    host_.Call("Fill", {picture, Colour{0x01020304}});
    const std::uint32_t word = shape.storage == Storage::Buffer ? 0x04030201 : 0x01020304;
    EXPECT_EQ(picture.StoredPixels(), std::vector<std::uint32_t>(35, word));
    EXPECT_TRUE(picture.PaddingIntact());
  }
}

TEST_F(Described, SomeRowsAreNil) {
  PictureShape shape{2, 3, Storage::Buffer};
  shape.defects.nilRows = {1};
  Picture picture(shape);
  picture.Fill(7);
  EXPECT_EQ(picture.StoredPixels(), (std::vector<std::uint32_t>{7, 7, kUnwritten, kUnwritten, 7, 7}));
  EXPECT_EQ(host_.Call("ReadTableByte", {picture, 4, false}).result, 0);
  EXPECT_EQ(host_.Call("ReadTableByte", {picture, 6, false}).result, 0);
  EXPECT_NE(host_.Call("ReadTableByte", {picture, 2, false}).result, 0);
}

TEST_F(Described, OtherDepthsHaveNoWords) {
  PictureShape shape{4, 3, Storage::BitmapContext};
  shape.defects.bitsPerPixel = 16;
  const Picture picture(shape);
  EXPECT_THROW(static_cast<void>(picture.StoredPixels()), Error);
  EXPECT_EQ(picture.PixelAddress(0, 1) - picture.PixelAddress(0, 0), 8);
  EXPECT_TRUE(picture.TakeSnapshot() == picture.TakeSnapshot());
}

TEST_F(Described, NewPicturesFollowTheSettings) {
  EXPECT_EQ(host_.Call("New", {3, 2}).result.AsPicture().Shape().storage, Storage::BitmapContext);
  host_.newPictures.storage = Storage::Buffer;
  host_.newPictures.layout.scattered = true;
  host_.newPictures.change = [](int ordinal, PictureShape& shape) { shape.width += ordinal; };
  const Picture second = host_.Call("New", {3, 2}).result.AsPicture();
  EXPECT_EQ(second.Shape().storage, Storage::Buffer);
  EXPECT_TRUE(second.Shape().layout.scattered);
  EXPECT_EQ(second.Width(), 5);
  EXPECT_EQ(second.StoredPixels(), std::vector<std::uint32_t>(10, kUnwritten));
  host_.ResetCounts();
  EXPECT_EQ(host_.Call("New", {3, 2}).result.AsPicture().Width(), 4);
}

TEST_F(Described, NewPictureWithoutMemoryHasNoData) {
  const Picture picture = host_.Call("New", {1 << 20, 1 << 20}).result.AsPicture();
  EXPECT_EQ(host_.Call("Kind", {picture}).result, -8);
}

}  // namespace
