// Adjustments and averages of a rectangle's colours.

#include <algorithm>
#include <cmath>

#include "ModelParts.h"

namespace model {
namespace {

// The rectangle that is meant, both ends included.
struct Selection {
  int x0, x1, y0, y1;

  bool Valid() const { return x0 <= x1 && y0 <= y1; }
  bool Contains(int x, int y) const { return HasRow(y) && x0 <= x && x <= x1; }
  bool HasRow(int y) const { return y0 <= y && y <= y1; }
};

Selection Select(const StoredPicture& source, const Rectangle& r) {
  const auto clamp = [](int value, int size) { return std::min(std::max(value, 0), size - 1); };
  return {clamp(r.left, source.width), clamp(WrappingSum(r.left, r.width), source.width), clamp(r.top, source.height),
          clamp(WrappingSum(r.top, r.height), source.height)};
}

using Adjust = std::function<std::uint32_t(std::uint32_t pixel)>;            // one working pixel
using Store = std::function<std::uint32_t(Form form, std::uint32_t pixel)>;  // the stored word of a working pixel

void AdjustRows(const StoredPicture& source, StoredPicture& destination, const Selection& selection,
                const Adjust& adjust, const Store& store, Pass pass) {
  for (int y = 0; y < destination.height; ++y) {
    for (int x = 0; x < destination.width; ++x) {
      const std::uint32_t pixel = source.Read(x, y);
      const std::uint32_t adjusted = selection.Contains(x, y) ? adjust(pixel) : pixel;
      if (destination.missingRows.count(y) == 0) destination.Word(x, y) = store(destination.form, adjusted);
    }
    if (destination.width > 0) pass.CountAfterLine(y, destination.width);
  }
}

Outcome AdjustCopy(const StoredPicture& source, const Rectangle& rectangle, const Adjust& adjust, const Store& store,
                   int yield, const MakePicture& make) {
  if (source.fault != Fault::None) return Failure(4);
  const Selection selection = Select(source, rectangle);
  if (!selection.Valid()) return Failure(38);
  Outcome outcome;
  StoredPicture* result = MakeResult(outcome, source.width, source.height, make);
  if (result == nullptr) {
    outcome.code = 6;
    return outcome;
  }
  AdjustRows(source, *result, selection, adjust, store, Pass(outcome, yield, 1, Order::TopDown, {1}));
  outcome.result = 1;
  return outcome;
}

int HsvCode(const StoredPicture* source, const HsvChange& change) {
  if (source == nullptr) return 2;
  if (change.hueDegrees <= -360.0 || change.hueDegrees >= 360.0) return 43;
  if (change.saturationFactor < 0.0 || change.saturationFactor >= 1000.0) return 44;
  if (change.brightnessFactor < 0.0 || change.brightnessFactor >= 1000.0) return 45;
  return 0;
}

std::int32_t WrappingProduct(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

// A quantity times a scale in 1/1024, within 0 and a greatest value.
std::int32_t Scaled(std::int32_t quantity, std::int32_t scale, std::int32_t greatest) {
  const std::int32_t product = quantity * scale;
  return product < -1023 ? 0 : std::min(product / 1024, greatest);
}

Adjust HsvAdjustment(const HsvChange& change) {
  const std::int32_t hueShift = IntegerPart(std::floor(change.hueDegrees * 1024.0 / 60.0));
  const std::int32_t saturationScale = WrappingProduct(IntegerPart(change.saturationFactor), 1024);
  const std::int32_t valueScale = WrappingProduct(IntegerPart(change.brightnessFactor), 1024);
  return [=](std::uint32_t pixel) {
    Hsv hsv = HsvFromPixel(pixel);
    hsv.hue = WrappingSum(hsv.hue, hueShift);
    if (hsv.hue < 0) hsv.hue += 6144;
    if (hsv.hue > 6143) hsv.hue -= 6144;
    hsv.saturation = Scaled(hsv.saturation, saturationScale, 1023);
    hsv.value = Scaled(hsv.value, valueScale, 255);
    return PixelFromHsv(hsv);
  };
}

Store HsvStore(std::uint8_t negative) {
  if (negative == 0) return WritePixel;
  return [](Form form, std::uint32_t pixel) { return form == Form::Buffer ? (pixel & 0x00FFFFFF) ^ 0x7FFFFFFF : 0; };
}

int RgbCode(const StoredPicture* source, const RgbChange& change) {
  const auto bad = [](int delta) { return delta < -255 || delta > 255; };
  if (source == nullptr) return 2;
  if (bad(change.red)) return 40;
  if (bad(change.green)) return 41;
  if (bad(change.blue)) return 42;
  return 0;
}

Adjust RgbAdjustment(const RgbChange& change) {
  return [=](std::uint32_t pixel) {
    const auto shifted = [](std::uint32_t channel, int delta) {
      return static_cast<std::uint32_t>(std::min(std::max(static_cast<int>(channel) + delta, 0), 255));
    };
    return Pack(Alpha(pixel), shifted(Red(pixel), change.red), shifted(Green(pixel), change.green),
                shifted(Blue(pixel), change.blue));
  };
}

int AverageCode(const StoredPicture* source, const Rectangle& rectangle) {
  if (source == nullptr) return 2;
  if (source->fault != Fault::None) return 4;
  if (source->width == 0 || source->height == 0) return 38;
  return Select(*source, rectangle).Valid() ? 0 : 38;
}

// Sums over a selection, in 32 bits that wrap.
struct Sums {
  std::int32_t red = 0, green = 0, blue = 0, count = 0;
  double saturation = 0, brightness = 0;

  void Add(std::uint32_t pixel) {
    red = WrappingSum(red, static_cast<int>(Red(pixel)));
    green = WrappingSum(green, static_cast<int>(Green(pixel)));
    blue = WrappingSum(blue, static_cast<int>(Blue(pixel)));
    count = WrappingSum(count, 1);
    const double M = std::max({Red(pixel), Green(pixel), Blue(pixel)});
    const double m = std::min({Red(pixel), Green(pixel), Blue(pixel)});
    brightness += M * 0.00390625;
    saturation += M == 0 ? 0 : (M - m) / M;
  }
};

Sums Measure(const StoredPicture& source, const Rectangle& rectangle, Outcome& outcome, int yield) {
  const Selection selection = Select(source, rectangle);
  Sums sums;
  Pass pass(outcome, yield, 0, Order::TopDown, {});
  for (int y = selection.y0; y <= selection.y1; ++y) {
    for (int x = selection.x0; x <= selection.x1; ++x) sums.Add(source.Read(x, y));
    pass.CountAfterLine(y, selection.x1 - selection.x0 + 1);
  }
  return sums;
}

double HueOfMean(int r, int g, int b) {
  const int M = std::max({r, g, b});
  const int m = std::min({r, g, b});
  if (M == 0) return -1.0;
  const double d = M - m;
  double H = 0;
  if (r == M) {
    H = (g - b) / d;
  } else if (g == M) {
    H = (b - r) / d + 2.0;
  } else {
    H = (r - g) / d + 4.0;
  }
  H *= 60.0;
  return H < 0 ? H + 360.0 : H;
}

}  // namespace

Hsv HsvFromPixel(std::uint32_t pixel) {
  const auto R = static_cast<std::int32_t>(Red(pixel));
  const auto G = static_cast<std::int32_t>(Green(pixel));
  const auto B = static_cast<std::int32_t>(Blue(pixel));
  const std::int32_t max = std::max({R, G, B});
  const std::int32_t delta = max - std::min({R, G, B});
  Hsv hsv = {-1, 0, max, static_cast<std::int32_t>(Alpha(pixel))};
  if (max == 0) return hsv;
  hsv.saturation = delta * 1024 / max;
  if (delta == 0) return hsv;
  if (R >= G && R >= B) {
    hsv.hue = (G - B) * 1024 / delta;
  } else if (G > R && G >= B) {
    hsv.hue = 2048 + (B - R) * 1024 / delta;
  } else {
    hsv.hue = 4096 + (R - G) * 1024 / delta;
  }
  if (hsv.hue < 0) hsv.hue += 6144;
  return hsv;
}

std::uint32_t PixelFromHsv(const Hsv& hsv) {
  // Nothing is cut to a byte: a channel below 0 reaches into those above it.
  const auto pack = [&](std::int32_t red, std::int32_t green, std::int32_t blue) {
    return static_cast<std::uint32_t>(hsv.alpha) << 24 | static_cast<std::uint32_t>(red) << 16 |
           static_cast<std::uint32_t>(green) << 8 | static_cast<std::uint32_t>(blue);
  };
  const std::int32_t value = hsv.value;
  const std::int32_t s = hsv.saturation;
  if (s == 0) return pack(value, value, value);
  const std::int32_t i = hsv.hue / 1024;  // truncated: sector 0 begins at -1023
  if (i < 0 || i > 5) return pack(0, 0, 0);
  const std::int32_t p = (1024 - s) * value / 1024;
  const std::int32_t f = hsv.hue - i * 1024;
  const std::int32_t q = (1048576 - f * s) * value / 1048576;
  const std::int32_t t = (1048576 - (1024 - f) * s) * value / 1048576;
  switch (i) {
    case 0:
      return pack(value, t, p);
    case 1:
      return pack(q, value, p);
    case 2:
      return pack(p, value, t);
    case 3:
      return pack(p, q, value);
    case 4:
      return pack(t, p, value);
    default:
      return pack(value, p, q);
  }
}

Outcome AdjustHsv(const StoredPicture* source, const Rectangle& selection, const HsvChange& change, int yield,
                  const MakePicture& make) {
  if (const int code = HsvCode(source, change)) return Failure(code);
  return AdjustCopy(*source, selection, HsvAdjustment(change), HsvStore(change.negative), yield, make);
}

Outcome AdjustHsvInPlace(const StoredPicture* source, const Rectangle& selection, const HsvChange& change, int yield) {
  if (const int code = HsvCode(source, change)) return Failure(code);
  if (source->fault != Fault::None) return Failure(4);
  const Selection selected = Select(*source, selection);
  if (!selected.Valid()) return Failure(38);
  Outcome outcome;
  outcome.changed = *source;
  AdjustRows(*source, *outcome.changed, selected, HsvAdjustment(change), HsvStore(change.negative),
             Pass(outcome, yield, 0, Order::TopDown, {}));
  return outcome;
}

Outcome AdjustRgb(const StoredPicture* source, const Rectangle& selection, const RgbChange& change, int yield,
                  const MakePicture& make) {
  if (const int code = RgbCode(source, change)) return Failure(code);
  return AdjustCopy(*source, selection, RgbAdjustment(change), WritePixel, yield, make);
}

Outcome AdjustRgbInPlace(const StoredPicture* source, const Rectangle& selection, const RgbChange& change, int yield) {
  if (const int code = RgbCode(source, change)) return Failure(code);
  if (source->fault != Fault::None) return Failure(4);
  const Selection selected = Select(*source, selection);
  if (!selected.Valid()) return Failure(38);
  const Adjust adjust = RgbAdjustment(change);
  Outcome outcome;
  outcome.changed = *source;
  Pass pass(outcome, yield, 0, Order::TopDown, {});
  for (int y = 0; y < source->height; ++y) {
    if (!selected.HasRow(y)) continue;  // the count is as after the row before: no yield
    for (int x = 0; x < source->width; ++x) {
      const std::uint32_t pixel = source->Read(x, y);
      outcome.changed->Write(x, y, selected.Contains(x, y) ? adjust(pixel) : pixel);
    }
    pass.CountAfterLine(y, source->width);
  }
  return outcome;
}

Outcome AverageHsv(const StoredPicture* source, const Rectangle& selection, int yield) {
  if (const int code = AverageCode(source, selection)) return Failure(code);
  Outcome outcome;
  const Sums sums = Measure(*source, selection, outcome, yield);
  const double hue = HueOfMean(sums.red / sums.count, sums.green / sums.count, sums.blue / sums.count);
  outcome.meanHsv = {hue, sums.saturation / sums.count, sums.brightness / sums.count};
  return outcome;
}

Outcome AverageRgb(const StoredPicture* source, const Rectangle& selection, int yield) {
  if (const int code = AverageCode(source, selection)) return Failure(code);
  Outcome outcome;
  const Sums sums = Measure(*source, selection, outcome, yield);
  outcome.meanRgb = {sums.red / sums.count, sums.green / sums.count, sums.blue / sums.count};
  return outcome;
}

}  // namespace model
