// The code of stb_image and stb_image_write, with allocators for each. lmx uses them for JPEG. The
// tests use them for PNG, which lmx reads and writes by its own code.
#include <cstdlib>
#include <new>
#include <set>

namespace {

// The reader's blocks that are not freed yet: an exception may leave it.
std::set<void*> blocks;

// The reader handles a lack of memory. Pixels that a damaged file lacks stay as they were
// allocated: 0, and not old data of the process.
void* Allocate(std::size_t size) {
  void* const block = std::calloc(1, size);
  if (block != nullptr) blocks.insert(block);
  return block;
}

void Free(void* block) {
  blocks.erase(block);
  std::free(block);
}

void* Grow(void* block, std::size_t size) {
  void* const grown = std::realloc(block, size);
  if (grown == nullptr) return nullptr;
  blocks.erase(block);
  blocks.insert(grown);
  return grown;
}

// The writer does not handle it, so the allocator throws.
void* ReallocateOrThrow(void* block, std::size_t size) {
  void* const grown = std::realloc(block, size);
  if (grown == nullptr) throw std::bad_alloc();
  return grown;
}

}  // namespace

#define STBI_MALLOC(size) Allocate(size)
#define STBI_REALLOC(block, size) Grow(block, size)
#define STBI_FREE(block) Free(block)
#define STBI_ONLY_PNG
#define STBI_ONLY_JPEG
#define STBI_FAILURE_USERMSG
#define STB_IMAGE_IMPLEMENTATION

#define STBIW_MALLOC(size) ReallocateOrThrow(nullptr, size)
#define STBIW_REALLOC(block, size) ReallocateOrThrow(block, size)
#define STBIW_FREE(block) std::free(block)
#define STB_IMAGE_WRITE_IMPLEMENTATION

#include "Stb.h"

void FreeStbBlocks() {
  for (void* const block : blocks) std::free(block);
  blocks.clear();
}
