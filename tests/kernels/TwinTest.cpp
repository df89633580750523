// That a library capped at a level runs this level, and the plug-in the best that this processor has: seen in the table
// of the loaded library. Nothing exports it; the file's own symbol table tells where it is.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <link.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "Levels.h"
#include "host/Host.h"

namespace {

std::vector<char> ReadFile(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

template <class Record>
Record RecordAt(const std::vector<char>& bytes, std::size_t offset) {
  Record record;
  std::memcpy(&record, bytes.data() + offset, sizeof record);
  return record;
}

// The address of a symbol, relative to where the library is loaded; 0 if the file has no such symbol.
std::size_t SymbolIn(const std::string& file, const std::string& name) {
  const std::vector<char> bytes = ReadFile(file);
  const auto header = RecordAt<ElfW(Ehdr)>(bytes, 0);
  const auto section = [&](std::size_t i) {
    return RecordAt<ElfW(Shdr)>(bytes, header.e_shoff + i * sizeof(ElfW(Shdr)));
  };
  for (std::size_t i = 0; i < header.e_shnum; ++i) {
    const auto symbols = section(i);
    if (symbols.sh_type != SHT_SYMTAB) continue;
    const auto names = section(symbols.sh_link);
    for (std::size_t at = 0; at < symbols.sh_size; at += sizeof(ElfW(Sym))) {
      const auto symbol = RecordAt<ElfW(Sym)>(bytes, symbols.sh_offset + at);
      if (name == bytes.data() + names.sh_offset + symbol.st_name) return symbol.st_value;
    }
  }
  return 0;
}

// The level that a library chose when the host loaded it.
std::string LevelOf(const std::string& file) {
  host::Host host;
  host.Load(file);
  void* const library = dlopen(file.c_str(), RTLD_NOW | RTLD_NOLOAD);
  if (!library) return "not loaded";
  link_map* map = nullptr;
  dlinfo(library, RTLD_DI_LINKMAP, &map);
  const std::size_t symbol = SymbolIn(file, "gRunKernels");
  const std::string level = symbol == 0 ? "no table" : reinterpret_cast<const RunKernels*>(map->l_addr + symbol)->level;
  dlclose(library);
  return level;
}

// The highest level that runs here, from those up to `cap`.
std::string HighestUpTo(const std::string& cap) {
  std::string highest;
  for (const std::string& level : LevelNames()) {
    if (RunsHere(level) && !IsVariant(level)) highest = level;
    if (level == cap) break;
  }
  return highest;
}

TEST(LoadedLibrary, RunsTheBestLevelUpToItsCap) {
  for (const std::string& cap : LevelNames()) {
    if (IsVariant(cap) || cap == "avx512") continue;  // the plug-in itself
    EXPECT_EQ(LevelOf(std::string(LMX_TWIN_FILES) + cap + ".so"), HighestUpTo(cap)) << cap;
  }
}

// LMX_EXPECTED_LEVEL names it where somebody else knows the processor.
TEST(LoadedLibrary, RunsTheBestLevelWithoutACap) {
  const char* const expected = std::getenv("LMX_EXPECTED_LEVEL");
  EXPECT_EQ(LevelOf(LMX_LIBRARY_FILE), expected ? expected : HighestUpTo(""));
}

}  // namespace
