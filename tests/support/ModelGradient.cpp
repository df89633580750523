// Vertical gradients, and the texts of the error codes.

#include "ModelParts.h"

namespace model {
namespace {

// One channel of colour P with weight tP and colour N with weight tN. Both products lose their
// fractions.
std::uint32_t BlendChannel(std::uint32_t P, double tP, std::uint32_t N, double tN) {
  const std::int32_t next = IntegerPart(N * tN);
  const std::int32_t blended = IntegerPart(next + P * tP);
  if (blended < 0) return 0;
  return blended > 255 ? 255 : static_cast<std::uint32_t>(blended);
}

std::uint32_t BlendColours(std::uint32_t P, double tP, std::uint32_t N, double tN) {
  return Pack(BlendChannel(255 - Alpha(P), tP, 255 - Alpha(N), tN), BlendChannel(Red(P), tP, Red(N), tN),
              BlendChannel(Green(P), tP, Green(N), tN), BlendChannel(Blue(P), tP, Blue(N), tN));
}

// Rows from `first` to `end` - 1: colour P in the first, N in the last one. A single row divides 0
// by 0.
void Section(StoredPicture& picture, int first, int end, std::uint32_t P, std::uint32_t N, Pass& pass) {
  const double d = end - 1 - first;
  for (int y = first; y < end; ++y) {
    const std::uint32_t pixel = BlendColours(P, (end - 1 - y) / d, N, (y - first) / d);
    for (int x = 0; x < picture.width; ++x) picture.Write(x, y, pixel);
    pass.YieldAfterLine(y, picture.width);
  }
}

using Paint = std::function<void(StoredPicture& picture, Pass& pass)>;

Outcome Generate(int width, int height, int yield, const MakePicture& make, const Paint& paint) {
  if (height <= 0) return Failure(35);
  if (width <= 0) return Failure(34);
  Outcome outcome;
  StoredPicture* result = MakeResult(outcome, width, height, make);
  if (result == nullptr) {
    outcome.code = 6;
    return outcome;
  }
  Pass pass(outcome, yield, 1, Order::TopDown, {1});
  paint(*result, pass);
  outcome.result = 1;
  return outcome;
}

}  // namespace

Outcome MakeGradient(int width, int height, std::uint32_t colour1, std::uint32_t colour2, int yield,
                     const MakePicture& make) {
  return Generate(width, height, yield, make, [&](StoredPicture& picture, Pass& pass) {
    Section(picture, 0, picture.height, colour1, colour2, pass);
  });
}

Outcome MakeDoubleGradient(int width, int height, std::uint32_t colour1, std::uint32_t colour2, std::uint32_t colour3,
                           int yield, const MakePicture& make) {
  return Generate(width, height, yield, make, [&](StoredPicture& picture, Pass& pass) {
    const int half = picture.height / 2;
    Section(picture, 0, half, colour1, colour2, pass);
    Section(picture, half, picture.height, colour2, colour3, pass);
  });
}

const char* ErrorMessage(int code) {
  switch (code) {
    case 0:
      return "General Error: No Error";
    case 2:
      return "General Error: \"source\" parameter is nil";
    case 4:
      return "General Error: can't lock \"source\" picture";
    case 5:
      return "General Error: can't lock intermediate picture";
    case 6:
      return "General Error: can't lock result picture";
    case 7:
      return "General Error: can't get DIB object";
    case 8:
      return "General Error: \"mask\" parameter is nil";
    case 9:
      return "General Error: can't lock \"mask\" picture";
    case 10:
      return "General Error: \"mask\" is not same size as \"source\"";
    case 11:
      return "General Error: \"mask\" is not greyscale (1, 2, 4, or 8 bit)";
    case 12:
      return "General Error: \"mask\" is not black and white (1 bit)";
    case 13:
      return "General Error: \"overlay\" parameter is nil";
    case 14:
      return "General Error: can't lock \"overlay\" picture";
    case 15:
      return "General Error: \"overlay_fraction\" positioned out of bounds";
    case 16:
      return "General Error: \"overlay\" positioned out of bounds";
    case 17:
      return "General Error: \"overlay\" is wrong size";
    case 18:
      return "General Error: \"addend\" is nil";
    case 19:
      return "General Error: can't lock \"addend\" picture";
    case 20:
      return "General Error: \"addend\" is wrong size";
    case 21:
      return "General Error: \"subtractend\" is nil";
    case 22:
      return "General Error: can't lock \"subtractend\" picture";
    case 23:
      return "General Error: \"subtractend\" is wrong size";
    case 24:
      return "General Error: \"color_matrix\" parameter is nil";
    case 25:
      return "General Error: \"convolution\" parameter is nil";
    case 26:
      return "TPQ_Pixelate Error: \"start_row\" parameter is out of bounds";
    case 27:
      return "TPQ_Pixelate Error: \"start_col\" parameter is out of bounds";
    case 28:
      return "TPQ_Pixelate Error: \"row_count\" parameter is out of bounds";
    case 29:
      return "TPQ_Pixelate Error: \"col_count\" parameter is out of bounds";
    case 30:
      return "TPQ_Pixelate Error: \"pixelation\" parameter is out of bounds";
    case 31:
      return "Rotate Error: \"rotation\" parameter is out of bounds";
    case 32:
      return "Rotate Error: \"rotation_oversample\" parameter is out of bounds";
    case 33:
      return "Shear Error: \"shear_pixels\" parameter is out of bounds";
    case 34:
      return "Stretch Error: \"width\" parameter is out of bounds";
    case 35:
      return "Stretch Error: \"height\" parameter is out of bounds";
    case 36:
      return "Stretch Error: \"oversample\" parameter is out of bounds";
    case 37:
      return "Stretch Error: \"blur\" parameter is out of bounds";
    case 38:
      return "Color Error: invalid selection";
    case 39:
      return "Color Error: invalid trim area";
    case 40:
      return "Color Error: red parameter out of bounds";
    case 41:
      return "Color Error: green parameter out of bounds";
    case 42:
      return "Color Error: blue parameter out of bounds";
    case 43:
      return "Color Error: degrees out of bounds";
    case 44:
      return "Color Error: saturation factor out of bounds";
    case 45:
      return "Color Error: brightness factor out of bounds";
    case 46:
      return "Color Error: ant size out of bounds";
    case 47:
      return "Color Error: ant state out of bounds";
    case 48:
      return "Color Error: bits per channel out of bounds";
    case 49:
      return "Compare Error: \"compare\" parameter is nil";
    case 50:
      return "Compare Error: can't lock \"compare\" picture";
    default:
      return "Unknown Error";
  }
}

}  // namespace model
