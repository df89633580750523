// Memory for one operand of a kernel, and what happens when a kernel leaves it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "host/GuardedMemory.h"

/// A place for up to `largest` bytes. An inaccessible page touches one end of them; where no page
/// is near, a ring of a pattern surrounds them.
class GuardedRun {
 public:
  static constexpr std::size_t kRing = 64;

  explicit GuardedRun(std::size_t largest);

  /// Gives `size` bytes, `shift` bytes away from the inaccessible page after (Flush::End) or before
  /// them, for the caller to fill. All that is accessible around them holds `pattern` bytes, which
  /// differ from place to place.
  void* Place(std::size_t size, host::Flush flush, std::size_t shift, std::uint8_t pattern);

  /// Where the ring was changed, relative to the run's first byte; empty while it is as it was.
  std::string RingDamage() const;

  /// The bytes of the run.
  std::vector<std::uint8_t> Bytes() const { return {run_, run_ + size_}; }

  /// "3 bytes past its last byte", of an address that lies less than a few pages away; else empty.
  std::string Locate(const void* address) const;

 private:
  static std::uint8_t PatternByte(std::uint8_t pattern, std::size_t index);
  /// The first index from this one on, counted from first_, that is not in the run.
  std::size_t RingFrom(std::size_t index) const;

  std::size_t largest_;
  host::GuardedMemory end_;
  host::GuardedMemory start_;
  std::uint8_t* run_ = nullptr;
  std::size_t size_ = 0;
  std::uint8_t* first_ = nullptr;  // of the accessible bytes that are watched, the run included
  std::size_t watched_ = 0;
  std::uint8_t pattern_ = 0;
};

/// Calls work(context), and gives the address whose use was a memory fault: work was left there.
/// Nil if there was none.
const void* FaultIn(void (*work)(void* context), void* context);
