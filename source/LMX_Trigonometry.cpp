// A number is a pair of doubles: the unevaluated sum of `high`, which is that sum rounded to
// nearest, and `low`. The arithmetic takes only sums, products and quotients of doubles, each
// rounded to nearest and none fused with another:
//
//   T. J. Dekker, "A Floating-Point Technique for Extending the Available Precision", 1971
//   (Product, QuickSum)
//   D. E. Knuth, "The Art of Computer Programming", volume 2, section 4.2.2 (Sum)
//   M. Joldes, J.-M. Muller, V. Popescu, "Tight and Rigorous Error Bounds for Basic Building Blocks
//   of Double-Word Arithmetic", 2017 (the operations on pairs and their bounds)
//
// The bound, in units of 2^-106 of the result. A sum of pairs has an error below 4, a product below
// 8, a quotient below 16. For the functions that adds up to:
//
//   reduced angle          9: two sums, and 1 for the digits that pi/2 lacks (see Reduced)
//   sine, cosine of it    32: in a term 1 - q * rest, q has an error of 2 * 9 + 8 + 16, and its
//                             product with the rest 8 more. The outermost term counts at most 0.45
//                             times, the others 0.06 times, and each has 4 for its sum. The sine's
//                             series is multiplied by the angle. Both series end at 2^-118.
//   tangent               80: 32 + 32, and 16 for the quotient
//   arc tangent          140: in `tangent`, q * cosine - sine has an error of (16 + 32 + 8) q and
//                             32 * 1.06 q. The rest has less than 10 q, since `tangent` is below
//                             0.06 q. q is at most 1.28 times the result. The last sums have 9.
//
// So every result has an error below 256 * 2^-106 = 2^-98 before it is rounded to a double. That is
// less than 2^-45 of a last place. The rounding is wrong only if the true value is as close as that
// to the middle between two doubles, which is to be expected for one argument in 2^44.
// Test: source.Trigonometry compares the functions with others of 113 bits, and their error with
// the bound.
#include "LMX_Trigonometry.h"

#include <cmath>

namespace {

struct Pair {
  double high;
  double low;
};

// ---------------------------------------------------------------------------------- pairs, exactly

// a + b.
Pair Sum(double a, double b) {
  const double high = a + b;
  const double fromB = high - a;
  return {high, (a - (high - fromB)) + (b - fromB)};
}

// a + b, where a is 0 or not the smaller one.
Pair QuickSum(double a, double b) {
  const double high = a + b;
  return {high, b - (high - a)};
}

// The upper half of the digits, so that products of halves are exact.
double UpperHalf(double a) {
  const double scaled = a * 134217729.0;  // 2^27 + 1
  return scaled - (scaled - a);
}

// a * b, unless the product is below 2^-960 or so.
Pair Product(double a, double b) {
  const double high = a * b;
  const double upperA = UpperHalf(a), lowerA = a - upperA;
  const double upperB = UpperHalf(b), lowerB = b - upperB;
  return {high, ((upperA * upperB - high) + upperA * lowerB + lowerA * upperB) + lowerA * lowerB};
}

// --------------------------------------------------------------------------- pairs, nearly exactly

Pair operator-(const Pair& a) {
  return {-a.high, -a.low};
}

Pair operator+(const Pair& a, const Pair& b) {
  const Pair high = Sum(a.high, b.high);
  const Pair low = Sum(a.low, b.low);
  const Pair sum = QuickSum(high.high, high.low + low.high);
  return QuickSum(sum.high, low.low + sum.low);
}

Pair operator-(const Pair& a, const Pair& b) {
  return a + -b;
}

Pair operator*(const Pair& a, const Pair& b) {
  const Pair high = Product(a.high, b.high);
  return QuickSum(high.high, high.low + (a.high * b.low + a.low * b.high));
}

Pair operator/(const Pair& a, const Pair& b) {
  const double quotient = a.high / b.high;
  const Pair rest = a - b * Pair{quotient, 0};
  return QuickSum(quotient, rest.high / b.high);
}

Pair operator/(const Pair& a, double b) {
  const double quotient = a.high / b;
  const Pair product = Product(quotient, b);
  return QuickSum(quotient, ((a.high - product.high) + (a.low - product.low)) / b);
}

constexpr Pair kOne = {1, 0};

// --------------------------------------------------------------------------------------- functions

// pi/2 is the sum of these and less than 2^-159. Each has 51 digits; three times it is exact.
constexpr double kQuarter[] = {0x1.921fb54442d18p+0, 0x1.1a62633145c08p-54, -0x1.1f1976b7ed8fcp-106};

struct Angle {
  int quarter;
  Pair rest;  // at most pi/4, and a little, to either side
};

// No double up to 6.3 is closer to k * pi/2 than k * 2^-53.86. The digits left out, k * 2^-159.88
// at most, are less than 2^-106 of that.
Angle Reduced(double radians) {
  const double quarter = std::floor(radians * 0.6366197723675814 + 0.5);  // 2/pi
  Pair rest = Sum(radians, -quarter * kQuarter[0]);
  for (int i = 1; i < 3; ++i) rest = rest - Pair{quarter * kQuarter[i], 0};
  return {static_cast<int>(quarter), rest};
}

// With n = first, x up to pi/4: 1 - x^2 / (n (n + 1)) * (1 - x^2 / ((n + 2) (n + 3)) * (1 - ...)).
Pair Series(const Pair& x, int first) {
  constexpr int kTerms = 15;
  const Pair square = x * x;
  Pair sum = kOne;
  for (int n = first + 2 * (kTerms - 1); n >= first; n -= 2) {
    sum = kOne - square / (n * (n + 1)) * sum;
  }
  return sum;
}

Pair SineOf(const Pair& x) {
  return x * Series(x, 2);
}

Pair CosineOf(const Pair& x) {
  return Series(x, 1);
}

// The sine of the rest and its quarters.
Pair SineOf(const Angle& angle) {
  const Pair sine = (angle.quarter & 1) == 0 ? SineOf(angle.rest) : CosineOf(angle.rest);
  return (angle.quarter & 2) == 0 ? sine : -sine;
}

Pair TangentOf(const Pair& x) {
  return SineOf(x) / CosineOf(x);
}

Pair ArcTangentOf(double quotient) {
  const bool steep = quotient > 1;
  const Pair q = steep ? kOne / Pair{quotient, 0} : Pair{quotient, 0};
  // The guess is within 0.004 of the result. The difference is the arc tangent of `tangent`, by its
  // series up to the 15th power.
  const Pair guess = {q.high * (1.0584 - 0.273 * q.high), 0};
  const Pair sine = SineOf(guess), cosine = CosineOf(guess);
  const Pair tangent = (q * cosine - sine) / (cosine + q * sine);
  const Pair square = tangent * tangent;
  Pair sum = kOne / 15;
  for (int n = 13; n > 0; n -= 2) sum = kOne / n - square * sum;
  const Pair angle = guess + tangent * sum;
  return steep ? Pair{kQuarter[0], kQuarter[1]} - angle : angle;
}

// Below this, sine and tangent differ from the angle by x^3 / 3 at most, which is less than a
// quarter of its last place.
constexpr double kTiny = 0x1p-27;

}  // namespace

double Sine(double radians) {
  return std::fabs(radians) < kTiny ? radians : SineOf(Reduced(radians)).high;
}

double Cosine(double radians) {
  Angle angle = Reduced(radians);
  ++angle.quarter;
  return SineOf(angle).high;
}

double Tangent(double radians) {
  return std::fabs(radians) < kTiny ? radians : TangentOf({radians, 0}).high;
}

double ArcTangent(double quotient) {
  return ArcTangentOf(quotient).high;
}
