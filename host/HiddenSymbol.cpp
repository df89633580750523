#include "HiddenSymbol.h"

#include <dlfcn.h>
#include <link.h>

#include <cstddef>
#include <cstring>
#include <fstream>
#include <iterator>
#include <vector>

#include "Value.h"

namespace host {
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

// The symbol's address relative to the start of the library; 0 if the file has no such symbol.
std::size_t AddressIn(const std::string& file, const std::string& name) {
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

}  // namespace

const void* HiddenSymbol(const std::string& file, const std::string& name) {
  void* const library = dlopen(file.c_str(), RTLD_NOW | RTLD_NOLOAD);
  if (library == nullptr) throw Error(file + " is not loaded");
  link_map* map = nullptr;
  dlinfo(library, RTLD_DI_LINKMAP, &map);
  const std::size_t base = map->l_addr;
  dlclose(library);
  const std::size_t address = AddressIn(file, name);
  return address == 0 ? nullptr : reinterpret_cast<const void*>(base + address);
}

}  // namespace host
