// The picture wrapper: its values, what locking reads, what it releases, and how it makes a new
// picture. The tests of the built library cover what methods do when a service fails.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <string>
#include <vector>

#include "LinkedTest.h"

namespace {

using host::Defects;
using host::Picture;
using host::Storage;
using Names = std::vector<std::string>;

const Names kLocked = {"lockPictureDescription"};
const Names kLockedAndUnlocked = {"lockPictureDescription", "unlockPictureDescription"};
const Names kCreated = {"CreateInstance", "REALLoadObjectMethod", "Constructor", "lockPictureDescription"};

class PictureTest : public LinkedTest {};

// The values of a locked wrapper.
struct Known {
  bool locked;
  std::int32_t width, height;
  std::uint32_t bitsPerPixel, bytesPerPixel;
  std::int32_t bytesPerRow;
};

void ExpectKnown(const LMX_Picture& picture, const Known& known, const void* data, const void* buffer) {
  EXPECT_EQ(picture.locked, known.locked);
  EXPECT_EQ(picture.width, known.width);
  EXPECT_EQ(picture.height, known.height);
  EXPECT_EQ(picture.bitsPerPixel, known.bitsPerPixel);
  EXPECT_EQ(picture.bytesPerPixel, known.bytesPerPixel);
  EXPECT_EQ(picture.bytesPerRow, known.bytesPerRow);
  EXPECT_EQ(picture.data, data);
  EXPECT_EQ(picture.buffer, buffer);
}

void ExpectNoPixels(const LMX_Picture& picture) {
  ExpectKnown(picture, {false, 0, 0, 0, 0, 0}, nullptr, nullptr);
}

Defects With(void (*change)(Defects& defects)) {
  Defects defects;
  change(defects);
  return defects;
}

const Defects kNilData = With([](Defects& defects) { defects.nilData = true; });
const Defects kNilPixels = With([](Defects& defects) { defects.nilPixels = true; });
const Defects kNilRowTable = With([](Defects& defects) { defects.nilRowTable = true; });

Picture OfType(std::uint32_t type) {
  Defects defects;
  defects.pictureType = type;
  return Picture(Context(3, 2, defects));
}

TEST_F(PictureTest, OfNilIsEmpty) {
  LMX_Picture none, nil(nullptr);
  for (LMX_Picture* picture : {&none, &nil}) {
    EXPECT_EQ(picture->picture, nullptr);
    EXPECT_EQ(picture->description.pictureType, 0u);
    EXPECT_EQ(picture->description.pictureData, nullptr);
    EXPECT_FALSE(picture->unlockOnRelease);
    EXPECT_FALSE(picture->Lock());
    ExpectNoPixels(*picture);
    picture->Release();
  }
  EXPECT_EQ(Calls(), Names());
}

TEST_F(PictureTest, HoldsUsableTypes) {
  for (const std::uint32_t type : {8u, 10u}) {
    host_.ResetCounts();
    const Picture held = OfType(type);
    {
      const LMX_Picture picture(held.Handle());
      EXPECT_EQ(picture.picture, held.Handle());
      EXPECT_EQ(picture.description.pictureType, type);
      EXPECT_NE(picture.description.pictureData, nullptr);
      EXPECT_FALSE(picture.unlockOnRelease);
      ExpectNoPixels(picture);
      EXPECT_EQ(Calls(), kLocked);
    }
    EXPECT_EQ(Calls(), kLockedAndUnlocked);
  }
}

TEST_F(PictureTest, LetsGoOfOtherTypesAtOnce) {
  for (const std::uint32_t type :
       {0u, 1u, 2u, 7u, 9u, 11u, 12u, 0x80u, 0x108u, 0x80000008u, 0x8000000Au, 0xFFFFFFFFu}) {
    SCOPED_TRACE(type);
    host_.ResetCounts();
    const Picture held = OfType(type);
    {
      LMX_Picture picture(held.Handle());
      EXPECT_EQ(picture.picture, nullptr);
      EXPECT_EQ(Calls(), kLockedAndUnlocked);
      EXPECT_FALSE(picture.Lock());
      ExpectNoPixels(picture);
    }
    EXPECT_EQ(Calls(), kLockedAndUnlocked);
  }
}

// ----------------------------------------------------------------------------------------- locking

TEST_F(PictureTest, LocksABuffer) {
  constexpr Known kNone = {true, 0, 0, 32, 4, 0};
  const std::pair<host::PictureShape, Known> cases[] = {
      {Buffer(5, 3), {true, 5, 3, 32, 4, 20}},
      {Buffer(5, 3, kNilData), kNone},
      {Buffer(-1, INT_MIN), kNone},
  };
  for (const auto& [shape, known] : cases) {
    host_.ResetCounts();
    const LockedPicture locked(shape);
    ExpectKnown(locked.wrapper, known, nullptr, locked.wrapper.description.pictureData);
    EXPECT_EQ(locked.wrapper.buffer == nullptr, shape.defects.nilData);
    EXPECT_EQ(Calls(), kLocked) << "locking asks the host for nothing more";
  }
}

TEST_F(PictureTest, LocksAContext) {
  host::PictureShape shape = Context(5, 3);
  shape.layout.padding = 8;
  const LockedPicture locked(shape);
  ExpectKnown(locked.wrapper, {true, 5, 3, 32, 4, 28}, locked.picture.PixelAddress(0, 0), nullptr);
  EXPECT_EQ(Calls(), kLocked);
  const LockedPicture negative(Context(-1, INT_MIN));
  EXPECT_EQ(negative.wrapper.width, 0);
  EXPECT_EQ(negative.wrapper.height, 0);
}

TEST_F(PictureTest, LocksContextsOfEveryDepth) {
  for (const int depth : {1, 8, 16, 24, 31, 33, 64, 128}) {
    Defects defects;
    defects.bitsPerPixel = depth;
    const LockedPicture locked(Context(8, 3, defects));
    ExpectKnown(locked.wrapper, {true, 8, 3, static_cast<std::uint32_t>(depth), 0, depth},
                locked.picture.PixelAddress(0, 0), nullptr);
    EXPECT_FALSE(locked.wrapper.HasEveryRow());
  }
}

// A wrapper gets such a picture only if somebody changes its description.
TEST_F(PictureTest, DoesNotLockAnotherType) {
  for (const host::PictureShape& shape : {Context(3, 2), Buffer(3, 2)}) {
    for (const std::uint32_t type : {0u, 7u, 9u, 11u, 0xFFFFFFFFu}) {
      const Picture held(shape);
      LMX_Picture picture(held.Handle());
      picture.description.pictureType = type;
      EXPECT_FALSE(picture.Lock());
      ExpectNoPixels(picture);
    }
  }
}

TEST_F(PictureTest, DoesNotLockAContextWithoutPixels) {
  for (const Defects& defects : {kNilData, kNilPixels}) {
    host_.ResetCounts();
    const Picture held(Context(5, 3, defects));
    {
      LMX_Picture picture(held.Handle());
      EXPECT_EQ(picture.picture, held.Handle());
      EXPECT_FALSE(picture.Lock());
      ExpectNoPixels(picture);
      EXPECT_FALSE(picture.Lock());
    }
    EXPECT_EQ(Calls(), kLockedAndUnlocked);
  }
}

TEST_F(PictureTest, LocksAnEmptyContextWithoutAddress) {
  for (const auto& [width, height] : {std::pair(0, 3), std::pair(5, 0), std::pair(0, 0)}) {
    const LockedPicture locked(Context(width, height, kNilPixels));
    ExpectKnown(locked.wrapper, {true, width, height, 32, 4, 4 * width}, nullptr, nullptr);
  }
}

TEST_F(PictureTest, LocksOnlyOnce) {
  LockedPicture locked(Buffer(5, 3));
  locked.wrapper.width = 7;
  EXPECT_FALSE(locked.wrapper.Lock());
  EXPECT_TRUE(locked.wrapper.locked);
  EXPECT_EQ(locked.wrapper.width, 7);
}

TEST_F(PictureTest, LacksTheFirstAnInnerOrTheLastRow) {
  constexpr int kRows = 5;
  EXPECT_TRUE(LockedPicture(Buffer(2, kRows)).wrapper.HasEveryRow());
  EXPECT_FALSE(LockedPicture(Buffer(2, kRows, kNilRowTable)).wrapper.HasEveryRow());
  for (int missing = 0; missing < kRows; ++missing) {
    EXPECT_FALSE(LockedPicture(Buffer(2, kRows, WithoutRows({missing}))).wrapper.HasEveryRow()) << missing;
  }
}

TEST_F(PictureTest, HasRowsOfItsOwnUnlessTheyOverlap) {
  const struct {
    int bytesPerRow, height;
    bool isSo;
  } kCases[] = {{12, 2, true}, {11, 2, false}, {-12, 2, true}, {-11, 2, false},
                {0, 2, false}, {0, 1, true},   {13, 2, true}};
  for (const auto& row : kCases) {
    Defects defects;
    defects.bytesPerRow = row.bytesPerRow;
    const LockedPicture context(Context(3, row.height, defects));
    EXPECT_EQ(context.wrapper.HasRowsOfItsOwn(), row.isSo) << row.bytesPerRow << " bytes, " << row.height << " rows";
    EXPECT_TRUE(context.wrapper.HasEveryRow());
  }
}

// --------------------------------------------------------------------------------------- releasing

TEST_F(PictureTest, ForgetsAllWhenReleased) {
  for (const host::PictureShape& shape : {Context(5, 3), Buffer(5, 3)}) {
    host_.ResetCounts();
    LockedPicture locked(shape);
    locked.wrapper.Release();
    EXPECT_EQ(locked.wrapper.picture, nullptr);
    ExpectNoPixels(locked.wrapper);
    EXPECT_EQ(Calls(), kLockedAndUnlocked);
    locked.wrapper.Release();
    EXPECT_EQ(Calls(), kLockedAndUnlocked);
    EXPECT_FALSE(locked.wrapper.Lock());
  }
}

TEST_F(PictureTest, IsReleasedWhateverTheHostThrows) {
  LMX_Picture picture;
  picture.SetNewPicture(3, 2, false);
  ASSERT_TRUE(picture.Lock());
  host_.ThrowAt(host::Service::UnlockPictureDescription, 1);
  host_.ThrowAt(host::Service::UnlockObject, 1);
  EXPECT_NO_THROW(picture.Release());
  EXPECT_EQ(picture.picture, nullptr);
  ExpectNoPixels(picture);
  EXPECT_EQ(host_.Calls(host::Service::UnlockObject), 1);
}

// ------------------------------------------------------------------------------------ new pictures

Names Then(Names calls, const Names& more) {
  calls.insert(calls.end(), more.begin(), more.end());
  return calls;
}

TEST_F(PictureTest, NewOneReplacesTheOldOne) {
  Picture made;
  {
    LockedPicture old(Buffer(5, 4));
    host_.ResetCounts();
    EXPECT_FALSE(old.wrapper.SetNewPicture(3, 2, true));
    EXPECT_EQ(Calls(), Then({"unlockPictureDescription"}, kCreated));
    EXPECT_NE(old.wrapper.picture, old.picture.Handle());
    EXPECT_EQ(old.wrapper.description.pictureType, kPictureTypeBitmapContext);
    ExpectNoPixels(old.wrapper);
    ASSERT_TRUE(old.wrapper.Lock());
    made = Returned(old.wrapper.picture);
    ExpectKnown(old.wrapper, {true, 3, 2, 32, 4, 12}, made.PixelAddress(0, 0), nullptr);
  }
  EXPECT_EQ(host_.Calls(host::Service::UnlockObject), 0) << "it is kept, and stays the caller's";
  EXPECT_EQ(made.Locks(), 0);
}

TEST_F(PictureTest, NewOneThatIsNotKeptGoesWithTheWrapper) {
  for (const bool canBeLocked : {true, false}) {
    host_.newPictures.change = [=](int, host::PictureShape& shape) { shape.defects.nilData = !canBeLocked; };
    host_.ResetCounts();
    {
      LMX_Picture picture;
      picture.SetNewPicture(3, 2, false);
      EXPECT_TRUE(picture.unlockOnRelease);
      EXPECT_EQ(picture.Lock(), canBeLocked);
    }
    EXPECT_EQ(Calls(), Then(kCreated, {"unlockPictureDescription", "REALUnlockObject"}));
  }
}

TEST_F(PictureTest, NewOneThatIsKeptAfterOneThatWasNotIsNotGivenUp) {
  Picture made;
  {
    LMX_Picture picture;
    picture.SetNewPicture(3, 2, false);
    picture.SetNewPicture(3, 2, true);
    EXPECT_FALSE(picture.unlockOnRelease);
    made = Returned(picture.picture);
  }
  EXPECT_EQ(host_.Calls(host::Service::UnlockObject), 1);
}

TEST_F(PictureTest, NewOneHasAtLeastOnePixel) {
  for (const long size : {0L, -1L, static_cast<long>(INT_MIN)}) {
    LockedPicture old(Buffer(5, 4));
    host_.ResetCounts();
    EXPECT_FALSE(old.wrapper.SetNewPicture(size, 2, true));
    EXPECT_EQ(old.wrapper.picture, nullptr);
    EXPECT_FALSE(old.wrapper.SetNewPicture(3, size, true));
    EXPECT_FALSE(old.wrapper.Lock());
    EXPECT_EQ(Calls(), Names({"unlockPictureDescription"})) << size;
  }
}

TEST_F(PictureTest, NewOneNeedsTheClass) {
  gPictureClassRef = nullptr;
  LMX_Picture picture;
  EXPECT_FALSE(picture.SetNewPicture(3, 2, true));
  EXPECT_EQ(Calls(), Names());
  EXPECT_EQ(picture.picture, nullptr);
  EXPECT_FALSE(picture.Lock());
}

TEST_F(PictureTest, NewOneIsOfTheSizeAsked) {
  std::vector<std::pair<int, int>> asked;
  host_.newPictures.change = [&](int, host::PictureShape& shape) {
    asked.emplace_back(shape.width, shape.height);
    shape.width = shape.height = 1;
  };
  LMX_Picture picture;
  picture.SetNewPicture(INT_MAX, 1, false);
  picture.SetNewPicture(1, INT_MAX, false);
  EXPECT_EQ(asked, (std::vector<std::pair<int, int>>{{INT_MAX, 1}, {1, INT_MAX}}));
}

}  // namespace
