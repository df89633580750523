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

  // The rows of a gradient, 3 pixels wide, in that storage form.
  Words SimpleRows(Storage storage, int height, std::uint32_t colour1, std::uint32_t colour2) {
    host_.newPictures.storage = storage;
    return RowsOf(Make(3, height, colour1, colour2), height);
  }
  Words DoubleRows(Storage storage, int height, std::uint32_t colour1, std::uint32_t colour2, std::uint32_t colour3) {
    host_.newPictures.storage = storage;
    return RowsOf(MakeDouble(3, height, colour1, colour2, colour3), height);
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

 private:
  static Words RowsOf(const Called& called, int height) {
    EXPECT_EQ(called.code, 0);
    if (!called.result) {
      ADD_FAILURE() << "no result";
      return {};
    }
    EXPECT_EQ(called.result.Width(), 3);
    EXPECT_EQ(called.result.Height(), height);
    return Rows(called.result);
  }
};

// ------------------------------------------------------------------------------------- two colours

TEST_F(Gradient, OfHeightOneIsClearWhateverTheColours) {
  EXPECT_EQ(SimpleRows(Storage::BitmapContext, 1, kRed, kBlue), (Words{0}));
  EXPECT_EQ(SimpleRows(Storage::Buffer, 1, kRed, kBlue), (Words{kClear}));
}

TEST_F(Gradient, OfHeightTwoIsTheTwoColours) {
  // alpha 255 - 0x40 = 191; 128 x 191 / 255 = 95.9, 191 / 255 = 0.7; transparency
  // 127 - 191 / 2 = 32
  EXPECT_EQ(SimpleRows(Storage::BitmapContext, 2, 0x40FF8001, 0x00102030), (Words{0xBFBF5F00, 0xFF102030}));
  EXPECT_EQ(SimpleRows(Storage::Buffer, 2, 0x40FF8001, 0x00102030), (Words{0x20FF8001, 0x00102030}));
}

// Each half of 255 is 127.5. The lower colour's half is truncated to 127, and the sum, 254.5, to
// 254. The colour is then 127.
TEST_F(Gradient, HalfwayRowIsCutTwiceInEveryChannelAlphaIncluded) {
  EXPECT_EQ(SimpleRows(Storage::BitmapContext, 3, kRed, 0), (Words{0xFFFF0000, 0xFE7E0000, 0xFF000000}));
  EXPECT_EQ(SimpleRows(Storage::Buffer, 3, kRed, 0), (Words{0x00FF0000, 0x007F0000, 0x00000000}));
  EXPECT_EQ(SimpleRows(Storage::Buffer, 3, 0x00FFFFFF, 0x00FFFFFF), (Words{0x00FFFFFF, 0x00FEFEFE, 0x00FFFFFF}));
}

// In row 1, 29 x 0.1 = 2.9 is truncated to 2. With 1 x 0.9 the sum, 2.9, is truncated to 2. Without
// the first truncation it would be 3.8, which gives 3.
TEST_F(Gradient, LowerColoursPartIsCutBeforeTheSum) {
  EXPECT_EQ(SimpleRows(Storage::Buffer, 11, 1, 29), (Words{1, 2, 5, 8, 11, 14, 17, 20, 23, 26, 29}));
}

// 85 and 170 are exact thirds of 255, so nothing is truncated and alpha stays 255.
TEST_F(Gradient, ExactPartsAreNotCut) {
  EXPECT_EQ(SimpleRows(Storage::BitmapContext, 4, kRed, 0), (Words{0xFFFF0000, 0xFFAA0000, 0xFF550000, 0xFF000000}));
}

TEST_F(Gradient, EveryChannelGoesItsOwnWay) {
  // alpha 255 to 127: 222, 190, 158; red 200 to 0; green 100 throughout; blue 0 to 255: 63, 127,
  // 191
  EXPECT_EQ(SimpleRows(Storage::Buffer, 5, 0x00C86400, 0x800064FF),
            (Words{0x00C86400, 0x1096643F, 0x2064647F, 0x303264BF, 0x400064FF}));
  EXPECT_EQ(SimpleRows(Storage::BitmapContext, 5, 0x00C86400, 0x800064FF),
            (Words{0xFFC86400, 0xDE825736, 0xBE4A4A5E, 0x9E1E3D76, 0x7F00317F}));
}

TEST_F(Gradient, BetweenTransparentColoursIsClear) {
  EXPECT_EQ(SimpleRows(Storage::BitmapContext, 3, 0xFF102030, 0xFF304050), (Words{0, 0, 0}));
  EXPECT_EQ(SimpleRows(Storage::Buffer, 3, 0xFF102030, 0xFF304050), (Words{0x7F102030, 0x7F203040, 0x7F304050}));
}

TEST_F(Gradient, RowsAreOneColourAtAnyWidth) {
  for (const Storage storage : {Storage::BitmapContext, Storage::Buffer}) {
    host_.newPictures.storage = storage;
    for (const int width : {1, 2, 15, 511, 512, 513, 1100}) {
      const Called called = Make(width, 2, 0x00010203, 0x00FDFEFF);
      ASSERT_TRUE(called.result) << width;
      EXPECT_EQ(called.result.Width(), width);
      const std::uint32_t opaque = storage == Storage::Buffer ? 0 : 0xFF000000;
      EXPECT_EQ(Rows(called.result), (Words{opaque | 0x010203, opaque | 0xFDFEFF})) << width;
    }
  }
}

// ----------------------------------------------------------------------------------- three colours

TEST_F(Gradient, DoubleOfHeightOneOrTwoIsClear) {
  EXPECT_EQ(DoubleRows(Storage::BitmapContext, 1, kRed, kBlue, 0), (Words{0}));
  EXPECT_EQ(DoubleRows(Storage::Buffer, 1, kRed, kBlue, 0), (Words{kClear}));
  EXPECT_EQ(DoubleRows(Storage::BitmapContext, 2, kRed, kBlue, 0), (Words{0, 0}));
  EXPECT_EQ(DoubleRows(Storage::Buffer, 2, kRed, kBlue, 0), (Words{kClear, kClear}));
}

TEST_F(Gradient, DoubleOfHeightThreeHasAClearRowAndTheLastTwoColours) {
  EXPECT_EQ(DoubleRows(Storage::BitmapContext, 3, kRed, kBlue, 0x123456), (Words{0, 0xFF0000FF, 0xFF123456}));
  EXPECT_EQ(DoubleRows(Storage::Buffer, 3, kRed, kBlue, 0x123456), (Words{kClear, 0x000000FF, 0x00123456}));
}

TEST_F(Gradient, DoubleOfHeightFourIsTheColoursAlone) {
  EXPECT_EQ(DoubleRows(Storage::Buffer, 4, kRed, kBlue, 0x123456), (Words{kRed, kBlue, kBlue, 0x123456}));
}

TEST_F(Gradient, DoubleOfHeightFiveHasItsLongerSectionBelow) {
  EXPECT_EQ(DoubleRows(Storage::Buffer, 5, 0x123456, kRed, kBlue),
            (Words{0x00123456, 0x00FF0000, 0x00FF0000, 0x007F007F, 0x000000FF}));
  EXPECT_EQ(DoubleRows(Storage::BitmapContext, 5, 0x123456, kRed, kBlue),
            (Words{0xFF123456, 0xFFFF0000, 0xFFFF0000, 0xFE7E007E, 0xFF0000FF}));
}

TEST_F(Gradient, DoubleBlendsBothSections) {
  EXPECT_EQ(DoubleRows(Storage::Buffer, 6, 0, kRed, kBlue),
            (Words{0x00000000, 0x007F0000, 0x00FF0000, 0x00FF0000, 0x007F007F, 0x000000FF}));
  EXPECT_EQ(DoubleRows(Storage::BitmapContext, 7, 0xFF000000, kRed, 0),
            (Words{0, 0x7F3F0000, 0xFFFF0000, 0xFFFF0000, 0xFFAA0000, 0xFF550000, 0xFF000000}));
}

// -------------------------------------------------------------------------------------------- size

// The host may make a picture of another size than requested.
TEST_F(Gradient, FillsThePictureThatThereIs) {
  host_.newPictures.storage = Storage::Buffer;
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
    const Called simple = Make(c.width, c.height, kRed, kBlue);
    EXPECT_EQ(simple.code, c.code) << c.width << " x " << c.height;
    EXPECT_TRUE(simple.result.IsNil());
    EXPECT_EQ(host_.Calls(Service::NewInstance), 0);
    const Called twofold = MakeDouble(c.width, c.height, kRed, kBlue, 0);
    EXPECT_EQ(twofold.code, c.code) << c.width << " x " << c.height;
    EXPECT_TRUE(twofold.result.IsNil());
    EXPECT_EQ(host_.Calls(Service::NewInstance), 0);
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

// Before each row the count is tested; after the row it grows by the row's pixels. So these count
// from the next row on.
TEST_F(Gradient, YieldsAfterARowOnceTheEarlierOnesReachThePace) {
  EXPECT_EQ(RowsDoneAtYields([&] { return Make(10, 4, kRed, kBlue, 1); }), (std::vector<int>{2, 3, 4}));
  EXPECT_EQ(RowsDoneAtYields([&] { return Make(10, 4, kRed, kBlue, 10); }), (std::vector<int>{2, 3, 4}));
  EXPECT_EQ(RowsDoneAtYields([&] { return Make(10, 8, kRed, kBlue, 11); }), (std::vector<int>{3, 5, 7}));
  EXPECT_EQ(RowsDoneAtYields([&] { return Make(10, 8, kRed, kBlue, 25); }), (std::vector<int>{4, 7}));
  EXPECT_EQ(RowsDoneAtYields([&] { return Make(10, 3, kRed, kBlue, 21); }), (std::vector<int>{}));
}

TEST_F(Gradient, YieldsOfTheDoubleGradientCountAcrossBothSections) {
  EXPECT_EQ(RowsDoneAtYields([&] { return MakeDouble(10, 5, kRed, kBlue, 0, 1); }), (std::vector<int>{2, 3, 4, 5}));
  EXPECT_EQ(RowsDoneAtYields([&] { return MakeDouble(10, 5, kRed, kBlue, 0, 25); }), (std::vector<int>{4}));
  EXPECT_EQ(RowsDoneAtYields([&] { return MakeDouble(10, 9, kRed, kBlue, 0, 30); }), (std::vector<int>{4, 7}));
}

TEST_F(Gradient, NeverYieldsAtAPaceOfZeroOrLess) {
  for (const int yield : {0, -1, INT32_MIN}) {
    EXPECT_EQ(Make(10, 50, kRed, kBlue, yield).yields, 0) << yield;
    EXPECT_EQ(MakeDouble(10, 50, kRed, kBlue, 0, yield).yields, 0) << yield;
  }
}

}  // namespace
