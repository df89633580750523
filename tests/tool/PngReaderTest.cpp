// PNG files of every kind, compared with an independent decoder, and damaged files.
#include "tool/PngReader.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <functional>
#include <random>

#include "Files.h"
#include "Process.h"
#include "tool/Errors.h"
#include "tool/PictureFile.h"

namespace tool_test {
namespace {

Bytes Deflated(const Bytes& data) {
  uLongf size = compressBound(static_cast<uLong>(data.size()));
  Bytes packed(size);
  EXPECT_EQ(compress(packed.data(), &size, data.data(), static_cast<uLong>(data.size())), Z_OK);
  packed.resize(size);
  return packed;
}

std::size_t ChannelsOf(unsigned kind) {
  return kind == 2 ? 3 : kind == 4 ? 2 : kind == 6 ? 4 : 1;
}

// Rows of noise, each with a filter.
Bytes NoiseRows(int width, int height, unsigned depth, unsigned kind, bool interlaced, std::mt19937& random) {
  Bytes rows;
  const auto add = [&](int columns, int lines) {
    const std::size_t size = (static_cast<std::size_t>(columns) * ChannelsOf(kind) * depth + 7) / 8;
    for (int y = 0; columns > 0 && y < lines; ++y) {
      rows.push_back(static_cast<unsigned char>(random() % 5));
      for (std::size_t i = 0; i < size; ++i) rows.push_back(static_cast<unsigned char>(random()));
    }
  };
  if (!interlaced) {
    add(width, height);
    return rows;
  }
  const int left[] = {0, 4, 0, 2, 0, 1, 0}, top[] = {0, 0, 4, 0, 2, 0, 1};
  const int stepX[] = {8, 8, 4, 4, 2, 2, 1}, stepY[] = {8, 8, 8, 4, 4, 2, 2};
  for (int i = 0; i < 7; ++i) {
    add((width - left[i] + stepX[i] - 1) / stepX[i], (height - top[i] + stepY[i] - 1) / stepY[i]);
  }
  return rows;
}

const std::function<void(int, int)> kNoTick = [](int, int) {};

struct Kind {
  unsigned depth, kind;
};
const Kind kKinds[] = {{1, 0}, {2, 0}, {4, 0}, {8, 0}, {16, 0}, {8, 2}, {16, 2}, {1, 3},
                       {2, 3}, {4, 3}, {8, 3}, {8, 4}, {16, 4}, {8, 6}, {16, 6}};

TEST(PngReader, EveryKindOfPixelIsWhatAnotherDecoderMakesOfIt) {
  std::mt19937 random(5);
  for (const Kind& kind : kKinds) {
    for (const bool interlaced : {false, true}) {
      for (const bool transparency : {false, true}) {
        for (const int size : {1, 2, 3, 5, 8, 17, 33}) {
          const int width = size, height = 1 + size / 2;
          PngMaker maker;
          maker.Header(width, height, kind.depth, kind.kind, interlaced);
          Bytes rows = NoiseRows(width, height, kind.depth, kind.kind, interlaced, random);
          if (kind.kind == 3) {
            Bytes palette;
            for (unsigned i = 0; i < 3U << kind.depth; ++i) palette.push_back(static_cast<unsigned char>(random()));
            maker.Chunk("PLTE", palette);
          }
          if (transparency && kind.kind == 3) maker.Chunk("tRNS", {7, 200});
          // The colour of the first pixel, which no filter changes.
          if (transparency && kind.kind < 3) {
            rows[0] = 0;
            Bytes clear(2 * ChannelsOf(kind.kind));
            for (std::size_t i = 0; i < clear.size(); ++i) {
              if (kind.depth == 16) clear[i] = rows[1 + i];
              if (kind.depth <= 8 && i % 2 == 1)
                clear[i] = static_cast<unsigned char>(rows[1 + i / 2] >> (8 - kind.depth));
            }
            maker.Chunk("tRNS", clear);
          }
          if (transparency && kind.kind > 3) continue;
          const Bytes packed = Deflated(rows);
          const auto middle = packed.begin() + static_cast<std::ptrdiff_t>(packed.size() / 2);
          maker.Chunk("IDAT", Bytes(packed.begin(), middle)).Chunk("tEXt", {'a', 0, 'b'});
          maker.Chunk("IDAT", {}).Chunk("IDAT", Bytes(middle, packed.end())).Chunk("IEND", {});
          const tool::Image image = tool::DecodePng("x", maker.bytes, kNoTick);
          int channels = 0;
          const tool::Image other = Decoded(maker.bytes, &channels);
          ASSERT_EQ(image.width, width);
          ASSERT_EQ(image.height, height);
          ASSERT_EQ(image.pixels, other.pixels) << kind.depth << " bits, kind " << kind.kind << ", " << width << " x "
                                                << height << (interlaced ? ", interlaced" : "");
          if (transparency && kind.kind < 3) {
            EXPECT_EQ(image.pixels[0] >> 24, 0u);
          }
        }
      }
    }
  }
}

TEST(PngReader, TicksOnceARow) {
  int calls = 0;
  const tool::Image image = OpaqueImage(5, 9);
  tool::DecodePng("x", Png(image), [&](int row, int rows) {
    EXPECT_EQ(row, calls++);
    EXPECT_EQ(rows, 9);
  });
  EXPECT_EQ(calls, 9);
}

class PngDamageTest : public FileTest {
 protected:
  // Why the file is refused; "fine" if it can be read.
  static std::string Reason(const Bytes& png) {
    try {
      tool::DecodePng("x.png", png, kNoTick);
      return "fine";
    } catch (const tool::Failure& failure) {
      return std::string(failure.what()).substr(std::string("x.png: is damaged: ").size());
    }
  }

  // Grey, 3 x 2.
  static PngMaker Small(unsigned depth = 8, unsigned kind = 0) { return PngMaker().Header(3, 2, depth, kind, false); }
  const Bytes rows_ = {0, 1, 2, 3, 0, 4, 5, 6};
};

TEST_F(PngDamageTest, AWrongChecksumOfAPartThatIsUsed) {
  PngMaker maker = Small(8, 3);
  maker.Chunk("PLTE", Bytes(30, 9)).Chunk("tRNS", {1, 2}).Chunk("tEXt", {'a', 0, 'b'});
  maker.Chunk("IDAT", Deflated(rows_)).Chunk("IEND", {});
  ASSERT_EQ(Reason(maker.bytes), "fine");
  const char* types[] = {"IHDR", "PLTE", "tRNS", "tEXt", "IDAT", "IEND"};
  for (std::size_t i = 0; i < maker.starts.size(); ++i) {
    Bytes damaged = maker.bytes;
    const std::size_t end = i + 1 < maker.starts.size() ? maker.starts[i + 1] - 4 : damaged.size();
    damaged[end - 1] ^= 1;
    const bool used = std::string(types[i]) != "tEXt";
    EXPECT_EQ(Reason(damaged), used ? std::string("the checksum of its part ") + types[i] + " is wrong" : "fine");
  }
}

TEST_F(PngDamageTest, AWrongChecksumOfThePixels) {
  Bytes packed = Deflated(rows_);
  packed.back() ^= 1;
  EXPECT_EQ(Reason(Small().Chunk("IDAT", packed).Chunk("IEND", {}).bytes), "the checksum of its pixels is wrong");
}

TEST_F(PngDamageTest, PixelsThatEndTooEarly) {
  const Bytes packed = Deflated(rows_);
  for (std::size_t size = 0; size < packed.size(); ++size) {
    const Bytes part(packed.begin(), packed.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_EQ(Reason(Small().Chunk("IDAT", part).Chunk("IEND", {}).bytes), "its pixels end too early") << size;
  }
  const Bytes fewer(rows_.begin(), rows_.end() - 1);
  EXPECT_EQ(Reason(Small().Chunk("IDAT", Deflated(fewer)).Chunk("IEND", {}).bytes), "its pixels end too early");
  EXPECT_EQ(Reason(Small().Chunk("IEND", {}).bytes), "it has no pixels");
}

TEST_F(PngDamageTest, APartOfTheFile) {
  const Bytes whole = Small().Chunk("IDAT", Deflated(rows_)).Chunk("IEND", {}).bytes;
  for (std::size_t size = 8; size < whole.size(); ++size) {
    const Bytes part(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_EQ(Reason(part), size < 33 ? "it ends in its header" : "it ends too early") << size;
  }
}

TEST_F(PngDamageTest, MoreDataThanPixels) {
  Bytes rows = rows_;
  rows.resize(rows.size() + 1000);
  EXPECT_EQ(Reason(Small().Chunk("IDAT", Deflated(rows)).Chunk("IEND", {}).bytes), "fine");
  rows.resize(rows.size() + (1 << 20));
  EXPECT_EQ(Reason(Small().Chunk("IDAT", Deflated(rows)).Chunk("IEND", {}).bytes),
            "it has more data than its pixels need");
}

TEST_F(PngDamageTest, DataThatMeanNothing) {
  const Bytes packed = Deflated(rows_);
  const auto reason = [&](PngMaker maker) { return Reason(maker.Chunk("IDAT", packed).Chunk("IEND", {}).bytes); };
  EXPECT_EQ(reason(Small().Chunk("IDAT", {1, 2, 3})), "its pixels cannot be unpacked");
  EXPECT_EQ(Reason(Small().Chunk("IDAT", Deflated({5, 1, 2, 3, 0, 4, 5, 6})).Chunk("IEND", {}).bytes),
            "its pixels are of an unknown kind");
  for (const Kind& kind : {Kind{3, 0}, {0, 0}, {16, 3}, {4, 2}, {8, 1}, {8, 5}, {8, 7}, {4, 6}, {32, 0}}) {
    EXPECT_EQ(reason(Small(kind.depth, kind.kind)), "its pixels are of an unknown kind");
  }
  EXPECT_EQ(reason(Small(8, 3)), "it has no palette");
  EXPECT_EQ(reason(Small(8, 3).Chunk("PLTE", {1, 2})), "its palette has a wrong size");
  EXPECT_EQ(reason(Small(8, 3).Chunk("PLTE", {})), "its palette has a wrong size");
  EXPECT_EQ(reason(Small(8, 3).Chunk("PLTE", Bytes(771, 1))), "its palette has a wrong size");
  EXPECT_EQ(reason(Small(8, 3).Chunk("PLTE", {1, 2, 3}).Chunk("tRNS", {1, 2})),
            "its transparency does not suit its colours");
  EXPECT_EQ(reason(Small(8, 0).Chunk("tRNS", {1})), "its transparency does not suit its colours");
  EXPECT_EQ(reason(Small(8, 6).Chunk("tRNS", {1, 2})), "its transparency does not suit its colours");
  EXPECT_EQ(reason(Small().Chunk("CgBI", {})), "it has a part CgBI, which is unknown");
  EXPECT_EQ(reason(PngMaker().Chunk("tEXt", Bytes(20, 1))), "it does not begin with a header");
  PngMaker after = Small(8, 3);
  after.Chunk("PLTE", {1, 2, 3}).Chunk("IDAT", packed).Chunk("tRNS", {1}).Chunk("IEND", {});
  EXPECT_EQ(Reason(after.bytes), "it has colours after its pixels");
}

TEST_F(PngDamageTest, AnyBitOfWhatIsUsed) {
  const Bytes whole = Small().Chunk("IDAT", Deflated(rows_)).Chunk("IEND", {}).bytes;
  for (std::size_t bit = 8 * 8; bit < 8 * whole.size(); ++bit) {
    Bytes damaged = whole;
    damaged[bit / 8] ^= static_cast<unsigned char>(1 << bit % 8);
    EXPECT_NE(Reason(damaged), "fine") << "bit " << bit;
  }
}

TEST_F(PngDamageTest, IsToldByLmxAndNothingIsWritten) {
  Bytes damaged = Png(SmallImage());
  damaged[damaged.size() - 13] ^= 1;
  WriteFile(Path("in.png"), damaged);
  EXPECT_EQ(Lmx({"FlipRotate", Path("in.png"), "-o", Path("out.png")}),
            (Ended{1, "", "lmx: " + Path("in.png") + ": is damaged: the checksum of its part IDAT is wrong\n"}));
  EXPECT_EQ(Names(), std::vector<std::string>{"in.png"});
}

}  // namespace
}  // namespace tool_test
