#include "SparseFixture.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <set>

#include "support/PluginTest.h"

namespace sparse {
namespace {

host::Options SparseOptions() {
  host::Options options;
  options.newPictures.layout.sparse = true;
  options.keepLog = false;
  return options;
}

// The opaque pixel at a place. It differs from its neighbours, and is mostly red.
std::uint32_t PixelAt(std::int64_t x, std::int64_t y) {
  const auto mixed = static_cast<std::uint32_t>(x * 0x9E3779B1 + y * 0x85EBCA6B);
  return 0xFF800000 | (mixed ^ mixed >> 13);
}

}  // namespace

bool HasMemory(double gibibytes) {
  std::ifstream lines("/proc/meminfo");
  std::string key;
  double kib = 0;
  while (lines >> key >> kib && key != "MemAvailable:") lines.ignore(100, '\n');
  return kib / (1 << 20) > gibibytes + 1;
}

Pictures::Pictures() : host_(SparseOptions()) {
  host_.Load(support::LibraryPath());
}

Pictures::~Pictures() {
  EXPECT_TRUE(host_.LiveObjects().empty());
}

std::vector<int> Pictures::Bands(int width, int height, int rows) {
  const std::int64_t last = height - rows;
  const auto rowAt = [&](int bits) { return (std::int64_t{1} << bits) / (4 * std::int64_t{width}) - rows / 2; };
  std::vector<int> bands;
  for (const std::int64_t row : {std::int64_t{0}, last, rowAt(31), rowAt(32), last / 2}) {
    const auto overlaps = [&](int band) { return std::abs(row - band) < rows; };
    if (row >= 0 && row <= last && std::none_of(bands.begin(), bands.end(), overlaps)) {
      bands.push_back(static_cast<int>(row));
    }
  }
  return bands;
}

Source Pictures::MakeSource(int width, int height, int rows, host::Storage storage) {
  std::set<std::int64_t> filled;
  for (const int band : Bands(width, height, rows)) {
    for (int y = band; y < band + rows; ++y) filled.insert(y);
  }
  const std::uint32_t empty = model::ReadPixel(storage, 0);
  Source source{{}, {width, height, [filled, empty](std::int64_t x, std::int64_t y, std::int64_t) {
                       return filled.count(y) == 0 ? empty : PixelAt(x, y);
                     }}};
  host::PictureShape shape{width, height, storage, {}, {}};
  shape.layout.sparse = true;
  try {
    source.picture = host::Picture(shape);
  } catch (const host::Error&) {
    return source;
  }
  std::vector<std::uint32_t> row(static_cast<std::size_t>(width));
  for (const std::int64_t y : filled) {
    for (int x = 0; x < width; ++x) {
      row[static_cast<std::size_t>(x)] = model::WritePixel(storage, source.pixels.At(x, y));
    }
    source.picture.SetStoredRow(static_cast<int>(y), row);
  }
  return source;
}

void Pictures::CheckRows(const host::Picture& got, const model::Picture& expected, int step) {
  ASSERT_TRUE(got);
  ASSERT_EQ(got.Width(), expected.width);
  ASSERT_EQ(got.Height(), expected.height);
  std::int64_t written = 0;
  for (int y = 0;; y = std::min(y + step, expected.height - 1)) {
    const std::vector<std::uint32_t> row = got.StoredRow(y);
    for (int x = 0; x < expected.width; ++x) {
      const std::uint32_t word = row[static_cast<std::size_t>(x)];
      ASSERT_EQ(word, model::WritePixel(got.Shape().storage, expected.At(x, y))) << "at (" << x << "," << y << ")";
      written += word != 0 ? 1 : 0;
    }
    if (y == expected.height - 1) break;
  }
  EXPECT_GT(written, 0) << "nothing to compare";
}

host::Picture Pictures::Make(const std::string& method, const std::vector<host::Value>& arguments) {
  host::Picture made = host_.Call(method, arguments).result.AsPicture();
  EXPECT_EQ(LastError(), 0) << method;
  return made;
}

}  // namespace sparse
