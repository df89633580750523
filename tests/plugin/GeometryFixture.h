// The fixture of the tests of the geometric methods. Every test runs with sources and results of
// both storage forms.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "support/PluginTest.h"

namespace geometry {

using host::Colour;
using host::Picture;
using host::Storage;
using host::Value;
using support::Called;
using Words = std::vector<std::uint32_t>;

constexpr Storage kContext = Storage::BitmapContext;
constexpr Storage kBuffer = Storage::Buffer;
/// A frame that is fully transparent black.
constexpr Colour kClearFrame = {0xFF000000};

struct Forms {
  Storage source;
  Storage result;  ///< the storage form of all pictures that the plug-in makes
};

class Geometry : public support::PluginTest, public testing::WithParamInterface<Forms> {
 protected:
  Geometry() { host_.newPictures.storage = GetParam().result; }

  /// The stored word of an opaque (alpha 255) or clear (alpha 0) pixel.
  static std::uint32_t Stored(Storage storage, std::uint32_t pixel) {
    const std::uint32_t colour = pixel & 0xFFFFFF;
    if (pixel >> 24 == 255) return storage == kContext ? pixel : colour;
    return storage == kContext ? 0 : 0x7F000000 | colour;
  }
  static Words Stored(Storage storage, Words pixels) {
    for (std::uint32_t& pixel : pixels) pixel = Stored(storage, pixel);
    return pixels;
  }

  /// A source of opaque and clear pixels, 0xAARRGGBB.
  static Picture Source(int width, int height, const Words& pixels) {
    return StoredSource(width, height, Stored(GetParam().source, pixels));
  }
  static Picture StoredSource(int width, int height, const Words& words) {
    Picture picture({width, height, GetParam().source});
    picture.SetStoredPixels(words);
    return picture;
  }
  /// An opaque source whose pixels all differ.
  static Picture Numbered(int width, int height) { return Source(width, height, NumberedPixels(width, height)); }
  static Words NumberedPixels(int width, int height) {
    Words pixels;
    for (int i = 1; i <= width * height; ++i) pixels.push_back(Number(i));
    return pixels;
  }
  static std::uint32_t Number(int i) { return 0xFF000000 | static_cast<std::uint32_t>(i) * 0x030507; }
  /// The pixels of a Numbered source by their numbers, from 1, row by row; 0 is a clear pixel.
  static Words Numbers(const std::vector<int>& numbers) {
    Words pixels;
    for (int i : numbers) pixels.push_back(i == 0 ? 0 : Number(i));
    return pixels;
  }
  /// A source that cannot be locked.
  static Picture Unusable() {
    host::PictureShape shape = {3, 3, GetParam().source};
    shape.defects.pictureType = 9;
    return Picture(shape);
  }
  /// New pictures cannot be locked, from the nth one on.
  void MakeUnusable(int from = 1) {
    host_.newPictures.change = [from](int number, host::PictureShape& shape) {
      if (number >= from) shape.defects.pictureType = 9;
    };
  }

  /// Checks the size and the stored words of the result.
  void ExpectStored(const Called& called, int width, int height, const Words& words) {
    EXPECT_EQ(called.code, 0);
    ASSERT_FALSE(called.result.IsNil());
    ASSERT_EQ(std::pair(called.result.Width(), called.result.Height()), std::pair(width, height));
    EXPECT_EQ(called.result.StoredPixels(), words);
  }
  /// The same in opaque and clear pixels.
  void ExpectPixels(const Called& called, int width, int height, const Words& pixels) {
    ExpectStored(called, width, height, Stored(GetParam().result, pixels));
  }
  void ExpectFailure(const Called& called, int code) {
    EXPECT_EQ(called.code, code);
    EXPECT_TRUE(called.result.IsNil());
  }
  /// Expects a call to fail by its arguments alone: no picture is made or even locked.
  void ExpectRefused(const std::string& name, const std::vector<Value>& arguments, int code) {
    ExpectFailure(Run(name, arguments), code);
    EXPECT_EQ(host_.Calls(host::Service::NewInstance), 0);
    EXPECT_EQ(host_.Calls(host::Service::LockPictureDescription), 0);
  }

  /// One of two literals, selected by the storage form of the results.
  static std::uint32_t ByForm(std::uint32_t context, std::uint32_t buffer) {
    return GetParam().result == kContext ? context : buffer;
  }
};

inline std::string FormsName(const testing::TestParamInfo<Forms>& info) {
  const auto name = [](Storage storage) { return storage == kContext ? "Context" : "Buffer"; };
  return std::string(name(info.param.source)) + "To" + name(info.param.result);
}

}  // namespace geometry

/// Instantiates a suite for every pair of storage forms.
#define INSTANTIATE_FOR_FORMS(Suite)                                                                \
  INSTANTIATE_TEST_SUITE_P(Forms, Suite,                                                            \
                           testing::Values(geometry::Forms{geometry::kContext, geometry::kContext}, \
                                           geometry::Forms{geometry::kContext, geometry::kBuffer},  \
                                           geometry::Forms{geometry::kBuffer, geometry::kContext},  \
                                           geometry::Forms{geometry::kBuffer, geometry::kBuffer}),  \
                           geometry::FormsName)
