#include "GuardedMemory.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "Value.h"

namespace host {
namespace {

constexpr int kReserve = MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE;
constexpr std::uint64_t kMostBytes = std::uint64_t{2} << 30;

std::size_t PageSize() {
  static const std::size_t size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  return size;
}

#if UINTPTR_MAX > UINT32_MAX
// Reserves memory below 4 GiB. The kernel offers a part of these addresses; the rest is searched in
// steps.
void* ReserveLow(std::size_t size) {
  constexpr std::uintptr_t kFirst = 0x10000000, kEnd = 0x100000000, kStep = 0x400000;
#ifdef MAP_32BIT
  if (void* map = mmap(nullptr, size, PROT_NONE, kReserve | MAP_32BIT, -1, 0); map != MAP_FAILED) {
    if (reinterpret_cast<std::uintptr_t>(map) + size <= kEnd) return map;
    munmap(map, size);  // an emulated kernel may not know the flag
  }
#endif
  for (std::uintptr_t address = kFirst; address + size <= kEnd; address += kStep) {
    void* wanted = reinterpret_cast<void*>(address);
    void* map = mmap(wanted, size, PROT_NONE, kReserve | MAP_FIXED_NOREPLACE, -1, 0);
    if (map == wanted) return map;
    if (map != MAP_FAILED) munmap(map, size);
  }
  return MAP_FAILED;
}
#endif

int Protection(GuardedMemory::Access access) {
  switch (access) {
    case GuardedMemory::Access::None:
      return PROT_NONE;
    case GuardedMemory::Access::Read:
      return PROT_READ;
    case GuardedMemory::Access::Write:
      return PROT_READ | PROT_WRITE;
  }
  return PROT_NONE;
}

}  // namespace

void* ReserveInaccessible(std::size_t size, GuardedMemory::Where where) {
  void* map = MAP_FAILED;
#if UINTPTR_MAX > UINT32_MAX
  if (where == GuardedMemory::Where::Below4GiB) {
    map = ReserveLow(size);
    return map == MAP_FAILED ? nullptr : map;
  }
#else
  static_cast<void>(where);
#endif
  map = mmap(nullptr, size, PROT_NONE, kReserve, -1, 0);
  return map == MAP_FAILED ? nullptr : map;
}

GuardedMemory::GuardedMemory(std::size_t blocks, std::uint64_t blockSize, Flush flush, Where where) : blocks_(blocks) {
  const std::uint64_t page = PageSize();
  const std::uint64_t pages = (blockSize + page - 1) / page * page;
  // Each of many blocks takes a system call of its own. A single block may have any size.
  const std::uint64_t most = blocks == 1 ? SIZE_MAX - page : kMostBytes;
  if (blockSize > most - 2 * page || blocks > most / (pages + page)) throw Error("no memory for so many pixels");
  blockSize_ = static_cast<std::size_t>(blockSize);
  blockPages_ = static_cast<std::size_t>(pages);
  pitch_ = static_cast<std::size_t>(pages + page);
  mapSize_ = static_cast<std::size_t>(blocks * (pages + page) + page);
  offset_ = static_cast<std::size_t>(page + (flush == Flush::End ? pages - blockSize : 0));
  map_ = static_cast<std::uint8_t*>(ReserveInaccessible(mapSize_, where));
  if (map_ == nullptr) throw Error("no address space for the pixels of a picture");
  try {
    Protect(Access::Write);
  } catch (...) {
    munmap(map_, mapSize_);
    throw;
  }
}

GuardedMemory::~GuardedMemory() {
  munmap(map_, mapSize_);
}

void GuardedMemory::Protect(Access access) {
  if (access == access_) return;
  access_ = access;
  if (blockPages_ == 0) return;
  if (access == Access::None) {  // one call covers all blocks: the pages between them stay inaccessible
    if (mprotect(map_, mapSize_, PROT_NONE) != 0) throw Error(std::string("mprotect: ") + std::strerror(errno));
    return;
  }
  for (std::size_t i = 0; i < blocks_; ++i) {
    std::uint8_t* pages = map_ + PageSize() + i * pitch_;
    if (mprotect(pages, blockPages_, Protection(access)) != 0) {
      throw Error(std::string("mprotect: ") + std::strerror(errno));
    }
  }
}

}  // namespace host
