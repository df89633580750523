// A picture as files hold it.
#pragma once

#include <cstdint>
#include <vector>

namespace tool {

struct Image {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;  ///< 0xAARRGGBB, straight alpha, 255 opaque; row after row from the top
};

}  // namespace tool
