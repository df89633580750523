// One input of the kernels' target: a kernel, and the addresses of its operands.
#pragma once

#include <cstdint>
#include <vector>

namespace fuzz {

struct KernelInput {
  static constexpr std::uint8_t kLongRun = 255;

  std::uint8_t kernel = 0;   ///< modulo the number of kernels
  std::uint8_t n = 0;        ///< number of pixels; kLongRun: see `length`
  std::uint16_t length = 0;  ///< number of pixels of a long run, modulo the longest
  std::uint8_t place = 0;    ///< bit 0: the first byte, not the last, touches the inaccessible page
  std::uint8_t shift = 0;    ///< distance of the output from that page, in bytes
  std::uint8_t inPlace = 0;  ///< which of the possible inputs is also the output; 0: none
};

/// Reads or writes an input, see Archive.h. The bytes after it choose arguments and contents.
template <class Archive, class Input>
void Visit(Archive& archive, Input& input) {
  archive(input.kernel);
  archive(input.n);
  archive(input.length);
  archive(input.place);
  archive(input.shift);
  archive(input.inPlace);
}

}  // namespace fuzz
