#include "Peer.h"

#include <cstdlib>
#include <cstring>

#include "host/Value.h"

namespace bench {

Canvas::Canvas(int width, int height) {
  constexpr std::size_t kLine = 64;
  const std::size_t bytes = 4 * static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  memory_.reset(std::aligned_alloc(kLine, (bytes + kLine - 1) / kLine * kLine), std::free);
  Require(memory_ != nullptr, "memory");
  std::memset(memory_.get(), 0x5A, bytes);
  picture_ = {width, height, static_cast<std::uint32_t*>(memory_.get())};
}

void Require(bool done, const char* what) {
  if (!done) throw host::Error(std::string(what) + " failed");
}

}  // namespace bench
