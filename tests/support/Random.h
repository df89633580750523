// Random numbers that are the same everywhere: a seed in a failure's text brings the same case back.
#pragma once

#include <cstddef>
#include <cstdint>

/// SplitMix64.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}

  std::uint64_t Next() {
    std::uint64_t z = state_ += 0x9E3779B97F4A7C15;
    z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9;
    z = (z ^ z >> 27) * 0x94D049BB133111EB;
    return z ^ z >> 31;
  }

  std::uint32_t Word() { return static_cast<std::uint32_t>(Next() >> 32); }

  /// 0 to limit - 1.
  std::uint32_t Below(std::uint32_t limit) {
    return static_cast<std::uint32_t>(static_cast<std::uint64_t>(Word()) * limit >> 32);
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
  std::uint64_t state_;
};
