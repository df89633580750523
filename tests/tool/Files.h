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

/// A PNG as an independent decoder reads it; no pixels if it is damaged. `channels` is their number
/// in the file.
tool::Image Decoded(const Bytes& png, int* channels);

/// The same file with bytes inserted at some place.
Bytes Inserted(Bytes file, std::size_t at, const Bytes& part);

/// A PNG that is built chunk by chunk, with correct checksums.
class PngMaker {
 public:
  static constexpr std::size_t kHeaderEnd = 33;

  PngMaker& Chunk(const std::string& type, const Bytes& data);
  PngMaker& Header(int width, int height, unsigned depth, unsigned kind, bool interlaced);

  Bytes bytes = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  std::vector<std::size_t> starts;  ///< places of the chunks' types
};

/// One chunk of a PNG.
Bytes PngChunk(const std::string& type, const Bytes& data);
/// A number, its highest byte first.
void AppendNumber(Bytes& bytes, std::uint32_t number);

void WriteFile(const std::string& path, const Bytes& bytes);
inline Bytes Text(const std::string& text) {
  return Bytes(text.begin(), text.end());
}
Bytes ReadFile(const std::string& path);

/// Gives every test an empty folder, which is removed afterwards.
class FileTest : public testing::Test {
 protected:
  FileTest();
  ~FileTest() override;

  std::string Path(const std::string& name) const { return folder_ + "/" + name; }
  /// Writes a PNG into the folder and returns its path.
  std::string Given(const std::string& name, const tool::Image& image) const;
  /// Reads a PNG from the folder. If there is none, returns an empty image and records a failure.
  tool::Image Result(const std::string& name) const;
  /// The sorted names in the folder or in one of its subfolders.
  std::vector<std::string> Names(const std::string& folder = "") const;

 private:
  std::string folder_;
};

/// Every pixel is opaque, and no channel differs from this colour by more than `tolerance`.
void ExpectColour(const tool::Image& image, std::uint32_t colour, int tolerance);

/// 3 x 2 opaque pixels, all different.
tool::Image SmallImage();
/// Opaque, with some structure in every channel.
tool::Image OpaqueImage(int width, int height);

}  // namespace tool_test
