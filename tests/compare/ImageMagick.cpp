#include "ImageMagick.h"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <stdexcept>

namespace compare {

namespace {

std::string Quoted(const std::string& word) {
  return "'" + word + "'";
}

// What a command writes to its output. Throws when it fails.
std::string OutputOf(const std::string& command) {
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) throw std::runtime_error("cannot run " + command);
  std::string output;
  std::array<char, 4096> block;
  while (const std::size_t size = std::fread(block.data(), 1, block.size(), pipe)) output.append(block.data(), size);
  if (pclose(pipe) != 0) throw std::runtime_error("failed: " + command);
  return output;
}

// A file with the four bytes of every pixel, which goes away with it.
class RawFile {
 public:
  explicit RawFile(const Image& image) {
    const char* folder = std::getenv("TMPDIR");
    name_ = std::string(folder == nullptr ? "/tmp" : folder) + "/lmx-compare-XXXXXX";
    const int file = mkstemp(name_.data());
    if (file < 0) throw std::runtime_error("cannot write " + name_);
    std::string bytes;
    for (const std::uint32_t pixel : image.pixels) {
      for (const int shift : {16, 8, 0, 24}) bytes += static_cast<char>(pixel >> shift & 0xFF);
    }
    const bool written = write(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
    close(file);
    if (!written) throw std::runtime_error("cannot write " + name_);
  }
  ~RawFile() { unlink(name_.c_str()); }
  RawFile(const RawFile&) = delete;
  RawFile& operator=(const RawFile&) = delete;

  const std::string& Name() const { return name_; }

 private:
  std::string name_;
};

// A PAM file of four channels: a few words, a line "ENDHDR", the bytes.
Image ParsePam(const std::string& file) {
  static const std::string kEnd = "ENDHDR\n";
  const std::size_t end = file.find(kEnd);
  if (file.compare(0, 2, "P7") != 0 || end == std::string::npos) throw std::runtime_error("not a PAM file");
  std::istringstream header(file.substr(0, end));
  Image image;
  for (std::string word; header >> word;) {
    int number = 0;
    if (word == "WIDTH") header >> image.width;
    if (word == "HEIGHT") header >> image.height;
    if (word == "DEPTH" && header >> number && number != 4) throw std::runtime_error("not four channels");
    if (word == "MAXVAL" && header >> number && number != 255) throw std::runtime_error("not eight bits");
  }
  const std::size_t count = static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height);
  if (file.size() != end + kEnd.size() + 4 * count) throw std::runtime_error("a PAM file of the wrong size");
  for (std::size_t i = 0; i < count; ++i) {
    std::uint32_t pixel = 0;
    std::size_t at = end + kEnd.size() + 4 * i;
    for (const int shift : {16, 8, 0, 24}) {
      pixel |= static_cast<std::uint32_t>(static_cast<unsigned char>(file[at++])) << shift;
    }
    image.pixels.push_back(pixel);
  }
  return image;
}

}  // namespace

ImageMagick::ImageMagick() {
  for (const char* name : {"magick", "convert", "convert-im6.q16", "/usr/bin/convert"}) {
    try {
      if (OutputOf(std::string(name) + " -version 2>/dev/null").find("Version: ImageMagick") == 0) {
        program_ = name;
        return;
      }
    } catch (const std::runtime_error&) {
      continue;
    }
  }
}

std::string ImageMagick::Command(const Image& image, const std::string& rest) const {
  const std::string size = std::to_string(image.width) + "x" + std::to_string(image.height);
  return program_ + " -size " + size + " -depth 8 " + rest;
}

Image ImageMagick::Transform(const Image& image, const std::string& operations) const {
  const RawFile file(image);
  return ParsePam(OutputOf(Command(image, Quoted("rgba:" + file.Name()) + " " + operations + " -depth 8 pam:-")));
}

std::vector<double> ImageMagick::Means(const Image& image) const {
  const RawFile file(image);
  const std::string format = " -precision 12 -format '%[fx:255*mean.r] %[fx:255*mean.g] %[fx:255*mean.b]' info:-";
  std::istringstream output(OutputOf(Command(image, Quoted("rgba:" + file.Name()) + format)));
  std::vector<double> means;
  for (double mean; output >> mean;) means.push_back(mean);
  if (means.size() != 3) throw std::runtime_error("not three means");
  return means;
}

}  // namespace compare
