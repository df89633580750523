// Other libraries that do the same work, or what comes closest. Each gets the same picture, as
// words 0xAARRGGBB in the machine's byte order, premultiplied, and gives one piece of work for
// every operation that it has.
//
// A work starts from buffers that were touched before. Libraries that allocate their results get
// memory back that was touched as well, because the program never returns any to the system.
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

/// Memory for a picture, touched, from a cache line's start on.
class Canvas {
 public:
  Canvas(int width, int height);

  const PeerPicture& Picture() const { return picture_; }

 private:
  std::shared_ptr<void> memory_;
  PeerPicture picture_;
};

struct PeerWork {
  const char* operation;   ///< the name among Operations()
  const char* difference;  ///< what it does otherwise than the plug-in
  std::function<void()> work;
};

struct Peer {
  const char* name;
  std::string version;
  bool knowsAlpha;  ///< a translucent picture means to it what it means to the plug-in, but for rounding
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

/// Ends the work with host::Error if a library says no.
void Require(bool done, const char* what);

}  // namespace bench
