#include "Info.h"

#include <algorithm>
#include <iostream>
#include <string>
#include <vector>

#include "Errors.h"
#include "File.h"
#include "Image.h"
#include "Orientation.h"
#include "PictureFile.h"
#include "PngReader.h"
#include "Values.h"

namespace tool {
namespace {

// What EXIF's numbers say about the way from the file to the picture.
constexpr const char* kTurns[] = {"upright",
                                  "mirrored left and right",
                                  "turned by 180 degrees",
                                  "mirrored top and bottom",
                                  "mirrored left and right, turned by 270 degrees",
                                  "turned by 90 degrees",
                                  "mirrored left and right, turned by 90 degrees",
                                  "turned by 270 degrees"};

struct Info {
  std::string format;
  int width = 0, height = 0;
  std::string alpha;
  int orientation = kUpright;
  std::size_t bytes = 0;
};

std::string AlphaOf(const Image& image) {
  bool opaque = true, clear = true;
  for (const std::uint32_t pixel : image.pixels) {
    opaque = opaque && pixel >> 24 == 0xFF;
    clear = clear && pixel >> 24 == 0;
  }
  return opaque ? "opaque" : clear ? "clear" : "translucent";
}

Info InfoOn(const std::string& path) {
  const Bytes bytes = ReadFile(path);
  const Image image = DecodePicture(path, bytes);
  return {IsPng(bytes) ? "PNG" : "JPEG", image.width, image.height, AlphaOf(image), OrientationOf(bytes), bytes.size()};
}

void Write(const std::string& path, const Info& info, bool json) {
  if (json) {
    std::cout << "{\"picture\":" << JsonText(path) << ",\"format\":" << JsonText(info.format)
              << ",\"width\":" << info.width << ",\"height\":" << info.height << ",\"alpha\":" << JsonText(info.alpha)
              << ",\"orientation\":" << info.orientation << ",\"bytes\":" << info.bytes << "}\n";
    return;
  }
  std::cout << path << ": " << info.format << ", " << info.width << " x " << info.height << " pixels, " << info.alpha
            << ", ";
  if (info.orientation != kUpright) std::cout << kTurns[info.orientation - 1] << " by its EXIF data, ";
  std::cout << info.bytes << " bytes\n";
}

}  // namespace

void ShowInfo(const CommandLine& line) {
  const std::vector<std::string>& files = line.steps.front().operands;
  if (line.steps.size() != 1 || !line.steps.front().assignments.empty()) {
    throw UsageError("`info` takes picture files and nothing else");
  }
  if (files.empty()) throw UsageError("about which pictures? lmx info photo.jpg");
  if (line.output) throw UsageError("there will be no picture for -o " + *line.output);
  std::string failures;
  for (const std::string& file : files) {
    try {
      Write(file, InfoOn(file), line.json);
    } catch (const Failure& failure) {
      failures += (failures.empty() ? "" : "\nlmx: ") + std::string(failure.what());
    }
  }
  if (!failures.empty()) throw Failure(failures);
}

}  // namespace tool
