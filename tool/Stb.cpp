// The code of stb_image and stb_image_write, with allocators, and a copy, that know what their callers can bear.
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

// The pixels of a PNG are inflated before they are counted, so a small file can ask for any amount. The largest block
// that an honest one needs: 16-bit RGBA with a byte per row, in a buffer that grows by doubling.
constexpr std::size_t kLargestBlock = std::size_t{1} << 30;

// The reader copes without memory. Pixels that a damaged file lacks stay as they were allocated: 0,
// and nothing that the process has used before.
void* Allocate(std::size_t size) {
  return size > kLargestBlock ? nullptr : std::calloc(1, size);
}

void* Grow(void* block, std::size_t oldSize, std::size_t size) {
  if (size > kLargestBlock) return nullptr;
  void* const grown = std::realloc(block, size);
  if (grown != nullptr && size > oldSize) std::memset(static_cast<char*>(grown) + oldSize, 0, size - oldSize);
  return grown;
}

// The writer does not: it is left by an exception.
void* ReallocateOrThrow(void* block, std::size_t size) {
  void* const grown = std::realloc(block, size);
  if (grown == nullptr) throw std::bad_alloc();
  return grown;
}

// The reader copies an empty chunk to nowhere, which memcpy does not allow.
void* Copy(void* to, const void* from, std::size_t size) {
  return size == 0 ? to : std::memcpy(to, from, size);
}

}  // namespace

#define STBI_MALLOC(size) Allocate(size)
#define STBI_REALLOC_SIZED(block, oldSize, size) Grow(block, oldSize, size)
#define STBI_FREE(block) std::free(block)
#define STBI_ONLY_PNG
#define STBI_ONLY_JPEG
#define STBI_FAILURE_USERMSG
#define STB_IMAGE_IMPLEMENTATION

#define STBIW_MALLOC(size) ReallocateOrThrow(nullptr, size)
#define STBIW_REALLOC(block, size) ReallocateOrThrow(block, size)
#define STBIW_FREE(block) std::free(block)
#define STB_IMAGE_WRITE_IMPLEMENTATION

#define memcpy(to, from, size) Copy(to, from, size)

#include "Stb.h"
