// The memory of one picture, in both storage forms, well-formed or not, and its stored words.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "GuardedMemory.h"
#include "Picture.h"

namespace host {

class PictureMemory {
 public:
  /// Throws host::Error for a shape that contradicts itself or needs too much memory.
  explicit PictureMemory(const PictureShape& shape);

  const PictureShape& Shape() const { return shape_; }

  // What the plug-in is told about the picture.

  /// Distance between the starts of neighbouring rows.
  std::int32_t BytesPerRow() const { return bytesPerRow_; }
  /// Contexts: the address of the top left pixel, or nil.
  void* ContextPixels() const { return shape_.defects.nilPixels ? nullptr : RowStart(0); }
  /// Buffers: the record, or nil.
  void* Record() const { return shape_.defects.nilData ? nullptr : record_->Block(0); }

  /// Sets the plug-in's access to the pixels. Records and row tables are never writable.
  void Protect(GuardedMemory::Access access) const;
  /// Makes the pixels accessible for the host.
  void Open() const { Protect(GuardedMemory::Access::Write); }

  // Stored words. The caller must call Open() first.

  std::uint8_t* Pixel(int x, int y) const;
  std::uint32_t Load(int x, int y) const;
  void Store(int x, int y, std::uint32_t word) const;
  void LoadRow(int y, std::uint32_t* words) const;
  void StoreRow(int y, const std::uint32_t* words) const;

  Snapshot TakeSnapshot() const;
  bool PaddingIntact() const;

 private:
  void LayOutPixels();
  void LayOutRecord();
  std::uint8_t* RowStart(int y) const;
  bool IsNilRow(int y) const { return !nilRow_.empty() && nilRow_[static_cast<std::size_t>(y)]; }
  template <class Visit>
  void VisitPadding(Visit visit) const;

  PictureShape shape_;
  std::size_t pixelWidth_ = 0;  // the columns and rows that exist in memory
  std::size_t pixelHeight_ = 0;
  std::size_t rowBytes_ = 0;
  std::int32_t bytesPerRow_ = 0;
  std::size_t scatterStep_ = 0;
  std::vector<bool> nilRow_;
  std::unique_ptr<GuardedMemory> pixels_;
  std::unique_ptr<GuardedMemory> record_;
  std::unique_ptr<GuardedMemory> rowTable_;
};

}  // namespace host
