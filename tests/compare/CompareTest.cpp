// The plug-in and ImageMagick must agree. Exactly: flips, quarter turns, trims, enlargements by
// whole numbers and sums with a colour. Except for rounding: reductions by whole numbers. On opaque
// pictures, in both storage forms. Skipped if ImageMagick is not installed.
#include <gtest/gtest.h>

#include <cmath>

#include "ImageMagick.h"
#include "support/PluginTest.h"
#include "support/Random.h"

namespace {

using compare::Image;
using host::Colour;
using host::Picture;
using host::Storage;
using host::Value;

// Gradients with noise, opaque.
Image MakeImage(int width, int height) {
  Random random(static_cast<std::uint64_t>(width * 1000 + height));
  Image image = {width, height, {}};
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const auto red = static_cast<std::uint32_t>(x * 255 / width),
                 green = static_cast<std::uint32_t>(y * 255 / height);
      image.pixels.push_back(0xFF000000 | red << 16 | green << 8 | random.Below(256));
    }
  }
  return image;
}

class Compare : public support::PluginTest {
 protected:
  void SetUp() override {
    if (!magick_.IsInstalled()) GTEST_SKIP() << "ImageMagick is not installed (package imagemagick)";
  }

  // The result of a method for the image in one storage form.
  Image Call(Storage storage, const std::string& method, const Image& image, std::vector<Value> arguments) {
    host_.newPictures.storage = storage;
    Picture source({image.width, image.height, storage});
    source.SetStraight(image.pixels);
    arguments.insert(arguments.begin(), Value(source));
    const support::Called called = Run(method, arguments);
    EXPECT_EQ(called.code, 0);
    if (!called.result) return {};
    return {called.result.Width(), called.result.Height(), called.result.Straight()};
  }

  // Compares both storage forms with ImageMagick. Each channel may be lower by up to `below`, and
  // never higher.
  void ExpectAlike(const Image& image, const std::string& method, const std::vector<Value>& arguments,
                   const std::string& operations, int below = 0) {
    const Image expected = magick_.Transform(image, operations);
    for (const Storage storage : {Storage::BitmapContext, Storage::Buffer}) {
      SCOPED_TRACE(method + (storage == Storage::Buffer ? ", buffer" : ", context") + " against " + operations);
      ExpectAlike(expected, Call(storage, method, image, arguments), below);
    }
  }

  static void ExpectAlike(const Image& expected, const Image& actual, int below) {
    ASSERT_EQ(actual.width, expected.width);
    ASSERT_EQ(actual.height, expected.height);
    for (int y = 0; y < expected.height; ++y) {
      for (int x = 0; x < expected.width; ++x) {
        for (const int shift : {24, 16, 8, 0}) {
          const int difference =
              static_cast<int>(expected.At(x, y) >> shift & 0xFF) - static_cast<int>(actual.At(x, y) >> shift & 0xFF);
          const bool alike = difference >= 0 && difference <= below;
          ASSERT_TRUE(alike) << x << ", " << y << std::hex << ": expected " << expected.At(x, y) << ", got "
                             << actual.At(x, y);
        }
      }
    }
  }

  const compare::ImageMagick magick_;
};

TEST_F(Compare, FlipsAndQuarterTurns) {
  const Image image = MakeImage(37, 22);
  for (const int rotation : {0, 90, 180, 270}) {
    for (const bool flipH : {false, true}) {
      for (const bool flipV : {false, true}) {
        const std::string operations = std::string(flipH ? "-flop " : "") + (flipV ? "-flip " : "") + "-rotate " +
                                       std::to_string(rotation) + " +repage";
        ExpectAlike(image, "FlipRotate", {flipH, flipV, rotation, 0}, operations);
      }
    }
  }
}

TEST_F(Compare, FreeRotationByQuarterTurns) {
  const Image image = MakeImage(37, 22);
  for (const int rotation : {0, 90, 180, 270}) {
    ExpectAlike(image, "FreeRotateByShear", {1.0 * rotation, Colour{0}, 0},
                "-rotate " + std::to_string(rotation) + " +repage");
  }
}

TEST_F(Compare, Trims) {
  const Image image = MakeImage(37, 22);
  ExpectAlike(image, "Trim", {5, 3, 20, 11, Colour{0}, 0}, "-crop 20x11+5+3 +repage");
  ExpectAlike(image, "Trim", {36, 21, 1, 1, Colour{0}, 0}, "-crop 1x1+36+21 +repage");
  // Outside the picture everything is clear black.
  const std::string clear = "-background '#00000000' -extent ";
  ExpectAlike(image, "Trim", {-4, -6, 50, 40, Colour{0}, 0}, clear + "50x40-4-6");
  ExpectAlike(image, "Trim", {30, 20, 10, 10, Colour{0}, 0}, clear + "10x10+30+20");
}

TEST_F(Compare, EnlargementsByWholeNumbersRepeatPixels) {
  const Image image = MakeImage(13, 9);
  ExpectAlike(image, "Stretch", {26, 27, 0}, "-sample '26x27!'");
  ExpectAlike(image, "Stretch", {65, 9, 0}, "-sample '65x9!'");
  ExpectAlike(image, "Stretch", {13, 63, 0}, "-sample '13x63!'");
}

// A pass truncates where ImageMagick rounds to nearest. So a channel may be lower by one after one
// pass, and by two after two passes.
TEST_F(Compare, ReductionsByWholeNumbersAreMeans) {
  const Image image = MakeImage(60, 48);
  ExpectAlike(image, "Stretch", {30, 48, 0}, "-filter box -resize '30x48!'", 1);
  ExpectAlike(image, "Stretch", {20, 48, 0}, "-filter box -resize '20x48!'", 1);
  ExpectAlike(image, "Stretch", {60, 12, 0}, "-filter box -resize '60x12!'", 1);
  ExpectAlike(image, "Stretch", {15, 16, 0}, "-filter box -resize '15x16!'", 2);
  ExpectAlike(image, "Stretch", {12, 8, 0}, "-scale '12x8!'", 2);
}

TEST_F(Compare, SumsWithAColour) {
  const Image image = MakeImage(37, 22);
  const auto evaluate = [](const char* channel, int delta) {
    const std::string operation = delta < 0 ? " -evaluate subtract " : " -evaluate add ";
    return std::string("-channel ") + channel + operation + std::to_string(std::abs(delta) * 257) + " ";
  };
  for (const std::array<int, 3> by : {std::array<int, 3>{10, -20, 30}, {100, 200, -150}, {-1, 0, 255}}) {
    ExpectAlike(image, "AdjustRGB", {0, 0, 37, 22, by[0], by[1], by[2], 0},
                evaluate("R", by[0]) + evaluate("G", by[1]) + evaluate("B", by[2]) + "+channel");
  }
}

TEST_F(Compare, MeansOfChannels) {
  const Image image = MakeImage(37, 22);
  const std::vector<double> expected = magick_.Means(image);
  for (const Storage storage : {Storage::BitmapContext, Storage::Buffer}) {
    Picture source({image.width, image.height, storage});
    source.SetStraight(image.pixels);
    const support::Called called = Run("GetAverageRGB", {source, 0, 0, 99, 99, -1, -1, -1, 0});
    for (std::size_t i = 0; i < 3; ++i) {
      EXPECT_EQ(called.arguments[5 + i].AsInteger(), static_cast<int>(std::floor(expected[i] + 1e-6))) << i;
    }
  }
}

}  // namespace
