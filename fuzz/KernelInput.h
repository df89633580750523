// One input of the kernels' target: which kernel, and where its operands lie.
#pragma once

#include <cstdint>
#include <vector>

namespace fuzz {

struct KernelInput {
  static constexpr std::uint8_t kLongRun = 255;

  std::uint8_t kernel = 0;   ///< modulo the number of kernels
  std::uint8_t n = 0;        ///< pixels; kLongRun: `length`
  std::uint16_t length = 0;  ///< modulo the longest run
  std::uint8_t place = 0;    ///< bit 0: of the two ends, the first touches the inaccessible page
  std::uint8_t shift = 0;    ///< of the output, in bytes from that page
  std::uint8_t inPlace = 0;  ///< which of the inputs that may be is the output; 0: none
};

/// Reads or writes one, see Archive.h. The choices of arguments and contents are the bytes after
/// it.
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
