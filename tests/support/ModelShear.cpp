// Shears, and free rotation, which is a quarter turn and three shears.

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "ModelParts.h"
#include "ReferenceFunctions.h"

namespace model {
namespace {

using Channels = std::array<std::uint32_t, 4>;  // alpha, red, green, blue

Channels Split(std::uint32_t pixel) {
  return {Alpha(pixel), Red(pixel), Green(pixel), Blue(pixel)};
}

std::uint32_t Join(const Channels& channels) {
  return Pack(channels[0], channels[1], channels[2], channels[3]);
}

// The pixel before with weight f, the current one with the rest of 65535.
std::uint32_t Blend(const Channels& before, const Channels& current, std::uint32_t f) {
  Channels blended;
  for (std::size_t i = 0; i < 4; ++i) {
    const std::uint32_t u = current[i] * (65535 - f) + before[i] * f;
    blended[i] = u >= 16776960 ? 255 : u / 65535;
  }
  return Join(blended);
}

// The pixel after the end of a line: the last pixel with weight f, the frame with the rest, by a
// shift.
std::uint32_t BlendEdge(const Channels& last, const Channels& frame, std::uint32_t f) {
  const bool opaqueFrame = frame[0] == 255;
  Channels blended;
  for (std::size_t i = 0; i < 4; ++i) {
    const std::uint32_t beside = i > 0 && opaqueFrame ? last[i] : frame[i];
    const std::uint32_t u = last[i] * f + beside * (65535 - f);
    blended[i] = u > 16777215 ? 255 : u >> 16;
  }
  return Join(blended);
}

// The horizontal shear of a picture, or, with rows and columns exchanged, the vertical one.
class Shear {
 public:
  Shear(const StoredPicture& source, StoredPicture& result, bool horizontal, double shear, std::uint32_t frameColour)
      : source_(source),
        result_(result),
        horizontal_(horizontal),
        shear_(std::isnan(shear) ? 0 : shear),
        frame_(frameColour ^ 0xFF000000),
        W_(horizontal ? source.width : source.height),
        H_(horizontal ? source.height : source.width),
        Wd_(horizontal ? result.width : result.height),
        Hd_(horizontal ? result.height : result.width),
        down_(result, 0, 1) {}

  void Run(Pass pass) {
    const std::int64_t T = Hd_ > H_ ? (Hd_ - H_) / 2 : 0;
    const std::int64_t r0 = Hd_ < H_ ? (H_ - Hd_) / 2 : 0;
    const std::int64_t E = Hd_ > H_ ? T + H_ : Hd_;
    const std::int64_t Wn = NaturalWidth();
    const std::int64_t M = Wd_ > Wn ? (Wd_ - Wn) / 2 * 65536 : 0;
    const std::int64_t K = Wd_ < Wn ? (Wn - Wd_) / 2 * 65536 : 0;
    const auto s = static_cast<std::int64_t>(std::floor(shear_ * 65536.0));
    std::int64_t offset = M - K + (s > 0 ? H_ * s : 0) - s * r0;

    for (int y = 0; y < Hd_; ++y) {
      pass.BeforeLine(y, static_cast<int>(Wd_));
      if (y < T || y >= E || W_ == 0) {
        FillFrame(y, 0, Wd_);
        continue;
      }
      BodyRow(y, r0 + (y - T), offset);
      offset -= s;
    }
  }

 private:
  std::int64_t NaturalWidth() const {
    const double width = static_cast<double>(W_);
    const double height = static_cast<double>(H_);
    return static_cast<std::int64_t>(std::floor(shear_ >= 0 ? width + height * shear_ : width - height * shear_));
  }

  void BodyRow(int y, std::int64_t r, std::int64_t offset) {
    const auto whole = static_cast<std::int64_t>(std::floor(static_cast<double>(offset) / 65536));
    const auto f = static_cast<std::uint32_t>(offset - whole * 65536);
    if (whole + W_ < 0 || whole >= Wd_) return FillFrame(y, 0, Wd_);
    const std::int64_t xe = std::min(whole + W_, Wd_);

    std::int64_t x = std::max<std::int64_t>(whole, 0);
    FillFrame(y, 0, x);
    first_ = offset < 0 ? -whole - 1 : 0;
    std::int64_t j = 0;  // the next source column
    Channels P = Split(frame_);
    if (offset < 0) {
      P = Split(Read(first_, r));
      j = first_ + 1;
    } else if (P[0] == 255) {
      P = Split(Read(0, r));
      P[0] = 255;
    }
    for (; x < xe; ++x) {
      const Channels Q = Split(Read(j++, r));
      Write(x, y, Blend(P, Q, f));
      P = Q;
    }
    if (x < Wd_ && f >= 1) Write(x++, y, BlendEdge(P, Split(frame_), f));
    FillFrame(y, x, Wd_);
  }

  void FillFrame(int y, std::int64_t from, std::int64_t end) {
    for (std::int64_t x = from; x < end; ++x) Write(x, y, frame_);
  }

  std::uint32_t Read(std::int64_t x, std::int64_t y) const {
    const int line = static_cast<int>(y), i = static_cast<int>(x);
    if (horizontal_) return source_.Read(i, line);
    if (source_.missingRows.empty()) return source_.Read(line, i);
    const int first = static_cast<int>(first_);
    return source_.Read(line, ColumnWalk(source_, first, 1).RowAfter(i - first));
  }

  void Write(std::int64_t x, std::int64_t y, std::uint32_t pixel) {
    const int line = static_cast<int>(y), i = static_cast<int>(x);
    if (horizontal_) {
      result_.Write(i, line, pixel);
    } else {
      result_.Write(line, down_.RowAfter(i), pixel);
    }
  }

  const StoredPicture& source_;
  StoredPicture& result_;
  const bool horizontal_;
  const double shear_;
  const std::uint32_t frame_;
  const std::int64_t W_, H_, Wd_, Hd_;
  const ColumnWalk down_;   // along the columns of the result
  std::int64_t first_ = 0;  // the source column (row) with which the line starts
};

Order ShearOrder(bool horizontal) {
  return horizontal ? Order::TopDown : Order::LeftRight;
}

Outcome ShearMethod(const StoredPicture* source, int width, int height, double shear, bool horizontal,
                    std::uint32_t frameColour, int yield, const MakePicture& make) {
  if (shear > 1.0 || shear < -1.0) return Failure(33);
  if (source == nullptr) return Failure(2);
  Outcome outcome;
  if (source->fault != Fault::None) return outcome;
  StoredPicture* result = MakeResult(outcome, width, height, make);
  if (result == nullptr) return outcome;
  Shear(*source, *result, horizontal, shear, frameColour).Run(Pass(outcome, yield, 1, ShearOrder(horizontal), {1}));
  outcome.result = 1;
  return outcome;
}

struct Size {
  int width, height;
};

double Normalised(double angle) {
  if (angle < 0.0) angle += 6.28318;
  if (angle > 6.28318) angle -= 6.28318;
  return angle;
}

// The box round a rectangle that is turned by d degrees (theta in radians).
Size TurnedSize(Size size, double d, double theta) {
  if (d == 0) return size;
  const double h = size.height;
  const double w = size.width;
  const double a = reference::ArcTangent(h / w);
  const double A1 = Normalised(theta + a);
  const double A2 = Normalised((3.14159 - a) + theta);
  const double A3 = Normalised(theta - a);
  const double R = std::sqrt((h * h + w * w) * 0.25);
  if (d > 0)
    return {IntegerPart(std::ceil(2 * R * reference::Cosine(A3))),
            IntegerPart(std::ceil(reference::Sine(A1) * (2 * R)))};
  return {IntegerPart(std::ceil(2 * R * reference::Cosine(A1))), IntegerPart(std::ceil(reference::Sine(A2) * (2 * R)))};
}

// The length of the lines of a sheared picture, or nothing where a 32-bit integer cannot hold what
// it is made from.
std::optional<int> ShearedLength(int length, int lines, double shear) {
  const std::int64_t k = std::abs(std::int64_t{IntegerPart(shear * 65536.0)});
  const std::int64_t sum = std::int64_t{length} * 65536 + 65535 + k * lines;
  if (sum > std::numeric_limits<std::int32_t>::max()) return std::nullopt;
  return static_cast<int>(sum / 65536);
}

}  // namespace

Outcome ShearHorizontal(const StoredPicture* source, int width, int height, double shear, std::uint32_t frameColour,
                        int yield, const MakePicture& make) {
  return ShearMethod(source, width, height, shear, true, frameColour, yield, make);
}

Outcome ShearVertical(const StoredPicture* source, int width, int height, double shear, std::uint32_t frameColour,
                      int yield, const MakePicture& make) {
  return ShearMethod(source, width, height, shear, false, frameColour, yield, make);
}

Outcome FreeRotateByShear(const StoredPicture* source, double rotation, std::uint32_t /*frameColour*/, int yield,
                          const MakePicture& make) {
  if (rotation >= 360.0 || rotation < 0.0) return Failure(31);
  if (source == nullptr) return Failure(2);
  Outcome outcome;
  if (source->fault != Fault::None) return outcome;
  if (std::isnan(rotation)) rotation = 0;
  constexpr std::uint32_t kFrame = 0xFF000000;

  const int q = IntegerPart(std::floor((rotation + 45.0) / 90.0));
  const int quarter = q % 4;
  const double d = rotation - q * 90;
  const bool swapped = quarter == 1 || quarter == 3;
  const Size size = {swapped ? source->height : source->width, swapped ? source->width : source->height};
  const double theta = d * 3.14159 / 180.0;
  const double t = reference::Tangent(theta * -0.5);
  const double u = reference::Sine(-theta);
  const std::optional<int> w2 = ShearedLength(size.width, size.height, -t);
  const std::optional<int> h3 = w2 ? ShearedLength(size.height, *w2, u) : std::nullopt;
  if (!h3) return outcome;  // before any picture is made

  StoredPicture* t1 = MakeTemporary(outcome, size.width, size.height, make);
  if (t1 == nullptr) return outcome;
  FlipRotatePass(*source, *t1, false, false, quarter, outcome, yield, 1);
  const Size turned = TurnedSize(size, d, theta);

  StoredPicture* t2 = MakeTemporary(outcome, *w2, size.height, make);
  if (t2 == nullptr) return outcome;
  Shear(*t1, *t2, true, -t, kFrame).Run(Pass(outcome, yield, 2, Order::TopDown, {1, 2}));

  StoredPicture* t3 = MakeTemporary(outcome, *w2, *h3, make);
  if (t3 == nullptr) return outcome;
  Shear(*t2, *t3, false, u, kFrame).Run(Pass(outcome, yield, 3, Order::LeftRight, {2, 3}));

  StoredPicture* result = MakeResult(outcome, turned.width, turned.height, make);
  if (result == nullptr) {
    if (outcome.made.size() == 4 && outcome.made.back().fault == Fault::NoPixels) {
      outcome.result = 4;  // returned as it is
      outcome.lost = 0;
    }
    return outcome;
  }
  Shear(*t3, *result, true, -t, kFrame).Run(Pass(outcome, yield, 4, Order::TopDown, {3, 4}));
  outcome.result = 4;
  return outcome;
}

}  // namespace model
