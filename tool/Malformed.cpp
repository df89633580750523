#include "Malformed.h"

#include <algorithm>
#include <cstddef>

namespace tool {
namespace {

// PNG: a chunk has a length and a type, in four bytes each, its data, and a checksum.
constexpr std::size_t kSignature = 8, kChunkHead = 8, kChecksum = 4;
constexpr std::size_t kWholePalette = 3 * 256;  // bytes

// JPEG: markers, and what a table is made of.
constexpr unsigned kFill = 0xFF, kStartOfScan = 0xDA, kHuffmanTables = 0xC4, kComment = 0xFE, kStandalone = 0xD0;
constexpr std::size_t kStartOfImage = 2;  // bytes
constexpr unsigned kMostCodes = 256;
constexpr int kLengths = 16;  // of codes, in bits from 1 on

// The chunks of a PNG, one after the other.
class ChunkWalk {
 public:
  explicit ChunkWalk(const std::vector<unsigned char>& png) : png_(png) {}

  // False when there is no further chunk that lies within the file.
  bool Next() {
    if (next_ + kChunkHead > png_.size()) return false;
    data_ = next_ + kChunkHead;
    length_ = 0;
    for (std::size_t i = 0; i < 4; ++i) length_ = length_ << 8 | png_[next_ + i];
    if (!Is("IEND") && length_ > png_.size() - data_) return false;
    next_ = data_ + length_ + kChecksum;
    return true;
  }

  bool Is(const char* type) const {
    return std::equal(type, type + 4, png_.begin() + static_cast<std::ptrdiff_t>(data_ - 4));
  }
  std::size_t Data() const { return data_; }
  std::size_t Length() const { return length_; }

 private:
  const std::vector<unsigned char>& png_;
  std::size_t next_ = kSignature;
  std::size_t data_ = 0;
  std::size_t length_ = 0;
};

class JpegScanner {
 public:
  explicit JpegScanner(const std::vector<unsigned char>& bytes) : bytes_(bytes) {}

  // While one segment follows the other, what programs have put into theirs is skipped: it can look like anything.
  // Where that ends, with the first scan or because the file is no longer what it should be, a decoder may find tables
  // at any place that looks like one.
  bool AllFit() const {
    std::size_t at = kStartOfImage;
    while (At(at) == kFill && IsSegment(At(at + 1))) {
      if (At(at + 1) == kHuffmanTables && !Fit(at + 2)) return false;
      at += 2 + Word(at + 2);
    }
    for (; at < bytes_.size(); ++at) {
      if (At(at) == kFill && At(at + 1) == kHuffmanTables && !Fit(at + 2)) return false;
    }
    return true;
  }

 private:
  static bool IsSegment(unsigned marker) {
    const bool standalone = (marker & 0xF8) == kStandalone || marker == kStandalone + 8 || marker == kStandalone + 9;
    return marker >= 0xC0 && marker <= kComment && marker != kStartOfScan && !standalone;
  }

  // Zeros behind the end, as the decoder has it.
  unsigned At(std::size_t index) const { return index < bytes_.size() ? bytes_[index] : 0; }
  unsigned Word(std::size_t index) const { return At(index) << 8 | At(index + 1); }

  // The tables of one segment, from its length on.
  bool Fit(std::size_t at) const {
    const std::size_t end = at + Word(at);
    for (at += 2; at < end && at < bytes_.size();) {
      unsigned codes = 0;
      for (int i = 1; i <= kLengths; ++i) codes += At(at + static_cast<std::size_t>(i));
      if (codes > kMostCodes) return false;
      at += 1 + kLengths + codes;
    }
    return true;
  }

  const std::vector<unsigned char>& bytes_;
};

}  // namespace

bool ChunksFit(const std::vector<unsigned char>& png) {
  ChunkWalk walk(png);
  while (walk.Next()) {
    if (walk.Is("IEND")) return true;  // whatever follows is not read
  }
  return false;
}

bool FillPalette(std::vector<unsigned char>* png) {
  std::size_t at = 0, length = 0;  // of the palette's bytes
  for (ChunkWalk walk(*png); walk.Next() && !walk.Is("IEND");) {
    if (walk.Is("tRNS") && walk.Length() > length / 3) return true;  // the decoder refuses that many
    if (!walk.Is("PLTE")) continue;
    if (at != 0) return false;
    at = walk.Data();
    length = walk.Length();
  }
  if (length == 0 || length >= kWholePalette || length % 3 != 0) return true;
  (*png)[at - 6] = kWholePalette >> 8;
  (*png)[at - 5] = kWholePalette & 0xFF;
  png->insert(png->begin() + static_cast<std::ptrdiff_t>(at + length), kWholePalette - length, 0);
  return true;
}

bool HuffmanTablesFit(const std::vector<unsigned char>& jpeg) {
  return JpegScanner(jpeg).AllFit();
}

}  // namespace tool
