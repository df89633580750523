#include "PictureFile.h"

#include <algorithm>
#include <initializer_list>
#include <memory>

#include "Errors.h"
#include "File.h"
#include "Malformed.h"
#include "Orientation.h"
#include "Stb.h"

namespace tool {
namespace {

constexpr int kChannels = 4;

[[noreturn]] void Fail(const std::string& path, const std::string& what) {
  throw Failure(path + ": " + what);
}

struct Size {
  std::int64_t width = 0;
  std::int64_t height = 0;
};

bool StartsWith(const Bytes& bytes, std::initializer_list<unsigned char> start) {
  return bytes.size() >= start.size() && std::equal(start.begin(), start.end(), bytes.begin());
}

bool IsPng(const Bytes& bytes) {
  return StartsWith(bytes, {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'});
}

std::uint32_t BigEndian(const unsigned char* bytes) {
  return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 | bytes[3];
}

// What the file claims. The size of a PNG lies at a fixed place; stb_image does not tell one that it finds too large.
Size ClaimedSize(const std::string& path, const Bytes& bytes) {
  constexpr std::size_t kPngWidth = 16, kPngHeight = 20, kPngSizeEnd = 24;
  if (IsPng(bytes)) {
    if (bytes.size() < kPngSizeEnd) Fail(path, "is damaged: it ends in its header");
    if (!ChunksFit(bytes)) Fail(path, "is damaged: it ends too early");
    return {BigEndian(bytes.data() + kPngWidth), BigEndian(bytes.data() + kPngHeight)};
  }
  int width = 0, height = 0, channels = 0;
  if (!StartsWith(bytes, {0xFF, 0xD8})) Fail(path, "is neither a PNG nor a JPEG picture");
  if (!HuffmanTablesFit(bytes)) Fail(path, "is a damaged JPEG picture: a table has more than 256 codes");
  if (stbi_info_from_memory(bytes.data(), static_cast<int>(bytes.size()), &width, &height, &channels) == 0) {
    Fail(path, "is a damaged JPEG picture");
  }
  return {width, height};
}

Image Decode(const std::string& path, Bytes bytes) {
  const Size size = ClaimedSize(path, bytes);
  if (size.width == 0 || size.height == 0) Fail(path, "is damaged: it claims to have no pixels");
  if (size.width > kMaxPixels / size.height) {
    Fail(path, "is too large: " + std::to_string(size.width) + " x " + std::to_string(size.height) +
                   " pixels, and at most " + std::to_string(kMaxPixels) + " are read");
  }
  if (IsPng(bytes) && !FillPalette(&bytes)) Fail(path, "is damaged: it has two palettes");
  int width = 0, height = 0, channels = 0;
  const std::unique_ptr<unsigned char, void (*)(void*)> decoded(
      stbi_load_from_memory(bytes.data(), static_cast<int>(bytes.size()), &width, &height, &channels, kChannels),
      stbi_image_free);
  if (!decoded) Fail(path, std::string("is damaged, or of an unusual kind: ") + stbi_failure_reason());

  Image image{width, height, {}};
  image.pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  const unsigned char* from = decoded.get();
  for (std::uint32_t& pixel : image.pixels) {
    pixel = std::uint32_t{from[3]} << 24 | std::uint32_t{from[0]} << 16 | std::uint32_t{from[1]} << 8 | from[2];
    from += kChannels;
  }
  return image;
}

}  // namespace

Image ReadPicture(const std::string& path) {
  const Bytes bytes = ReadFile(path);
  return Upright(Decode(path == kStandardStream ? "standard input" : path, bytes), OrientationOf(bytes));
}

void WritePicture(const std::string& path, const Image& image, const Encoding& encoding) {
  WriteFile(path, Encode(path, image, encoding));
}

}  // namespace tool
