// Pictures as bytes of a file.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Image.h"

namespace tool {

enum class Format { Png, Jpeg };

struct Encoding {
  static constexpr int kLeastCompression = 0, kMostCompression = 9, kLeastQuality = 1, kMostQuality = 100;

  Format format = Format::Png;
  /// Of a PNG: how long to look for what repeats; the pixels are the same at every level. From 5 on
  /// it takes more than twice as long as at 3, for photos that are a tenth smaller, as at 4.
  int compression = 3;
  int quality = 90;  ///< of a JPEG
};

/// By the end of the name; nothing for one that belongs to neither.
std::optional<Format> FormatOf(const std::string& path);

/// A JPEG has no transparency: the picture lies on white there. Throws Failure for a picture that
/// the format cannot hold, and Interrupted on Ctrl-C, naming the file.
std::vector<unsigned char> Encode(const std::string& path, const Image& image, const Encoding& encoding);

}  // namespace tool
