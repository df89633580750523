// Methods on parts of pictures of gigabytes, most of which take addresses but no memory. Positions
// exceed 31 and 32 bits, in pixels and in bytes. Each test copies the part of the source that the
// method needs into a small picture for the reference model.
#include "SparseFixture.h"
#include "support/Model.h"

namespace {

using host::Colour;
using host::Storage;
using host::Value;
using model::Lines;
using model::Rectangle;
using model::StoredPicture;

constexpr int kRows = 3;  // rows of each band

struct Size {
  int width;
  int height;
  Storage storage;
};

void PrintTo(const Size& size, std::ostream* out) {
  *out << size.width << " x " << size.height;
}

class Sparse : public sparse::Pictures, public testing::WithParamInterface<Size> {
 protected:
  static int W() { return GetParam().width; }
  static int H() { return GetParam().height; }

  void SetUp() override {
    source_ = MakeSource(W(), H(), kRows, GetParam().storage);
    if (!source_.picture) GTEST_SKIP() << "a process of this ABI has not enough addresses";
  }

  // The given columns and rows of the source, both ends included, as a picture of its own.
  StoredPicture Cut(int x0, int y0, int x1, int y1) const {
    StoredPicture part(GetParam().storage, x1 - x0 + 1, y1 - y0 + 1);
    for (int y = y0; y <= y1; ++y) {
      for (int x = x0; x <= x1; ++x) part.Write(x - x0, y - y0, source_.pixels.At(x, y));
    }
    return part;
  }

  // Calls body with a rectangle in each band that ends at the right edge.
  template <class Body>
  void ForEachBand(Body body) const {
    for (const int y : Bands(W(), H(), kRows)) {
      SCOPED_TRACE(testing::Message() << "row " << y);
      body(std::max(W() - 300, 0), y);
    }
  }

  sparse::Source source_;
};

std::vector<Size> Sizes() {
  std::vector<Size> sizes;
  for (const auto& [width, height] :
       {std::pair(23171, 23171), std::pair(30000, 30000), std::pair(65535, 16385), std::pair(16385, 65535),
        std::pair(1000000, 1100), std::pair(1100, 1000000), std::pair(46341, 46341), std::pair(200000, 200000)}) {
    // A 32-bit process has addresses for little more than the first size.
    const std::int64_t bytes = std::int64_t{4} * width * height;
    if (sizeof(void*) == 8 || bytes < 2200000000) sizes.push_back({width, height, Storage::BitmapContext});
  }
  for (const auto& [width, height] : {std::pair(16384, 16385), std::pair(23171, 23171), std::pair(540, 1000000)}) {
    sizes.push_back({width, height, Storage::Buffer});  // pixels of a buffer lie below 4 GiB on every ABI
  }
  return sizes;
}

INSTANTIATE_TEST_SUITE_P(Sizes, Sparse, testing::ValuesIn(Sizes()), [](const auto& size) {
  return (size.param.storage == Storage::Buffer ? "Buffer" : "Context") + std::to_string(size.param.width) + "x" +
         std::to_string(size.param.height);
});

TEST_P(Sparse, Trim) {
  ForEachBand([&](int x, int y) {
    const host::Picture got = Make("Trim", {source_.picture, x, y - 1, 400, kRows + 2, Colour{0}, 0});
    CheckRows(got, model::Trimmed(source_.pixels, {x, y - 1, 400, kRows + 2}, 0), 1);
  });
}

TEST_P(Sparse, Averages) {
  ForEachBand([&](int x, int y) {
    const StoredPicture part = Cut(x, y, W() - 1, y + kRows - 1);
    const Rectangle all = {0, 0, part.width, part.height};
    const auto rgb = host_.Call("GetAverageRGB", {source_.picture, x, y, W(), kRows - 1, 0, 0, 0, 1}).arguments;
    const auto hsv = host_.Call("GetAverageHSV", {source_.picture, x, y, W(), kRows - 1, 0.0, 0.0, 0.0, 1}).arguments;
    const model::Outcome expectedRgb = model::AverageRgb(&part, all, 1);
    const model::Outcome expectedHsv = model::AverageHsv(&part, all, 1);
    for (std::size_t i = 0; i < 3; ++i) {
      EXPECT_EQ(rgb[5 + i].AsInteger(), (*expectedRgb.meanRgb)[i]);
      EXPECT_EQ(hsv[5 + i].AsDouble(), (*expectedHsv.meanHsv)[i]);
    }
  });
}

TEST_P(Sparse, AdjustRGBInPlace) {
  ForEachBand([&](int x, int y) {
    const StoredPicture before = Cut(0, y, W() - 1, y + kRows - 1);
    const StoredPicture want = *model::AdjustRgbInPlace(&before, {x, 1, W(), 0}, {100, -100, 50}, 0).changed;
    host_.Call("AdjustRGB_InPlace", {source_.picture, x, y + 1, W(), 0, 100, -100, 50, 0});
    EXPECT_EQ(LastError(), 0);
    for (int row = 0; row < kRows; ++row) {
      const std::vector<std::uint32_t> got = source_.picture.StoredRow(y + row);
      for (int column = 0; column < W(); ++column)
        ASSERT_EQ(got[static_cast<std::size_t>(column)], want.Word(column, row));
    }
  });
}

// The result is a small window in the middle of the picture. Line positions in 16.16 have up to 50
// bits.
TEST_P(Sparse, Shears) {
  for (const double shear : {0.0, 1.0, -1.0, 0.3, -0.7}) {
    SCOPED_TRACE(shear);
    const std::uint32_t frame = 0x20102030;
    const host::Picture rows = Make("ShearHorizontal", {source_.picture, 301, 200, shear, Colour{frame}, 0});
    CheckRows(rows, model::Sheared(source_.pixels, Lines::Rows, 301, 200, shear, frame), 1);
    const host::Picture columns = Make("ShearVertical", {source_.picture, 200, 301, shear, Colour{frame}, 0});
    CheckRows(columns, model::Sheared(source_.pixels, Lines::Columns, 200, 301, shear, frame), 1);
  }
}

// The host refuses a result of more than 1 GiB unless it is sparse.
class SparseSource : public sparse::Pictures {
 protected:
  static constexpr int kWidth = 32768;
  static constexpr int kHeight = 8193;

  void SetUp() override {
    host_.newPictures.layout.sparse = false;
    source_ = MakeSource(kWidth, kHeight, kRows).picture;
    if (!source_) GTEST_SKIP() << "not enough addresses";
  }

  host::Picture source_;
};

TEST_F(SparseSource, ResultsWithoutMemoryAreRefused) {
  const std::vector<std::pair<std::string, std::vector<Value>>> calls = {
      {"FlipRotate", {source_, true, true, 90, 0}},
      {"AdjustHSV", {source_, 0, 0, 1, 1, 0.0, 1.0, 1.0, false, 0}},
      {"AdjustRGB", {source_, 0, 0, 1, 1, 0, 0, 0, 0}},
      {"Trim", {source_, 0, 0, kWidth, kHeight, Colour{0}, 0}},
      {"MakeGradient", {kWidth, kHeight, Colour{0}, Colour{1}, 0}},
      {"MakeDoubleGradient", {kWidth, kHeight, Colour{0}, Colour{1}, Colour{2}, 0}},
      {"ShearHorizontal", {source_, kWidth, kHeight, 0.5, Colour{0}, 0}},
      {"Stretch", {source_, 65535, 65535, 0}},
  };
  for (const auto& [method, arguments] : calls) {
    EXPECT_TRUE(host_.Call(method, arguments).result.IsNil()) << method;
    const bool isSilent = method == "ShearHorizontal" || method == "Stretch";
    EXPECT_EQ(LastError(), isSilent ? 0 : 6) << method;
    EXPECT_EQ(host_.Leaks().size(), 1u) << method << ": the result is never given up";
    host_.DropLeaks();
  }
}

TEST_F(SparseSource, FreeRotationIsRefusedBeforeAnythingIsMade) {
  EXPECT_TRUE(host_.Call("FreeRotateByShear", {source_, 10.0, Colour{0}, 0}).result.IsNil());
  EXPECT_EQ(LastError(), 0);
  EXPECT_EQ(host_.Calls(host::Service::NewInstance), 0);
}

}  // namespace
