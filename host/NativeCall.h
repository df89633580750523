// Calls functions whose signature is known only at run time, by the C calling convention of the
// ABI.
//
// 64-bit x86: the first six words go in registers, the first eight doubles in vector registers, the
// rest on the stack in order. 32-bit x86: everything goes on the stack in order, a double as two
// words.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace host {

class NativeCall {
 public:
  using Function = void (*)();

  // Arguments, in order. These throw host::Error when there are more than a call can carry.

  void AddInteger(std::int32_t value);  ///< sign extended to the full word
  void AddWord(std::uint32_t value);    ///< zero extended
  void AddPointer(const void* value);
  void AddDouble(double value);

  /// Calls a function that returns nothing, an integer or a pointer; gives the raw result register.
  /// 32-bit: at the call instruction the stack pointer is `misalignment` (a multiple of 4) modulo
  /// 16.
  std::uint64_t Call(Function function, unsigned misalignment) const;
  double CallDouble(Function function, unsigned misalignment) const;

 private:
#if defined(__x86_64__)
  template <class Result>
  Result CallAs(Function function) const;
  void AddStackWord(long word);

  static constexpr std::size_t kMostOnStack = 16;
  std::array<long, 6> words_ = {};
  std::array<double, 8> doubles_ = {};
  std::array<long, kMostOnStack> stack_ = {};
  std::size_t wordCount_ = 0, doubleCount_ = 0, stackCount_ = 0;
#elif defined(__i386__)
  std::vector<std::uint32_t> stack_;
#else
#error "The calling convention of this processor is not known here."
#endif
};

}  // namespace host
