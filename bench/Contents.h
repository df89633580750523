// Pictures to measure on. They resemble real ones where that changes the time.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Pool.h"

namespace bench {

/// Straight alpha, 0xAARRGGBB, row by row from the top.
using Pixels = std::vector<std::uint32_t>;

struct Content {
  const char* name;
  std::uint8_t (*alpha)(int x, int y, int width);
};

const std::vector<Content>& Contents();

Pixels Draw(const Content& content, int width, int height);

/// Writes pixels into a picture of their size, in its form.
void Store(const Pixels& pixels, PoolPicture& picture);

}  // namespace bench
