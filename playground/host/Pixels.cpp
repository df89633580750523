#include "Pixels.h"

#include <algorithm>
#include <cstring>

namespace page {
namespace {

std::uint32_t Nearest(std::uint32_t dividend, std::uint32_t divisor) {
  return (dividend + divisor / 2) / divisor;
}

std::uint32_t Pack(std::uint32_t lowest, std::uint32_t low, std::uint32_t high, std::uint32_t highest) {
  return lowest | low << 8 | high << 16 | highest << 24;
}

std::uint32_t Load(const std::uint8_t* rgba) {
  return Pack(rgba[0], rgba[1], rgba[2], rgba[3]);
}

void Store(std::uint8_t* rgba, std::uint32_t word) {
  std::memcpy(rgba, &word, 4);
}

// A context's bytes are alpha, red, green, blue in memory, whose words are little-endian here. Most
// pixels are opaque.
std::uint32_t ContextWord(const std::uint8_t* rgba) {
  const std::uint32_t word = Load(rgba), alpha = word >> 24;
  if (alpha == 255) return word << 8 | 255;
  const auto part = [alpha](std::uint32_t channel) { return Nearest(channel * alpha, 255); };
  return Pack(alpha, part(rgba[0]), part(rgba[1]), part(rgba[2]));
}

std::uint32_t BufferWord(const std::uint8_t* rgba) {
  return Pack(rgba[2], rgba[1], rgba[0], 127 - Nearest(rgba[3] * 127U, 255));
}

void FromContextWord(std::uint8_t* rgba, std::uint32_t word) {
  const std::uint32_t alpha = word & 0xFF;
  if (alpha == 255) return Store(rgba, word >> 8 | 0xFF000000);
  if (alpha == 0) return Store(rgba, 0);
  const auto straight = [=](int shift) {
    return std::min<std::uint32_t>(Nearest((word >> shift & 0xFF) * 255, alpha), 255);
  };
  Store(rgba, Pack(straight(8), straight(16), straight(24), alpha));
}

void FromBufferWord(std::uint8_t* rgba, std::uint32_t word) {
  const std::uint32_t alpha = Nearest((127 - std::min<std::uint32_t>(word >> 24, 127)) * 255, 127);
  Store(rgba, Pack(word >> 16 & 0xFF, word >> 8 & 0xFF, word & 0xFF, alpha));
}

}  // namespace

void StoreStraight(Form form, std::uint32_t* stored, const std::uint8_t* rgba, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    stored[i] = form == Form::context ? ContextWord(rgba + 4 * i) : BufferWord(rgba + 4 * i);
  }
}

void LoadStraight(Form form, std::uint8_t* rgba, const std::uint32_t* stored, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    if (form == Form::context) {
      FromContextWord(rgba + 4 * i, stored[i]);
    } else {
      FromBufferWord(rgba + 4 * i, stored[i]);
    }
  }
}

std::uint64_t Hash(Form form, int width, int height, const std::uint32_t* stored) {
  std::uint64_t hash = 0xCBF29CE484222325;
  const auto add = [&hash](std::uint32_t word) {
    for (int shift = 0; shift < 32; shift += 8) hash = (hash ^ (word >> shift & 0xFF)) * 0x100000001B3;
  };
  add(static_cast<std::uint32_t>(width));
  add(static_cast<std::uint32_t>(height));
  const std::size_t count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  for (std::size_t i = 0; i < count; ++i) {
    add(form == Form::context ? __builtin_bswap32(stored[i]) : stored[i]);
  }
  return hash;
}

}  // namespace page
