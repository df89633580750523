// Correctly rounded sine, cosine, tangent and arc tangent: the same to the bit with every compiler,
// processor and C library. Those of a C library may be wrong in the last bit, each in its own way.
//
// Only for the arguments that are named here, and only while the processor rounds to nearest and
// keeps denormal numbers.
#pragma once

/// Of -0.8 to 6.3 radians. Tiny angles are their own sine, denormal ones too.
double Sine(double radians);
/// Of 0 to 6.3 radians.
double Cosine(double radians);
/// Of -0.4 to 0.4 radians. Tiny angles are their own tangent, denormal ones too.
double Tangent(double radians);
/// Of 2^-31 to 2^31, the quotients of two sizes.
double ArcTangent(double quotient);
