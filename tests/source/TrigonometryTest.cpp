// The functions of free rotations, to the last bit. LMX_CASES multiplies the number of random
// arguments.
#include "LMX_Trigonometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

#include "support/Cases.h"
#include "support/Random.h"
#include "support/ReferenceFunctions.h"

// Included again, to compare the results before they are rounded.
namespace unrounded {
#include "../../source/LMX_Trigonometry.cpp"
}

namespace {

using support::ForEachCase;
using support::Fraction;

constexpr double kPi = 3.14159;  // the value that free rotations use
constexpr double kTwoPi = 6.28318;
constexpr double kHighestAngle = 6.3;

std::uint64_t Bits(double number) {
  std::uint64_t bits;
  std::memcpy(&bits, &number, sizeof bits);
  return bits;
}

void Compare(const char* function, double argument, double result, double expected) {
  if (Bits(result) == Bits(expected)) return;
  ADD_FAILURE() << std::hexfloat << function << " of " << argument << " is " << result << ", not " << expected;
}

void CompareSine(double radians) {
  Compare("sine", radians, Sine(radians), reference::Sine(radians));
}

void CompareCosine(double radians) {
  Compare("cosine", radians, Cosine(radians), reference::Cosine(radians));
}

void CompareTangent(double radians) {
  Compare("tangent", radians, Tangent(radians), reference::Tangent(radians));
}

void CompareArcTangent(double quotient) {
  Compare("arc tangent", quotient, ArcTangent(quotient), reference::ArcTangent(quotient));
}

// The functions that take an angle, within their domains.
void CompareAngle(double radians) {
  CompareSine(radians);
  if (radians >= 0) CompareCosine(radians);
  if (std::fabs(radians) <= 0.4) CompareTangent(radians);
}

// The functions that a rotation by -45 to 45 degrees calls.
void CompareDegrees(double degrees) {
  const double theta = degrees * kPi / 180.0;
  CompareTangent(theta * -0.5);
  CompareSine(-theta);
}

template <class Compared>
void CompareNeighbours(double number, int count, Compared compare) {
  compare(number);
  double below = number, above = number;
  for (int i = 0; i < count; ++i) {
    compare(below = std::nextafter(below, -8.0));
    compare(above = std::nextafter(above, 8.0));
  }
}

double Normalised(double angle) {
  if (angle < 0.0) angle += kTwoPi;
  if (angle > kTwoPi) angle -= kTwoPi;
  return angle;
}

TEST(Trigonometry, MultiplesOf1024thsAndTenthsOfADegree) {
  for (int i = -45 * 1024; i <= 45 * 1024; ++i) CompareDegrees(i / 1024.0);
  for (int i = -450; i <= 450; ++i) CompareDegrees(i / 10.0);
}

TEST(Trigonometry, NeighboursOfWhereTheReductionChanges) {
  constexpr double kEighth = 0.78539816339744831;
  for (int i = 0; i <= 8; ++i) CompareNeighbours(i * kEighth, 200, CompareAngle);
  CompareNeighbours(kTwoPi, 200, CompareAngle);
  CompareNeighbours(-kEighth, 200, CompareAngle);
  CompareNeighbours(1.0, 200, CompareArcTangent);
}

TEST(Trigonometry, TinyAngles) {
  CompareAngle(0.0);
  CompareAngle(-0.0);
  CompareAngle(1e-300);
  for (int exponent = -1074; exponent <= -2; ++exponent) {
    const double power = std::ldexp(1.0, exponent);
    CompareNeighbours(power, 3, CompareAngle);
    CompareNeighbours(-power, 3, CompareAngle);
    CompareAngle(1.7 * power);
    CompareDegrees(power);
  }
}

TEST(Trigonometry, TheEndsOfTheirRanges) {
  CompareAngle(kHighestAngle);
  CompareSine(-0.8);
  CompareTangent(0.4);
  CompareTangent(-0.4);
  for (const double quotient : {0x1p-31, 0x1p31, 1 / 2147483647.0, 2147483647.0, 1 / 32767.0, 32767.0}) {
    CompareNeighbours(quotient, 20, CompareArcTangent);
  }
}

TEST(Trigonometry, QuotientsOfSmallSizes) {
  for (int height = 1; height <= 160; ++height) {
    for (int width = 1; width <= 160; ++width) CompareArcTangent(static_cast<double>(height) / width);
  }
}

TEST(Trigonometry, AnyArgument) {
  ForEachCase(20000, [](Random& random) {
    CompareSine((kHighestAngle + 0.8) * Fraction(random) - 0.8);
    CompareCosine(kHighestAngle * Fraction(random));
    CompareTangent(0.8 * Fraction(random) - 0.4);
    CompareArcTangent(std::ldexp(1 + Fraction(random), random.Between(-31, 30)));
  });
}

TEST(Trigonometry, TheArgumentsOfRotations) {
  ForEachCase(20000, [](Random& random) {
    const int most = random.Between(1, 15) * 2185;  // up to 32775
    const double height = random.Between(1, most);
    const double width = random.Between(1, most);
    const double degrees = 90 * Fraction(random) - 45;
    CompareDegrees(degrees);
    CompareArcTangent(height / width);
    const double theta = degrees * kPi / 180.0;
    const double a = reference::ArcTangent(height / width);
    for (const double angle : {theta + a, (kPi - a) + theta, theta - a}) {
      CompareSine(Normalised(angle));
      CompareCosine(Normalised(angle));
    }
  });
}

// The error bound that LMX_Trigonometry.cpp derives. Rounded results show only errors above 2^-70,
// because few values lie that close to the middle between two doubles.
TEST(Trigonometry, ErrorsBeforeRounding) {
  using namespace unrounded;
  static constexpr double kBound = 0x1p-98;
  ForEachCase(5000, [](Random& random) {
    const double sine = (kHighestAngle + 0.8) * Fraction(random) - 0.8;
    Pair pair = SineOf(Reduced(sine));
    EXPECT_LT(std::fabs(reference::SineError(sine, pair.high, pair.low)), kBound) << sine;
    const double cosine = 0.7854 * Fraction(random);
    pair = CosineOf(Reduced(cosine).rest);
    EXPECT_LT(std::fabs(reference::CosineError(cosine, pair.high, pair.low)), kBound) << cosine;
    const double tangent = 0.8 * Fraction(random) - 0.4;
    pair = TangentOf({tangent, 0});
    EXPECT_LT(std::fabs(reference::TangentError(tangent, pair.high, pair.low)), kBound) << tangent;
    const double quotient = std::ldexp(1 + Fraction(random), random.Between(-31, 30));
    pair = ArcTangentOf(quotient);
    EXPECT_LT(std::fabs(reference::ArcTangentError(quotient, pair.high, pair.low)), kBound) << quotient;
  });
}

TEST(Trigonometry, TheReferenceIsAnother) {
  // Known digits, so that the product and the reference cannot have the same error.
  EXPECT_EQ(reference::Sine(1.0), 0.84147098480789650665);
  EXPECT_EQ(reference::Cosine(1.0), 0.54030230586813971740);
  EXPECT_EQ(reference::Tangent(0.25), 0.25534192122103626651);
  EXPECT_EQ(reference::ArcTangent(0.5), 0.46364760900080611621);
}

}  // namespace
