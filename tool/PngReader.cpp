#include "PngReader.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>

#include "Errors.h"
#include "PngColours.h"

namespace tool {
namespace {

using Bytes = std::vector<unsigned char>;

constexpr unsigned char kSignature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr std::size_t kHeaderSize = 13;

[[noreturn]] void Fail(const std::string& path, const std::string& what) {
  throw Failure(path + ": is damaged: " + what);
}

std::uint32_t BigEndian(const unsigned char* bytes) {
  return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 | bytes[3];
}

// The parts of a PNG, one after the other: a length and a type, in four bytes each, the data, and a
// checksum.
class ChunkWalk {
 public:
  explicit ChunkWalk(const Bytes& png) : png_(png) {}

  // False when there is no further chunk that lies within the file.
  bool Next() {
    constexpr std::size_t kHead = 8, kChecksum = 4;
    const std::size_t left = png_.size() - next_;
    if (left < kHead + kChecksum) return false;
    const std::size_t length = BigEndian(png_.data() + next_);
    if (length > left - kHead - kChecksum) return false;
    data_ = png_.data() + next_ + kHead;
    length_ = length;
    next_ += kHead + length + kChecksum;
    return true;
  }

  bool Is(const char* type) const { return std::equal(type, type + 4, data_ - 4); }
  std::string Type() const { return std::string(data_ - 4, data_); }
  // Whether the picture cannot be shown without this chunk.
  bool IsCritical() const { return data_[-4] >= 'A' && data_[-4] <= 'Z'; }
  const unsigned char* Data() const { return data_; }
  std::size_t Length() const { return length_; }

  bool ChecksumIsRight() const {
    return crc32(0, data_ - 4, static_cast<uInt>(length_ + 4)) == BigEndian(data_ + length_);
  }

 private:
  const Bytes& png_;
  std::size_t next_ = sizeof kSignature;
  const unsigned char* data_ = nullptr;
  std::size_t length_ = 0;
};

// Whether the chunk's checksum is right, and lmx knows the chunk if the picture depends on it.
void CheckChunk(const std::string& path, const ChunkWalk& walk) {
  const bool isKnown = walk.Is("IHDR") || walk.Is("PLTE") || walk.Is("IDAT") || walk.Is("IEND");
  if (!walk.IsCritical() && !walk.Is("tRNS")) return;
  if (!walk.ChecksumIsRight()) Fail(path, "the checksum of its part " + walk.Type() + " is wrong");
  if (!isKnown && walk.IsCritical()) Fail(path, "it has a part " + walk.Type() + ", which is unknown");
}

// Unpacks the chunks of pixels as one stream.
class Inflater {
 public:
  Inflater(const std::string& path, ChunkWalk& walk) : path_(path), walk_(walk) {
    if (inflateInit(&stream_) != Z_OK) throw std::bad_alloc();
    TakeChunk();
  }
  ~Inflater() { inflateEnd(&stream_); }
  Inflater(const Inflater&) = delete;
  Inflater& operator=(const Inflater&) = delete;

  void Read(unsigned char* to, std::size_t size) {
    if (ReadSome(to, size) != size) Fail(path_, "its pixels end too early");
  }

  // The stream may hold some bytes more than the pixels need. Its checksum is at the end.
  void Finish() {
    Bytes rest(std::size_t{1} << 16);
    if (ReadSome(rest.data(), rest.size()) == rest.size()) Fail(path_, "it has more data than its pixels need");
    while (NextChunk()) continue;
  }

 private:
  std::size_t ReadSome(unsigned char* to, std::size_t size) {
    stream_.next_out = to;
    stream_.avail_out = static_cast<uInt>(size);
    while (!ended_ && stream_.avail_out != 0) {
      if (stream_.avail_in == 0 && !NextChunk()) Fail(path_, "its pixels end too early");
      const int result = inflate(&stream_, Z_NO_FLUSH);
      ended_ = result == Z_STREAM_END;
      if (result == Z_MEM_ERROR) throw std::bad_alloc();
      if (!ended_ && result != Z_OK && result != Z_BUF_ERROR) {
        const bool isChecksum = stream_.msg != nullptr && std::string(stream_.msg) == "incorrect data check";
        Fail(path_, isChecksum ? "the checksum of its pixels is wrong" : "its pixels cannot be unpacked");
      }
    }
    return size - stream_.avail_out;
  }

  // Skips other chunks between those of pixels, and after them.
  bool NextChunk() {
    while (!walk_.Is("IEND") && walk_.Next()) {
      CheckChunk(path_, walk_);
      if (walk_.Is("PLTE") || walk_.Is("tRNS")) Fail(path_, "it has colours after its pixels");
      if (!walk_.Is("IDAT")) continue;
      TakeChunk();
      return true;
    }
    return false;
  }

  void TakeChunk() {
    stream_.next_in = const_cast<unsigned char*>(walk_.Data());
    stream_.avail_in = static_cast<uInt>(walk_.Length());
  }

  const std::string& path_;
  ChunkWalk& walk_;
  z_stream stream_ = {};
  bool ended_ = false;
};

// Adds to each byte the prediction from its neighbours: the byte of the same channel to the left,
// the one above, and the one above left. `row` and `above` have kMargin zeros before them.
constexpr std::size_t kMargin = 8;

int Paeth(int left, int above, int corner) {
  const int toLeft = std::abs(above - corner), toAbove = std::abs(left - corner);
  const int toCorner = std::abs(left + above - 2 * corner);
  if (toLeft <= toAbove && toLeft <= toCorner) return left;
  return toAbove <= toCorner ? above : corner;
}

bool Unfilter(unsigned filter, unsigned char* row, const unsigned char* above, std::size_t size, std::size_t channel) {
  const auto add = [&](auto predicted) {
    for (std::size_t i = 0; i < size; ++i) row[i] = static_cast<unsigned char>(row[i] + predicted(i));
  };
  const unsigned char *left = row - channel, *corner = above - channel;
  switch (filter) {
    case 0:
      return true;
    case 1:
      add([&](std::size_t i) { return left[i]; });
      return true;
    case 2:
      add([&](std::size_t i) { return above[i]; });
      return true;
    case 3:
      add([&](std::size_t i) { return (left[i] + above[i]) >> 1; });
      return true;
    case 4:
      add([&](std::size_t i) { return Paeth(left[i], above[i], corner[i]); });
      return true;
    default:
      return false;
  }
}

// Which pixels belong together: all, or one of the seven parts of an interlaced picture.
struct Grid {
  std::size_t left, top, stepX, stepY;
  static std::size_t Count(std::size_t length, std::size_t start, std::size_t step) {
    return length > start ? (length - start + step - 1) / step : 0;
  }
};
constexpr Grid kWhole[] = {{0, 0, 1, 1}};
constexpr Grid kInterlaced[] = {{0, 0, 8, 8}, {4, 0, 8, 8}, {0, 4, 4, 8}, {2, 0, 4, 4},
                                {0, 2, 2, 4}, {1, 0, 2, 2}, {0, 1, 1, 2}};

class Decoder {
 public:
  Decoder(const std::string& path, const Bytes& file, const std::function<void(int, int)>& tick)
      : path_(path), tick_(tick), walk_(file), header_(HeaderOfPng(path, file)), colours_(header_) {}

  Image Decode() {
    if (!IsKnown(header_)) Fail(path_, "its pixels are of an unknown kind");
    ReadColours();
    Image image{static_cast<int>(header_.width), static_cast<int>(header_.height), {}};
    image.pixels.resize(Width() * Height());
    Inflater inflater(path_, walk_);
    if (header_.interlaced) {
      for (const Grid& grid : kInterlaced) ReadGrid(inflater, grid, image);
    } else {
      ReadGrid(inflater, kWhole[0], image);
    }
    inflater.Finish();
    return image;
  }

 private:
  std::size_t Width() const { return static_cast<std::size_t>(header_.width); }
  std::size_t Height() const { return static_cast<std::size_t>(header_.height); }

  // Up to the first chunk of pixels.
  void ReadColours() {
    while (walk_.Next() && !walk_.Is("IEND")) {
      CheckChunk(path_, walk_);
      if (walk_.Is("IDAT")) {
        if (header_.kind == kPalette && !colours_.HasPalette()) Fail(path_, "it has no palette");
        return;
      }
      if (walk_.Is("PLTE")) {
        if (colours_.HasPalette()) Fail(path_, "it has two palettes");
        if (!colours_.SetPalette(walk_.Data(), walk_.Length())) Fail(path_, "its palette has a wrong size");
      }
      const bool wrong = walk_.Is("tRNS") && !colours_.SetTransparency(walk_.Data(), walk_.Length());
      if (wrong) Fail(path_, "its transparency does not suit its colours");
    }
    Fail(path_, "it has no pixels");
  }

  void ReadGrid(Inflater& inflater, const Grid& grid, Image& image) {
    const std::size_t columns = Grid::Count(Width(), grid.left, grid.stepX);
    if (columns == 0) return;
    const std::size_t size = RowSize(header_, columns);
    const std::size_t channel = std::max<std::size_t>(Channels(header_) * header_.depth / 8, 1);  // bytes of a pixel
    Bytes row(kMargin + size), above(kMargin + size);
    for (std::size_t y = grid.top; y < Height(); y += grid.stepY) {
      tick_(static_cast<int>(y), image.height);
      unsigned char filter = 0;
      inflater.Read(&filter, 1);
      inflater.Read(row.data() + kMargin, size);
      if (!Unfilter(filter, row.data() + kMargin, above.data() + kMargin, size, channel)) {
        Fail(path_, "its pixels are of an unknown kind");
      }
      colours_.Expand(row.data() + kMargin, columns, image.pixels.data() + y * Width() + grid.left, grid.stepX);
      row.swap(above);
    }
  }

  const std::string& path_;
  const std::function<void(int, int)>& tick_;
  ChunkWalk walk_;
  const PngHeader header_;
  Colours colours_;
};

}  // namespace

bool IsPng(const Bytes& file) {
  return file.size() >= sizeof kSignature && std::equal(std::begin(kSignature), std::end(kSignature), file.begin());
}

PngHeader HeaderOfPng(const std::string& path, const Bytes& file) {
  ChunkWalk walk(file);
  if (!walk.Next()) Fail(path, "it ends in its header");
  if (!walk.Is("IHDR") || walk.Length() != kHeaderSize) Fail(path, "it does not begin with a header");
  const unsigned char* const data = walk.Data();
  while (!walk.Is("IEND")) {
    if (!walk.Next()) Fail(path, "it ends too early");
  }
  return {BigEndian(data), BigEndian(data + 4), data[8], data[9], data[12] != 0};
}

Image DecodePng(const std::string& path, const Bytes& file, const std::function<void(int, int)>& tick) {
  return Decoder(path, file, tick).Decode();
}

}  // namespace tool
