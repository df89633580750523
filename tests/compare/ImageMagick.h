// ImageMagick's command-line program, as a second opinion.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace compare {

/// Straight pixels, 0xAARRGGBB, row after row.
struct Image {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;

  std::uint32_t At(int x, int y) const { return pixels[static_cast<std::size_t>(y * width + x)]; }
};

class ImageMagick {
 public:
  /// Looks for the program. What only bears its name does not count: it must tell its version.
  ImageMagick();
  ~ImageMagick();
  ImageMagick(const ImageMagick&) = delete;
  ImageMagick& operator=(const ImageMagick&) = delete;
  bool IsInstalled() const { return !program_.empty(); }

  /// What `operations` (as the program's options) make of an image. Throws std::runtime_error when
  /// the program fails.
  Image Transform(const Image& image, const std::string& operations) const;

  /// The mean of each of red, green and blue, 0 to 255.
  std::vector<double> Means(const Image& image) const;

 private:
  /// What the program tells when it has read the image from a file and done the rest.
  std::string Run(const Image& image, const std::string& rest) const;

  const std::string file_;
  std::string program_;
};

}  // namespace compare
