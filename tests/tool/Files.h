// A folder for a test's files, and picture files made and read without the tool's own code.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tool/Image.h"

namespace tool_test {

using Bytes = std::vector<unsigned char>;

Bytes Png(const tool::Image& image);
Bytes Jpeg(const tool::Image& image);

/// What another decoder than the tool's makes of a PNG; no pixels if it is damaged. `channels`: how
/// many the file has.
tool::Image Decoded(const Bytes& png, int* channels);

/// The same file with more bytes at some place.
Bytes Inserted(Bytes file, std::size_t at, const Bytes& part);

/// A PNG in the making: the chunks in their order, with right checksums.
class PngMaker {
 public:
  static constexpr std::size_t kHeaderEnd = 33;

  PngMaker& Chunk(const std::string& type, const Bytes& data);
  PngMaker& Header(int width, int height, unsigned depth, unsigned kind, bool interlaced);

  Bytes bytes = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  std::vector<std::size_t> starts;  ///< of the chunks' types
};

/// One chunk of a PNG.
Bytes PngChunk(const std::string& type, const Bytes& data);
/// A number with the highest byte first.
void AppendNumber(Bytes& bytes, std::uint32_t number);

void WriteFile(const std::string& path, const Bytes& bytes);
inline Bytes Text(const std::string& text) {
  return Bytes(text.begin(), text.end());
}
Bytes ReadFile(const std::string& path);

/// Gives every test an empty folder, which goes away afterwards.
class FileTest : public testing::Test {
 protected:
  FileTest();
  ~FileTest() override;

  std::string Path(const std::string& name) const { return folder_ + "/" + name; }
  /// Writes a PNG into the folder and returns its path.
  std::string Given(const std::string& name, const tool::Image& image) const;
  /// Reads a PNG of the folder; an empty image, and a failure, if there is none.
  tool::Image Result(const std::string& name) const;
  /// The names in the folder, or in one of its folders, sorted.
  std::vector<std::string> Names(const std::string& folder = "") const;

 private:
  std::string folder_;
};

/// Every pixel has this opaque colour, with no channel further off.
void ExpectColour(const tool::Image& image, std::uint32_t colour, int tolerance);

/// 3 x 2 opaque pixels, all different.
tool::Image SmallImage();
/// Opaque, with some structure in every channel.
tool::Image OpaqueImage(int width, int height);

}  // namespace tool_test
