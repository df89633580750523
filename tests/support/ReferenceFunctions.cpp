#include "ReferenceFunctions.h"

#include <quadmath.h>

namespace reference {

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

}  // namespace reference
