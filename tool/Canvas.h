// A picture to draw on. Shapes are functions of the place; they are anti-aliased and laid over each
// other.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Image.h"

namespace tool {

/// Straight, all 0 to 1.
struct Paint {
  float red = 0, green = 0, blue = 0, alpha = 0;
};

Paint Opaque(std::uint32_t rgb);
Paint WithAlpha(Paint paint, double alpha);

/// Pixels x to x + width - 1, y to y + height - 1.
struct Area {
  int x = 0, y = 0, width = 0, height = 0;
};

class Canvas {
 public:
  /// The paint of a shape at a place; (0, 0) is the top left corner of the top left pixel.
  using Shader = std::function<Paint(double x, double y)>;

  /// Clear at first.
  Canvas(int width, int height);

  /// Draws the shape over the canvas, within the area. A pixel gets the mean of several places in
  /// it.
  void Draw(Area area, const Shader& shader);
  void Fill(Area area, Paint paint);
  /// Text in the small bitmap font, `scale` pixels to a dot, its top left corner at (x, y).
  void Write(int x, int y, int scale, Paint paint, const std::string& text);
  /// Erases the area: where the shape is opaque, it becomes clear.
  void Erase(Area area, const Shader& shader);

  static int TextWidth(int scale, const std::string& text);
  Image Finish() const;

 private:
  // Combines each pixel of the area with the mean of the shape in it, premultiplied.
  template <class Combine>
  void Visit(Area area, const Shader& shader, Combine combine);

  int width_;
  int height_;
  std::vector<Paint> pixels_;  // premultiplied
};

}  // namespace tool
