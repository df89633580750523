// Picture files as lmx reads them. A file is refused with a message, or it is a picture that can be
// written and read back unchanged. The target first corrects the checksums of PNG chunks, because a
// fuzzer cannot find them.

#include <zlib.h>

#include <cstdint>
#include <string>
#include <vector>

#include "Finding.h"
#include "tool/Encode.h"
#include "tool/Errors.h"
#include "tool/Malformed.h"
#include "tool/PictureFile.h"
#include "tool/Stb.h"

namespace fuzz {
namespace {

// Larger pictures take long and use no other code.
constexpr std::int64_t kMostDecoded = 1 << 16;
constexpr std::size_t kMostWritten = 1 << 12;

std::uint32_t BigEndian(const std::uint8_t* bytes) {
  return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 | bytes[3];
}

// Whether decoding would take long: the size is within lmx's limits but exceeds kMostDecoded.
bool IsLarge(const std::uint8_t* bytes, std::size_t size) {
  std::int64_t width = 0, height = 0;
  if (size >= 24 && bytes[0] == 0x89) {
    width = BigEndian(bytes + 16);
    height = BigEndian(bytes + 20);
  } else {
    const bool isJpeg = size != 0 && bytes[0] == 0xFF;  // lmx decodes only JPEG and PNG
    if (!isJpeg || !tool::HuffmanTablesFit({bytes, bytes + size})) return false;
    int x = 0, y = 0, channels = 0;
    if (stbi_info_from_memory(bytes, static_cast<int>(size), &x, &y, &channels) == 0) return false;
    width = x;
    height = y;
  }
  const bool tooLarge = height != 0 && width > tool::kMaxPixels / height;
  return !tooLarge && width * height > kMostDecoded;
}

void PutRightChecksums(std::vector<std::uint8_t>& png) {
  constexpr std::size_t kSignature = 8, kHead = 8, kChecksum = 4;
  for (std::size_t at = kSignature; png.size() >= at + kHead + kChecksum;) {
    const std::size_t length = BigEndian(png.data() + at);
    if (length > png.size() - at - kHead - kChecksum) return;
    const uLong checksum = crc32(0, png.data() + at + 4, static_cast<uInt>(length + 4));
    at += kHead + length;
    for (const int shift : {24, 16, 8, 0}) png[at++] = static_cast<std::uint8_t>(checksum >> shift);
  }
}

void CheckRoundTrip(const tool::Image& image) {
  const tool::Image again = tool::DecodePicture("written", tool::Encode("written.png", image, {}));
  if (again.width != image.width || again.height != image.height || again.pixels != image.pixels) {
    Report("a picture is another one when it has been written and read");
  }
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  if (fuzz::IsLarge(bytes, size)) return 0;
  std::vector<std::uint8_t> content(bytes, bytes + size);
  if (size != 0 && bytes[0] == 0x89) fuzz::PutRightChecksums(content);
  tool::Image image;
  try {
    image = tool::DecodePicture("picture", content);
  } catch (const tool::Failure&) {
    return 0;
  }
  const auto pixels = static_cast<std::int64_t>(image.width) * image.height;
  if (image.width < 1 || image.height < 1 || pixels != static_cast<std::int64_t>(image.pixels.size())) {
    fuzz::Report("a picture of " + std::to_string(image.pixels.size()) + " pixels claims another size");
  }
  if (image.pixels.size() <= fuzz::kMostWritten) fuzz::CheckRoundTrip(image);
  return 0;
}
