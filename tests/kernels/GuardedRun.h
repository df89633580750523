// Memory for one operand of a kernel, which detects accesses outside the operand.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "host/GuardedMemory.h"

/// Memory for up to `largest` bytes. One end touches an inaccessible page. Where no page is near, a
/// ring of pattern bytes surrounds the operand.
class GuardedRun {
 public:
  static constexpr std::size_t kRing = 64;

  explicit GuardedRun(std::size_t largest);

  /// Returns the address of `size` bytes for the caller to fill. They lie `shift` bytes away from
  /// the inaccessible page after them (Flush::End) or before them (Flush::Start). All accessible
  /// bytes around them are set by `pattern` and differ from place to place.
  void* Place(std::size_t size, host::Flush flush, std::size_t shift, std::uint8_t pattern);

  /// Where the ring was changed, relative to the first byte of the run; empty if it is unchanged.
  std::string RingDamage() const;

  /// The bytes of the run.
  std::vector<std::uint8_t> Bytes() const { return {run_, run_ + size_}; }

  /// Describes an address less than a few pages away, such as "3 bytes past its last byte"; else
  /// empty.
  std::string Locate(const void* address) const;

 private:
  static std::uint8_t PatternByte(std::uint8_t pattern, std::size_t index);
  /// The first index from `index` on, counted from first_, that is outside the run.
  std::size_t RingFrom(std::size_t index) const;

  std::size_t largest_;
  host::GuardedMemory end_;
  host::GuardedMemory start_;
  std::uint8_t* run_ = nullptr;
  std::size_t size_ = 0;
  std::uint8_t* first_ = nullptr;  // the first accessible byte that is checked, before or in the run
  std::size_t watched_ = 0;
  std::uint8_t pattern_ = 0;
};

/// Calls work(context). A memory fault ends the work, and the result is its address; nil if there
/// was none.
const void* FaultIn(void (*work)(void* context), void* context);
