// LMX_MakeGradient and LMX_MakeDoubleGradient: rows worked out by hand, in both storage forms.
#include <vector>

#include "support/PluginTest.h"

namespace {

using host::Colour;
using host::Picture;
using host::Service;
using host::Storage;
using support::Called;
using Words = std::vector<std::uint32_t>;

constexpr Storage kContext = Storage::BitmapContext;
constexpr Storage kBuffer = Storage::Buffer;
constexpr std::uint32_t kRed = 0x00FF0000;
constexpr std::uint32_t kBlue = 0x000000FF;
constexpr std::uint32_t kClear = 0x7F000000;  // in a buffer

class Gradient : public support::PluginTest {
 protected:
  Called Make(int width, int height, std::uint32_t colour1, std::uint32_t colour2, int yield = 0) {
    return Run("LMX_MakeGradient", {width, height, Colour{colour1}, Colour{colour2}, yield});
  }
  Called MakeDouble(int width, int height, std::uint32_t colour1, std::uint32_t colour2, std::uint32_t colour3,
                    int yield = 0) {
    return Run("LMX_MakeDoubleGradient", {width, height, Colour{colour1}, Colour{colour2}, Colour{colour3}, yield});
  }

  // The stored word of every row. A row with several words is a failure.
  static Words Rows(const Picture& picture) {
    Words rows;
    for (int y = 0; y < picture.Height(); ++y) {
      rows.push_back(picture.Stored(0, y));
      for (int x = 1; x < picture.Width(); ++x) EXPECT_EQ(picture.Stored(x, y), rows.back()) << x << ", " << y;
    }
    return rows;
  }

  // A gradient of two or three colours, 3 pixels wide, and the stored word of every row.
  void Check(Storage storage, const Words& colours, const Words& rows) {
    host_.newPictures.storage = storage;
    const int height = static_cast<int>(rows.size());
    SCOPED_TRACE(testing::Message() << "of " << colours.size() << " colours, height " << height);
    const Called called = colours.size() == 2 ? Make(3, height, colours[0], colours[1])
                                              : MakeDouble(3, height, colours[0], colours[1], colours[2]);
    EXPECT_EQ(called.code, 0);
    ASSERT_TRUE(called.result);
    EXPECT_EQ(called.result.Width(), 3);
    EXPECT_EQ(called.result.Height(), height);
    EXPECT_EQ(Rows(called.result), rows);
  }

  // The number of written rows at each yield. It is a failure if they are not the first ones.
  std::vector<int> RowsDoneAtYields(const std::function<Called()>& make) {
    std::vector<int> done;
    host_.onYield = [&] {
      const auto pictures = support::LiveNewPictures(host_);
      ASSERT_EQ(pictures.size(), 1u);
      const Words rows = Rows(pictures[0].second);
      int written = 0;
      while (written < static_cast<int>(rows.size()) && rows[static_cast<std::size_t>(written)] != host::kUnwritten) {
        ++written;
      }
      for (std::size_t y = static_cast<std::size_t>(written); y < rows.size(); ++y)
        EXPECT_EQ(rows[y], host::kUnwritten);
      done.push_back(written);
    };
    const Called called = make();
    host_.onYield = nullptr;
    EXPECT_EQ(called.code, 0);
    EXPECT_EQ(called.yields, static_cast<int>(done.size()));
    return done;
  }
};

struct Case {
  Storage storage;
  Words colours;
  Words rows;
};

TEST_F(Gradient, RowsByHand) {
  const Case cases[] = {
      // Of height one: clear whatever the colours.
      {kContext, {kRed, kBlue}, {0}},
      {kBuffer, {kRed, kBlue}, {kClear}},
      // Of height two: the colours. alpha 255 - 0x40 = 191; 128 x 191 / 255 = 95.9,
      // 191 / 255 = 0.7; transparency 127 - 191 / 2 = 32
      {kContext, {0x40FF8001, 0x00102030}, {0xBFBF5F00, 0xFF102030}},
      {kBuffer, {0x40FF8001, 0x00102030}, {0x20FF8001, 0x00102030}},
      // The row halfway is cut twice in every channel, alpha included: each half of 255 is 127.5,
      // the lower colour's is cut to 127 and the sum, 254.5, to 254. The colour is then 127.
      {kContext, {kRed, 0}, {0xFFFF0000, 0xFE7E0000, 0xFF000000}},
      {kBuffer, {kRed, 0}, {0x00FF0000, 0x007F0000, 0x00000000}},
      {kBuffer, {0x00FFFFFF, 0x00FFFFFF}, {0x00FFFFFF, 0x00FEFEFE, 0x00FFFFFF}},
      // The lower colour's part is cut before the sum: in row 1, 29 x 0.1 = 2.9 is cut to 2, and
      // with 1 x 0.9 the sum is cut to 2, where 3.8 would give 3.
      {kBuffer, {1, 29}, {1, 2, 5, 8, 11, 14, 17, 20, 23, 26, 29}},
      // 85 and 170 are exact thirds of 255, so nothing is cut and alpha stays 255.
      {kContext, {kRed, 0}, {0xFFFF0000, 0xFFAA0000, 0xFF550000, 0xFF000000}},
      // Every channel goes its own way: alpha 255 to 127: 222, 190, 158; red 200 to 0; green 100
      // throughout; blue 0 to 255: 63, 127, 191
      {kBuffer, {0x00C86400, 0x800064FF}, {0x00C86400, 0x1096643F, 0x2064647F, 0x303264BF, 0x400064FF}},
      {kContext, {0x00C86400, 0x800064FF}, {0xFFC86400, 0xDE825736, 0xBE4A4A5E, 0x9E1E3D76, 0x7F00317F}},
      // Between transparent colours all is clear.
      {kContext, {0xFF102030, 0xFF304050}, {0, 0, 0}},
      {kBuffer, {0xFF102030, 0xFF304050}, {0x7F102030, 0x7F203040, 0x7F304050}},
  };
  for (const Case& c : cases) Check(c.storage, c.colours, c.rows);
}

TEST_F(Gradient, RowsOfTheDoubleOneByHand) {
  const Case cases[] = {
      // Of height one or two: clear.
      {kContext, {kRed, kBlue, 0}, {0}},
      {kBuffer, {kRed, kBlue, 0}, {kClear}},
      {kContext, {kRed, kBlue, 0}, {0, 0}},
      {kBuffer, {kRed, kBlue, 0}, {kClear, kClear}},
      // Of height three: a clear row and the last two colours.
      {kContext, {kRed, kBlue, 0x123456}, {0, 0xFF0000FF, 0xFF123456}},
      {kBuffer, {kRed, kBlue, 0x123456}, {kClear, 0x000000FF, 0x00123456}},
      // Of height four: the colours alone. Of height five: the longer section is the lower one.
      {kBuffer, {kRed, kBlue, 0x123456}, {kRed, kBlue, kBlue, 0x123456}},
      {kBuffer, {0x123456, kRed, kBlue}, {0x00123456, 0x00FF0000, 0x00FF0000, 0x007F007F, 0x000000FF}},
      {kContext, {0x123456, kRed, kBlue}, {0xFF123456, 0xFFFF0000, 0xFFFF0000, 0xFE7E007E, 0xFF0000FF}},
      // Both sections blend.
      {kBuffer, {0, kRed, kBlue}, {0x00000000, 0x007F0000, 0x00FF0000, 0x00FF0000, 0x007F007F, 0x000000FF}},
      {kContext, {0xFF000000, kRed, 0}, {0, 0x7F3F0000, 0xFFFF0000, 0xFFFF0000, 0xFFAA0000, 0xFF550000, 0xFF000000}},
  };
  for (const Case& c : cases) Check(c.storage, c.colours, c.rows);
}

TEST_F(Gradient, RowsAreOneColourAtAnyWidth) {
  for (const Storage storage : {kContext, kBuffer}) {
    host_.newPictures.storage = storage;
    for (const int width : {1, 2, 15, 511, 512, 513, 1100}) {
      const Called called = Make(width, 2, 0x00010203, 0x00FDFEFF);
      ASSERT_TRUE(called.result) << width;
      EXPECT_EQ(called.result.Width(), width);
      const std::uint32_t opaque = storage == kBuffer ? 0 : 0xFF000000;
      EXPECT_EQ(Rows(called.result), (Words{opaque | 0x010203, opaque | 0xFDFEFF})) << width;
    }
  }
}

// -------------------------------------------------------------------------------------------- size

// The host may make a picture of another size than requested.
TEST_F(Gradient, FillsThePictureThatThereIs) {
  host_.newPictures.storage = kBuffer;
  host_.newPictures.change = [](int, host::PictureShape& shape) { shape.width = 5, shape.height = 2; };
  EXPECT_EQ(Rows(Make(3, 4, kRed, kBlue).result), (Words{kRed, kBlue}));
  host_.newPictures.change = [](int, host::PictureShape& shape) { shape.width = 5, shape.height = 4; };
  EXPECT_EQ(Rows(MakeDouble(9, 1, 0, kRed, kBlue).result), (Words{0, kRed, kRed, kBlue}));
}

TEST_F(Gradient, PictureOfAnotherDepthStaysAsItIs) {
  host_.newPictures.change = [](int, host::PictureShape& shape) { shape.defects.bitsPerPixel = 16; };
  const Called called = Make(3, 4, kRed, kBlue);
  EXPECT_EQ(called.code, 0);
  ASSERT_TRUE(called.result);
  EXPECT_TRUE(called.result.TakeSnapshot() == Picture(called.result.Shape()).TakeSnapshot());
}

// ------------------------------------------------------------------------------------------ errors

TEST_F(Gradient, HeightIsTestedBeforeWidth) {
  struct {
    int width, height, code;
  } const cases[] = {{0, 0, 35}, {-1, -1, 35}, {3, 0, 35}, {3, -7, 35}, {0, 3, 34}, {-5, 3, 34}, {0, INT32_MIN, 35}};
  for (const auto& c : cases) {
    for (const bool twofold : {false, true}) {
      const Called called =
          twofold ? MakeDouble(c.width, c.height, kRed, kBlue, 0) : Make(c.width, c.height, kRed, kBlue);
      EXPECT_EQ(called.code, c.code) << c.width << " x " << c.height;
      EXPECT_TRUE(called.result.IsNil());
      EXPECT_EQ(host_.Calls(Service::NewInstance), 0);
    }
  }
}

TEST_F(Gradient, SizeIsTestedBeforeThePictureIsMade) {
  host_.newPictures.change = [](int, host::PictureShape& shape) { shape.defects.pictureType = 9; };
  EXPECT_EQ(Make(3, 0, kRed, kBlue).code, 35);
  EXPECT_EQ(MakeDouble(0, 3, kRed, kBlue, 0).code, 34);
}

TEST_F(Gradient, WithoutAPictureTheCodeIsSix) {
  for (const bool twofold : {false, true}) {
    for (const Service service : {Service::NewInstance, Service::LoadObjectMethod}) {
      host_.ResetCounts();
      host_.FailAt(service, 1);
      // An object whose constructor cannot be found is abandoned.
      const int lost = service == Service::LoadObjectMethod ? 1 : 0;
      const Called called = twofold ? Run("MakeDoubleGradient", {3, 4, Colour{kRed}, Colour{kBlue}, Colour{0}, 0}, lost)
                                    : Run("MakeGradient", {3, 4, Colour{kRed}, Colour{kBlue}, 0}, lost);
      EXPECT_EQ(called.code, 6) << host::EntryName(service);
      EXPECT_TRUE(called.result.IsNil());
      host_.ClearFaults();
    }
  }
}

TEST_F(Gradient, SuccessClearsAnEarlierCode) {
  EXPECT_EQ(Make(3, 0, kRed, kBlue).code, 35);
  EXPECT_EQ(Make(3, 2, kRed, kBlue).code, 0);
  EXPECT_EQ(MakeDouble(0, 2, kRed, kBlue, 0).code, 34);
  EXPECT_EQ(MakeDouble(3, 2, kRed, kBlue, 0).code, 0);
}

// ------------------------------------------------------------------------------------------ yields

// A row is made, then the count is tested, and then it grows by the row's pixels. So a row counts
// from the next row on.
TEST_F(Gradient, YieldsAfterARowOnceTheEarlierOnesReachThePace) {
  const struct {
    int height, yield;
    std::vector<int> rowsDone;
  } kSimple[] = {{4, 1, {2, 3, 4}}, {4, 10, {2, 3, 4}}, {8, 11, {3, 5, 7}}, {8, 25, {4, 7}}, {3, 21, {}}},
    kDouble[] = {{5, 1, {2, 3, 4, 5}}, {5, 25, {4}}, {9, 30, {4, 7}}};  // counted across both sections
  for (const auto& c : kSimple) {
    EXPECT_EQ(RowsDoneAtYields([&] { return Make(10, c.height, kRed, kBlue, c.yield); }), c.rowsDone) << c.yield;
  }
  for (const auto& c : kDouble) {
    EXPECT_EQ(RowsDoneAtYields([&] { return MakeDouble(10, c.height, kRed, kBlue, 0, c.yield); }), c.rowsDone)
        << c.yield;
  }
}

TEST_F(Gradient, NeverYieldsAtAPaceOfZeroOrLess) {
  for (const int yield : {0, -1, INT32_MIN}) {
    EXPECT_EQ(Make(10, 50, kRed, kBlue, yield).yields, 0) << yield;
    EXPECT_EQ(MakeDouble(10, 50, kRed, kBlue, 0, yield).yields, 0) << yield;
  }
}

}  // namespace
