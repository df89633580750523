// Pictures with very little overhead, for measuring. Their memory comes from blocks below 4 GiB
// whose pages are already in use, and is reused for later pictures that fit. Nothing is checked.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "HostInterface.h"
#include "host/Picture.h"

namespace bench {

/// A picture of the pool. Its address is the handle that methods get, and also its bitmap context.
struct PoolPicture {
  bool used = false;
  host::Storage storage = host::Storage::BitmapContext;
  int width = 0;
  int height = 0;
  std::uint8_t* pixels = nullptr;  ///< rows without gaps, from the top
  REALpictureBuffer* record = nullptr;
  std::uint32_t* rows = nullptr;

  std::size_t Bytes() const { return 4 * static_cast<std::size_t>(width) * static_cast<std::size_t>(height); }
};

class Pool {
 public:
  Pool() = default;
  ~Pool();
  Pool(const Pool&) = delete;
  Pool& operator=(const Pool&) = delete;

  /// A picture without pixels. Ends the process when all are in use, because then a release is
  /// missing.
  PoolPicture* Take();
  /// Gives the picture memory, with the contents that an earlier picture left. Without memory its
  /// size is 0 x 0.
  void SetSize(PoolPicture& picture, host::Storage storage, int width, int height);
  void GiveBack(PoolPicture& picture);
  /// The number of pictures for which there was no memory.
  int Shortages() const { return shortages_; }

  /// Returns unused memory to the system, so that the next operation can have it.
  void ReleaseUnused();

 private:
  struct Block {
    std::uint8_t* memory;
    std::size_t size;
    bool used;
  };

  std::uint8_t* Memory(std::size_t size);
  void LayOutRecord(PoolPicture& picture);

  static constexpr std::size_t kMostPictures = 8;
  std::array<PoolPicture, kMostPictures> pictures_;
  std::vector<Block> blocks_;
  int shortages_ = 0;
};

}  // namespace bench
