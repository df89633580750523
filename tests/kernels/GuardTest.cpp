// The guards around a kernel's operands detect what they must.
#include <gtest/gtest.h>

#include <cstring>

#include "GuardedRun.h"

namespace {

bool FaultsWhenWritten(void* run, std::ptrdiff_t offset) {
  std::uint8_t* byte = static_cast<std::uint8_t*>(run) + offset;
  return FaultIn([](void* b) { *static_cast<volatile std::uint8_t*>(b) = 1; }, byte) == byte;
}

bool FaultsWhenRead(void* run, std::ptrdiff_t offset) {
  std::uint8_t* byte = static_cast<std::uint8_t*>(run) + offset;
  return FaultIn([](void* b) { static_cast<void>(*static_cast<volatile std::uint8_t*>(b)); }, byte) == byte;
}

TEST(Guard, PageAfterARunIsInaccessibleFromItsFirstByteOn) {
  GuardedRun memory(100);
  for (const std::size_t size : std::vector<std::size_t>{0, 1, 3, 64, 100}) {
    void* run = memory.Place(size, host::Flush::End, 0, 1);
    const auto end = static_cast<std::ptrdiff_t>(size);
    EXPECT_TRUE(FaultsWhenWritten(run, end)) << size;
    EXPECT_TRUE(FaultsWhenRead(run, end)) << size;
    EXPECT_FALSE(FaultsWhenRead(run, end - 1)) << size;
  }
}

TEST(Guard, PageBeforeARunIsInaccessibleUpToItsLastByte) {
  GuardedRun memory(100);
  void* run = memory.Place(100, host::Flush::Start, 0, 1);
  EXPECT_TRUE(FaultsWhenWritten(run, -1));
  EXPECT_TRUE(FaultsWhenRead(run, -1));
  EXPECT_FALSE(FaultsWhenWritten(run, 0));
}

TEST(Guard, ShiftMovesTheRunAwayFromThePage) {
  GuardedRun memory(100);
  void* run = memory.Place(10, host::Flush::End, 3, 1);
  EXPECT_FALSE(FaultsWhenRead(run, 12));
  EXPECT_TRUE(FaultsWhenRead(run, 13));
  run = memory.Place(10, host::Flush::Start, 3, 1);
  EXPECT_FALSE(FaultsWhenRead(run, -3));
  EXPECT_TRUE(FaultsWhenRead(run, -4));
}

TEST(Guard, RingShowsEveryByteThatWasChanged) {
  GuardedRun memory(100);
  for (const host::Flush flush : {host::Flush::End, host::Flush::Start}) {
    for (const std::size_t shift : std::vector<std::size_t>{0, 7}) {
      for (std::ptrdiff_t offset = -64; offset < 74; ++offset) {
        auto* run = static_cast<std::uint8_t*>(memory.Place(10, flush, shift, 9));
        EXPECT_EQ(memory.RingDamage(), "");
        const bool before = offset < -static_cast<std::ptrdiff_t>(shift) && flush == host::Flush::Start;
        const bool after = offset >= static_cast<std::ptrdiff_t>(10 + shift) && flush == host::Flush::End;
        if (before || after) continue;  // an inaccessible page
        run[offset] ^= 1;
        EXPECT_EQ(memory.RingDamage().empty(), offset >= 0 && offset < 10) << offset;
      }
    }
  }
}

TEST(Guard, DamageAndFaultsSayWhere) {
  GuardedRun memory(100);
  auto* run = static_cast<std::uint8_t*>(memory.Place(10, host::Flush::Start, 4, 9));
  run[-3] ^= 1;
  EXPECT_EQ(memory.RingDamage(), "3 bytes before its first byte");
  EXPECT_EQ(memory.Locate(run + 9), "inside");
  EXPECT_EQ(memory.Locate(run + 10), "1 bytes past its last byte");
}

TEST(Guard, ChangesInsideTheRunAreNoDamage) {
  GuardedRun memory(16);
  void* run = memory.Place(16, host::Flush::End, 0, 7);
  std::memset(run, 0, 16);
  EXPECT_EQ(memory.RingDamage(), "");
  EXPECT_EQ(memory.Bytes(), std::vector<std::uint8_t>(16, 0));
}

}  // namespace
