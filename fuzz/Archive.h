// Inputs as bytes. One function visits the members of a structure in order; it both reads and
// writes the structure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

namespace fuzz {

/// Reads numbers, the lowest byte first. Past the end it reads zeros, so any bytes are a valid
/// input.
class Reader {
 public:
  Reader(const std::uint8_t* bytes, std::size_t size) : bytes_(bytes), left_(size) {}

  template <class Number>
  void operator()(Number& number) {
    std::make_unsigned_t<Number> read = 0;
    for (std::size_t i = 0; i < sizeof read && left_ != 0; ++i, --left_) {
      read = static_cast<decltype(read)>(read | static_cast<decltype(read)>(*bytes_++) << 8 * i);
    }
    number = static_cast<Number>(read);
  }

  const std::uint8_t* Bytes() const { return bytes_; }
  std::size_t Left() const { return left_; }

  /// Reads everything that is left, as words.
  void Rest(std::vector<std::uint32_t>& words) {
    words.resize((left_ + 3) / 4);
    for (std::uint32_t& word : words) (*this)(word);
  }

 private:
  const std::uint8_t* bytes_;
  std::size_t left_;
};

/// Writes the format that a Reader reads.
class Writer {
 public:
  template <class Number>
  void operator()(const Number& number) {
    for (std::size_t i = 0; i < sizeof number; ++i) {
      bytes_.push_back(static_cast<std::uint8_t>(static_cast<std::make_unsigned_t<Number>>(number) >> 8 * i));
    }
  }

  void Rest(const std::vector<std::uint32_t>& words) {
    for (const std::uint32_t word : words) (*this)(word);
  }

  const std::vector<std::uint8_t>& Bytes() const { return bytes_; }

 private:
  std::vector<std::uint8_t> bytes_;
};

}  // namespace fuzz
