// Random numbers that are the same everywhere: a seed in a failure's text brings the same case
// back.
#pragma once

#include <cstddef>
#include <cstdint>

/// SplitMix64, or the bytes of somebody who wants to choose.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}
  /// Makes the numbers from the bytes as long as they last, a choice of up to 256 from a single
  /// one, and from there on as with seed 0. The bytes stay the caller's.
  Random(const std::uint8_t* bytes, std::size_t size) : state_(0), bytes_(bytes), left_(size) {}

  std::uint64_t Next() {
    if (left_ != 0) return Take(8);
    std::uint64_t z = state_ += 0x9E3779B97F4A7C15;
    z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9;
    z = (z ^ z >> 27) * 0x94D049BB133111EB;
    return z ^ z >> 31;
  }

  std::uint32_t Word() { return static_cast<std::uint32_t>(left_ != 0 ? Take(4) : Next() >> 32); }

  /// 0 to limit - 1.
  std::uint32_t Below(std::uint32_t limit) {
    const std::uint64_t word = left_ != 0 && limit <= 256 ? Take(1) << 24 : Word();
    return static_cast<std::uint32_t>(word * limit >> 32);
  }

  /// first to last, both included.
  std::int32_t Between(std::int32_t first, std::int32_t last) {
    return first + static_cast<std::int32_t>(Below(static_cast<std::uint32_t>(last - first) + 1));
  }

  template <class T, std::size_t size>
  T OneOf(const T (&values)[size]) {
    return values[Below(static_cast<std::uint32_t>(size))];
  }

 private:
  // As many bytes as there are, the lowest first.
  std::uint64_t Take(std::size_t count) {
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < count && left_ != 0; ++i, --left_) number |= std::uint64_t{*bytes_++} << 8 * i;
    return number;
  }

  std::uint64_t state_;
  const std::uint8_t* bytes_ = nullptr;
  std::size_t left_ = 0;
};
