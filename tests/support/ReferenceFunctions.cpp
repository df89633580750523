#include "ReferenceFunctions.h"

#include <quadmath.h>

namespace reference {
namespace {

double Error(__float128 value, double high, double low) {
  return static_cast<double>((high - value + low) / value);
}

}  // namespace

double Sine(double radians) {
  return static_cast<double>(sinq(radians));
}

double Cosine(double radians) {
  return static_cast<double>(cosq(radians));
}

double Tangent(double radians) {
  return static_cast<double>(tanq(radians));
}

double ArcTangent(double quotient) {
  return static_cast<double>(atanq(quotient));
}

double SineError(double radians, double high, double low) {
  return Error(sinq(radians), high, low);
}

double CosineError(double radians, double high, double low) {
  return Error(cosq(radians), high, low);
}

double TangentError(double radians, double high, double low) {
  return Error(tanq(radians), high, low);
}

double ArcTangentError(double quotient, double high, double low) {
  return Error(atanq(quotient), high, low);
}

}  // namespace reference
