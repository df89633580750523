// `lmx compare`: whether pictures are equal, how much they differ, and where.
#include "tool/Compare.h"

#include <gtest/gtest.h>

#include "Files.h"
#include "Process.h"

namespace tool_test {
namespace {

class CompareTest : public FileTest {
 protected:
  static tool::Image Changed() {
    tool::Image image = OpaqueImage(4, 3);
    image.pixels[5] ^= 0x00000001;   // blue by 1, at (1, 1)
    image.pixels[6] ^= 0x00800000;   // red by 128, at (2, 1)
    image.pixels[11] ^= 0x01800000;  // the same at (3, 2), and alpha by 1
    return image;
  }

  const std::string a_ = Given("a.png", OpaqueImage(4, 3)), b_ = Given("b.png", Changed());
};

TEST_F(CompareTest, EqualPictures) {
  const std::string other = Given("other.png", OpaqueImage(4, 3));
  Ended ended = Lmx({"compare", a_, other, "-o", Path("out.png")});
  EXPECT_EQ(ended.status, 0) << ended.error;
  EXPECT_EQ(ended.out, "the pictures are equal, 4 x 3 pixels\n");
  EXPECT_EQ(Result("out.png").pixels, std::vector<std::uint32_t>(12, 0xFF000000));
  ended = Lmx({"compare", a_, other, "--json"});
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.out, R"({"equal":true,"widths":[4,4],"heights":[3,3],"pixels":0,"red":{"largest":0},)"
                       R"("green":{"largest":0},"blue":{"largest":0},"alpha":{"largest":0}})"
                       "\n");
}

TEST_F(CompareTest, DifferencesAreCountedAndFound) {
  Ended ended = Lmx({"compare", a_, b_});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.error, "");
  EXPECT_EQ(ended.out,
            "3 of 12 pixels differ\nred by up to 128, at column 2, row 1\nblue by up to 1, at column 1, row 1\n"
            "alpha by up to 1, at column 3, row 2\n");
  ended = Lmx({"compare", b_, a_, "--json"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.out, R"({"equal":false,"widths":[4,4],"heights":[3,3],"pixels":3,)"
                       R"("red":{"largest":128,"x":2,"y":1},"green":{"largest":0},)"
                       R"("blue":{"largest":1,"x":1,"y":1},"alpha":{"largest":1,"x":3,"y":2}})"
                       "\n");
}

TEST_F(CompareTest, ThePictureOfTheDifferenceShowsTheLargestInFull) {
  EXPECT_EQ(Lmx({"compare", a_, b_, "-o", Path("out.png")}).status, 1);
  std::vector<std::uint32_t> expected(12, 0xFF000000);
  expected[5] = 0xFF000001;
  expected[6] = 0xFFFF0000;
  expected[11] = 0xFFFF0101;
  EXPECT_EQ(Result("out.png").pixels, expected);
}

TEST_F(CompareTest, ToleranceIsForEveryChannel) {
  Ended ended = Lmx({"compare", a_, b_, "--tolerance=127"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_PRED2(StartsWith, ended.out, "2 of 12 pixels differ by more than 127\nred by up to 128");
  ended = Lmx({"compare", a_, b_, "--tolerance", "128"});
  EXPECT_EQ(ended.status, 0);
  EXPECT_PRED2(StartsWith, ended.out, "0 of 12 pixels differ by more than 128: the pictures count as equal\n");
  EXPECT_PRED2(Contains, Lmx({"compare", a_, b_, "--tolerance=128", "--json"}).out, "{\"equal\":true,");
}

TEST_F(CompareTest, ColoursOfClearPixelsDoNotCount) {
  const tool::Image a{2, 1, {0x00FF0000, 0x01FF0000}}, b{2, 1, {0x000000FF, 0x00FF0000}};
  const tool::Difference difference = tool::Compare(a, b, 0);
  EXPECT_EQ(difference.pixels, 1);
  EXPECT_EQ(difference.channels[0].amount, 0);
  EXPECT_EQ(difference.channels[3].amount, 1);
  EXPECT_EQ(difference.channels[3].x, 1);
}

TEST_F(CompareTest, SizesThatDiffer) {
  const std::string wide = Given("wide.png", OpaqueImage(5, 3));
  Ended ended = Lmx({"compare", a_, wide});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.out, "the sizes differ: 4 x 3 and 5 x 3 pixels\n");
  EXPECT_EQ(Lmx({"compare", a_, wide, "--json"}).out,
            "{\"equal\":false,\"widths\":[4,5],\"heights\":[3,3],\"pixels\":null}\n");
  ended = Lmx({"compare", a_, wide, "-o", Path("out.png")});
  EXPECT_EQ(ended.status, 2);
  EXPECT_PRED2(Contains, ended.error, "out.png");
}

// Status 1 would mean that the pictures differ.
TEST_F(CompareTest, TroubleIsStatusTwo) {
  const std::vector<std::vector<std::string>> calls = {
      {},
      {a_},
      {a_, b_, a_},
      {a_, b_, "x=1"},
      {a_, b_, "+", "FlipRotate"},
      {"-", "-"},
      {a_, Path("missing.png")},
      {a_, b_, "-o", Path("missing/out.png")},
      {a_, b_, "-o", "-"},
      {a_, b_, "-o", Path("out.gif")},
      {a_, b_, "--tolerance=256"},
      {a_, b_, "--tolerance=-1"},
  };
  for (std::vector<std::string> words : calls) {
    words.insert(words.begin(), "compare");
    const Ended ended = Lmx(words);
    EXPECT_EQ(ended.status, 2) << testing::PrintToString(words);
    EXPECT_PRED2(StartsWith, ended.error, "lmx: ");
  }
  const Ended elsewhere = Lmx({"FlipRotate", a_, "--tolerance=1", "-o", Path("out.png")});
  EXPECT_EQ(elsewhere.status, 2);
  EXPECT_PRED2(Contains, elsewhere.error, "--tolerance is for `compare`");
  EXPECT_EQ(Names(), (std::vector<std::string>{"a.png", "b.png"}));
}

}  // namespace
}  // namespace tool_test
