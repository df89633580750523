#include "Png.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace tool {
namespace {

using Bytes = std::vector<unsigned char>;

void AppendNumber(Bytes& bytes, std::uint32_t number) {
  for (const int shift : {24, 16, 8, 0}) bytes.push_back(static_cast<unsigned char>(number >> shift));
}

// The length of a chunk is known when it ends.
void AppendChunk(Bytes& file, const char* type, const unsigned char* data, std::size_t size) {
  AppendNumber(file, static_cast<std::uint32_t>(size));
  const std::size_t start = file.size();
  file.insert(file.end(), type, type + 4);
  file.insert(file.end(), data, data + size);
  AppendNumber(file, static_cast<std::uint32_t>(crc32(0, file.data() + start, static_cast<uInt>(size + 4))));
}

// Compresses what it gets into chunks of a file.
class Deflater {
 public:
  Deflater(Bytes& file, int compression) : file_(file) {
    constexpr int kWindowBits = 15, kMemory = 9;  // the largest
    // Filtered rows are small numbers that seldom repeat: short matches cost more than they save.
    const int strategy = compression == 0 ? Z_DEFAULT_STRATEGY : Z_FILTERED;
    if (deflateInit2(&stream_, compression, Z_DEFLATED, kWindowBits, kMemory, strategy) != Z_OK) throw std::bad_alloc();
    StartChunk();
  }
  ~Deflater() { deflateEnd(&stream_); }
  Deflater(const Deflater&) = delete;
  Deflater& operator=(const Deflater&) = delete;

  void Add(const unsigned char* data, std::size_t size) {
    stream_.next_in = const_cast<unsigned char*>(data);
    stream_.avail_in = static_cast<uInt>(size);
    while (stream_.avail_in != 0) Run(Z_NO_FLUSH);
  }

  void Finish() {
    while (Run(Z_FINISH) != Z_STREAM_END) continue;
    EndChunk();
  }

 private:
  int Run(int flush) {
    if (stream_.avail_out == 0) {
      EndChunk();
      StartChunk();
    }
    return deflate(&stream_, flush);
  }

  void StartChunk() {
    stream_.next_out = chunk_.data();
    stream_.avail_out = static_cast<uInt>(chunk_.size());
  }

  void EndChunk() { AppendChunk(file_, "IDAT", chunk_.data(), chunk_.size() - stream_.avail_out); }

  Bytes& file_;
  Bytes chunk_ = Bytes(std::size_t{1} << 18);
  z_stream stream_ = {};
};

// ---- Filters: each byte of a row as the difference from what its neighbours predict. ----

// By channel, to the left, above, and above to the left.
using Predict = int (*)(int left, int above, int corner);

int Nothing(int, int, int) {
  return 0;
}
int Left(int left, int, int) {
  return left;
}
int Above(int, int above, int) {
  return above;
}
int Mean(int left, int above, int) {
  return (left + above) >> 1;
}
// The neighbour that is nearest to left + above - corner.
int Paeth(int left, int above, int corner) {
  const int toLeft = std::abs(above - corner), toAbove = std::abs(left - corner);
  const int toCorner = std::abs(left + above - 2 * corner);
  const int other = toAbove <= toCorner ? above : corner;
  return toLeft <= toAbove && toLeft <= toCorner ? left : other;
}

// Writes the filtered row, and returns the sum of its differences, an estimate of its compressed
// size. There are kMargin zeros before the rows.
constexpr std::size_t kMargin = 4;

template <Predict predict, std::size_t channels>
unsigned Filter(const unsigned char* row, const unsigned char* above, std::size_t size, unsigned char* filtered) {
  const unsigned char *left = row - channels, *corner = above - channels;
  unsigned sum = 0;
  for (std::size_t i = 0; i < size; ++i) {
    const int predicted = predict(left[i], above[i], corner[i]);
    const auto difference = static_cast<unsigned char>(row[i] - predicted);
    filtered[i] = difference;
    sum += std::min<unsigned>(difference, 256U - difference);
  }
  return sum;
}

template <std::size_t channels>
class RowWriter {
 public:
  RowWriter(const Image& image, bool filters)
      : image_(image),
        size_(static_cast<std::size_t>(image.width) * channels),
        row_(kMargin + size_),
        above_(kMargin + size_),
        filters_(filters) {
    for (Bytes& candidate : candidates_) candidate.resize(1 + size_);
    for (std::size_t i = 0; i < candidates_.size(); ++i) candidates_[i][0] = static_cast<unsigned char>(i);
  }

  // The row with the number of its filter before it.
  const Bytes& Next() {
    row_.swap(above_);
    Unpack();
    const auto apply = [this](std::size_t i, auto filter) {
      sums_[i] = filter(row_.data() + kMargin, above_.data() + kMargin, size_, candidates_[i].data() + 1);
    };
    apply(0, Filter<Nothing, channels>);
    if (!filters_) return candidates_[0];
    apply(1, Filter<Left, channels>);
    apply(2, Filter<Above, channels>);
    apply(3, Filter<Mean, channels>);
    apply(4, Filter<Paeth, channels>);
    return candidates_[static_cast<std::size_t>(std::min_element(sums_.begin(), sums_.end()) - sums_.begin())];
  }

  std::size_t RowSize() const { return 1 + size_; }

 private:
  void Unpack() {
    unsigned char* to = row_.data() + kMargin;
    for (int x = 0; x < image_.width; ++x) {
      const std::uint32_t pixel = image_.pixels[next_++];
      to[0] = static_cast<unsigned char>(pixel >> 16);
      to[1] = static_cast<unsigned char>(pixel >> 8);
      to[2] = static_cast<unsigned char>(pixel);
      if (channels == 4) to[3] = static_cast<unsigned char>(pixel >> 24);
      to += channels;
    }
  }

  const Image& image_;
  const std::size_t size_;
  Bytes row_, above_;
  const bool filters_;
  std::array<Bytes, 5> candidates_;
  std::array<unsigned, 5> sums_{};
  std::size_t next_ = 0;  // pixel
};

template <std::size_t channels>
void AppendRows(Bytes& file, const Image& image, int compression, const std::function<void(int, int)>& tick) {
  Deflater deflater(file, compression);
  RowWriter<channels> rows(image, compression != 0);
  for (int y = 0; y < image.height; ++y) {
    tick(y, image.height);
    deflater.Add(rows.Next().data(), rows.RowSize());
  }
  deflater.Finish();
}

bool IsOpaque(const Image& image) {
  return std::all_of(image.pixels.begin(), image.pixels.end(), [](std::uint32_t pixel) { return pixel >> 24 == 0xFF; });
}

}  // namespace

Bytes EncodePng(const Image& image, int compression, const std::function<void(int, int)>& tick) {
  constexpr unsigned char kDepth = 8, kColours = 2, kColoursAndAlpha = 6;
  const bool opaque = IsOpaque(image);
  Bytes file = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  Bytes header;
  AppendNumber(header, static_cast<std::uint32_t>(image.width));
  AppendNumber(header, static_cast<std::uint32_t>(image.height));
  header.insert(header.end(), {kDepth, opaque ? kColours : kColoursAndAlpha, 0, 0, 0});
  AppendChunk(file, "IHDR", header.data(), header.size());
  if (opaque) {
    AppendRows<3>(file, image, compression, tick);
  } else {
    AppendRows<4>(file, image, compression, tick);
  }
  AppendChunk(file, "IEND", nullptr, 0);
  return file;
}

}  // namespace tool
