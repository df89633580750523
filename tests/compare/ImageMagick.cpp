#include "ImageMagick.h"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace compare {
namespace {

constexpr int kShifts[] = {16, 8, 0, 24};  // the place of each byte of a file's pixel in a word

// The output of a command. Throws if the command fails.
std::string OutputOf(const std::string& command) {
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) throw std::runtime_error("cannot run " + command);
  std::string output;
  std::array<char, 4096> block;
  while (const std::size_t size = std::fread(block.data(), 1, block.size(), pipe)) output.append(block.data(), size);
  if (pclose(pipe) != 0) throw std::runtime_error("failed: " + command);
  return output;
}

}  // namespace

ImageMagick::ImageMagick()
    : file_((std::filesystem::temp_directory_path() / ("lmx-compare-" + std::to_string(getpid()))).string()) {
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

ImageMagick::~ImageMagick() {
  unlink(file_.c_str());
}

std::string ImageMagick::Run(const Image& image, const std::string& rest) const {
  std::ofstream file(file_, std::ios::binary);
  for (const std::uint32_t pixel : image.pixels) {
    for (const int shift : kShifts) file.put(static_cast<char>(pixel >> shift & 0xFF));
  }
  if (!file.flush()) throw std::runtime_error("cannot write " + file_);
  const std::string size = std::to_string(image.width) + "x" + std::to_string(image.height);
  return OutputOf(program_ + " -size " + size + " -depth 8 'rgba:" + file_ + "' " + rest);
}

Image ImageMagick::Transform(const Image& image, const std::string& operations) const {
  std::istringstream output(Run(image, operations + " -depth 8 -format '%w %h\\n' -write info:- rgba:-"));
  Image result;
  output >> result.width >> result.height;
  output.get();
  const std::string bytes(std::istreambuf_iterator<char>(output), {});
  if (bytes.size() != 4 * static_cast<std::size_t>(result.width) * static_cast<std::size_t>(result.height)) {
    throw std::runtime_error("pixels of another size than " + program_ + " says");
  }
  for (auto byte = bytes.begin(); byte != bytes.end();) {
    std::uint32_t& pixel = result.pixels.emplace_back(0);
    for (const int shift : kShifts) pixel |= std::uint32_t{static_cast<unsigned char>(*byte++)} << shift;
  }
  return result;
}

std::vector<double> ImageMagick::Means(const Image& image) const {
  std::istringstream output(
      Run(image, "-precision 12 -format '%[fx:255*mean.r] %[fx:255*mean.g] %[fx:255*mean.b]' info:-"));
  std::vector<double> means;
  for (double mean; output >> mean;) means.push_back(mean);
  if (means.size() != 3) throw std::runtime_error("not three means");
  return means;
}

}  // namespace compare
