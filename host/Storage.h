// How a picture stores its pixels.
#pragma once

namespace host {

enum class Storage {
  BitmapContext,  ///< type 8: stored words are 0xAARRGGBB, premultiplied, big-endian in memory
  Buffer,         ///< type 10: stored words are 0xTTRRGGBB, T from 0 (opaque) to 127 (clear), little-endian
};

}  // namespace host
