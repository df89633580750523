#include "Bounds.h"

#include <set>
#include <stdexcept>

namespace support {
namespace {

constexpr int kLongest = 1000;  // every method is tried with all lengths up to this

// Widths around the one at which `rows` rows have that many pixels.
std::vector<int> Widths(int pixels, int rows) {
  return {pixels / rows - 1, pixels / rows, pixels / rows + 1};
}

Bound Length(const char* name, const char* value, int length) {
  return {name, value, {length - 1, length, length + 1}};
}

std::vector<int> Join(std::vector<int> a, const std::vector<int>& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

}  // namespace

const std::vector<Bound>& Bounds() {
  static const std::vector<Bound> bounds = {
      // Pixels in a register, in several registers, in a block of sums, in a cache line.
      Length("kPixels", "4", 4),
      Length("kPixels", "8", 8),
      Length("kPixels", "16", 16),
      Length("kRegs", "1", 16),
      Length("kRegs", "2", 32),
      Length("kStep", "kRegs * kWide", 32),
      Length("kSumBlock", "256", 256),
      Length("kLine", "16", 16),
      Length("kRowsAtOnce", "16", 16),
      // Tiles, strips and bands.
      Length("kTile", "64", 64),
      Length("kTogether", "32", 32),
      Length("kMostTogether", "64", 64),
      Length("kMostTurned", "256", 256),
      Length("kRows", "64", 64),
      Length("kMostRows", "64", 64),
      Length("kMostColumns", "16", 16),
      Length("kKeptRows", "2 * kTile", 128),
      Length("kRowsAhead", "16", 16),
      Length("kFew", "4", 4),
      {"kPixelsAhead", "1 << 18", Join(Widths(1 << 18, 64), Join(Widths(1 << 18, 32), Widths(1 << 18, 1)))},
      // Arrays.
      Length("kChunk", "512", 512),
      Length("kMost", "static_cast<std::int32_t>(kMostBoxRuns) + kTile", 96),
      Length("kMostSums", "kTile", 64),
      {"kScratch", "kTile * kTile", Widths(64 * 64, 64)},
      Length("kMostBoxRuns", "32", 32),
      Length("kBoxSumsStep", "16", 16),
      Length("kStep", "static_cast<std::int32_t>(kBoxSumsStep)", 16),
      // Thresholds.
      Length("kCachedPixels", "3 << 20", 3 << 20),
      Length("kLongest", "65535", 65535),
      Length("kGreatestReduction", "32768", 32768),
  };
  return bounds;
}

const std::vector<OtherConstant>& OtherConstants() {
  static const std::vector<OtherConstant> others = {
      {"kWide", "kPixels under another name"},
      {"kAlpha", "a mask"},
      {"kTransparentBlack", "a colour"},
      {"kWholeBox", "units of a box, not pixels"},
      {"kMostMissing", "units of a box, not pixels"},
      {"kLastCode", "a code of an error"},
      {"kMethodCount", "what the table has"},
      {"kKernelLevels", "what the enumeration has"},
      {"kPixelForms", "what the enumeration has"},
      {"kMostShown", "characters of a message"},
      {"kDecimals", "characters of a message"},
      {"text", "characters of a message"},
      {"gLMX_DebugMessage", "characters of a message"},
      {"kTerms", "of a series"},
      {"pairs", "registers of a square of pixels"},
      {"fours", "registers of a square of pixels"},
      {"columns", "registers of a square of pixels"},
  };
  return others;
}

std::vector<int> LengthsAtBounds() {
  std::set<int> lengths;
  for (const Bound& bound : Bounds()) {
    for (const int length : bound.lengths) {
      if (length <= kLongest) lengths.insert(length);
    }
  }
  return {lengths.begin(), lengths.end()};
}

const std::vector<int>& LengthsAt(const std::string& name) {
  for (const Bound& bound : Bounds()) {
    if (bound.name == name) return bound.lengths;
  }
  throw std::logic_error("no bound " + name);
}

}  // namespace support
