#define STB_IMAGE_RESIZE_IMPLEMENTATION
#define STB_IMAGE_RESIZE_STATIC
#include <stb/stb_image_resize.h>

#include "Peer.h"

namespace bench {
namespace {

std::function<void()> Resize(const PeerPicture& s, double factor, stbir_filter filter) {
  const Canvas to(static_cast<int>(s.width * factor), static_cast<int>(s.height * factor));
  return [=] {
    const PeerPicture& p = to.Picture();
    Require(stbir_resize_uint8_generic(s.Bytes(), s.width, s.height, s.Stride(), p.Bytes(), p.width, p.height,
                                       p.Stride(), 4, 3, STBIR_FLAG_ALPHA_PREMULTIPLIED, STBIR_EDGE_CLAMP, filter,
                                       STBIR_COLORSPACE_LINEAR, nullptr) == 1,
            "stbir_resize");
  };
}

std::vector<PeerWork> Prepare(const PeerPicture& s) {
  const char* const box = "box, in floating point, rounded once; premultiplied";
  return {
      {"stretch 1/2", box, Resize(s, 0.5, STBIR_FILTER_BOX)},
      {"stretch 1/3.7", box, Resize(s, 10 / 37.0, STBIR_FILTER_BOX)},
      {"stretch 0.9", box, Resize(s, 0.9, STBIR_FILTER_BOX)},
      {"stretch 1.5", box, Resize(s, 1.5, STBIR_FILTER_BOX)},
      {"stretch 3", box, Resize(s, 3, STBIR_FILTER_BOX)},
  };
}

}  // namespace

Peer StbResize() {
  return {"stb_image_resize", "0.97", true, Prepare};
}

}  // namespace bench
