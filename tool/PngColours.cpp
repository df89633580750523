#include "PngColours.h"

#include <algorithm>
#include <initializer_list>

namespace tool {
namespace {

std::uint32_t Pixel(unsigned red, unsigned green, unsigned blue, unsigned alpha) {
  return std::uint32_t{alpha} << 24 | std::uint32_t{red} << 16 | std::uint32_t{green} << 8 | blue;
}

}  // namespace

std::size_t Channels(const PngHeader& header) {
  switch (header.kind) {
    case kColours:
      return 3;
    case kGreyAlpha:
      return 2;
    case kColoursAlpha:
      return 4;
    default:
      return 1;
  }
}

std::size_t RowSize(const PngHeader& header, std::size_t width) {
  return static_cast<std::size_t>((std::uint64_t{width} * Channels(header) * header.depth + 7) / 8);
}

bool IsKnown(const PngHeader& header) {
  const auto depthIsOneOf = [&](std::initializer_list<unsigned> depths) {
    return std::find(depths.begin(), depths.end(), header.depth) != depths.end();
  };
  switch (header.kind) {
    case kGrey:
      return depthIsOneOf({1, 2, 4, 8, 16});
    case kPalette:
      return depthIsOneOf({1, 2, 4, 8});
    case kColours:
    case kGreyAlpha:
    case kColoursAlpha:
      return depthIsOneOf({8, 16});
    default:
      return false;
  }
}

bool Colours::SetPalette(const unsigned char* data, std::size_t size) {
  if (size == 0 || size % 3 != 0 || size > 3 * palette_.size()) return false;
  count_ = size / 3;
  for (std::size_t i = 0; i < count_; ++i, data += 3) palette_[i] = Pixel(data[0], data[1], data[2], 0xFF);
  return true;
}

bool Colours::SetTransparency(const unsigned char* data, std::size_t size) {
  if (header_.kind == kPalette) {
    if (size > count_) return false;
    for (std::size_t i = 0; i < size; ++i) palette_[i] = (palette_[i] & 0xFFFFFF) | std::uint32_t{data[i]} << 24;
    return true;
  }
  if ((header_.kind != kGrey && header_.kind != kColours) || size != 2 * Channels(header_)) return false;
  clear_.emplace();
  for (std::size_t i = 0; i < size / 2; ++i) {
    (*clear_)[i] = (static_cast<unsigned>(data[2 * i]) << 8 | data[2 * i + 1]) & ((1U << header_.depth) - 1);
  }
  return true;
}

void Colours::Expand(const unsigned char* row, std::size_t width, std::uint32_t* to, std::size_t step) const {
  if (header_.depth == 8 && header_.kind == kColours && !clear_) {
    for (std::size_t x = 0; x < width; ++x, row += 3) to[x * step] = Pixel(row[0], row[1], row[2], 0xFF);
  } else if (header_.depth == 8 && header_.kind == kColoursAlpha) {
    for (std::size_t x = 0; x < width; ++x, row += 4) to[x * step] = Pixel(row[0], row[1], row[2], row[3]);
  } else {
    for (std::size_t x = 0; x < width; ++x) to[x * step] = At(row, x);
  }
}

unsigned Colours::Sample(const unsigned char* row, std::size_t i) const {
  if (header_.depth == 8) return row[i];
  if (header_.depth == 16) return static_cast<unsigned>(row[2 * i]) << 8 | row[2 * i + 1];
  const std::size_t bit = i * header_.depth;
  return row[bit / 8] >> (8 - header_.depth - bit % 8) & ((1U << header_.depth) - 1);
}

unsigned Colours::InEightBits(unsigned sample) const {
  if (header_.depth == 16) return sample >> 8;
  return sample * (255 / ((1U << header_.depth) - 1));
}

std::uint32_t Colours::At(const unsigned char* row, std::size_t x) const {
  if (header_.kind == kPalette) return palette_[Sample(row, x)];
  const std::size_t channels = Channels(header_);
  std::array<unsigned, 4> samples{}, bytes{};
  for (std::size_t i = 0; i < channels; ++i) {
    samples[i] = Sample(row, x * channels + i);
    bytes[i] = InEightBits(samples[i]);
  }
  const bool isClear = clear_ && std::equal(samples.begin(), samples.begin() + channels, clear_->begin());
  const unsigned alpha = channels % 2 == 0 ? bytes[channels - 1] : isClear ? 0 : 0xFF;
  return channels < 3 ? Pixel(bytes[0], bytes[0], bytes[0], alpha) : Pixel(bytes[0], bytes[1], bytes[2], alpha);
}

}  // namespace tool
