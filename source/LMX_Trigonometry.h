// Correctly rounded sine, cosine, tangent and arc tangent: the same bits with every compiler,
// processor and C library. C libraries differ in the last bit.
//
// They hold for the arguments named here only, and while the processor rounds to nearest and keeps
// denormal numbers.
#pragma once

/// Of -0.8 to 6.3 radians. A tiny angle, denormal ones included, is its own sine.
double Sine(double radians);
/// Of 0 to 6.3 radians.
double Cosine(double radians);
/// Of -0.4 to 0.4 radians. A tiny angle, denormal ones included, is its own tangent.
double Tangent(double radians);
/// Of 2^-31 to 2^31, the quotients of two sizes.
double ArcTangent(double quotient);
