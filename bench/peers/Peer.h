// Other libraries that do the same work, or the nearest they can. Each gets the same picture, as
// premultiplied words 0xAARRGGBB in the machine's byte order, and offers one work for every
// operation that it has.
//
// A work starts with buffers whose pages are already in use. This also holds for results that a
// library allocates, because the program never returns memory to the system.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "bench/Contents.h"

namespace bench {

struct PeerPicture {
  int width = 0;
  int height = 0;
  std::uint32_t* words = nullptr;

  int Stride() const { return 4 * width; }
  std::uint8_t* Bytes() const { return reinterpret_cast<std::uint8_t*>(words); }
  std::uint8_t* At(int x, int y) const {
    return Bytes() + static_cast<std::ptrdiff_t>(y) * Stride() + static_cast<std::ptrdiff_t>(4) * x;
  }
};

/// Memory for a picture, its pages in use, aligned to a cache line.
class Canvas {
 public:
  Canvas(int width, int height);

  const PeerPicture& Picture() const { return picture_; }

 private:
  std::shared_ptr<void> memory_;
  PeerPicture picture_;
};

struct PeerWork {
  const char* operation;   ///< its name in Operations()
  const char* difference;  ///< how the result differs from the plug-in's
  std::function<void()> work;
};

struct Peer {
  const char* name;
  std::string version;
  bool knowsAlpha;  ///< a translucent picture has the same meaning to it as to the plug-in, except for rounding
  std::function<std::vector<PeerWork>(const PeerPicture& source)> prepare;
};

Peer GraphicsMagick();
Peer Imlib();
Peer Leptonica();
Peer Libyuv();
Peer OpenCv();
Peer Pixman();
Peer StbResize();
Peer Vips();

/// Ends the work with host::Error if a library reports a failure.
void Require(bool done, const char* what);

}  // namespace bench
