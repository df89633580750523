#include "Malformed.h"

#include <cstddef>

namespace tool {
namespace {

// Markers, and what a table is made of.
constexpr unsigned kFill = 0xFF, kStartOfScan = 0xDA, kHuffmanTables = 0xC4, kComment = 0xFE, kStandalone = 0xD0;
constexpr std::size_t kStartOfImage = 2;  // bytes
constexpr unsigned kMostCodes = 256;
constexpr int kLengths = 16;  // of codes, in bits from 1 on

class JpegScanner {
 public:
  explicit JpegScanner(const std::vector<unsigned char>& bytes) : bytes_(bytes) {}

  // Data of programs may look like anything, so it is skipped as long as segments follow one
  // another. After the first scan, or where the file is damaged, a decoder may take any bytes for a
  // table.
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

  // Zeros after the end, as in the decoder.
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

bool HuffmanTablesFit(const std::vector<unsigned char>& jpeg) {
  return JpegScanner(jpeg).AllFit();
}

}  // namespace tool
