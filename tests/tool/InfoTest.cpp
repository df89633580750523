// `lmx info`: what it prints about files.
#include <gtest/gtest.h>

#include "Files.h"
#include "Process.h"

namespace tool_test {
namespace {

class InfoTest : public FileTest {
 protected:
  std::string BytesOf(const std::string& name) const {
    return std::to_string(ReadFile(Path(name)).size()) + " bytes\n";
  }
};

TEST_F(InfoTest, TellsSizeAndTransparency) {
  const std::string opaque = Given("opaque.png", OpaqueImage(7, 5));
  const std::string soft = Given("soft.png", {2, 1, {0xFF000000, 0xFE000000}});
  const std::string clear = Given("clear.png", {1, 2, {0, 0x00FFFFFF}});
  WriteFile(Path("photo.name"), Jpeg(OpaqueImage(16, 9)));
  EXPECT_EQ(
      Lmx({"info", opaque, soft, clear, Path("photo.name")}),
      (Ended{0,
             opaque + ": PNG, 7 x 5 pixels, opaque, " + BytesOf("opaque.png") + soft +
                 ": PNG, 2 x 1 pixels, translucent, " + BytesOf("soft.png") + clear + ": PNG, 1 x 2 pixels, clear, " +
                 BytesOf("clear.png") + Path("photo.name") + ": JPEG, 16 x 9 pixels, opaque, " + BytesOf("photo.name"),
             ""}));
}

// The size is that of the upright picture.
TEST_F(InfoTest, TellsHowACameraWasHeld) {
  const std::string texts[] = {"upright",
                               "mirrored left and right",
                               "turned by 180 degrees",
                               "mirrored top and bottom",
                               "mirrored left and right, turned by 270 degrees",
                               "turned by 90 degrees",
                               "mirrored left and right, turned by 90 degrees",
                               "turned by 270 degrees"};
  for (unsigned char orientation = 1; orientation <= 8; ++orientation) {
    Bytes jpeg = Jpeg(OpaqueImage(16, 8));
    const Bytes exif = {0xFF, 0xE1, 0,    34, 'E', 'x', 'i', 'f', 0, 0, 'I',         'I', '*', 0, 8, 0, 0, 0,
                        1,    0,    0x12, 1,  3,   0,   1,   0,   0, 0, orientation, 0,   0,   0, 0, 0, 0, 0};
    jpeg.insert(jpeg.begin() + 2, exif.begin(), exif.end());
    WriteFile(Path("photo.jpg"), jpeg);
    const std::string size = orientation < 5 ? "16 x 8" : "8 x 16";
    const std::string turn = orientation == 1 ? "" : texts[orientation - 1] + " by its EXIF data, ";
    EXPECT_EQ(Lmx({"info", Path("photo.jpg")}).out,
              Path("photo.jpg") + ": JPEG, " + size + " pixels, opaque, " + turn + BytesOf("photo.jpg"));
    EXPECT_PRED2(Contains, Lmx({"info", Path("photo.jpg"), "--json"}).out,
                 "\"orientation\":" + std::to_string(orientation));
  }
}

TEST_F(InfoTest, ForScripts) {
  const std::string small = Given("small.png", SmallImage());
  EXPECT_EQ(Lmx({"info", small, "--json"}).out,
            "{\"picture\":\"" + small +
                R"(","format":"PNG","width":3,"height":2,"alpha":"opaque","orientation":1,"bytes":)" +
                std::to_string(ReadFile(small).size()) + "}\n");
}

TEST_F(InfoTest, WhatCannotBeReadIsToldAtTheEnd) {
  const std::string small = Given("small.png", SmallImage());
  const Ended ended = Lmx({"info", Path("missing.png"), small, Path("gone.png")});
  EXPECT_EQ(ended.status, 1);
  EXPECT_PRED2(StartsWith, ended.out, small + ": PNG, 3 x 2 pixels");
  EXPECT_EQ(ended.error, "lmx: " + Path("missing.png") + ": cannot open: No such file or directory\nlmx: " +
                             Path("gone.png") + ": cannot open: No such file or directory\n");
}

TEST_F(InfoTest, NeedsPicturesAndNothingElse) {
  const std::string small = Given("small.png", SmallImage());
  const std::vector<std::vector<std::string>> calls = {
      {}, {small, "x=1"}, {small, "+", "FlipRotate"}, {small, "-o", Path("out.png")}};
  for (std::vector<std::string> words : calls) {
    words.insert(words.begin(), "info");
    EXPECT_EQ(Lmx(words).status, 2) << testing::PrintToString(words);
  }
}

}  // namespace
}  // namespace tool_test
