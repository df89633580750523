// Stored words and working pixels, new pictures and yields: what all definitions stand on.

#include <algorithm>
#include <iterator>
#include <limits>
#include <stdexcept>

#include "ModelParts.h"

namespace model {

std::uint32_t ReadPixel(Form form, std::uint32_t word) {
  if (form == Form::Buffer) {
    const std::uint32_t transparency = word >> 24;
    const std::uint32_t alpha = transparency == 127 ? 0 : (255 - 2 * transparency) % 256;
    return (alpha << 24) | (word & 0xFFFFFF);
  }
  const std::uint32_t alpha = word >> 24;
  if (alpha == 0) return 0;
  if (alpha == 255) return word;
  // A colour above alpha gives more than 255 and carries into its neighbour; the sum wraps in 32
  // bits.
  return (alpha << 24) + ((Red(word) * 255 / alpha) << 16) + ((Green(word) * 255 / alpha) << 8) +
         Blue(word) * 255 / alpha;
}

std::uint32_t WritePixel(Form form, std::uint32_t pixel) {
  if (form == Form::Buffer) return (((pixel >> 1) & 0x7F000000) | (pixel & 0xFFFFFF)) ^ 0x7F000000;
  const std::uint32_t alpha = pixel >> 24;
  if (alpha == 0) return 0;
  if (alpha == 255) return pixel;
  return Pack(alpha, Red(pixel) * alpha / 255, Green(pixel) * alpha / 255, Blue(pixel) * alpha / 255);
}

std::uint32_t Alpha(std::uint32_t pixel) {
  return pixel >> 24;
}
std::uint32_t Red(std::uint32_t pixel) {
  return pixel >> 16 & 0xFF;
}
std::uint32_t Green(std::uint32_t pixel) {
  return pixel >> 8 & 0xFF;
}
std::uint32_t Blue(std::uint32_t pixel) {
  return pixel & 0xFF;
}

std::uint32_t Pack(std::uint32_t alpha, std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
  return (alpha << 24) | ((red & 0xFF) << 16) | ((green & 0xFF) << 8) | (blue & 0xFF);
}

std::int32_t WrappingSum(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

std::int32_t IntegerPart(double value) {
  if (value > -2147483649.0 && value < 2147483648.0) return static_cast<std::int32_t>(value);
  return std::numeric_limits<std::int32_t>::min();
}

StoredPicture::StoredPicture(Form pictureForm, int pictureWidth, int pictureHeight, std::uint32_t word)
    : form(pictureForm),
      width(std::max(pictureWidth, 0)),
      height(std::max(pictureHeight, 0)),
      words(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), word) {}

std::uint32_t StoredPicture::Read(int x, int y) const {
  return Has(x, y) ? ReadPixel(form, words[Place(x, y)]) : 0;
}

void StoredPicture::Write(int x, int y, std::uint32_t pixel) {
  if (Has(x, y)) words[Place(x, y)] = WritePixel(form, pixel);
}

std::size_t StoredPicture::Index(int x, int y) const {
  if (!IsInside(x, y)) throw std::out_of_range("a pixel outside the picture");
  return Place(x, y);
}

ColumnWalk::ColumnWalk(const StoredPicture& picture, int row, int step)
    : row_(row), step_(step), most_(std::numeric_limits<int>::max()) {
  if (picture.form == Form::BitmapContext) return;
  const auto below = picture.missingRows.lower_bound(row);  // or the row itself
  if (step > 0) {
    most_ = (below == picture.missingRows.end() ? picture.height : *below) - 1 - row;
  } else {
    const auto above = std::make_reverse_iterator(picture.missingRows.upper_bound(row));
    most_ = row - (above == picture.missingRows.rend() ? 0 : *above + 1);
  }
  most_ = std::max(most_, 0);  // if the row is missing
}

int ColumnWalk::RowAfter(int steps) const {
  return row_ + step_ * std::min(steps, most_);
}

Outcome Failure(int code) {
  Outcome outcome;
  outcome.code = code;
  return outcome;
}

namespace {

StoredPicture* Make(Outcome& outcome, int width, int height, const MakePicture& make) {
  if (width < 1 || height < 1) return nullptr;
  outcome.made.push_back(make(outcome.made.size() + 1, width, height));
  return &outcome.made.back();
}

}  // namespace

StoredPicture* MakeResult(Outcome& outcome, int width, int height, const MakePicture& make) {
  StoredPicture* picture = Make(outcome, width, height, make);
  if (picture == nullptr || picture->fault == Fault::None) return picture;
  ++outcome.lost;  // a result is the caller's from the start, and never given up
  return nullptr;
}

StoredPicture* MakeTemporary(Outcome& outcome, int width, int height, const MakePicture& make) {
  StoredPicture* picture = Make(outcome, width, height, make);
  if (picture == nullptr || picture->fault == Fault::None) return picture;
  if (picture->fault == Fault::UnusableType) ++outcome.lost;
  return nullptr;
}

void Pass::YieldIfDue(int linesDone) {
  if (yield_ <= 0 || counter_ < yield_) return;
  state_.linesDone = linesDone;
  outcome_.yields.push_back(state_);
  counter_ = 0;
}

void Pass::BeforeLine(int line, int pixels) {
  YieldIfDue(line);
  counter_ += pixels;
}

void Pass::CountAfterLine(int line, int pixels) {
  counter_ += pixels;
  YieldIfDue(line + 1);
}

void Pass::YieldAfterLine(int line, int pixels) {
  YieldIfDue(line + 1);
  counter_ += pixels;
}

}  // namespace model
