// Sine, cosine, tangent and arc tangent, computed with 113 bits and rounded to a double.
// libquadmath, a part of GCC, has errors only in the last few bits. So the double is the nearest
// one, unless the true value is within about 2^-58 of a last place from the middle between two
// doubles.
#pragma once

namespace reference {

double Sine(double radians);
double Cosine(double radians);
double Tangent(double radians);
double ArcTangent(double quotient);

/// The relative distance of high + low from the true value, accurate to 2^-111.
double SineError(double radians, double high, double low);
double CosineError(double radians, double high, double low);
double TangentError(double radians, double high, double low);
double ArcTangentError(double quotient, double high, double low);

}  // namespace reference
