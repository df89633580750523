// Replays inputs without a fuzzer: those of every packed corpus (FILE.corpus) on the command line,
// or the files themselves. A crash ends the process after the name of the input is printed.
#include <cstdio>
#include <exception>

#include "Corpus.h"

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);

int main(int argc, char** argv) {
  LLVMFuzzerInitialize(&argc, &argv);
  std::size_t count = 0;
  try {
    for (int i = 1; i < argc; ++i) {
      const std::filesystem::path file = argv[i];
      fuzz::Corpus corpus = {{file.string(), fuzz::ReadBytes(file)}};
      if (file.extension() == ".corpus") corpus = fuzz::Unpacked(fuzz::ReadBytes(file));
      for (const auto& [name, bytes] : corpus) {
        std::printf("%s\n", name.c_str());
        std::fflush(stdout);
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
        ++count;
      }
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "FINDING: an exception: %s\n", error.what());
    return 1;
  }
  std::printf("%zu inputs\n", count);
  return count == 0 ? 1 : 0;
}
