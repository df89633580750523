// Calls a target with files instead of a fuzzer: every file of the folders given, or the files themselves. What a
// fuzzer would call a crash ends the process, behind the name of the file.
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);

namespace {

std::set<std::string> FilesOf(int count, char** paths) {
  std::set<std::string> files;
  for (int i = 0; i < count; ++i) {
    if (!std::filesystem::is_directory(paths[i])) {
      files.insert(paths[i]);
      continue;
    }
    for (const auto& entry : std::filesystem::directory_iterator(paths[i])) files.insert(entry.path().string());
  }
  return files;
}

bool Run(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) {
    std::fprintf(stderr, "cannot open %s\n", file.c_str());
    return false;
  }
  const std::vector<char> bytes(std::istreambuf_iterator<char>(stream), {});
  std::printf("%s\n", file.c_str());
  std::fflush(stdout);
  try {
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "FINDING: an exception: %s\n", error.what());
    return false;
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  LLVMFuzzerInitialize(&argc, &argv);
  const std::set<std::string> files = FilesOf(argc - 1, argv + 1);
  for (const std::string& file : files) {
    if (!Run(file)) return 1;
  }
  std::printf("%zu inputs\n", files.size());
  return files.empty() ? 1 : 0;
}
