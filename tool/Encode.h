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
  /// Compression of a PNG, which never changes a pixel. From 5 on it takes more than twice as long
  /// as at 3, and photos become a tenth smaller, as at 4.
  int compression = 3;
  int quality = 90;  ///< of a JPEG
};

/// The format that the end of the name says; nothing for other names.
std::optional<Format> FormatOf(const std::string& path);

/// A JPEG has no transparency: the picture is laid on white. Throws Failure for a picture that the
/// format cannot hold, and Interrupted on Ctrl-C, naming the file.
std::vector<unsigned char> Encode(const std::string& path, const Image& image, const Encoding& encoding);

}  // namespace tool
