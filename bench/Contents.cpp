#include "Contents.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>

namespace bench {
namespace {

std::uint8_t Opaque(int, int, int) {
  return 255;
}

// From clear on the left to opaque on the right.
std::uint8_t Fading(int x, int, int width) {
  return static_cast<std::uint8_t>(x * 255 / std::max(width - 1, 1));
}

// Discs on a clear background; their edges go from opaque to clear within 8 pixels.
std::uint8_t SoftDiscs(int x, int y, int) {
  const double outside = std::hypot(x % 400 - 200, y % 400 - 200) - 188;
  return static_cast<std::uint8_t>(std::clamp(255 - outside * 32, 0.0, 255.0));
}

// A smooth wave, like a photo; noise is added later.
std::vector<float> Wave(int length, double step, double phase) {
  std::vector<float> wave(static_cast<std::size_t>(length));
  for (std::size_t i = 0; i < wave.size(); ++i)
    wave[i] = static_cast<float>(std::sin(static_cast<double>(i) * step + phase));
  return wave;
}

}  // namespace

const std::vector<Content>& Contents() {
  static const std::vector<Content> contents = {{"opaque", Opaque}, {"fading", Fading}, {"soft", SoftDiscs}};
  return contents;
}

Pixels Draw(const Content& content, int width, int height) {
  const std::vector<float> across[] = {Wave(width, 0.010, 0), Wave(width, 0.017, 0), Wave(width, 0.005, 0)};
  const std::vector<float> down[] = {Wave(height, 0.013, 1.6), Wave(height, 0.008, 1.6), Wave(height, 0.020, 1.6)};
  std::minstd_rand random(1);
  Pixels pixels;
  pixels.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      std::uint32_t pixel = content.alpha(x, y, width);
      const auto noise = static_cast<std::uint32_t>(random());
      for (std::size_t k = 0; k < 3; ++k) {
        const float wave = across[k][static_cast<std::size_t>(x)] * down[k][static_cast<std::size_t>(y)];
        pixel = pixel << 8 | (static_cast<std::uint32_t>(112 + 90 * wave) + (noise >> (8 + 5 * k) & 31));
      }
      pixels.push_back(pixel);
    }
  }
  return pixels;
}

void Store(const Pixels& pixels, PoolPicture& picture) {
  std::uint8_t* place = picture.pixels;
  for (const std::uint32_t pixel : pixels) {
    const std::uint32_t stored = host::StoredFromStraight(picture.storage, pixel);
    const std::uint32_t word = picture.storage == host::Storage::Buffer ? stored : __builtin_bswap32(stored);
    std::memcpy(place, &word, 4);
    place += 4;
  }
}

}  // namespace bench
