// What every method of the plug-in does, written as plainly as possible: one pixel at a time, on
// values, without a host, runs of pixels, or any line of the plug-in's own. Tests compare the
// plug-in with it, so it is slow on purpose and obvious first of all.
//
// A method is a function from its arguments to an Outcome: the code, every picture that it makes,
// the moments at which it yields and how far it is by then.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <set>
#include <vector>

#include "host/Storage.h"

namespace model {

using Form = host::Storage;

/// Working pixels: 0xAARRGGBB, straight alpha, 255 opaque.
std::uint32_t ReadPixel(Form form, std::uint32_t word);
std::uint32_t WritePixel(Form form, std::uint32_t pixel);

/// Why a picture cannot be locked.
enum class Fault { None, NoPixels, UnusableType };

/// A picture as the host stores it. Negative sizes count as 0.
struct StoredPicture {
  StoredPicture(Form pictureForm, int pictureWidth, int pictureHeight, std::uint32_t word = 0);

  // What is outside, or in a missing row, reads as 0 and ignores writes.
  bool Has(int x, int y) const { return IsInside(x, y) && (missingRows.empty() || missingRows.count(y) == 0); }
  std::uint32_t Read(int x, int y) const;
  void Write(int x, int y, std::uint32_t pixel);
  std::uint32_t& Word(int x, int y) { return words[Index(x, y)]; }
  const std::uint32_t& Word(int x, int y) const { return words[Index(x, y)]; }

  Form form;
  int width;
  int height;
  std::vector<std::uint32_t> words;  ///< row after row, top row first
  std::set<int> missingRows;         ///< of a buffer
  Fault fault = Fault::None;

 private:
  bool IsInside(int x, int y) const { return x >= 0 && x < width && y >= 0 && y < height; }
  std::size_t Place(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
  }
  std::size_t Index(int x, int y) const;
};

/// What the host makes when it is asked for its nth new picture (from 1) of a size of at least
/// 1 x 1.
using MakePicture = std::function<StoredPicture(std::size_t number, int width, int height)>;

/// The order in which a pass completes its lines.
enum class Order { TopDown, BottomUp, LeftRight };

/// One call of the host's yield service.
struct Yield {
  std::size_t writing;             ///< number of the new picture that is being written; 0: the source, or none
  int linesDone;                   ///< lines that are complete; no other line has been touched
  Order order;                     ///< what a line is, and which ones are done
  std::vector<std::size_t> alive;  ///< numbers of the new pictures that exist at the moment
};

struct Outcome {
  int code = 0;
  std::deque<StoredPicture> made;  ///< the new pictures, in order, as the method left them
  std::size_t result = 0;          ///< number of the one that is returned; 0 is nil
  int lost = 0;                    ///< new pictures whose reference nobody holds or gives up
  std::vector<Yield> yields;

  std::optional<StoredPicture> changed;          ///< the source after a method that works in place
  std::optional<std::array<double, 3>> meanHsv;  ///< nothing: the caller's values stay
  std::optional<std::array<int, 3>> meanRgb;
};

/// A rectangle of the colour methods as it is passed.
struct Rectangle {
  int left, top, width, height;
};

struct HsvChange {
  double hueDegrees, saturationFactor, brightnessFactor;
  std::uint8_t negative;  ///< a boolean
};

struct RgbChange {
  int red, green, blue;
};

// The methods. A nil source is a null pointer.

// Booleans of a method are bytes: 0 is false, 1 is true.
Outcome FlipRotate(const StoredPicture* source, std::uint8_t flipH, std::uint8_t flipV, int rotation, int yield,
                   const MakePicture& make);
Outcome ShearHorizontal(const StoredPicture* source, int width, int height, double shear, std::uint32_t frameColour,
                        int yield, const MakePicture& make);
Outcome ShearVertical(const StoredPicture* source, int width, int height, double shear, std::uint32_t frameColour,
                      int yield, const MakePicture& make);
Outcome FreeRotateByShear(const StoredPicture* source, double rotation, std::uint32_t frameColour, int yield,
                          const MakePicture& make);
Outcome Stretch(const StoredPicture* source, int width, int height, int yield, const MakePicture& make);
Outcome Trim(const StoredPicture* source, const Rectangle& area, std::uint32_t frameColour, int yield,
             const MakePicture& make);

Outcome AdjustHsv(const StoredPicture* source, const Rectangle& selection, const HsvChange& change, int yield,
                  const MakePicture& make);
Outcome AdjustHsvInPlace(const StoredPicture* source, const Rectangle& selection, const HsvChange& change, int yield);
Outcome AverageHsv(const StoredPicture* source, const Rectangle& selection, int yield);
Outcome AdjustRgb(const StoredPicture* source, const Rectangle& selection, const RgbChange& change, int yield,
                  const MakePicture& make);
Outcome AdjustRgbInPlace(const StoredPicture* source, const Rectangle& selection, const RgbChange& change, int yield);
Outcome AverageRgb(const StoredPicture* source, const Rectangle& selection, int yield);

Outcome MakeGradient(int width, int height, std::uint32_t colour1, std::uint32_t colour2, int yield,
                     const MakePicture& make);
Outcome MakeDoubleGradient(int width, int height, std::uint32_t colour1, std::uint32_t colour2, std::uint32_t colour3,
                           int yield, const MakePicture& make);

/// The text of an error code.
const char* ErrorMessage(int code);

// Hue in 1/1024 of a sixth of the circle (-1: none), saturation 0 to 1024, value and alpha 0 to
// 255.

struct Hsv {
  std::int32_t hue, saturation, value, alpha;
};

Hsv HsvFromPixel(std::uint32_t pixel);
std::uint32_t PixelFromHsv(const Hsv& hsv);

}  // namespace model
