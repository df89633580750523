#include "Files.h"

#include <stdlib.h>
#include <zlib.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>

#include "tool/Stb.h"

namespace tool_test {
namespace {

Bytes ToRgba(const tool::Image& image) {
  Bytes bytes;
  for (const std::uint32_t pixel : image.pixels) {
    for (const int shift : {16, 8, 0, 24}) bytes.push_back(static_cast<unsigned char>(pixel >> shift));
  }
  return bytes;
}

void Append(void* bytes, void* data, int size) {
  const auto* begin = static_cast<const unsigned char*>(data);
  static_cast<Bytes*>(bytes)->insert(static_cast<Bytes*>(bytes)->end(), begin, begin + size);
}

}  // namespace

Bytes Png(const tool::Image& image) {
  Bytes bytes;
  stbi_write_png_to_func(Append, &bytes, image.width, image.height, 4, ToRgba(image).data(), 4 * image.width);
  return bytes;
}

Bytes Jpeg(const tool::Image& image) {
  Bytes bytes;
  stbi_write_jpg_to_func(Append, &bytes, image.width, image.height, 4, ToRgba(image).data(), 95);
  return bytes;
}

tool::Image Decoded(const Bytes& png, int* channels) {
  tool::Image image;
  const std::unique_ptr<unsigned char, void (*)(void*)> decoded(
      stbi_load_from_memory(png.data(), static_cast<int>(png.size()), &image.width, &image.height, channels, 4),
      stbi_image_free);
  if (!decoded) return {};
  const std::size_t count = static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height);
  for (const unsigned char* p = decoded.get(); image.pixels.size() < count; p += 4) {
    image.pixels.push_back(std::uint32_t{p[3]} << 24 | std::uint32_t{p[0]} << 16 | std::uint32_t{p[1]} << 8 | p[2]);
  }
  return image;
}

Bytes Inserted(Bytes file, std::size_t at, const Bytes& part) {
  file.insert(file.begin() + static_cast<std::ptrdiff_t>(at), part.begin(), part.end());
  return file;
}

void AppendNumber(Bytes& bytes, std::uint32_t number) {
  for (const int shift : {24, 16, 8, 0}) bytes.push_back(static_cast<unsigned char>(number >> shift));
}

Bytes PngChunk(const std::string& type, const Bytes& data) {
  Bytes chunk;
  AppendNumber(chunk, static_cast<std::uint32_t>(data.size()));
  chunk = Inserted(Inserted(chunk, 4, Text(type)), 8, data);
  AppendNumber(chunk, static_cast<std::uint32_t>(crc32(0, chunk.data() + 4, static_cast<uInt>(chunk.size() - 4))));
  return chunk;
}

PngMaker& PngMaker::Chunk(const std::string& type, const Bytes& data) {
  starts.push_back(bytes.size() + 4);
  bytes = Inserted(bytes, bytes.size(), PngChunk(type, data));
  return *this;
}

PngMaker& PngMaker::Header(int width, int height, unsigned depth, unsigned kind, bool interlaced) {
  Bytes header;
  AppendNumber(header, static_cast<std::uint32_t>(width));
  AppendNumber(header, static_cast<std::uint32_t>(height));
  for (const unsigned byte : {depth, kind, 0u, 0u, interlaced ? 1u : 0u})
    header.push_back(static_cast<unsigned char>(byte));
  return Chunk("IHDR", header);
}

void WriteFile(const std::string& path, const Bytes& bytes) {
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  if (!file.flush()) ADD_FAILURE() << "cannot write " << path;
}

Bytes ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) ADD_FAILURE() << "cannot read " << path;
  return Bytes(std::istreambuf_iterator<char>(file), {});
}

FileTest::FileTest() : folder_((std::filesystem::temp_directory_path() / "lmx tool XXXXXX").string()) {
  if (mkdtemp(folder_.data()) == nullptr) ADD_FAILURE() << "cannot make " << folder_;
}

FileTest::~FileTest() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

std::string FileTest::Given(const std::string& name, const tool::Image& image) const {
  WriteFile(Path(name), Png(image));
  return Path(name);
}

tool::Image FileTest::Result(const std::string& name) const {
  const Bytes bytes = ReadFile(Path(name));
  const Bytes signature = {0x89, 'P', 'N', 'G'};
  if (bytes.size() < 4 || !std::equal(signature.begin(), signature.end(), bytes.begin())) {
    ADD_FAILURE() << name << " is no PNG";
    return {};
  }
  int channels = 0;
  tool::Image image = Decoded(bytes, &channels);
  if (image.pixels.empty()) {
    ADD_FAILURE() << name << " is damaged";
    return {};
  }
  const bool opaque =
      std::all_of(image.pixels.begin(), image.pixels.end(), [](std::uint32_t pixel) { return pixel >> 24 == 0xFF; });
  EXPECT_EQ(channels, opaque ? 3 : 4) << name;
  return image;
}

std::vector<std::string> FileTest::Names(const std::string& folder) const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(Path(folder))) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

void ExpectColour(const tool::Image& image, std::uint32_t colour, int tolerance) {
  for (const std::uint32_t pixel : image.pixels) {
    ASSERT_EQ(pixel >> 24, 0xFFu);
    for (const int shift : {16, 8, 0}) {
      ASSERT_NEAR(static_cast<int>(pixel >> shift & 0xFF), static_cast<int>(colour >> shift & 0xFF), tolerance);
    }
  }
}

tool::Image SmallImage() {
  return {3, 2, {0xFF102030, 0xFF405060, 0xFF708090, 0xFFA0B0C0, 0xFFD0E0F0, 0xFF0A141E}};
}

tool::Image OpaqueImage(int width, int height) {
  tool::Image image{width, height, {}};
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const auto red = static_cast<std::uint32_t>(x * 255 / width),
                 green = static_cast<std::uint32_t>(y * 255 / height);
      const auto blue = static_cast<std::uint32_t>((x * 7 + y * 13) % 256);
      image.pixels.push_back(0xFF000000 | red << 16 | green << 8 | blue);
    }
  }
  return image;
}

}  // namespace tool_test
