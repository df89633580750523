#include "PictureMemory.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <numeric>

#include "Value.h"

namespace host {
namespace {

constexpr std::uint64_t kMostPixelBytes = std::uint64_t{1} << 30;
constexpr std::uint64_t kMostMappedBytes = std::uint64_t{2} << 30;  // with padding, or a defect of the row distance
constexpr std::uint8_t kRecordFiller = 0xB6;

// Differs from place to place, so that padding copied from another place is noticed.
std::uint8_t PaddingByte(std::size_t row, std::size_t offset) {
  return static_cast<std::uint8_t>(0x80 | ((row * 37 + offset * 11 + 5) & 0x7F));
}

void CheckShape(const PictureShape& shape) {
  const Defects& defects = shape.defects;
  const bool buffer = shape.storage == Storage::Buffer;
  if (shape.layout.padding < 0) throw Error("a picture's padding is negative");
  if (shape.layout.scattered && !buffer) throw Error("only the rows of a buffer can be scattered");
  if (shape.layout.scattered && shape.layout.padding != 0) throw Error("scattered rows have no padding");
  if (shape.layout.sparse &&
      (shape.layout.scattered || shape.layout.padding != 0 || defects.bytesPerRow.value_or(0) != 0)) {
    throw Error("the rows of a sparse picture follow one another without a gap");
  }
  if (buffer && (defects.nilPixels || defects.bitsPerPixel != 32)) {
    throw Error("a buffer has no pixel address or depth of its own");
  }
  if (shape.layout.scattered && defects.bytesPerRow) throw Error("scattered rows have no distance");
  if (!buffer && (defects.nilRowTable || !defects.nilRows.empty())) throw Error("a bitmap context has no row table");
  if (defects.bitsPerPixel < 1 || defects.bitsPerPixel > 128) throw Error("a picture's depth is out of range");
  for (int row : defects.nilRows) {
    if (row < 0 || row >= shape.height) throw Error("a row that shall be nil is outside the picture");
  }
}

std::uint32_t SwapBytes(std::uint32_t word) {
  return __builtin_bswap32(word);
}

std::uint32_t Address32(const void* address) {
  const auto value = reinterpret_cast<std::uintptr_t>(address);
  if (value > UINT32_MAX) throw Error("an address that shall have 32 bits has more");
  return static_cast<std::uint32_t>(value);
}

}  // namespace

PictureMemory::PictureMemory(const PictureShape& shape) : shape_(shape) {
  CheckShape(shape);
  const std::uint64_t width = static_cast<std::uint64_t>(std::max(shape.width, 0));
  const std::uint64_t height = static_cast<std::uint64_t>(std::max(shape.height, 0));
  const std::uint64_t rowBytes = (width * static_cast<unsigned>(shape.defects.bitsPerPixel) + 7) / 8;
  const std::uint64_t distance = rowBytes + static_cast<unsigned>(shape.layout.padding);
  if (!shape.layout.sparse && rowBytes != 0 && height > kMostPixelBytes / rowBytes)
    throw Error("no memory for so many pixels");
  if (distance > INT32_MAX && height != 0 && !shape.defects.bytesPerRow) throw Error("a picture's rows are too long");
  if (width != 0 && height != 0) {
    pixelWidth_ = static_cast<std::size_t>(width);
    pixelHeight_ = static_cast<std::size_t>(height);
    rowBytes_ = static_cast<std::size_t>(rowBytes);
  }
  bytesPerRow_ = shape.defects.bytesPerRow.value_or(static_cast<std::int32_t>(static_cast<std::uint32_t>(distance)));
  LayOutPixels();
  if (shape.storage == Storage::Buffer) LayOutRecord();
}

void PictureMemory::LayOutPixels() {
  const auto where =
      shape_.storage == Storage::Buffer ? GuardedMemory::Where::Below4GiB : GuardedMemory::Where::Anywhere;
  if (shape_.layout.scattered && pixelHeight_ > 0) {
    // Neighbouring rows lie far apart, and every block is used once.
    scatterStep_ = pixelHeight_ * 5 / 8 + 1;
    while (std::gcd(scatterStep_, pixelHeight_) != 1) ++scatterStep_;
    pixels_ = std::make_unique<GuardedMemory>(pixelHeight_, rowBytes_, shape_.layout.flush, where);
  } else {
    const std::uint64_t distance = static_cast<std::uint64_t>(std::llabs(bytesPerRow_));
    const std::uint64_t size = pixelHeight_ == 0 ? 0 : (pixelHeight_ - 1) * distance + rowBytes_;
    if (size > kMostMappedBytes && !shape_.layout.sparse) throw Error("no memory for so many pixels");
    pixels_ = std::make_unique<GuardedMemory>(1, size, shape_.layout.flush, where);
  }
  nilRow_.assign(shape_.defects.nilRows.empty() ? 0 : static_cast<std::size_t>(shape_.height), false);
  for (int row : shape_.defects.nilRows) nilRow_[static_cast<std::size_t>(row)] = true;

  VisitPadding([](std::uint8_t& byte, std::uint8_t pattern) {
    byte = pattern;
    return true;
  });
  if (shape_.defects.bitsPerPixel == 32 && !shape_.layout.sparse) {
    const std::vector<std::uint32_t> row(pixelWidth_, kUnwritten);
    for (std::size_t y = 0; y < pixelHeight_; ++y) StoreRow(static_cast<int>(y), row.data());
  }
}

void PictureMemory::LayOutRecord() {
  const std::size_t entries = static_cast<std::size_t>(std::max(shape_.height, 0));
  rowTable_ =
      std::make_unique<GuardedMemory>(1, std::uint64_t{4} * entries, Flush::End, GuardedMemory::Where::Below4GiB);
  for (std::size_t y = 0; y < entries; ++y) {
    const int row = static_cast<int>(y);
    const std::uint32_t address = IsNilRow(row) ? 0 : Address32(RowStart(row));
    std::memcpy(rowTable_->Block(0) + 4 * y, &address, 4);
  }
  record_ = std::make_unique<GuardedMemory>(1, sizeof(REALpictureBuffer), Flush::End, GuardedMemory::Where::Below4GiB);
  auto* record = reinterpret_cast<REALpictureBuffer*>(record_->Block(0));
  std::memset(record, kRecordFiller, sizeof *record);
  record->width = shape_.width;
  record->height = shape_.height;
  record->rowTable = shape_.defects.nilRowTable ? 0 : Address32(rowTable_->Block(0));
}

void PictureMemory::Protect(GuardedMemory::Access access) const {
  pixels_->Protect(access);
  if (record_ == nullptr) return;
  const auto readable = access == GuardedMemory::Access::None ? access : GuardedMemory::Access::Read;
  record_->Protect(readable);
  rowTable_->Protect(readable);
}

std::uint8_t* PictureMemory::RowStart(int y) const {
  if (scatterStep_ != 0) {
    const std::uint64_t block = static_cast<std::uint64_t>(y) * scatterStep_ % pixelHeight_;
    return pixels_->Block(static_cast<std::size_t>(block));
  }
  if (pixelHeight_ == 0) return pixels_->Block(0);
  // Where the distance from row to row is negative, the last row has the lowest address.
  const std::int64_t last = static_cast<std::int64_t>(pixelHeight_) - 1;
  const std::int64_t row = bytesPerRow_ < 0 ? y - last : y;
  const auto offset = static_cast<std::uintptr_t>(row * bytesPerRow_);  // may exceed a signed 32-bit number
  return reinterpret_cast<std::uint8_t*>(reinterpret_cast<std::uintptr_t>(pixels_->Block(0)) + offset);
}

std::uint8_t* PictureMemory::Pixel(int x, int y) const {
  return RowStart(y) + static_cast<std::ptrdiff_t>(x) * ((shape_.defects.bitsPerPixel + 7) / 8);
}

std::uint32_t PictureMemory::Load(int x, int y) const {
  if (IsNilRow(y)) return kUnwritten;
  std::uint32_t word;
  std::memcpy(&word, Pixel(x, y), 4);
  return shape_.storage == Storage::Buffer ? word : SwapBytes(word);
}

void PictureMemory::Store(int x, int y, std::uint32_t word) const {
  if (IsNilRow(y)) return;
  if (shape_.storage == Storage::BitmapContext) word = SwapBytes(word);
  std::memcpy(Pixel(x, y), &word, 4);
}

void PictureMemory::LoadRow(int y, std::uint32_t* words) const {
  if (pixelWidth_ == 0) return;
  if (IsNilRow(y)) {
    std::fill_n(words, pixelWidth_, kUnwritten);
    return;
  }
  std::memcpy(words, RowStart(y), 4 * pixelWidth_);
  if (shape_.storage == Storage::BitmapContext) std::transform(words, words + pixelWidth_, words, SwapBytes);
}

void PictureMemory::StoreRow(int y, const std::uint32_t* words) const {
  if (pixelWidth_ == 0 || IsNilRow(y)) return;
  std::uint8_t* row = RowStart(y);
  if (shape_.storage == Storage::Buffer) {
    std::memcpy(row, words, 4 * pixelWidth_);
    return;
  }
  for (std::size_t x = 0; x < pixelWidth_; ++x) {
    const std::uint32_t word = SwapBytes(words[x]);
    std::memcpy(row + 4 * x, &word, 4);
  }
}

// Calls visit(byte, pattern) for every byte between the rows until it returns false.
template <class Visit>
void PictureMemory::VisitPadding(Visit visit) const {
  const std::size_t distance = static_cast<std::size_t>(std::llabs(bytesPerRow_));
  if (scatterStep_ != 0 || pixelHeight_ < 2 || distance <= rowBytes_) return;
  for (std::size_t row = 0; row + 1 < pixelHeight_; ++row) {
    std::uint8_t* start = pixels_->Block(0) + row * distance;
    for (std::size_t offset = rowBytes_; offset < distance; ++offset) {
      if (!visit(start[offset], PaddingByte(row, offset))) return;
    }
  }
}

bool PictureMemory::PaddingIntact() const {
  bool intact = true;
  VisitPadding([&](std::uint8_t& byte, std::uint8_t pattern) { return intact = byte == pattern; });
  return intact;
}

Snapshot PictureMemory::TakeSnapshot() const {
  Snapshot snapshot;
  for (const GuardedMemory* memory : {pixels_.get(), record_.get(), rowTable_.get()}) {
    if (memory == nullptr) continue;
    for (std::size_t i = 0; i < memory->Blocks(); ++i) {
      const std::uint8_t* block = memory->Block(i);
      snapshot.parts_.emplace_back(block, block + memory->BlockSize());
    }
  }
  return snapshot;
}

}  // namespace host
