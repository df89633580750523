#include "Pool.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "host/GuardedMemory.h"

namespace bench {
namespace {

constexpr std::size_t kMostRows = 1 << 16;

std::uint8_t* Map(std::size_t size) {
  void* const memory = host::ReserveInaccessible(size, host::GuardedMemory::Where::Below4GiB);
  if (memory == nullptr) return nullptr;
  if (mprotect(memory, size, PROT_READ | PROT_WRITE) != 0) {
    munmap(memory, size);
    return nullptr;
  }
  std::memset(memory, 0x5A, size);  // makes the system provide every page
  return static_cast<std::uint8_t*>(memory);
}

std::uint32_t Word(const void* address) {
  return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(address));
}

}  // namespace

Pool::~Pool() {
  for (const Block& block : blocks_) munmap(block.memory, block.size);
  for (const PoolPicture& picture : pictures_) {
    if (picture.record != nullptr) munmap(picture.record, sizeof *picture.record);
    if (picture.rows != nullptr) munmap(picture.rows, 4 * kMostRows);
  }
}

PoolPicture* Pool::Take() {
  const auto picture = std::find_if(pictures_.begin(), pictures_.end(), [](const auto& p) { return !p.used; });
  if (picture == pictures_.end()) std::abort();
  picture->used = true;
  picture->width = picture->height = 0;
  picture->pixels = nullptr;
  return &*picture;
}

void Pool::SetSize(PoolPicture& picture, host::Storage storage, int width, int height) {
  picture.storage = storage;
  picture.width = std::max(width, 0);
  picture.height = std::max(height, 0);
  picture.pixels = Memory(std::max<std::size_t>(picture.Bytes(), 1));
  if (picture.pixels == nullptr || static_cast<std::size_t>(picture.height) > kMostRows) {
    picture.width = picture.height = 0;
    ++shortages_;
  }
  if (storage == host::Storage::Buffer) LayOutRecord(picture);
}

void Pool::GiveBack(PoolPicture& picture) {
  picture.used = false;
  for (Block& block : blocks_) {
    if (block.memory == picture.pixels) block.used = false;
  }
}

void Pool::ReleaseUnused() {
  const auto unused = std::partition(blocks_.begin(), blocks_.end(), [](const Block& block) { return block.used; });
  for (auto block = unused; block != blocks_.end(); ++block) munmap(block->memory, block->size);
  blocks_.erase(unused, blocks_.end());
}

// The smallest unused block that is large enough, or else a new one.
std::uint8_t* Pool::Memory(std::size_t size) {
  Block* best = nullptr;
  for (Block& block : blocks_) {
    if (!block.used && block.size >= size && (best == nullptr || block.size < best->size)) best = &block;
  }
  if (best == nullptr) {
    std::uint8_t* const memory = Map(size);
    if (memory == nullptr) return nullptr;
    best = &blocks_.emplace_back(Block{memory, size, false});
  }
  best->used = true;
  return best->memory;
}

void Pool::LayOutRecord(PoolPicture& picture) {
  if (picture.record == nullptr) picture.record = reinterpret_cast<REALpictureBuffer*>(Map(sizeof *picture.record));
  if (picture.rows == nullptr) picture.rows = reinterpret_cast<std::uint32_t*>(Map(4 * kMostRows));
  picture.record->width = picture.width;
  picture.record->height = picture.height;
  picture.record->rowTable = Word(picture.rows);
  std::uint32_t row = Word(picture.pixels);
  for (int y = 0; y < picture.height; ++y, row += 4 * static_cast<std::uint32_t>(picture.width)) picture.rows[y] = row;
}

}  // namespace bench
