// Memory between inaccessible pages.
#pragma once

#include <cstddef>
#include <cstdint>

#include "Picture.h"

namespace host {

/// Blocks of equal size, each with an inaccessible page before and after it. One end of every
/// block, chosen by `flush`, touches its inaccessible page without a gap. New memory is accessible
/// and zero.
class GuardedMemory {
 public:
  enum class Where { Anywhere, Below4GiB };
  enum class Access { None, Read, Write };

  /// Blocks of 0 bytes are allowed: their address is inaccessible. Throws host::Error when there is
  /// not enough memory.
  GuardedMemory(std::size_t blocks, std::uint64_t blockSize, Flush flush, Where where);
  ~GuardedMemory();
  GuardedMemory(const GuardedMemory&) = delete;
  GuardedMemory& operator=(const GuardedMemory&) = delete;

  std::uint8_t* Block(std::size_t index) const { return map_ + index * pitch_ + offset_; }
  std::size_t Blocks() const { return blocks_; }
  std::size_t BlockSize() const { return blockSize_; }

  /// Sets the access to all blocks.
  void Protect(Access access);

 private:
  std::uint8_t* map_ = nullptr;
  std::size_t mapSize_ = 0;
  std::size_t blocks_;
  std::size_t blockSize_ = 0;
  std::size_t blockPages_ = 0;  // size of the whole pages that hold a block
  std::size_t pitch_ = 0;       // distance from one block to the next
  std::size_t offset_ = 0;      // distance from the start of the pages to the first block
  Access access_ = Access::None;
};

/// Reserves inaccessible address space; nil if there is none.
void* ReserveInaccessible(std::size_t size, GuardedMemory::Where where);

}  // namespace host
