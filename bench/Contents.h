// Pictures to measure on: what real ones are like, as far as the time depends on it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Pool.h"

namespace bench {

/// Straight alpha, 0xAARRGGBB, row after row from the top.
using Pixels = std::vector<std::uint32_t>;

struct Content {
  const char* name;
  std::uint8_t (*alpha)(int x, int y, int width);
};

const std::vector<Content>& Contents();

Pixels Draw(const Content& content, int width, int height);

/// The same pixel as bitmap contexts have it, in a word.
std::uint32_t Premultiplied(std::uint32_t straight);

/// Writes pixels into a picture of their size, in its form.
void Store(const Pixels& pixels, PoolPicture& picture);

}  // namespace bench
