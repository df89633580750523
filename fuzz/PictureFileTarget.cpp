// Picture files as lmx reads them: a file is refused with a message, or it is a picture that comes
// back the same when it is written and read again. The checksums of a PNG's parts are made right
// first, which a fuzzer does not manage.

#include <sys/mman.h>
#include <unistd.h>
#include <zlib.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "Finding.h"
#include "tool/Errors.h"
#include "tool/Malformed.h"
#include "tool/PictureFile.h"
#include "tool/Stb.h"

namespace fuzz {
namespace {

// Larger pictures take long, and are decoded no differently.
constexpr std::int64_t kMostDecoded = 1 << 16;
constexpr std::size_t kMostWritten = 1 << 12;

// A file in memory.
class File {
 public:
  File() : descriptor_(memfd_create("picture", MFD_CLOEXEC)) {
    if (descriptor_ < 0) Report("no file in memory");
  }
  ~File() { close(descriptor_); }
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  void Write(const std::uint8_t* bytes, std::size_t size) const {
    if (write(descriptor_, bytes, size) != static_cast<ssize_t>(size)) Report("no room for a file in memory");
  }
  std::string Path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

 private:
  int descriptor_;
};

// A folder for one file; a fuzzer ends without destroying what is static.
class Folder {
 public:
  Folder() {
    std::string name = (std::filesystem::temp_directory_path() / "lmx-fuzz-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) Report("no folder for files");
    path_ = name;
  }
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  std::string File() const { return (path_ / "picture.png").string(); }

 private:
  std::filesystem::path path_;
};

std::uint32_t BigEndian(const std::uint8_t* bytes) {
  return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 | bytes[3];
}

// Whether decoding would take long: the size is within lmx's limits and beyond ours.
bool IsLarge(const std::uint8_t* bytes, std::size_t size) {
  std::int64_t width = 0, height = 0;
  if (size >= 24 && bytes[0] == 0x89) {
    width = BigEndian(bytes + 16);
    height = BigEndian(bytes + 20);
  } else {
    const bool isJpeg = size != 0 && bytes[0] == 0xFF;  // whatever else it is, lmx gives it to no decoder
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
  const Folder folder;
  tool::WritePicture(folder.File(), image);
  const tool::Image again = tool::ReadPicture(folder.File());
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
  const fuzz::File file;
  std::vector<std::uint8_t> content(bytes, bytes + size);
  if (size != 0 && bytes[0] == 0x89) fuzz::PutRightChecksums(content);
  file.Write(content.data(), content.size());
  tool::Image image;
  try {
    image = tool::ReadPicture(file.Path());
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
