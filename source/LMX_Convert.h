// Conversions of numbers. Every input has a defined result, which is the same on every ABI.
#pragma once

#include <cstdint>
#include <limits>

/// The integer part of a double. INT32_MIN for a NaN, and for what does not fit in 32 bits.
inline std::int32_t TruncatedToInt(double value) {
  const bool fits = value > -2147483649.0 && value < 2147483648.0;  // false for a NaN
  return fits ? static_cast<std::int32_t>(value) : std::numeric_limits<std::int32_t>::min();
}

/// The low 32 bits of a 64-bit result, as 32-bit arithmetic would have left it.
inline std::int32_t WrappedToInt(std::int64_t value) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

/// Whether a result of 64-bit arithmetic is one that 32-bit arithmetic would have given.
inline bool FitsInt(std::int64_t value) {
  return value >= std::numeric_limits<std::int32_t>::min() && value <= std::numeric_limits<std::int32_t>::max();
}
