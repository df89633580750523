#include "ResidentLibrary.h"

#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

#include <map>
#include <utility>

#include "Value.h"

namespace host {
namespace {

// Copies word by word and without instrumentation: address sanitizers forbid access to the gaps
// that they leave between variables, and memcpy would check for that.
__attribute__((no_sanitize("address"))) void CopyWords(volatile std::uintptr_t* to, const volatile std::uintptr_t* from,
                                                       std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) to[i] = from[i];
}

struct Range {
  std::uintptr_t first, end;
};

struct Search {
  std::uintptr_t base;
  std::vector<Range> found;
};

std::uintptr_t PageStart(std::uintptr_t address) {
  return address & ~(static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE)) - 1);
}

// Finds the part of a library that is still writable after loading. The relocations at its start no
// longer are.
int FindWritable(dl_phdr_info* info, std::size_t, void* context) {
  auto& search = *static_cast<Search*>(context);
  if (info->dlpi_addr != search.base) return 0;
  Range fixed = {0, 0};
  for (int i = 0; i < info->dlpi_phnum; ++i) {
    const auto& header = info->dlpi_phdr[i];
    if (header.p_type == PT_GNU_RELRO) fixed = {header.p_vaddr, header.p_vaddr + header.p_memsz};
  }
  for (int i = 0; i < info->dlpi_phnum; ++i) {
    const auto& header = info->dlpi_phdr[i];
    if (header.p_type != PT_LOAD || (header.p_flags & PF_W) == 0) continue;
    Range range = {header.p_vaddr, header.p_vaddr + header.p_memsz};
    if (fixed.first <= range.first && range.first < fixed.end) range.first = PageStart(fixed.end);
    if (range.first < range.end) search.found.push_back({search.base + range.first, search.base + range.end});
  }
  return 1;
}

std::map<std::string, ResidentLibrary>& Kept() {
  // Never destroyed: destructors of static variables use it.
  static auto& kept = *new std::map<std::string, ResidentLibrary>;
  return kept;
}

}  // namespace

ResidentLibrary::ResidentLibrary(void* handle) : handle_(handle) {
  link_map* map = nullptr;
  if (dlinfo(handle, RTLD_DI_LINKMAP, &map) != 0) throw Error(std::string("cannot find the library: ") + dlerror());
  Search search = {static_cast<std::uintptr_t>(map->l_addr), {}};
  dl_iterate_phdr(FindWritable, &search);
  constexpr std::size_t kWord = sizeof(std::uintptr_t);
  for (const Range& range : search.found) {
    const std::uintptr_t first = (range.first + kWord - 1) / kWord * kWord;
    Stretch stretch = {first, std::vector<std::uintptr_t>((range.end - first) / kWord)};
    CopyWords(stretch.words.data(), reinterpret_cast<const std::uintptr_t*>(first), stretch.words.size());
    stretches_.push_back(std::move(stretch));
  }
}

void ResidentLibrary::PutVariablesBack() const {
  for (const Stretch& stretch : stretches_) {
    CopyWords(reinterpret_cast<std::uintptr_t*>(stretch.first), stretch.words.data(), stretch.words.size());
  }
}

ResidentLibrary* ResidentLibrary::Find(const std::string& path) {
  const auto kept = Kept().find(path);
  return kept == Kept().end() ? nullptr : &kept->second;
}

void ResidentLibrary::Keep(const std::string& path, ResidentLibrary library) {
  Kept().emplace(path, std::move(library));
}

}  // namespace host
