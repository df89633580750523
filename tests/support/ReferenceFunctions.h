// Sine, cosine, tangent and arc tangent rounded to a double from 113 bits. libquadmath, which is
// part of GCC, errs in the last few of these only, so that a double is the nearest one unless the
// true value is within about 2^-58 of a last place from the middle between two.
#pragma once

namespace reference {

double Sine(double radians);
double Cosine(double radians);
double Tangent(double radians);
double ArcTangent(double quotient);

/// How far high + low is from the true value, relative to it; right to 2^-111.
double SineError(double radians, double high, double low);
double CosineError(double radians, double high, double low);
double TangentError(double radians, double high, double low);
double ArcTangentError(double quotient, double high, double low);

}  // namespace reference
