#include "Canvas.h"

#include <algorithm>
#include <cmath>

#include "Font.h"

namespace tool {
namespace {

constexpr int kSamples = 4;  // per pixel, each way

Paint Premultiplied(Paint paint) {
  return {paint.red * paint.alpha, paint.green * paint.alpha, paint.blue * paint.alpha, paint.alpha};
}

Paint Sum(Paint a, Paint b) {
  return {a.red + b.red, a.green + b.green, a.blue + b.blue, a.alpha + b.alpha};
}

Paint Scaled(Paint paint, float factor) {
  return {paint.red * factor, paint.green * factor, paint.blue * factor, paint.alpha * factor};
}

Paint MeanOfPixel(const Canvas::Shader& shader, int x, int y) {
  Paint sum;
  for (int j = 0; j < kSamples; ++j) {
    for (int i = 0; i < kSamples; ++i) {
      sum = Sum(sum, Premultiplied(shader(x + (i + 0.5) / kSamples, y + (j + 0.5) / kSamples)));
    }
  }
  return Scaled(sum, 1.0F / (kSamples * kSamples));
}

std::uint32_t Byte(float channel) {
  return static_cast<std::uint32_t>(std::lround(std::clamp(channel, 0.0F, 1.0F) * 255));
}

std::uint32_t StraightPixel(Paint paint) {
  const std::uint32_t alpha = Byte(paint.alpha);
  if (alpha == 0) return 0;
  const Paint straight = Scaled(paint, 1 / paint.alpha);
  return alpha << 24 | Byte(straight.red) << 16 | Byte(straight.green) << 8 | Byte(straight.blue);
}

}  // namespace

Paint Opaque(std::uint32_t rgb) {
  const auto channel = [rgb](int shift) { return static_cast<float>(rgb >> shift & 0xFF) / 255; };
  return {channel(16), channel(8), channel(0), 1};
}

Paint WithAlpha(Paint paint, double alpha) {
  paint.alpha = static_cast<float>(std::clamp(alpha, 0.0, 1.0));
  return paint;
}

Canvas::Canvas(int width, int height)
    : width_(width), height_(height), pixels_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {}

template <class Combine>
void Canvas::Visit(Area area, const Shader& shader, Combine combine) {
  const int right = std::min(area.x + area.width, width_), bottom = std::min(area.y + area.height, height_);
  for (int y = std::max(area.y, 0); y < bottom; ++y) {
    for (int x = std::max(area.x, 0); x < right; ++x) {
      const std::size_t index =
          static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x);
      combine(pixels_[index], MeanOfPixel(shader, x, y));
    }
  }
}

void Canvas::Draw(Area area, const Shader& shader) {
  Visit(area, shader, [](Paint& pixel, Paint over) { pixel = Sum(over, Scaled(pixel, 1 - over.alpha)); });
}

void Canvas::Erase(Area area, const Shader& shader) {
  Visit(area, shader, [](Paint& pixel, Paint over) { pixel = Scaled(pixel, 1 - over.alpha); });
}

void Canvas::Fill(Area area, Paint paint) {
  Draw(area, [paint](double, double) { return paint; });
}

void Canvas::Write(int x, int y, int scale, Paint paint, const std::string& text) {
  for (const char sign : text) {
    const Glyph glyph = GlyphOf(sign);
    for (int row = 0; row < kGlyphHeight; ++row) {
      for (int column = 0; column < kGlyphWidth; ++column) {
        if ((glyph[static_cast<std::size_t>(row)] >> (kGlyphWidth - 1 - column) & 1) == 0) continue;
        Fill({x + column * scale, y + row * scale, scale, scale}, paint);
      }
    }
    x += (kGlyphWidth + 1) * scale;
  }
}

int Canvas::TextWidth(int scale, const std::string& text) {
  return static_cast<int>(text.size()) * (kGlyphWidth + 1) * scale - scale;
}

Image Canvas::Finish() const {
  Image image{width_, height_, {}};
  image.pixels.reserve(pixels_.size());
  for (const Paint& pixel : pixels_) image.pixels.push_back(StraightPixel(pixel));
  return image;
}

}  // namespace tool
