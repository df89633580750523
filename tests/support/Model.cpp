// The methods: argument checks, codes, lifetimes of pictures, and yields.

#include "Model.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <map>
#include <stdexcept>

namespace model {

// --------------------------------------------------------------------------------- stored pictures

StoredPicture::StoredPicture(Storage pictureForm, int pictureWidth, int pictureHeight, std::uint32_t word)
    : form(pictureForm),
      width(std::max(pictureWidth, 0)),
      height(std::max(pictureHeight, 0)),
      words(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), word) {}

bool StoredPicture::Has(std::int64_t x, std::int64_t y) const {
  return IsInside(x, y) && (missingRows.empty() || missingRows.count(static_cast<int>(y)) == 0);
}

void StoredPicture::Write(std::int64_t x, std::int64_t y, std::uint32_t pixel) {
  if (Has(x, y)) words[Place(x, y)] = WritePixel(form, pixel);
}

std::size_t StoredPicture::Index(std::int64_t x, std::int64_t y) const {
  if (!IsInside(x, y)) throw std::out_of_range("a pixel outside the picture");
  return Place(x, y);
}

namespace {

// The last row that a walk along a column reaches. In a buffer the walk ends at the first or last
// row, or before a missing one; in a bitmap context it continues.
std::int64_t RowReached(const StoredPicture& picture, std::int64_t from, std::int64_t to) {
  if (picture.form == Storage::BitmapContext || from == to) return to;
  const std::set<int>& missing = picture.missingRows;
  if (to > from) {
    const auto next = missing.lower_bound(static_cast<int>(from));  // `from` itself is included
    return std::max(from, std::min<std::int64_t>(to, (next == missing.end() ? picture.height : *next) - 1));
  }
  const auto previous = std::make_reverse_iterator(missing.upper_bound(static_cast<int>(from)));
  return std::min(from, std::max<std::int64_t>(to, previous == missing.rend() ? 0 : *previous + 1));
}

// The stored picture as a function. It must outlive the result.
Picture View(const StoredPicture& stored) {
  return {stored.width, stored.height,
          [&stored](auto x, auto y, auto start) { return stored.Read(x, RowReached(stored, start, y)); }};
}

// ----------------------------------------------------------------------------- pictures and yields

Outcome Failure(int code) {
  Outcome outcome;
  outcome.code = code;
  return outcome;
}

// A new picture, made by the host, that may be impossible to lock; nil if a size is below 1.
StoredPicture* Make(Outcome& outcome, int width, int height, const MakePicture& make) {
  if (width < 1 || height < 1) return nullptr;
  outcome.made.push_back(make(outcome.made.size() + 1, width, height));
  return &outcome.made.back();
}

// A new picture that is returned to the caller. Nil if it cannot be made or locked.
StoredPicture* MakeResult(Outcome& outcome, int width, int height, const MakePicture& make) {
  StoredPicture* picture = Make(outcome, width, height, make);
  if (picture == nullptr || picture->fault == Fault::None) return picture;
  ++outcome.lost;  // the caller owns a result from the start, so it is never released
  return nullptr;
}

// A new picture that is released at the end of the pass that reads it. Nil if it cannot be made or
// locked.
StoredPicture* MakeTemporary(Outcome& outcome, int width, int height, const MakePicture& make) {
  StoredPicture* picture = Make(outcome, width, height, make);
  if (picture == nullptr || picture->fault == Fault::None) return picture;
  if (picture->fault == Fault::UnusableType) ++outcome.lost;
  return nullptr;
}

// The order in which a pass checks for a yield, makes a line, and counts the line's pixels.
enum class Rule { YieldMakeCount, MakeYieldCount, MakeCountYield };

// One pass over the lines of a picture. It counts the pixels since its own last yield.
class Pass {
 public:
  Pass(Outcome& outcome, int yield, Rule rule, std::size_t writing, std::vector<std::size_t> alive)
      : outcome_(outcome), yield_(yield), rule_(rule), state_{writing, 0, Order::TopDown, std::move(alive)} {}

  // Makes all lines of the result.
  void Paint(const Picture& picture, StoredPicture& result) {
    const bool columns = picture.order == Order::LeftRight;
    PaintLines(picture, result, 0, (columns ? result.width : result.height) - 1);
  }

  // Makes the lines `first` to `last`, counted in the picture's order.
  void PaintLines(const Picture& picture, StoredPicture& result, int first, int last) {
    state_.order = picture.order;
    for (int n = first; n <= last; ++n) {
      if (picture.order == Order::LeftRight) {
        Line(n, result.height, [&](int i) { result.Write(n, RowReached(result, 0, i), picture.At(n, i)); });
      } else {
        const int y = picture.order == Order::BottomUp ? last - n : n;
        Line(n, result.width, [&](int x) { result.Write(x, y, picture.At(x, y)); });
      }
    }
  }

  template <class MakePixel>
  void Line(int line, int pixels, MakePixel makePixel) {
    if (rule_ == Rule::YieldMakeCount) YieldIfDue(line);
    for (int i = 0; i < pixels; ++i) makePixel(i);
    if (rule_ == Rule::MakeYieldCount) YieldIfDue(line + 1);
    pixels_ += pixels;
    if (rule_ == Rule::MakeCountYield) YieldIfDue(line + 1);
  }

 private:
  void YieldIfDue(int linesDone) {
    if (yield_ <= 0 || pixels_ < yield_) return;
    state_.linesDone = linesDone;
    outcome_.yields.push_back(state_);
    pixels_ = 0;
  }

  Outcome& outcome_;
  const int yield_;
  const Rule rule_;
  Yield state_;
  std::int64_t pixels_ = 0;
};

// A method that begins with its result. `code` is its code if the result cannot be made.
template <class Paint>
Outcome MakeOne(int code, int width, int height, const MakePicture& make, Paint paint) {
  Outcome outcome;
  StoredPicture* result = MakeResult(outcome, width, height, make);
  if (result == nullptr) {
    outcome.code = code;
    return outcome;
  }
  outcome.result = 1;
  paint(outcome, *result);
  return outcome;
}

}  // namespace

// ---------------------------------------------------------------------------------------- geometry

Outcome FlipRotate(const StoredPicture* source, std::uint8_t flipH, std::uint8_t flipV, int rotation, int yield,
                   const MakePicture& make) {
  if (rotation < -89 || rotation > 359) return Failure(31);
  if (source == nullptr) return Failure(2);
  if (source->fault != Fault::None) return Failure(4);
  const int quarter = rotation / 90;
  const auto [width, height] = TurnedSize(source->width, source->height, quarter);
  return MakeOne(6, width, height, make, [&](Outcome& outcome, StoredPicture& result) {
    if (flipH > 1 || flipV > 1) return;  // neither true nor false
    Pass pass(outcome, yield, Rule::YieldMakeCount, 1, {1});
    pass.Paint(FlipRotated(View(*source), flipH == 1, flipV == 1, quarter), result);
  });
}

namespace {

Outcome Shear(const StoredPicture* source, Lines lines, int width, int height, double shear, std::uint32_t frameColour,
              int yield, const MakePicture& make) {
  if (shear > 1.0 || shear < -1.0) return Failure(33);
  if (source == nullptr) return Failure(2);
  if (source->fault != Fault::None) return {};
  return MakeOne(0, width, height, make, [&](Outcome& outcome, StoredPicture& result) {
    Pass pass(outcome, yield, Rule::YieldMakeCount, 1, {1});
    pass.Paint(Sheared(View(*source), lines, result.width, result.height, shear, frameColour), result);
  });
}

// Beyond these sizes the units of coverage become 0 or overflow.
bool StretchIsTooFar(int from, int to) {
  return to > 65535 || std::int64_t{from} > std::int64_t{32768} * to;
}

}  // namespace

Outcome ShearHorizontal(const StoredPicture* source, int width, int height, double shear, std::uint32_t frameColour,
                        int yield, const MakePicture& make) {
  return Shear(source, Lines::Rows, width, height, shear, frameColour, yield, make);
}

Outcome ShearVertical(const StoredPicture* source, int width, int height, double shear, std::uint32_t frameColour,
                      int yield, const MakePicture& make) {
  return Shear(source, Lines::Columns, width, height, shear, frameColour, yield, make);
}

Outcome FreeRotateByShear(const StoredPicture* source, double rotation, std::uint32_t /*frameColour*/, int yield,
                          const MakePicture& make) {
  if (rotation >= 360.0 || rotation < 0.0) return Failure(31);
  if (source == nullptr) return Failure(2);
  Outcome outcome;
  if (source->fault != Fault::None) return outcome;
  const StoredPicture* from = source;
  const std::vector<RotationStep> steps = RotationSteps(source->width, source->height, rotation);
  for (std::size_t number = 1; number <= steps.size(); ++number) {
    const RotationStep& step = steps[number - 1];
    const bool isLast = number == steps.size();
    StoredPicture* to = (isLast ? MakeResult : MakeTemporary)(outcome, step.width, step.height, make);
    if (isLast && (to != nullptr || outcome.made.back().fault == Fault::NoPixels)) {
      outcome.result = number;  // returned unchanged if it cannot be locked
      outcome.lost = 0;
    }
    if (to == nullptr) return outcome;
    const bool isFirst = number == 1;
    Pass pass(outcome, yield, Rule::YieldMakeCount, number,
              isFirst ? std::vector{number} : std::vector{number - 1, number});
    pass.Paint(step.make(View(*from), to->width, to->height), *to);
    from = to;
  }
  return outcome;
}

Outcome Stretch(const StoredPicture* source, int width, int height, int yield, const MakePicture& make) {
  if (height <= 0) return Failure(35);
  if (width <= 0) return Failure(34);
  if (source == nullptr) return Failure(2);
  if (source->fault != Fault::None) return Failure(4);
  if (StretchIsTooFar(source->height, height)) return Failure(35);
  if (StretchIsTooFar(source->width, width)) return Failure(34);
  return MakeOne(0, width, height, make, [&](Outcome& outcome, StoredPicture& result) {
    StoredPicture* temporary =
        source->width == 0 ? nullptr : MakeTemporary(outcome, result.width, source->height, make);
    if (temporary == nullptr) {
      outcome.code = 5;
      return;
    }
    const auto paint = [&](const StoredPicture& from, Lines lines, StoredPicture& to, std::size_t number) {
      const bool alongRows = lines == Lines::Rows;
      const int length = alongRows ? from.width : from.height, newLength = alongRows ? to.width : to.height;
      // The host may make pictures of other sizes than requested.
      if (length < 1 || newLength < 1 || StretchIsTooFar(length, newLength)) return;
      Pass pass(outcome, yield, Rule::YieldMakeCount, number, {1, 2});
      pass.Paint(Stretched(View(from), lines, to.width, to.height), to);
    };
    paint(*source, Lines::Rows, *temporary, 2);
    paint(*temporary, Lines::Columns, result, 1);
  });
}

Outcome Trim(const StoredPicture* source, const Rectangle& area, std::uint32_t frameColour, int /*yield*/,
             const MakePicture& make) {
  if (source == nullptr) return Failure(2);
  if (source->fault != Fault::None) return Failure(4);
  constexpr std::int64_t kLast = std::numeric_limits<std::int32_t>::max();
  if (area.width < 1 || area.height < 1) return Failure(39);
  if (std::int64_t{area.left} + area.width - 1 > kLast || std::int64_t{area.top} + area.height - 1 > kLast) {
    return Failure(39);
  }
  return MakeOne(6, area.width, area.height, make, [&](Outcome& outcome, StoredPicture& result) {
    Pass pass(outcome, 0, Rule::YieldMakeCount, 1, {1});
    pass.Paint(Trimmed(View(*source), area, frameColour), result);
  });
}

// ----------------------------------------------------------------------------------------- colours

namespace {

int CodeOf(const HsvChange& change) {
  if (change.hueDegrees <= -360.0 || change.hueDegrees >= 360.0) return 43;
  if (change.saturationFactor < 0.0 || change.saturationFactor >= 1000.0) return 44;
  if (change.brightnessFactor < 0.0 || change.brightnessFactor >= 1000.0) return 45;
  return 0;
}

int CodeOf(const RgbChange& change) {
  const auto bad = [](int delta) { return delta < -255 || delta > 255; };
  return bad(change.red) ? 40 : bad(change.green) ? 41 : bad(change.blue) ? 42 : 0;
}

Selection Select(const StoredPicture& source, const Rectangle& rectangle) {
  return Selection(rectangle, source.width, source.height);
}

template <class Change>
int AdjustCode(const StoredPicture* source, const Rectangle& rectangle, const Change& change) {
  if (source == nullptr) return 2;
  if (const int code = CodeOf(change)) return code;
  if (source->fault != Fault::None) return 4;
  return Select(*source, rectangle).Valid() ? 0 : 38;
}

template <class Change>
Outcome AdjustCopy(const StoredPicture* source, const Rectangle& rectangle, const Change& change, int yield,
                   const MakePicture& make) {
  if (const int code = AdjustCode(source, rectangle, change)) return Failure(code);
  return MakeOne(6, source->width, source->height, make, [&](Outcome& outcome, StoredPicture& result) {
    Pass pass(outcome, yield, Rule::MakeCountYield, 1, {1});
    pass.Paint(Adjusted(View(*source), rectangle, change), result);
  });
}

// Changes these rows of the source in place.
template <class Change>
Outcome AdjustRows(const StoredPicture& source, const Rectangle& rectangle, const Change& change, int yield, int first,
                   int last) {
  Outcome outcome;
  outcome.changed = source;
  Pass pass(outcome, yield, Rule::MakeCountYield, 0, {});
  pass.PaintLines(Adjusted(View(source), rectangle, change), *outcome.changed, first, last);
  return outcome;
}

int AverageCode(const StoredPicture* source, const Rectangle& rectangle) {
  if (source == nullptr) return 2;
  if (source->fault != Fault::None) return 4;
  if (source->width == 0 || source->height == 0) return 38;
  return Select(*source, rectangle).Valid() ? 0 : 38;
}

Sums Measure(const StoredPicture& source, const Rectangle& rectangle, Outcome& outcome, int yield) {
  const Selection selection = Select(source, rectangle);
  Sums sums;
  Pass pass(outcome, yield, Rule::MakeCountYield, 0, {});
  for (int y = selection.y0; y <= selection.y1; ++y) {
    pass.Line(y, selection.x1 - selection.x0 + 1, [&](int i) { sums.Add(source.Read(selection.x0 + i, y)); });
  }
  return sums;
}

}  // namespace

Outcome AdjustHsv(const StoredPicture* source, const Rectangle& selection, const HsvChange& change, int yield,
                  const MakePicture& make) {
  return AdjustCopy(source, selection, change, yield, make);
}

Outcome AdjustHsvInPlace(const StoredPicture* source, const Rectangle& selection, const HsvChange& change, int yield) {
  if (const int code = AdjustCode(source, selection, change)) return Failure(code);
  return AdjustRows(*source, selection, change, yield, 0, source->height - 1);
}

Outcome AdjustRgb(const StoredPicture* source, const Rectangle& selection, const RgbChange& change, int yield,
                  const MakePicture& make) {
  return AdjustCopy(source, selection, change, yield, make);
}

// Rows without a selected pixel are skipped and not counted.
Outcome AdjustRgbInPlace(const StoredPicture* source, const Rectangle& selection, const RgbChange& change, int yield) {
  if (const int code = AdjustCode(source, selection, change)) return Failure(code);
  const Selection selected = Select(*source, selection);
  return AdjustRows(*source, selection, change, yield, std::max(selected.y0, 0), selected.y1);
}

Outcome AverageHsv(const StoredPicture* source, const Rectangle& selection, int yield) {
  if (const int code = AverageCode(source, selection)) return Failure(code);
  Outcome outcome;
  outcome.meanHsv = Measure(*source, selection, outcome, yield).MeanHsv();
  return outcome;
}

Outcome AverageRgb(const StoredPicture* source, const Rectangle& selection, int yield) {
  if (const int code = AverageCode(source, selection)) return Failure(code);
  Outcome outcome;
  outcome.meanRgb = Measure(*source, selection, outcome, yield).MeanRgb();
  return outcome;
}

// --------------------------------------------------------------------------------------- gradients

namespace {

Outcome Generate(int width, int height, const std::vector<std::uint32_t>& colours, int yield, const MakePicture& make) {
  if (height <= 0) return Failure(35);
  if (width <= 0) return Failure(34);
  return MakeOne(6, width, height, make, [&](Outcome& outcome, StoredPicture& result) {
    Pass pass(outcome, yield, Rule::MakeYieldCount, 1, {1});
    pass.Paint(Gradient(result.width, result.height, colours), result);
  });
}

}  // namespace

Outcome MakeGradient(int width, int height, std::uint32_t colour1, std::uint32_t colour2, int yield,
                     const MakePicture& make) {
  return Generate(width, height, {colour1, colour2}, yield, make);
}

Outcome MakeDoubleGradient(int width, int height, std::uint32_t colour1, std::uint32_t colour2, std::uint32_t colour3,
                           int yield, const MakePicture& make) {
  return Generate(width, height, {colour1, colour2, colour3}, yield, make);
}

// ------------------------------------------------------------------------------------------ errors

const char* ErrorMessage(int code) {
  static const std::map<int, const char*> messages = {
      {0, "General Error: No Error"},
      {2, "General Error: \"source\" parameter is nil"},
      {4, "General Error: can't lock \"source\" picture"},
      {5, "General Error: can't lock intermediate picture"},
      {6, "General Error: can't lock result picture"},
      {7, "General Error: can't get DIB object"},
      {8, "General Error: \"mask\" parameter is nil"},
      {9, "General Error: can't lock \"mask\" picture"},
      {10, "General Error: \"mask\" is not same size as \"source\""},
      {11, "General Error: \"mask\" is not greyscale (1, 2, 4, or 8 bit)"},
      {12, "General Error: \"mask\" is not black and white (1 bit)"},
      {13, "General Error: \"overlay\" parameter is nil"},
      {14, "General Error: can't lock \"overlay\" picture"},
      {15, "General Error: \"overlay_fraction\" positioned out of bounds"},
      {16, "General Error: \"overlay\" positioned out of bounds"},
      {17, "General Error: \"overlay\" is wrong size"},
      {18, "General Error: \"addend\" is nil"},
      {19, "General Error: can't lock \"addend\" picture"},
      {20, "General Error: \"addend\" is wrong size"},
      {21, "General Error: \"subtractend\" is nil"},
      {22, "General Error: can't lock \"subtractend\" picture"},
      {23, "General Error: \"subtractend\" is wrong size"},
      {24, "General Error: \"color_matrix\" parameter is nil"},
      {25, "General Error: \"convolution\" parameter is nil"},
      {26, "TPQ_Pixelate Error: \"start_row\" parameter is out of bounds"},
      {27, "TPQ_Pixelate Error: \"start_col\" parameter is out of bounds"},
      {28, "TPQ_Pixelate Error: \"row_count\" parameter is out of bounds"},
      {29, "TPQ_Pixelate Error: \"col_count\" parameter is out of bounds"},
      {30, "TPQ_Pixelate Error: \"pixelation\" parameter is out of bounds"},
      {31, "Rotate Error: \"rotation\" parameter is out of bounds"},
      {32, "Rotate Error: \"rotation_oversample\" parameter is out of bounds"},
      {33, "Shear Error: \"shear_pixels\" parameter is out of bounds"},
      {34, "Stretch Error: \"width\" parameter is out of bounds"},
      {35, "Stretch Error: \"height\" parameter is out of bounds"},
      {36, "Stretch Error: \"oversample\" parameter is out of bounds"},
      {37, "Stretch Error: \"blur\" parameter is out of bounds"},
      {38, "Color Error: invalid selection"},
      {39, "Color Error: invalid trim area"},
      {40, "Color Error: red parameter out of bounds"},
      {41, "Color Error: green parameter out of bounds"},
      {42, "Color Error: blue parameter out of bounds"},
      {43, "Color Error: degrees out of bounds"},
      {44, "Color Error: saturation factor out of bounds"},
      {45, "Color Error: brightness factor out of bounds"},
      {46, "Color Error: ant size out of bounds"},
      {47, "Color Error: ant state out of bounds"},
      {48, "Color Error: bits per channel out of bounds"},
      {49, "Compare Error: \"compare\" parameter is nil"},
      {50, "Compare Error: can't lock \"compare\" picture"},
  };
  const auto message = messages.find(code);
  return message == messages.end() ? "Unknown Error" : message->second;
}

}  // namespace model
