// Memory between inaccessible pages.
#pragma once

#include <cstddef>
#include <cstdint>

#include "Picture.h"

namespace host {

/// A number of equally large blocks, each with an inaccessible page before and after it. One end of
/// every block touches its inaccessible page without a gap. New memory is accessible and zero.
class GuardedMemory {
 public:
  enum class Where { Anywhere, Below4GiB };
  enum class Access { None, Read, Write };

  /// A block may have 0 bytes: then its address is inaccessible. Throws host::Error when there is
  /// no memory.
  GuardedMemory(std::size_t blocks, std::uint64_t blockSize, Flush flush, Where where);
  ~GuardedMemory();
  GuardedMemory(const GuardedMemory&) = delete;
  GuardedMemory& operator=(const GuardedMemory&) = delete;

  std::uint8_t* Block(std::size_t index) const { return map_ + index * pitch_ + offset_; }
  std::size_t Blocks() const { return blocks_; }
  std::size_t BlockSize() const { return blockSize_; }

  /// Sets what all blocks can be used for.
  void Protect(Access access);

 private:
  std::uint8_t* map_ = nullptr;
  std::size_t mapSize_ = 0;
  std::size_t blocks_;
  std::size_t blockSize_ = 0;
  std::size_t blockPages_ = 0;  // bytes of whole pages that hold a block
  std::size_t pitch_ = 0;       // from one block to the next
  std::size_t offset_ = 0;      // of the first block
  Access access_ = Access::None;
};

/// Reserves inaccessible address space, or returns nil.
void* ReserveInaccessible(std::size_t size, GuardedMemory::Where where);

}  // namespace host
