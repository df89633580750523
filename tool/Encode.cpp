#include "Encode.h"

#include <filesystem>

#include "Errors.h"
#include "Png.h"
#include "Progress.h"
#include "Stb.h"
#include "host/Declaration.h"

namespace tool {
namespace {

using Bytes = std::vector<unsigned char>;

// Laid on white.
Bytes WithoutAlpha(const Image& image) {
  Bytes bytes;
  bytes.reserve(image.pixels.size() * 3);
  for (const std::uint32_t pixel : image.pixels) {
    const std::uint32_t alpha = pixel >> 24;
    for (const int shift : {16, 8, 0}) {
      const std::uint32_t colour = pixel >> shift & 0xFF;
      bytes.push_back(static_cast<unsigned char>((colour * alpha + 255 * (255 - alpha) + 127) / 255));
    }
  }
  return bytes;
}

std::int64_t PixelsOf(const Image& image) {
  return static_cast<std::int64_t>(image.pixels.size());
}

struct Output {
  FileProgress progress;
  Bytes bytes;
};

void Append(void* output, void* data, int size) {
  auto* const to = static_cast<Output*>(output);
  to->progress.Reached(static_cast<std::int64_t>(to->bytes.size()));
  const auto* begin = static_cast<const unsigned char*>(data);
  to->bytes.insert(to->bytes.end(), begin, begin + size);
}

Bytes EncodeJpeg(const std::string& path, const Image& image, int quality) {
  constexpr int kMostLength = 65535;
  if (image.width > kMostLength || image.height > kMostLength) {
    throw Failure(path + ": the picture is too large for a JPEG, which has at most 65535 pixels a side");
  }
  Output output{{"writing", path, PixelsOf(image)}, {}};
  if (stbi_write_jpg_to_func(Append, &output, image.width, image.height, 3, WithoutAlpha(image).data(), quality) == 0) {
    throw Failure(path + ": the picture cannot be encoded");
  }
  return std::move(output.bytes);
}

}  // namespace

std::optional<Format> FormatOf(const std::string& path) {
  const std::string extension = std::filesystem::path(path).extension().string();
  if (host::SameName(extension, ".png")) return Format::Png;
  if (host::SameName(extension, ".jpg") || host::SameName(extension, ".jpeg")) return Format::Jpeg;
  return std::nullopt;
}

Bytes Encode(const std::string& path, const Image& image, const Encoding& encoding) {
  if (encoding.format == Format::Jpeg) return EncodeJpeg(path, image, encoding.quality);
  FileProgress progress("writing", path, PixelsOf(image));
  return EncodePng(image, encoding.compression, [&](int row, int rows) { progress.Reached(row, rows); });
}

}  // namespace tool
