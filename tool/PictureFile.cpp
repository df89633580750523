#include "PictureFile.h"

#include <algorithm>
#include <memory>

#include "Errors.h"
#include "File.h"
#include "Malformed.h"
#include "Orientation.h"
#include "PngReader.h"
#include "Progress.h"
#include "Stb.h"

namespace tool {
namespace {

constexpr int kChannels = 4;

[[noreturn]] void Fail(const std::string& path, const std::string& what) {
  throw Failure(path + ": " + what);
}

bool IsJpeg(const Bytes& bytes) {
  return bytes.size() >= 2 && bytes[0] == 0xFF && bytes[1] == 0xD8;
}

void CheckSize(const std::string& path, std::int64_t width, std::int64_t height) {
  if (width == 0 || height == 0) Fail(path, "is damaged: it claims to have no pixels");
  if (width > kMaxPixels / height) {
    Fail(path, "is too large: " + std::to_string(width) + " x " + std::to_string(height) + " pixels, and at most " +
                   std::to_string(kMaxPixels) + " are read");
  }
}

Image ReadPng(const std::string& path, const Bytes& bytes) {
  const PngHeader header = HeaderOfPng(path, bytes);
  CheckSize(path, header.width, header.height);
  FileProgress progress("reading", path, header.width * header.height);
  return DecodePng(path, bytes, [&](int row, int rows) { progress.Reached(row, rows); });
}

// Hands a file to stb_image piece by piece.
class JpegSource {
 public:
  JpegSource(const std::string& path, const Bytes& bytes, std::int64_t pixels)
      : bytes_(bytes), progress_("reading", path, pixels) {}

  static int Read(void* source, char* to, int size) {
    return static_cast<JpegSource*>(source)->Read(to, static_cast<std::size_t>(size));
  }
  static void Skip(void* source, int count) {
    auto* const from = static_cast<JpegSource*>(source);
    from->next_ += std::min(static_cast<std::size_t>(count), from->bytes_.size() - from->next_);
  }
  static int IsAtEnd(void* source) {
    const auto* const from = static_cast<JpegSource*>(source);
    return from->next_ == from->bytes_.size() ? 1 : 0;
  }

 private:
  int Read(char* to, std::size_t size) {
    progress_.Reached(static_cast<std::int64_t>(next_), static_cast<std::int64_t>(bytes_.size()));
    const std::size_t count = std::min(size, bytes_.size() - next_);
    std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(next_), count, to);
    next_ += count;
    return static_cast<int>(count);
  }

  const Bytes& bytes_;
  std::size_t next_ = 0;
  FileProgress progress_;
};

Image ReadJpeg(const std::string& path, const Bytes& bytes) {
  int width = 0, height = 0, channels = 0;
  if (!HuffmanTablesFit(bytes)) Fail(path, "is a damaged JPEG picture: a table has more than 256 codes");
  if (stbi_info_from_memory(bytes.data(), static_cast<int>(bytes.size()), &width, &height, &channels) == 0) {
    Fail(path, "is a damaged JPEG picture");
  }
  CheckSize(path, width, height);
  JpegSource source(path, bytes, std::int64_t{width} * height);
  const stbi_io_callbacks callbacks = {JpegSource::Read, JpegSource::Skip, JpegSource::IsAtEnd};
  std::unique_ptr<unsigned char, void (*)(void*)> decoded(nullptr, stbi_image_free);
  try {
    decoded.reset(stbi_load_from_callbacks(&callbacks, &source, &width, &height, &channels, kChannels));
  } catch (...) {
    FreeStbBlocks();
    throw;
  }
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

Image Decode(const std::string& path, const Bytes& bytes) {
  if (IsPng(bytes)) return ReadPng(path, bytes);
  if (IsJpeg(bytes)) return ReadJpeg(path, bytes);
  Fail(path, "is neither a PNG nor a JPEG picture");
}

}  // namespace

Image DecodePicture(const std::string& path, const Bytes& bytes) {
  return Upright(Decode(path == kStandardStream ? "standard input" : path, bytes), OrientationOf(bytes));
}

Image ReadPicture(const std::string& path) {
  return DecodePicture(path, ReadFile(path));
}

void WritePicture(const std::string& path, const Image& image, const Encoding& encoding) {
  WriteFile(path, Encode(path, image, encoding));
}

}  // namespace tool
