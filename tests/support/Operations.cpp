#include "Operations.h"

#include <algorithm>
#include <stdexcept>

namespace support {
namespace {

using host::Colour;

constexpr Colour kSky = {0x3070D0}, kWhite = {0xF0F8FF};

// A part of a length, at least 1.
int Scaled(int length, int numerator, int denominator) {
  return std::max(length * numerator / denominator, 1);
}

template <bool flipH, bool flipV, int rotation>
Arguments Turn(Size, Size, Colour) {
  return {flipH, flipV, rotation};
}

template <int degrees>
Arguments Rotate(Size, Size, Colour frame) {
  return {double{degrees}, frame};
}

// The result holds the whole slanted picture.
Arguments ShearH(Size s, Size, Colour frame) {
  return {s.width + s.height * 3 / 10, s.height, 0.3, frame};
}
Arguments ShearV(Size s, Size, Colour frame) {
  return {s.width, s.height + s.width * 3 / 10, 0.3, frame};
}
// The result crops the slanted picture, and has lines that are all frame.
Arguments CroppingShearH(Size s, Size, Colour frame) {
  return {s.width + 5, s.height + 3, 0.3, frame};
}
Arguments CroppingShearV(Size s, Size, Colour frame) {
  return {s.width - 1, s.height + 7, -0.6, frame};
}

Arguments Stretch(Size, Size result, Colour) {
  return {result.width, result.height};
}
Arguments StretchToFewRows(Size, Size result, Colour) {
  return {result.width, result.height / 35 + 1};
}
Arguments StretchToFewColumns(Size, Size result, Colour) {
  return {result.width / 35 + 1, result.height};
}

Arguments TrimWhole(Size s, Size, Colour frame) {
  return {0, 0, s.width, s.height, frame};
}
// Three quarters of each side.
Arguments TrimInside(Size s, Size, Colour frame) {
  return {s.width / 8, s.height / 8, Scaled(s.width, 3, 4), Scaled(s.height, 3, 4), frame};
}
// Adds a twentieth of each side around the picture.
Arguments TrimBorder(Size s, Size, Colour frame) {
  const int x = s.width / 20, y = s.height / 20;
  return {-x, -y, s.width + 2 * x, s.height + 2 * y, frame};
}

Arguments AdjustHSV(Size s, Size, Colour) {
  return {0, 0, s.width, s.height, 30.0, 1.0, 1.0, false};
}
Arguments AdjustHSVInside(Size s, Size, Colour) {
  return {1, 2, s.width - 4, s.height - 5, 40.0, 1.0, 2.0, false};
}
Arguments NegateInside(Size s, Size, Colour) {
  return {2, 1, s.width, s.height - 3, -70.0, 2.0, 1.0, true};
}
Arguments AdjustRGB(Size s, Size, Colour) {
  return {0, 0, s.width, s.height, 20, -10, 5};
}
Arguments AdjustRGBInside(Size s, Size, Colour) {
  return {1, 2, s.width - 4, s.height - 5, 10, -20, 30};
}
// The ByRef arguments start with values that no mean can have.
Arguments AverageHSV(Size s, Size, Colour) {
  return {0, 0, s.width, s.height, -7.0, -8.0, -9.0};
}
Arguments AverageHSVInside(Size s, Size, Colour) {
  return {1, 1, s.width, s.height - 4, -7.0, -8.0, -9.0};
}
Arguments AverageRGB(Size s, Size, Colour) {
  return {0, 0, s.width, s.height, -7, -8, -9};
}
Arguments AverageRGBInside(Size s, Size, Colour) {
  return {1, 1, s.width, s.height - 4, -7, -8, -9};
}

Arguments Gradient(Size, Size result, Colour colour) {
  return {result.width, result.height, colour, kSky};
}
Arguments DoubleGradient(Size, Size result, Colour colour) {
  return {result.width, result.height, kSky, colour, kWhite};
}

}  // namespace

bool WorksInPlace(const std::string& method) {
  return method.find("_InPlace") != std::string::npos;
}

Size Operation::ResultOf(Size source) const {
  return {Scaled(source.width, across.result, across.source), Scaled(source.height, down.result, down.source)};
}

Size Operation::SourceOf(Size result) const {
  return {result.width * across.source / across.result, result.height * down.source / down.result};
}

const std::vector<Operation>& Operations() {
  constexpr bool kMeasured = true, kTestsOnly = false;
  constexpr Ratio kTurned = {4, 3};  // a turned picture and its bounding box
  static const std::vector<Operation> operations = {
      {"flip horizontal", "LMX_FlipRotate", kMeasured, Turn<true, false, 0>},
      {"flip vertical", "LMX_FlipRotate", kMeasured, Turn<false, true, 0>},
      {"half turn", "LMX_FlipRotate", kMeasured, Turn<false, false, 180>},
      {"turn 90", "LMX_FlipRotate", kMeasured, Turn<false, false, 90>},
      {"turn 270", "LMX_FlipRotate", kMeasured, Turn<false, false, 270>},
      {"shear horizontal 0.3", "LMX_ShearHorizontal", kMeasured, ShearH},
      {"shear horizontal, cropped", "LMX_ShearHorizontal", kTestsOnly, CroppingShearH},
      {"shear vertical 0.3", "LMX_ShearVertical", kMeasured, ShearV},
      {"shear vertical, cropped", "LMX_ShearVertical", kTestsOnly, CroppingShearV},
      {"rotate 30", "LMX_FreeRotateByShear", kMeasured, Rotate<30>, kTurned, kTurned},
      {"rotate 75", "LMX_FreeRotateByShear", kMeasured, Rotate<75>, kTurned, kTurned},
      {"stretch 1/2", "LMX_Stretch", kMeasured, Stretch, {1, 2}, {1, 2}},
      {"stretch 1/3.7", "LMX_Stretch", kMeasured, Stretch, {10, 37}, {10, 37}},
      {"stretch 0.9", "LMX_Stretch", kMeasured, Stretch, {9, 10}, {9, 10}},
      {"stretch 1.5", "LMX_Stretch", kMeasured, Stretch, {3, 2}, {3, 2}},
      {"stretch 3", "LMX_Stretch", kMeasured, Stretch, {3, 1}, {3, 1}},
      {"stretch to half, and larger", "LMX_Stretch", kTestsOnly, Stretch, {1, 2}, {3, 2}},
      {"stretch to few rows", "LMX_Stretch", kTestsOnly, StretchToFewRows},
      {"stretch to few columns", "LMX_Stretch", kTestsOnly, StretchToFewColumns},
      {"trim whole", "LMX_Trim", kMeasured, TrimWhole},
      {"trim inside", "LMX_Trim", kMeasured, TrimInside},
      {"trim border", "LMX_Trim", kMeasured, TrimBorder},
      {"HSV", "LMX_AdjustHSV", kMeasured, AdjustHSV},
      {"HSV inside", "LMX_AdjustHSV", kTestsOnly, AdjustHSVInside},
      {"HSV in place", "LMX_AdjustHSV_InPlace", kMeasured, AdjustHSV},
      {"negative inside, in place", "LMX_AdjustHSV_InPlace", kTestsOnly, NegateInside},
      {"RGB", "LMX_AdjustRGB", kMeasured, AdjustRGB},
      {"RGB inside", "LMX_AdjustRGB", kTestsOnly, AdjustRGBInside},
      {"RGB in place", "LMX_AdjustRGB_InPlace", kMeasured, AdjustRGB},
      {"RGB inside, in place", "LMX_AdjustRGB_InPlace", kTestsOnly, AdjustRGBInside},
      {"average RGB", "LMX_GetAverageRGB", kMeasured, AverageRGB},
      {"average RGB inside", "LMX_GetAverageRGB", kTestsOnly, AverageRGBInside},
      {"average HSV", "LMX_GetAverageHSV", kMeasured, AverageHSV},
      {"average HSV inside", "LMX_GetAverageHSV", kTestsOnly, AverageHSVInside},
      {"gradient", "LMX_MakeGradient", kMeasured, Gradient},
      {"double gradient", "LMX_MakeDoubleGradient", kMeasured, DoubleGradient},
  };
  return operations;
}

const Operation& OperationNamed(const std::string& name) {
  const auto found = std::find_if(Operations().begin(), Operations().end(),
                                  [&](const Operation& operation) { return operation.name == name; });
  if (found == Operations().end()) throw std::logic_error("no operation is called " + name);
  return *found;
}

}  // namespace support
