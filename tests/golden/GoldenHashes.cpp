// Prints the file of hashes, unless the plug-in and the reference model differ in any case.
#include <cstdio>
#include <exception>

#include "GoldenCases.h"

namespace {

bool WriteHashes() {
  host::Host host;
  host.Load(support::LibraryPath());
  std::puts(
      "# Results of whole methods: name, code, number of yields, and the result: a picture's size and FNV-1a hash, or");
  std::puts("# averages (doubles as their bits). Written by scripts/golden; read by the tests of this folder.");
  bool agreed = true;
  for (const golden::Case& c : golden::Cases()) {
    const std::string result = golden::ResultOfPlugin(host, c);
    const std::string byModel = golden::ResultByModel(c);
    std::printf("%s %s\n", c.name.c_str(), result.c_str());
    if (result == byModel) continue;
    std::fprintf(stderr, "%s\n  plug-in     %s\n  model       %s\n", c.name.c_str(), result.c_str(), byModel.c_str());
    agreed = false;
  }
  return agreed;
}

}  // namespace

int main() {
  try {
    return WriteHashes() ? 0 : 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "golden_hashes: %s\n", error.what());
    return 1;
  }
}
