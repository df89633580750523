// Kernels that write several rows, at irregular distances. What holds for one row need not hold for
// the next: all rows are aligned for the widest register except one, which begins a pixel later.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <functional>

#include "GuardedRun.h"
#include "Levels.h"
#include "support/Random.h"

namespace {

constexpr std::size_t kPixels = 64;
constexpr std::size_t kPitch = kPixels + 16;  // aligned for any register, with a gap for the shifted pixel
constexpr std::size_t kRows = 37;
constexpr std::size_t kAll = kPitch * kRows;

class Rows {
 public:
  explicit Rows(std::size_t shifted, Random random = Random(1)) {
    for (std::uint32_t& word : words_) word = random.Below(3) == 0 ? random.Word() : random.Word() | 0xFF0000FF;
    for (std::size_t r = 0; r < kRows; ++r) {
      at[r] = reinterpret_cast<std::uint8_t*>(words_ + r * 7 % kRows * kPitch + (r == shifted ? 1 : 0));
    }
  }
  Rows(const Rows&) = delete;
  Rows& operator=(const Rows&) = delete;

  bool operator==(const Rows& other) const { return std::memcmp(words_, other.words_, sizeof words_) == 0; }

  std::uint8_t* at[kRows];

 private:
  alignas(64) std::uint32_t words_[kAll];
};

using Call = std::function<void(const RunKernels& kernels, std::uint8_t* const* to, const std::uint8_t* const* from)>;

// Runs at every level. Each row in turn is the one that begins a pixel later.
void ExpectSameAtEveryLevel(const Call& call) {
  const RunKernels plain = KernelsOf("plain");
  const Rows from(kRows, Random(2));
  for (std::size_t shifted = 0; shifted <= kRows; ++shifted) {
    Rows expected(shifted);
    call(plain, expected.at, from.at);
    for (const NamedKernels& level : LevelsHere()) {
      SCOPED_TRACE(testing::Message() << level.level << ", row " << shifted);
      Rows got(shifted);
      struct Work {
        const Call& call;
        const RunKernels& kernels;
        Rows& to;
        const Rows& from;
      } work = {call, level.kernels, got, from};
      const void* const fault = FaultIn(
          [](void* of) {
            const auto& w = *static_cast<Work*>(of);
            w.call(w.kernels, w.to.at, w.from.at);
          },
          &work);
      ASSERT_EQ(fault, nullptr);
      ASSERT_TRUE(got == expected);
    }
  }
}

TEST(ScatteredRows, AreTransposed) {
  for (std::size_t from = 0; from < kPixelForms; ++from) {
    for (std::size_t to = 0; to < kPixelForms; ++to) {
      SCOPED_TRACE(testing::Message() << "from form " << from << " to " << to);
      ExpectSameAtEveryLevel([=](const RunKernels& kernels, auto* rows, auto* columns) {
        kernels.between[from][to].transpose(rows, columns, kRows, 0, kRows);
      });
    }
  }
}

// Boxes of a third of a run: several rows are equal.
TEST(ScatteredRows, AreAveraged) {
  for (const std::uint32_t ofRun : {3 * kWholeBox, kWholeBox, 2 * kWholeBox / 3}) {
    const BoxUnits units = {ofRun, kWholeBox, ofRun};
    const std::size_t count = ofRun >= kWholeBox ? kRows : kRows / 2;
    for (std::size_t form = 0; form < kPixelForms; ++form) {
      SCOPED_TRACE(testing::Message() << ofRun << " units a run, form " << form);
      ExpectSameAtEveryLevel([=](const RunKernels& kernels, auto* rows, auto* runs) {
        kernels.of[form].boxes(rows, runs, &units, count, kPixels);
      });
    }
  }
}

}  // namespace
