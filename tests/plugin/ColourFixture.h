// What the tests of the colour methods share: small pictures, both adjustments with their
// arguments, and single pixels taken through both forms of an adjustment.
#pragma once

#include <string>
#include <vector>

#include "support/PluginTest.h"

namespace colour {

using host::Picture;
using host::Service;
using host::Storage;
using host::Value;
using support::Called;
using Words = std::vector<std::uint32_t>;

constexpr Storage kContext = Storage::BitmapContext;
constexpr Storage kBuffer = Storage::Buffer;

/// A selection as it is passed. Its far ends are included.
struct Area {
  int left, top, width, height;
};

/// Larger than any picture here.
constexpr Area kEverything = {0, 0, INT32_MAX, INT32_MAX};
constexpr Area kFirstPixel = {0, 0, 0, 0};

/// The method that copies, and its arguments between the selection and the pace of yields.
struct Adjustment {
  std::string method;
  std::vector<Value> arguments;
};
inline Adjustment HSV(double hue, double saturation, double brightness, const Value& negative = false) {
  return {"AdjustHSV", {hue, saturation, brightness, negative}};
}
inline Adjustment RGB(int red, int green, int blue) {
  return {"AdjustRGB", {red, green, blue}};
}

/// One pixel, stored, and what an adjustment makes of it.
struct Adjusted {
  Storage storage;
  std::uint32_t word;
  Adjustment by;
  std::uint32_t expected;
};
/// A colour that is opaque, and what an adjustment makes of it in either storage form.
struct AdjustedColour {
  std::uint32_t colour;
  Adjustment by;
  std::uint32_t expected;
};

/// The stored word of an opaque colour.
constexpr std::uint32_t Opaque(Storage storage, std::uint32_t colour) {
  return storage == kBuffer ? colour : colour | 0xFF000000;
}

inline Picture MakePicture(Storage storage, int width, const Words& words) {
  Picture picture({width, static_cast<int>(words.size()) / width, storage});
  picture.SetStoredPixels(words);
  return picture;
}

/// A picture whose pixels are all equal.
inline Picture MakePlain(Storage storage, int width, int height, std::uint32_t word) {
  Picture picture({width, height, storage});
  picture.Fill(word);
  return picture;
}

inline Picture OfDepth(int bits) {
  host::PictureShape shape = {3, 2, kContext};
  shape.defects.bitsPerPixel = bits;
  return Picture(shape);
}

/// A picture, a selection, what comes after it, and the pace of yields.
inline std::vector<Value> Arguments(const Picture& p, const Area& area, const std::vector<Value>& others,
                                    int yield = 0) {
  std::vector<Value> arguments = {p, area.left, area.top, area.width, area.height};
  arguments.insert(arguments.end(), others.begin(), others.end());
  arguments.emplace_back(yield);
  return arguments;
}

class ColourTest : public support::PluginTest {
 protected:
  Called RunCopy(const Picture& p, const Area& area, const Adjustment& by, int yield = 0) {
    return Run(by.method, Arguments(p, area, by.arguments, yield));
  }
  Called RunInPlace(const Picture& p, const Area& area, const Adjustment& by, int yield = 0) {
    return Run(by.method + "_InPlace", Arguments(p, area, by.arguments, yield));
  }

  /// The stored pixels of a successful copy.
  Words Copy(const Picture& p, const Area& area, const Adjustment& by) {
    const Called called = RunCopy(p, area, by);
    EXPECT_EQ(called.code, 0) << by.method;
    if (called.result) return called.result.StoredPixels();
    ADD_FAILURE() << by.method << " gave no result";
    return {};
  }
  /// Changes the picture, and gives what it holds then.
  Words InPlace(const Picture& p, const Area& area, const Adjustment& by) {
    EXPECT_EQ(RunInPlace(p, area, by).code, 0) << by.method;
    return p.StoredPixels();
  }

  /// What both forms of the adjustment make of a picture of one pixel.
  void Check(const Adjusted& a) {
    SCOPED_TRACE(testing::Message() << a.by.method << std::hex << " of " << a.word << " to " << a.expected);
    host_.newPictures.storage = a.storage;
    EXPECT_EQ(Copy(MakePicture(a.storage, 1, {a.word}), kEverything, a.by), Words{a.expected});
    EXPECT_EQ(InPlace(MakePicture(a.storage, 1, {a.word}), kEverything, a.by), Words{a.expected});
  }
  void Check(const AdjustedColour& a) {
    for (const Storage storage : {kContext, kBuffer}) {
      Check({storage, Opaque(storage, a.colour), a.by, Opaque(storage, a.expected)});
    }
  }
};

}  // namespace colour
