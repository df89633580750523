#include "Operations.h"

#include <algorithm>

namespace bench {
namespace {

constexpr double kClear = 0xFF000000;
constexpr double kSky = 0x3070D0;
constexpr double kWhite = 0xF0F8FF;
constexpr double kGround = 0x305010;

template <int flipH, int flipV, int rotation>
std::vector<double> Turn(int, int) {
  return {flipH, flipV, rotation};
}

template <int degrees>
std::vector<double> Rotate(int, int) {
  return {degrees, kClear};
}

// A part of a length, never nothing.
int Scaled(int length, int numerator, int denominator) {
  return std::max(length * numerator / denominator, 1);
}

template <int numerator, int denominator>
std::vector<double> Stretch(int width, int height) {
  const int newWidth = Scaled(width, numerator, denominator), newHeight = Scaled(height, numerator, denominator);
  return {double(newWidth), double(newHeight)};
}

// Results hold the whole slanted picture.
std::vector<double> ShearH(int width, int height) {
  const int room = height * 3 / 10;
  return {double(width + room), double(height), 0.3, kClear};
}

std::vector<double> ShearV(int width, int height) {
  const int room = width * 3 / 10;
  return {double(width), double(height + room), 0.3, kClear};
}

std::vector<double> TrimWhole(int width, int height) {
  return {0, 0, double(width), double(height), kClear};
}

// Three quarters of each side.
std::vector<double> TrimInside(int width, int height) {
  const int x = width / 8, y = height / 8;
  return {double(x), double(y), double(Scaled(width, 3, 4)), double(Scaled(height, 3, 4)), kClear};
}

// A twentieth of each side around the picture.
std::vector<double> TrimBorder(int width, int height) {
  const int x = width / 20, y = height / 20;
  return {double(-x), double(-y), double(width + 2 * x), double(height + 2 * y), kClear};
}

std::vector<double> AdjustHSV(int width, int height) {
  return {0, 0, double(width), double(height), 30, 1, 1, 0};
}

std::vector<double> AdjustRGB(int width, int height) {
  return {0, 0, double(width), double(height), 20, -10, 5};
}

std::vector<double> Average(int width, int height) {
  return {0, 0, double(width), double(height)};
}

std::vector<double> Gradient(int width, int height) {
  return {double(width), double(height), kSky, kWhite};
}

std::vector<double> DoubleGradient(int width, int height) {
  return {double(width), double(height), kSky, kWhite, kGround};
}

}  // namespace

const std::vector<Operation>& Operations() {
  static const std::vector<Operation> operations = {
      {"flip horizontal", "FlipRotate", false, true, Turn<1, 0, 0>},
      {"flip vertical", "FlipRotate", false, true, Turn<0, 1, 0>},
      {"half turn", "FlipRotate", false, true, Turn<0, 0, 180>},
      {"turn 90", "FlipRotate", false, true, Turn<0, 0, 90>},
      {"turn 270", "FlipRotate", false, true, Turn<0, 0, 270>},
      {"shear horizontal 0.3", "ShearHorizontal", false, true, ShearH},
      {"shear vertical 0.3", "ShearVertical", false, true, ShearV},
      {"rotate 30", "FreeRotateByShear", false, true, Rotate<30>},
      {"rotate 75", "FreeRotateByShear", false, true, Rotate<75>},
      {"stretch 1/2", "Stretch", false, true, Stretch<1, 2>},
      {"stretch 1/3.7", "Stretch", false, true, Stretch<10, 37>},
      {"stretch 0.9", "Stretch", false, true, Stretch<9, 10>},
      {"stretch 1.5", "Stretch", false, true, Stretch<3, 2>},
      {"stretch 3", "Stretch", false, true, Stretch<3, 1>},
      {"trim whole", "Trim", false, true, TrimWhole},
      {"trim inside", "Trim", false, true, TrimInside},
      {"trim border", "Trim", false, true, TrimBorder},
      {"HSV", "AdjustHSV", false, true, AdjustHSV},
      {"HSV in place", "AdjustHSV_InPlace", true, true, AdjustHSV},
      {"RGB", "AdjustRGB", false, true, AdjustRGB},
      {"RGB in place", "AdjustRGB_InPlace", true, true, AdjustRGB},
      {"average RGB", "GetAverageRGB", false, true, Average},
      {"average HSV", "GetAverageHSV", false, true, Average},
      {"gradient", "MakeGradient", false, false, Gradient},
      {"double gradient", "MakeDoubleGradient", false, false, DoubleGradient},
  };
  return operations;
}

}  // namespace bench
