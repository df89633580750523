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

/// The checksum of a PNG's chunk, of its type and data.
std::uint32_t Checksum(const Bytes& bytes);

void WriteFile(const std::string& path, const Bytes& bytes);
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
  /// The names in the folder, sorted.
  std::vector<std::string> Names() const;

 private:
  std::string folder_;
};

/// 3 x 2 opaque pixels, all different.
tool::Image SmallImage();
/// Opaque, with some structure in every channel.
tool::Image OpaqueImage(int width, int height);

}  // namespace tool_test
