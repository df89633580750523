// Random cases of a test: seeded, so that they are the same everywhere, and each can be run again
// alone.
//
//   LMX_CASE=<seed>   only this case (with --gtest_filter for the test); a failure or a crash
//                     prints it
//   LMX_CASES=<n>     n times as many cases
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>

#include "Random.h"

namespace support {

/// Calls body(random) once for each case, until one fails.
void ForEachCase(int count, const std::function<void(Random& random)>& body);

/// A name with nothing but letters, digits and underscores, as parameters of tests need it.
std::string TestName(std::string name);

/// Any integer, the awkward ones more often.
std::int32_t AnyInteger(Random& random);
/// A power of 2 up to that of `most`, or its neighbour; at least 1.
std::int32_t NearPowerOfTwo(Random& random, std::int32_t most);
/// A number of -1 to 1, or next to that, at which a rounded one decides: k/65536 near 0, 1/2 and 1,
/// tenths, and the doubles next to these.
double ExactShear(Random& random);
/// The same for degrees: k/65536 near the multiples of 45, tenths, and the doubles next to these.
double ExactAngle(Random& random);
/// Any double, the awkward ones more often: zeros, denormals, infinities, NaN, the greatest.
double AnyDouble(Random& random);
/// Any byte where a boolean should be, 0 and 1 more often.
std::uint8_t AnyBooleanByte(Random& random);
/// Degrees at which the last bit of a sine is the likeliest to decide the size of a rotated
/// picture: next to a quarter, and powers of 2 down to the least double; also multiples of 1/1024
/// and of a tenth.
double AwkwardAngle(std::uint64_t bits);
/// A fraction of 1.
double Fraction(Random& random);
/// True once in n times.
bool OneIn(Random& random, std::uint32_t n);

}  // namespace support
