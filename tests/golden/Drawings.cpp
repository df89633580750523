#include "Drawings.h"

#include <algorithm>
#include <cstdlib>

#include "support/Random.h"

namespace golden {

using host::Storage;

namespace {

std::uint32_t Slopes(int x, int y, Random& random) {
  const auto red = static_cast<std::uint32_t>(x * 11 + 20) % 256;
  const auto green = static_cast<std::uint32_t>(y * 13 + 200) % 256;
  return red << 16 | green << 8 | random.Below(256);
}

// Falls from 255 to 0 around a circle. Its radius is three quarters of half the shorter side.
std::uint32_t DiscAlpha(int x, int y, int width, int height) {
  const int dx = 2 * x + 1 - width, dy = 2 * y + 1 - height;
  const int radius = std::min(width, height) * 3 / 4;
  const int inside = radius * radius - dx * dx - dy * dy;
  return static_cast<std::uint32_t>(std::clamp(128 + inside, 0, 255));
}

}  // namespace

const char* NameOf(Subject subject) {
  switch (subject) {
    case Subject::Opaque:
      return "opaque";
    case Subject::Soft:
      return "soft";
    case Subject::Grey:
      return "grey";
    case Subject::Wild:
      return "wild";
  }
  return "";
}

model::StoredPicture Draw(Subject subject, Storage form, int width, int height) {
  model::StoredPicture picture(form, width, height);
  Random random(2011);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const std::uint32_t colour = subject == Subject::Grey ? random.Below(256) * 0x010101 : Slopes(x, y, random);
      const std::uint32_t alpha = subject == Subject::Soft ? DiscAlpha(x, y, width, height) : 255;
      picture.Word(x, y) = subject == Subject::Wild ? random.Word() : model::WritePixel(form, alpha << 24 | colour);
    }
  }
  return picture;
}

}  // namespace golden
