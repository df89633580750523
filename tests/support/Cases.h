// Random cases of a test. They are seeded, so they are the same everywhere, and each can be run
// again alone.
//
//   LMX_CASE=<seed>   runs only this case (use --gtest_filter for the test); a failure or a crash
//                     prints the seed
//   LMX_CASES=<n>     runs n times as many cases
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>

#include "Random.h"

namespace support {

/// Calls body(random) for each case, and stops at the first failure.
void ForEachCase(int count, const std::function<void(Random& random)>& body);

/// Replaces everything but letters, digits and underscores, as names of test parameters require.
std::string TestName(std::string name);

/// Any integer; awkward ones are more frequent.
std::int32_t AnyInteger(Random& random);
/// A power of 2 up to the largest one in `most`, or a neighbour of it; at least 1.
std::int32_t NearPowerOfTwo(Random& random, std::int32_t most);
/// A number from about -1 to 1, at or next to a point where rounding changes: k/65536 near 0, 1/2
/// and 1, tenths, and the doubles next to these.
double ExactShear(Random& random);
/// The same for degrees: k/65536 near the multiples of 45, tenths, and the doubles next to these.
double ExactAngle(Random& random);
/// Any double; awkward ones are more frequent: zeros, denormals, infinities, NaN, the greatest.
double AnyDouble(Random& random);
/// Any byte for a boolean; 0 and 1 are more frequent.
std::uint8_t AnyBooleanByte(Random& random);
/// Degrees where the last bit of a sine most often decides the size of a rotated picture: values
/// next to quarter turns, and powers of 2 down to the least double; also multiples of 1/1024 and of
/// 1/10.
double AwkwardAngle(std::uint64_t bits);
/// A number from 0 up to, but not including, 1.
double Fraction(Random& random);
/// True with a probability of 1/n.
bool OneIn(Random& random, std::uint32_t n);

}  // namespace support
