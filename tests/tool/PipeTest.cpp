// lmx between other programs: pictures through standard input and standard output.
#include <gtest/gtest.h>

#include "Files.h"
#include "Process.h"

namespace tool_test {
namespace {

class PipeTest : public FileTest {
 protected:
  static Surroundings Input(const Bytes& bytes) {
    Surroundings surroundings;
    surroundings.input.assign(bytes.begin(), bytes.end());
    return surroundings;
  }

  tool::Image Picture(const std::string& text) const {
    WriteFile(Path("piped.png"), Text(text));
    return Result("piped.png");
  }

  const std::string small_ = Given("small.png", SmallImage());
};

TEST_F(PipeTest, FromOneEndToTheOther) {
  const Ended ended = Lmx({"FlipRotate", "-", "flip_h=1", "-o", "-"}, Input(Png(SmallImage())));
  EXPECT_EQ(ended.status, 0) << ended.error;
  EXPECT_EQ(ended.error, "");
  EXPECT_EQ(Picture(ended.out).pixels[0], SmallImage().pixels[2]);
  const Ended again = Lmx({"FlipRotate", "-", "flip_h=1", "-o", Path("out.png")}, Input(ReadFile(Path("piped.png"))));
  EXPECT_EQ(again.status, 0) << again.error;
  EXPECT_EQ(Result("out.png").pixels, SmallImage().pixels);
}

TEST_F(PipeTest, JpegsBothWays) {
  const Ended jpeg = Lmx({"FlipRotate", "-", "-o", "-", "--format", "jpeg"}, Input(Jpeg(OpaqueImage(40, 30))));
  EXPECT_EQ(jpeg.status, 0) << jpeg.error;
  EXPECT_EQ(jpeg.out.substr(0, 2), "\xFF\xD8");
}

TEST_F(PipeTest, FormatIsForNamesThatDoNotSayIt) {
  EXPECT_EQ(Lmx({"FlipRotate", small_, "-o", Path("out.part"), "--format=JPG"}).status, 0);
  EXPECT_EQ(ReadFile(Path("out.part"))[0], 0xFF);
  EXPECT_EQ(Lmx({"FlipRotate", small_, "-o", Path("out.jpg"), "--format=jpeg"}).status, 0);
}

TEST_F(PipeTest, ValuesDoNotGetIntoThePicture) {
  const Ended ended = Lmx({"FlipRotate", small_, "+", "GetAverageRGB", "-o", "-"});
  EXPECT_EQ(ended.status, 0) << ended.error;
  EXPECT_EQ(ended.error, "red = 95, green = 110, blue = 125\n");
  EXPECT_EQ(Picture(ended.out).pixels, SmallImage().pixels);
}

TEST_F(PipeTest, InputThatIsNoPicture) {
  Ended ended = Lmx({"GetAverageRGB", "-"}, Input({}));
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.error, "lmx: standard input: is empty\n");
  ended = Lmx({"GetAverageRGB", "-"}, Input({'G', 'I', 'F'}));
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.error, "lmx: standard input: is neither a PNG nor a JPEG picture\n");
}

TEST_F(PipeTest, AFailureWritesNothing) {
  const Ended ended = Lmx({"FlipRotate", small_, "rotation=360", "-o", "-"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.out, "");
}

}  // namespace
}  // namespace tool_test
