// Files that lmx writes, read by independent decoders.
#include "tool/Encode.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <cstdlib>
#include <random>

#include "Files.h"
#include "Process.h"
#include "tool/PictureFile.h"

namespace tool_test {
namespace {

tool::Image Noise(int width, int height, std::uint32_t alpha) {
  tool::Image image = OpaqueImage(width, height);
  std::mt19937 random(9);
  for (std::uint32_t& pixel : image.pixels) pixel = static_cast<std::uint32_t>(random()) | alpha;
  return image;
}

std::uint32_t Number(const Bytes& bytes, std::size_t at) {
  return std::uint32_t{bytes[at]} << 24 | std::uint32_t{bytes[at + 1]} << 16 | std::uint32_t{bytes[at + 2]} << 8 |
         bytes[at + 3];
}

// The filters of the rows. Checks the checksum of every chunk first.
std::vector<int> FiltersOf(const Bytes& png, const tool::Image& image, std::size_t channels) {
  Bytes packed;
  for (std::size_t at = 8; at < png.size();) {
    const std::size_t length = Number(png, at);
    const auto type = png.begin() + static_cast<std::ptrdiff_t>(at + 4);
    const auto end = type + 4 + static_cast<std::ptrdiff_t>(length);
    EXPECT_EQ(Number(png, at + 8 + length), crc32(0, &*type, static_cast<uInt>(4 + length)));
    if (std::string(type, type + 4) == "IDAT") packed.insert(packed.end(), type + 4, end);
    at += 12 + length;
  }
  const std::size_t row = 1 + static_cast<std::size_t>(image.width) * channels;
  Bytes rows(row * static_cast<std::size_t>(image.height));
  uLongf size = static_cast<uLongf>(rows.size());
  EXPECT_EQ(uncompress(rows.data(), &size, packed.data(), static_cast<uLong>(packed.size())), Z_OK);
  EXPECT_EQ(size, rows.size());
  std::vector<int> filters;
  for (std::size_t at = 0; at < rows.size(); at += row) filters.push_back(rows[at]);
  return filters;
}

class EncodeTest : public FileTest {
 protected:
  void ExpectRoundTrip(const tool::Image& image, int compression) {
    tool::Encoding encoding;
    encoding.compression = compression;
    tool::WritePicture(Path("out.png"), image, encoding);
    const tool::Image again = Result("out.png");
    EXPECT_EQ(again.width, image.width);
    EXPECT_EQ(again.height, image.height);
    EXPECT_EQ(again.pixels == image.pixels, true) << image.width << " x " << image.height << " at " << compression;
  }
};

TEST_F(EncodeTest, PngsHoldEveryPixelAtEveryLevel) {
  for (int level = 0; level <= 9; ++level) {
    ExpectRoundTrip(SmallImage(), level);
    ExpectRoundTrip(OpaqueImage(61, 43), level);
    ExpectRoundTrip(Noise(57, 31, 0), level);
    ExpectRoundTrip({1, 1, {0x01020304}}, level);
    ExpectRoundTrip({1, 5, {0, 0xFF000000, 0x12345678, 0xFFFFFFFF, 0}}, level);
  }
  ExpectRoundTrip(Noise(700, 500, 0xFF000000), 1);  // several chunks
}

// A single pixel that is not opaque makes the file have an alpha channel, as Result() shows.
TEST_F(EncodeTest, AlphaIsKeptForASinglePixel) {
  tool::Image image = OpaqueImage(40, 30);
  ExpectRoundTrip(image, 3);
  image.pixels.back() = 0xFE123456;
  ExpectRoundTrip(image, 3);
}

TEST_F(EncodeTest, EveryFilterIsUsedWhereItForetellsBest) {
  const auto filters = [](const tool::Image& image) { return FiltersOf(tool::Encode("x.png", image, {}), image, 3); };
  constexpr int kNone = 0, kLeft = 1, kAbove = 2, kMean = 3, kPaeth = 4;
  tool::Image image{32, 4, {}};
  std::mt19937 random(1);
  for (int i = 0; i < 32; ++i) image.pixels.push_back(static_cast<std::uint32_t>(random()) | 0xFF000000);
  for (int i = 32; i < 128; ++i) image.pixels.push_back(image.pixels[static_cast<std::size_t>(i - 32)]);
  EXPECT_EQ(filters(image)[1], kAbove);
  for (std::size_t i = 0; i < 128; ++i) image.pixels[i] = 0xFF000000 | static_cast<std::uint32_t>(7 * (i % 32)) << 8;
  EXPECT_EQ(filters(image)[0], kLeft);
  for (std::uint32_t& pixel : image.pixels) pixel = 0xFF000000;
  EXPECT_EQ(filters(image)[2], kNone);
  // On the left the last row repeats the one above; on the right it repeats itself.
  for (std::size_t x = 0; x < 32; ++x) {
    const std::uint32_t column = static_cast<std::uint32_t>(random()) | 0xFF000000;
    for (std::size_t y = 0; y < 4; ++y) image.pixels[32 * y + x] = x < 16 ? column : y < 3 ? 0xFF202020 : 0xFFA0A0A0;
  }
  EXPECT_EQ(filters(image)[3], kPaeth);
  for (std::size_t i = 96; i < 128; ++i) {
    const std::uint32_t left = i == 96 ? 0 : image.pixels[i - 1] & 0xFF, above = image.pixels[i - 32] & 0xFF;
    image.pixels[i] = 0xFF000000 | 0x010101 * ((left + above) / 2);
    image.pixels[i - 32] = 0xFF000000 | 0x010101 * above;
  }
  EXPECT_EQ(filters(image)[3], kMean);
  tool::Encoding stored;
  stored.compression = 0;
  EXPECT_EQ(FiltersOf(tool::Encode("x.png", image, stored), image, 3), (std::vector<int>{0, 0, 0, 0}));
}

TEST_F(EncodeTest, LevelsChangeTheSize) {
  const std::string large = Given("large.png", OpaqueImage(300, 200));
  std::size_t before = 300 * 200 * 3;
  for (const char* level : {"--compression=0", "--compression=1", "--compression=9"}) {
    ASSERT_EQ(Lmx({"FlipRotate", large, level, "-o", Path("out.png")}).status, 0);
    const std::size_t size = ReadFile(Path("out.png")).size();
    if (level == std::string("--compression=0")) {
      EXPECT_GT(size, before);
    } else {
      EXPECT_LT(size, before) << level;
    }
    before = size;
  }
}

TEST_F(EncodeTest, JpegsByTheirNames) {
  const tool::Image plain{32, 16, std::vector<std::uint32_t>(512, 0xFF3C78B4)};
  const std::string source = Given("plain.png", plain);
  for (const char* name : {"out.jpg", "out.JPEG"}) {
    ASSERT_EQ(Lmx({"FlipRotate", source, "rotation=90", "-o", Path(name)}).status, 0);
    const Bytes bytes = ReadFile(Path(name));
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 2), (Bytes{0xFF, 0xD8}));
    const tool::Image image = tool::ReadPicture(Path(name));
    EXPECT_EQ(image.width, 16);
    EXPECT_EQ(image.height, 32);
    ExpectColour(image, 0x3C78B4, 2);
  }
}

TEST_F(EncodeTest, QualityCostsSize) {
  const std::string source = Given("large.png", OpaqueImage(300, 200));
  const auto size = [&](const char* quality) {
    EXPECT_EQ(Lmx({"FlipRotate", source, "--quality", quality, "-o", Path("out.jpg")}).status, 0);
    return ReadFile(Path("out.jpg")).size();
  };
  EXPECT_LT(size("5"), size("60"));
  EXPECT_LT(size("60"), size("100"));
}

TEST_F(EncodeTest, AJpegLiesOnWhiteWhereItIsClear) {
  const std::string clear = Given("clear.png", {16, 16, std::vector<std::uint32_t>(256, 0x80000000)});
  ASSERT_EQ(Lmx({"FlipRotate", clear, "-o", Path("out.jpg")}).status, 0);
  ExpectColour(tool::ReadPicture(Path("out.jpg")), 0x7F7F7F, 2);
  ASSERT_EQ(Lmx({"FlipRotate", clear, "--opaque", "-o", Path("out.jpg")}).status, 0);
  ExpectColour(tool::ReadPicture(Path("out.jpg")), 0x000000, 2);
}

TEST_F(EncodeTest, APictureThatIsTooLongForAJpegIsRefused) {
  const std::vector<std::string> call = {"MakeGradient", "width=65536", "height=2", "-o"};
  std::vector<std::string> jpeg = call, png = call;
  jpeg.push_back(Path("out.jpg"));
  png.push_back(Path("out.png"));
  EXPECT_EQ(Lmx(jpeg).status, 1);
  EXPECT_PRED2(Contains, Lmx(jpeg).error, "at most 65535");
  EXPECT_TRUE(Names().empty());
  EXPECT_EQ(Lmx(png).status, 0);
}

}  // namespace
}  // namespace tool_test
