// The reference model: what every method of the plug-in does, written as plainly as possible, one
// pixel at a time. It needs no host and no runs of pixels, and shares no code with the plug-in.
// Tests compare the plug-in with it, so it is obvious rather than fast.
//
// ModelPixel.h has the operations on single pixels. ModelPicture.h has the operations on pictures,
// which are functions of a place. Here a method is a function from its arguments to an Outcome: the
// code, all pictures that it makes, the moments at which it yields, and its progress at each.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <set>
#include <vector>

#include "ModelPicture.h"

namespace model {

/// Why a picture cannot be locked.
enum class Fault { None, NoPixels, UnusableType };

/// A picture as the host stores it. Negative sizes count as 0.
struct StoredPicture {
  StoredPicture(Storage pictureForm, int pictureWidth, int pictureHeight, std::uint32_t word = 0);

  // Pixels outside the picture or in a missing row read as 0 and ignore writes.
  bool Has(std::int64_t x, std::int64_t y) const;
  std::uint32_t Read(std::int64_t x, std::int64_t y) const {
    return Has(x, y) ? ReadPixel(form, words[Place(x, y)]) : 0;
  }
  void Write(std::int64_t x, std::int64_t y, std::uint32_t pixel);
  std::uint32_t& Word(int x, int y) { return words[Index(x, y)]; }
  const std::uint32_t& Word(int x, int y) const { return words[Index(x, y)]; }

  Storage form;
  int width;
  int height;
  std::vector<std::uint32_t> words;  ///< row by row, top row first
  std::set<int> missingRows;         ///< rows that a buffer lacks
  Fault fault = Fault::None;

 private:
  bool IsInside(std::int64_t x, std::int64_t y) const { return x >= 0 && x < width && y >= 0 && y < height; }
  std::size_t Place(std::int64_t x, std::int64_t y) const { return static_cast<std::size_t>(y * width + x); }
  std::size_t Index(std::int64_t x, std::int64_t y) const;
};

/// Makes the host's new picture number n (from 1), of a requested size of at least 1 x 1.
using MakePicture = std::function<StoredPicture(std::size_t number, int width, int height)>;

/// One call of the host's yield service.
struct Yield {
  std::size_t writing;             ///< the number of the new picture that is being written; 0: the source, or none
  int linesDone;                   ///< number of complete lines; no other line has been touched
  Order order;                     ///< what a line is, and which lines are complete
  std::vector<std::size_t> alive;  ///< numbers of the new pictures that exist at this moment
};

struct Outcome {
  int code = 0;
  std::deque<StoredPicture> made;  ///< the new pictures, in order, as the method left them
  std::size_t result = 0;          ///< number of the returned picture; 0 is nil
  int lost = 0;                    ///< new pictures whose reference is neither held nor released
  std::vector<Yield> yields;

  std::optional<StoredPicture> changed;          ///< the source after a method that works in place
  std::optional<std::array<double, 3>> meanHsv;  ///< nothing: the caller's values stay unchanged
  std::optional<std::array<int, 3>> meanRgb;
};

// The methods. A nil source is a null pointer.

// Boolean arguments are bytes: 0 is false, 1 is true.
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

}  // namespace model
