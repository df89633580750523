// Writes the seeds of a target into a folder: seeds <target> <folder>
#include "Seeds.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>

int main(int argc, char** argv) {
  static const std::map<std::string, std::vector<fuzz::Bytes> (*)()> targets = {
      {"methods", fuzz::MethodSeeds},
      {"kernels", fuzz::KernelSeeds},
      {"picture_file", fuzz::PictureFileSeeds},
      {"command_line", fuzz::CommandLineSeeds},
  };
  const auto target = argc == 3 ? targets.find(argv[1]) : targets.end();
  if (target == targets.end()) {
    std::fprintf(stderr, "usage: seeds <target> <folder>\n");
    return 2;
  }
  const std::filesystem::path folder = argv[2];
  std::filesystem::create_directories(folder);
  int number = 0;
  for (const fuzz::Bytes& seed : target->second()) {
    std::ofstream file(folder / ("seed-" + std::to_string(number++)), std::ios::binary);
    file.write(reinterpret_cast<const char*>(seed.data()), static_cast<std::streamsize>(seed.size()));
    if (!file.flush()) {
      std::fprintf(stderr, "cannot write to %s\n", argv[2]);
      return 1;
    }
  }
  return 0;
}
