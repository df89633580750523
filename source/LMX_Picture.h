// A host picture on the stack of an operation: the geometry and addresses of its pixels, the two
// conversions between stored and working pixels, and the creation of new pictures.
//
// A wrapper is empty, holds a picture (whose description is locked in the host), or is locked (its
// pixels are known). Its destructor gives back everything that it took, also when an exception of
// the host passes.
#pragma once

#include <cstdint>
#include <cstdlib>

#include "HostCalls.h"
#include "kernels/RunKernels.h"

/// The host's `picture` class, from which new pictures are made. Stored at start-up; nil when the
/// host does not know it.
extern REALclassRefStruct* gPictureClassRef;

class LMX_Picture {
 public:
  REALpictureStruct* picture = nullptr;  ///< nil when the wrapper is empty
  REALpictureDescription description = {};
  bool locked = false;
  bool unlockOnRelease = false;  ///< whether the wrapper also owns a reference to the object

  // Known while locked, zero or nil otherwise.
  std::int32_t width = 0;          ///< pixels per row; a size below 0 in a malformed picture counts as 0
  std::int32_t height = 0;         ///< rows
  std::uint32_t bitsPerPixel = 0;  ///< other than 32: the picture reads as clear and ignores writes
  std::uint32_t bytesPerPixel = 0;
  std::int32_t bytesPerRow = 0;         ///< from the start of a row to that of the row below
  std::uint8_t* data = nullptr;         ///< the top left pixel of a bitmap-context picture
  REALpictureBuffer* buffer = nullptr;  ///< the record of a buffer picture

  /// Empty.
  LMX_Picture() = default;

  /// Holds an argument of a method: nil, or a picture of a type that is not usable, leaves the
  /// wrapper empty. The object's reference stays the caller's.
  explicit LMX_Picture(REALpictureStruct* handle) {
    if (handle) Hold(handle);
  }

  ~LMX_Picture() { Release(); }

  LMX_Picture(const LMX_Picture&) = delete;
  LMX_Picture& operator=(const LMX_Picture&) = delete;

  /// Makes the pixels known. False when the wrapper is empty or locked already, or when the pixels
  /// cannot be reached.
  bool Lock();

  /// Gives back the lock, and the object's reference if the wrapper owns it. The wrapper is empty
  /// afterwards. Never throws: an exception of the host here would keep the other wrappers of the
  /// call from their release.
  void Release() noexcept {
    if (!picture) return;
    FinishNonTemporalStores();
    ForgetPixels();
    REALpictureStruct* const released = picture;
    picture = nullptr;
    Quietly([=] { REALUnlockPictureDescription(released); });
    if (unlockOnRelease) Quietly([=] { REALUnlockObject(reinterpret_cast<REALobjectStruct*>(released)); });
  }

  /// Holds a new picture of the host, with any content. `keep`: the object goes to the caller of
  /// the method; otherwise its reference is given up with the wrapper. A size below 1 makes no
  /// picture. Rationale: the result is always false, and nobody looks at it. A picture that could
  /// not be made cannot be locked, so the Lock() that follows answers for both.
  bool SetNewPicture(long width, long height, bool keep);

  /// The leftmost pixel of row r, 0 <= r < height; nil when a malformed buffer has no such row.
  std::uint8_t* RowAddress(std::int32_t r) const {
    if (description.pictureType != kPictureTypeBuffer) {
      // In pictures beyond 2 GiB a signed offset would overflow in 32 bits.
      const auto offset = static_cast<std::uintptr_t>(bytesPerRow) * static_cast<std::uintptr_t>(r);
      return reinterpret_cast<std::uint8_t*>(reinterpret_cast<std::uintptr_t>(data) + offset);
    }
    if (!buffer || !buffer->rowTable) return nullptr;
    return Address(reinterpret_cast<const std::uint32_t*>(Address(buffer->rowTable))[r]);
  }

  /// Whether the pixels of every row can be used: they have 32 bits, and no row of a buffer is
  /// missing.
  bool HasEveryRow() const {
    if (bitsPerPixel != 32) return false;
    for (std::int32_t r = 0; buffer && r < height; ++r) {
      if (!RowAddress(r)) return false;
    }
    return true;
  }

  /// Whether the rows of a bitmap context do not overlap. Those of a buffer are trusted.
  bool HasRowsOfItsOwn() const {
    return buffer || height < 2 ||
           std::abs(static_cast<std::int64_t>(bytesPerRow)) >= static_cast<std::int64_t>(width) * 4;
  }

  /// The working pixel of a stored one.
  std::uint32_t ReadPixel(const std::uint8_t* address) const {
    if (buffer) return LMX_Pixel::ReadBuffer(address);
    return bitsPerPixel == 32 ? LMX_Pixel::ReadContext(address) : 0;
  }

  /// Stores a working pixel.
  void WritePixel(std::uint8_t* address, std::uint32_t pixel) const {
    if (buffer) {
      LMX_Pixel::WriteBuffer(address, pixel);
    } else if (bitsPerPixel == 32) {
      LMX_Pixel::WriteContext(address, pixel);
    }
  }

 private:
  static std::uint8_t* Address(std::uint32_t word) {
    return reinterpret_cast<std::uint8_t*>(static_cast<std::uintptr_t>(word));
  }

  template <class Service>
  static void Quietly(Service call) noexcept {
    try {
      call();
    } catch (...) {  // swallowed: the other releases must happen
    }
  }

  void Hold(REALpictureStruct* handle) {
    description = {};
    REALLockPictureDescription(handle, &description);
    if (description.pictureType == kPictureTypeBitmapContext || description.pictureType == kPictureTypeBuffer) {
      picture = handle;
    } else {
      Quietly([=] { REALUnlockPictureDescription(handle); });
    }
  }

  void ForgetPixels() {
    width = height = 0;
    bitsPerPixel = bytesPerPixel = 0;
    bytesPerRow = 0;
    data = nullptr;
    buffer = nullptr;
    locked = false;
  }
};

/// A walk up or down the rows of neighbouring columns. In a bitmap context every step moves. In a
/// buffer the walk stays on its row if that row or the next one is missing or outside the picture.
class ColumnWalk {
 public:
  enum Direction { kDown = 1, kUp = -1 };

  ColumnWalk(const LMX_Picture& picture, std::int32_t row, Direction direction = kDown)
      : picture_(picture), row_(row), step_(direction) {}

  const LMX_Picture& Picture() const { return picture_; }
  std::int32_t Row() const { return row_; }
  std::int32_t Step() const { return step_; }
  void Next() {
    if (!picture_.buffer || (IsRow(row_) && IsRow(row_ + step_) && HasRow(row_) && HasRow(row_ + step_))) row_ += step_;
  }
  /// Makes `steps` >= 1 steps, all of which but the last are known to move.
  void Skip(std::int32_t steps) {
    row_ += (steps - 1) * step_;
    Next();
  }

 private:
  bool IsRow(std::int32_t row) const { return row >= 0 && row < picture_.height; }
  bool HasRow(std::int32_t row) const { return picture_.RowAddress(row) != nullptr; }

  const LMX_Picture& picture_;
  std::int32_t row_;
  std::int32_t step_;
};
