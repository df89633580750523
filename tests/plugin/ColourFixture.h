// Shared by the tests of the colour methods: small pictures, the methods with their declared
// arguments, and single pixels passed through the copying and the in-place method.
#pragma once

#include <array>
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

/// A selection as it is passed. Both ends are included.
struct Area {
  int left, top, width, height;
};

/// Larger than any picture here.
constexpr Area kEverything = {0, 0, INT32_MAX, INT32_MAX};

struct HSVFactors {
  double hue, saturation, brightness;
};
struct RGBDeltas {
  int red, green, blue;
};

/// The stored word of an opaque colour, or of transparent black.
constexpr std::uint32_t Opaque(Storage storage, std::uint32_t colour) {
  return storage == Storage::Buffer ? colour : colour | 0xFF000000;
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

inline std::vector<Value> Arguments(const Picture& p, const Area& area) {
  return {p, area.left, area.top, area.width, area.height};
}

class ColourTest : public support::PluginTest {
 protected:
  static std::vector<Value> HSVArguments(const Picture& p, const Area& area, const HSVFactors& by,
                                         const Value& negative = false, int yield = 0) {
    std::vector<Value> arguments = Arguments(p, area);
    arguments.insert(arguments.end(), {by.hue, by.saturation, by.brightness, negative, yield});
    return arguments;
  }
  static std::vector<Value> RGBArguments(const Picture& p, const Area& area, const RGBDeltas& by, int yield = 0) {
    std::vector<Value> arguments = Arguments(p, area);
    arguments.insert(arguments.end(), {by.red, by.green, by.blue, yield});
    return arguments;
  }

  /// The stored pixels of the result of a successful call. The result has the source's storage form
  /// unless another one is set.
  Words Copy(const std::string& method, const std::vector<Value>& arguments) {
    const Called called = Run(method, arguments);
    EXPECT_EQ(called.code, 0) << method;
    if (called.result) return called.result.StoredPixels();
    ADD_FAILURE() << method << " gave no result";
    return {};
  }
  /// Changes the picture and returns its words.
  Words InPlace(const std::string& method, const std::vector<Value>& arguments) {
    EXPECT_EQ(Run(method, arguments).code, 0) << method;
    return arguments[0].AsPicture().StoredPixels();
  }

  /// The word that both methods make of a picture of one pixel. It is a failure if they differ.
  std::uint32_t AdjustHSV(Storage storage, std::uint32_t word, const HSVFactors& by, const Value& negative = false) {
    return Agreed("AdjustHSV", storage, word,
                  [&](const Picture& p) { return HSVArguments(p, kEverything, by, negative); });
  }
  std::uint32_t AdjustRGB(Storage storage, std::uint32_t word, const RGBDeltas& by) {
    return Agreed("AdjustRGB", storage, word, [&](const Picture& p) { return RGBArguments(p, kEverything, by); });
  }

  using HSVMeans = std::array<double, 3>;
  using RGBMeans = std::array<int, 3>;

  HSVMeans AverageHSV(const Picture& p, const Area& area = kEverything) {
    std::vector<Value> arguments = Arguments(p, area);
    arguments.insert(arguments.end(), {-77.0, -77.0, -77.0, 0});
    const Called called = Run("GetAverageHSV", arguments);
    EXPECT_EQ(called.code, 0);
    return {called.arguments[5].AsDouble(), called.arguments[6].AsDouble(), called.arguments[7].AsDouble()};
  }
  RGBMeans AverageRGB(const Picture& p, const Area& area = kEverything) {
    std::vector<Value> arguments = Arguments(p, area);
    arguments.insert(arguments.end(), {-77, -77, -77, 0});
    const Called called = Run("GetAverageRGB", arguments);
    EXPECT_EQ(called.code, 0);
    return {called.arguments[5].AsInteger(), called.arguments[6].AsInteger(), called.arguments[7].AsInteger()};
  }

 private:
  template <class MakeArguments>
  std::uint32_t Agreed(const std::string& method, Storage storage, std::uint32_t word, MakeArguments make) {
    host_.newPictures.storage = storage;
    const Words copied = Copy(method, make(MakePicture(storage, 1, {word})));
    const Words changed = InPlace(method + "_InPlace", make(MakePicture(storage, 1, {word})));
    EXPECT_EQ(copied, changed) << method;
    return changed[0];
  }
};

}  // namespace colour
