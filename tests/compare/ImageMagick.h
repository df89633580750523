// ImageMagick's command-line program, for comparison.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace compare {

/// Straight pixels, 0xAARRGGBB, row by row.
struct Image {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;

  std::uint32_t At(int x, int y) const { return pixels[static_cast<std::size_t>(y * width + x)]; }
};

class ImageMagick {
 public:
  /// Looks for the program. A program of that name counts only if it prints ImageMagick's version.
  ImageMagick();
  ~ImageMagick();
  ImageMagick(const ImageMagick&) = delete;
  ImageMagick& operator=(const ImageMagick&) = delete;
  bool IsInstalled() const { return !program_.empty(); }

  /// The result of `operations` (options of the program) on an image. Throws std::runtime_error if
  /// the program fails.
  Image Transform(const Image& image, const std::string& operations) const;

  /// The means of red, green and blue, 0 to 255.
  std::vector<double> Means(const Image& image) const;

 private:
  /// The output of the program after it has read the image from a file and applied the operations.
  std::string Run(const Image& image, const std::string& rest) const;

  const std::string file_;
  std::string program_;
};

}  // namespace compare
