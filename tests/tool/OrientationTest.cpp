// Photos come out upright, in whatever orientation the camera was held.
#include "tool/Orientation.h"

#include <gtest/gtest.h>

#include <array>

#include "Files.h"
#include "Process.h"
#include "tool/PictureFile.h"

namespace tool_test {
namespace {

using Pixels = std::vector<std::uint32_t>;

void Append(Bytes& to, std::uint32_t number, int size, bool littleEndian = false) {
  for (int i = 0; i < size; ++i) {
    to.push_back(static_cast<unsigned char>(number >> 8 * (littleEndian ? i : size - 1 - i)));
  }
}

void Append(Bytes& to, const std::string& text) {
  to.insert(to.end(), text.begin(), text.end());
}

// EXIF data with one entry before the orientation.
Bytes Exif(unsigned orientation, bool littleEndian, unsigned type = 3) {
  Bytes bytes;
  Append(bytes, littleEndian ? "II" : "MM");
  Append(bytes, 42, 2, littleEndian);
  Append(bytes, 8, 4, littleEndian);
  Append(bytes, 2, 2, littleEndian);
  for (const auto& [tag, value] : {std::array<unsigned, 2>{0x0100, 6}, {0x0112, orientation}}) {
    Append(bytes, tag, 2, littleEndian);
    Append(bytes, type, 2, littleEndian);
    Append(bytes, 1, 4, littleEndian);
    Append(bytes, value, 2, littleEndian);
    Append(bytes, 0, 2);
  }
  Append(bytes, 0, 4);
  return bytes;
}

Bytes PngWith(const tool::Image& image, const Bytes& exif) {
  return Inserted(Png(image), PngMaker::kHeaderEnd, PngChunk("eXIf", exif));
}

Bytes JpegWith(const tool::Image& image, const Bytes& exif) {
  Bytes segment = {0xFF, 0xE1};
  Append(segment, static_cast<std::uint32_t>(2 + 6 + exif.size()), 2);
  Append(segment, std::string("Exif\0\0", 6));
  segment.insert(segment.end(), exif.begin(), exif.end());
  constexpr std::size_t kAfterFirstSegment = 20;
  return Inserted(Jpeg(image), kAfterFirstSegment, segment);
}

class OrientationTest : public FileTest {
 protected:
  tool::Image Read(const Bytes& file) const {
    WriteFile(Path("in.png"), file);
    return tool::ReadPicture(Path("in.png"));
  }
};

// The expected result for a picture of 3 x 2.
struct Case {
  unsigned orientation;
  int width;
  Pixels pixels;
};

TEST_F(OrientationTest, AllEight) {
  constexpr std::uint32_t a = 0xFF102030, b = 0xFF405060, c = 0xFF708090, d = 0xFFA0B0C0, e = 0xFFD0E0F0,
                          f = 0xFF0A141E;
  ASSERT_EQ(SmallImage().pixels, (Pixels{a, b, c, d, e, f}));
  const Case cases[] = {
      {1, 3, {a, b, c, d, e, f}}, {2, 3, {c, b, a, f, e, d}}, {3, 3, {f, e, d, c, b, a}}, {4, 3, {d, e, f, a, b, c}},
      {5, 2, {a, d, b, e, c, f}}, {6, 2, {d, a, e, b, f, c}}, {7, 2, {f, c, e, b, d, a}}, {8, 2, {c, f, b, e, a, d}},
  };
  for (const Case& expected : cases) {
    for (const bool littleEndian : {false, true}) {
      const tool::Image image = Read(PngWith(SmallImage(), Exif(expected.orientation, littleEndian)));
      EXPECT_EQ(image.width, expected.width) << expected.orientation;
      EXPECT_EQ(image.height, 5 - expected.width) << expected.orientation;
      EXPECT_EQ(image.pixels, expected.pixels) << expected.orientation;
    }
  }
}

TEST_F(OrientationTest, OfAJpeg) {
  const tool::Image image = OpaqueImage(48, 32);
  const tool::Image lying = Read(Jpeg(image));
  for (const int orientation : {1, 2, 3, 4, 5, 6, 7, 8}) {
    for (const bool littleEndian : {false, true}) {
      const tool::Image seen = Read(JpegWith(image, Exif(static_cast<unsigned>(orientation), littleEndian)));
      const tool::Image expected = tool::Upright(lying, orientation);
      EXPECT_EQ(seen.width, orientation < 5 ? 48 : 32);
      EXPECT_EQ(seen.width, expected.width);
      EXPECT_EQ(seen.pixels, expected.pixels) << orientation;
    }
  }
}

TEST_F(OrientationTest, IsAppliedOnceAndNotWritten) {
  WriteFile(Path("photo.jpg"), JpegWith(OpaqueImage(48, 32), Exif(6, true)));
  ASSERT_EQ(Lmx({"FlipRotate", Path("photo.jpg"), "-o", Path("out.png")}).status, 0);
  EXPECT_EQ(Result("out.png").width, 32);
  EXPECT_EQ(tool::OrientationOf(ReadFile(Path("out.png"))), tool::kUpright);
  EXPECT_EQ(Lmx({"GetAverageRGB", Path("photo.jpg"), "left=40", "width=0", "-v"}).out.find("48 x 32"),
            std::string::npos);
}

TEST_F(OrientationTest, OtherValuesAndTypesAreIgnored) {
  for (const unsigned orientation : {0u, 9u, 255u, 0xFFFFu}) {
    EXPECT_EQ(Read(PngWith(SmallImage(), Exif(orientation, true))).pixels, SmallImage().pixels) << orientation;
  }
  EXPECT_EQ(Read(PngWith(SmallImage(), Exif(6, true, 4))).pixels, SmallImage().pixels);
}

// The vector has exactly these bytes, so that the address sanitizer notices a read past its end.
TEST_F(OrientationTest, DataThatEndAnywhereAreIgnored) {
  const Bytes exif = Exif(6, false);
  constexpr std::size_t kEndOfValue = 8 + 2 + 12 + 10;
  for (std::size_t size = 0; size < exif.size(); ++size) {
    const Bytes part(exif.begin(), exif.begin() + static_cast<std::ptrdiff_t>(size));
    const tool::Image image = Read(PngWith(SmallImage(), part));
    EXPECT_EQ(image.width, size < kEndOfValue ? 3 : 2) << size;
    EXPECT_NO_THROW(Read(JpegWith(SmallImage(), part))) << size;
  }
  for (const Bytes& file : {PngWith(SmallImage(), exif), JpegWith(SmallImage(), exif)}) {
    for (std::size_t size = 0; size < file.size(); ++size) {
      const int orientation =
          tool::OrientationOf(Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size)));
      EXPECT_TRUE(orientation == 1 || orientation == 6) << size;
    }
  }
}

TEST_F(OrientationTest, PlacesAndCountsBeyondTheDataAreIgnored) {
  for (const std::uint32_t place : {0u, 1u, 37u, 38u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFCu, 0xFFFFFFFFu}) {
    Bytes exif = Exif(6, false);
    for (std::size_t i = 0; i < 4; ++i) exif[4 + i] = static_cast<unsigned char>(place >> (24 - 8 * i));
    EXPECT_EQ(Read(PngWith(SmallImage(), exif)).pixels, SmallImage().pixels) << place;
  }
  Bytes manyEntries = Exif(6, false);
  manyEntries[8] = manyEntries[9] = 0xFF;
  EXPECT_EQ(Read(PngWith(SmallImage(), manyEntries)).width, 2);
  manyEntries[22] = 0;  // the tag of the second entry
  EXPECT_EQ(Read(PngWith(SmallImage(), manyEntries)).width, 3);
}

}  // namespace
}  // namespace tool_test
