#include "Orientation.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

namespace tool {
namespace {

constexpr unsigned kOrientationTag = 0x0112, kShort = 3;

// Some bytes of a file; there are zeros after the end.
class Part {
 public:
  Part() = default;
  Part(const unsigned char* bytes, std::size_t size) : bytes_(bytes), size_(size) {}

  std::size_t Size() const { return size_; }
  unsigned At(std::size_t index) const { return index < size_ ? bytes_[index] : 0; }
  bool Has(std::size_t at, const char* text, std::size_t length) const {
    return at <= size_ && length <= size_ - at && std::memcmp(bytes_ + at, text, length) == 0;
  }
  Part From(std::size_t at) const { return at < size_ ? Part(bytes_ + at, size_ - at) : Part(); }
  Part First(std::size_t size) const { return Part(bytes_, std::min(size, size_)); }

  std::size_t Number(std::size_t at, std::size_t size, bool littleEndian = false) const {
    std::size_t number = 0;
    for (std::size_t i = 0; i < size; ++i) number = number << 8 | At(at + (littleEndian ? size - 1 - i : i));
    return number;
  }

 private:
  const unsigned char* bytes_ = nullptr;
  std::size_t size_ = 0;
};

// EXIF data are a TIFF file: a byte order, the place of the first directory, and that: a count, and
// entries of tag, type, count and value.
int OrientationIn(Part tiff) {
  constexpr std::size_t kDirectory = 4, kCount = 2, kEntry = 12, kType = 2, kValue = 8;
  const bool littleEndian = tiff.Has(0, "II*\0", 4);
  if (!littleEndian && !tiff.Has(0, "MM\0*", 4)) return kUpright;
  const Part directory = tiff.From(tiff.Number(kDirectory, 4, littleEndian));
  const std::size_t count = std::min(directory.Number(0, kCount, littleEndian), directory.Size() / kEntry);
  for (std::size_t i = 0; i < count; ++i) {
    const Part entry = directory.From(kCount + i * kEntry);
    if (entry.Number(0, 2, littleEndian) != kOrientationTag) continue;
    const std::size_t value = entry.Number(kValue, 2, littleEndian);
    const bool known = entry.Number(kType, 2, littleEndian) == kShort && value >= 1 && value <= kMostOrientations;
    return known ? static_cast<int>(value) : kUpright;
  }
  return kUpright;
}

// The segments in front of the first scan, each a marker, a length that counts itself, and data.
Part ExifOfJpeg(Part file) {
  constexpr unsigned kFill = 0xFF, kApplication1 = 0xE1, kStartOfScan = 0xDA;
  constexpr std::size_t kStartOfImage = 2, kMarker = 2, kLength = 2, kName = 6;
  std::size_t at = kStartOfImage;
  while (at < file.Size() && file.At(at) == kFill && file.At(at + 1) != kStartOfScan) {
    if (file.At(at + 1) == kFill) {
      ++at;
      continue;
    }
    const std::size_t length = file.Number(at + kMarker, kLength);
    const Part data = file.From(at + kMarker).First(length).From(kLength);
    if (file.At(at + 1) == kApplication1 && data.Has(0, "Exif\0\0", kName)) return data.From(kName);
    at += kMarker + length;
  }
  return {};
}

// Chunks, each a length, a type, data and a checksum.
Part ExifOfPng(Part file) {
  constexpr std::size_t kSignature = 8, kType = 4, kHead = 8, kChecksum = 4;
  std::size_t at = kSignature;
  while (at + kHead <= file.Size() && !file.Has(at + kType, "IEND", 4)) {
    const std::size_t length = file.Number(at, 4);
    if (length > file.Size() - at - kHead) break;
    if (file.Has(at + kType, "eXIf", 4)) return file.From(at + kHead).First(length);
    at += kHead + length + kChecksum;
  }
  return {};
}

}  // namespace

int OrientationOf(const std::vector<unsigned char>& file) {
  const Part whole(file.data(), file.size());
  return OrientationIn(whole.Has(0, "\x89PNG", 4) ? ExifOfPng(whole) : ExifOfJpeg(whole));
}

Image Upright(Image image, int orientation) {
  if (orientation == kUpright) return image;
  const bool exchanged = orientation >= 5;
  const bool fromRight = orientation == 2 || orientation == 3 || orientation == 7 || orientation == 8;
  const bool fromBottom = orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7;
  Image upright{exchanged ? image.height : image.width, exchanged ? image.width : image.height, {}};
  upright.pixels.reserve(image.pixels.size());
  for (int y = 0; y < upright.height; ++y) {
    for (int x = 0; x < upright.width; ++x) {
      const int column = exchanged ? y : x, row = exchanged ? x : y;
      const auto fromX = static_cast<std::size_t>(fromRight ? image.width - 1 - column : column);
      const auto fromY = static_cast<std::size_t>(fromBottom ? image.height - 1 - row : row);
      upright.pixels.push_back(image.pixels[fromY * static_cast<std::size_t>(image.width) + fromX]);
    }
  }
  return upright;
}

}  // namespace tool
