// Random numbers that are the same everywhere: the seed in a failure message repeats the case.
#pragma once

#include <cstddef>
#include <cstdint>

/// SplitMix64, or bytes that the caller chooses.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}
  /// Makes numbers from the bytes as long as there are any; a choice of up to 256 takes a single
  /// byte. Then continues as with seed 0. The bytes must outlive the object.
  Random(const std::uint8_t* bytes, std::size_t size) : state_(0), bytes_(bytes), left_(size) {}

  std::uint64_t Next() {
    if (left_ != 0) return Take(8);
    std::uint64_t z = state_ += 0x9E3779B97F4A7C15;
    z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9;
    z = (z ^ z >> 27) * 0x94D049BB133111EB;
    return z ^ z >> 31;
  }

  std::uint32_t Word() { return static_cast<std::uint32_t>(left_ != 0 ? Take(4) : Next() >> 32); }

  /// A number from 0 to limit - 1.
  std::uint32_t Below(std::uint32_t limit) {
    const std::uint64_t word = left_ != 0 && limit <= 256 ? Take(1) << 24 : Word();
    return static_cast<std::uint32_t>(word * limit >> 32);
  }

  /// A number from `first` to `last`, both included.
  std::int32_t Between(std::int32_t first, std::int32_t last) {
    return first + static_cast<std::int32_t>(Below(static_cast<std::uint32_t>(last - first) + 1));
  }

  template <class T, std::size_t size>
  T OneOf(const T (&values)[size]) {
    return values[Below(static_cast<std::uint32_t>(size))];
  }

 private:
  // Takes up to `count` bytes, the lowest first.
  std::uint64_t Take(std::size_t count) {
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < count && left_ != 0; ++i, --left_) number |= std::uint64_t{*bytes_++} << 8 * i;
    return number;
  }

  std::uint64_t state_;
  const std::uint8_t* bytes_ = nullptr;
  std::size_t left_ = 0;
};
