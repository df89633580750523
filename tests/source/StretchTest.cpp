// The passes of a stretch between pictures that a host may have made of any size or without rows.
// The kernels check the calls that they get.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "LMX_Runs.h"
#include "LinkedTest.h"
#include "PrivStretch.h"
#include "support/Random.h"

namespace {

// Kernels that fail if they are asked for more than they accept.
class StrictKernels {
 public:
  StrictKernels() {
    kernels_ = gRunKernels;
    gRunKernels.of[kContextForm].boxes = Boxes<kContextForm>;
    gRunKernels.of[kBufferForm].boxes = Boxes<kBufferForm>;
    gRunKernels.of[kWorkingForm].boxes = Boxes<kWorkingForm>;
    gRunKernels.addToBoxes = [](std::uint32_t* sums, const std::uint8_t* const* runs, std::size_t count,
                                std::uint32_t units, std::size_t n) {
      EXPECT_GE(count, 1u);
      EXPECT_LE(count, kMostBoxRuns);
      EXPECT_GE(units, 1u);
      EXPECT_LT(units, kWholeBox);
      EXPECT_LE(n, static_cast<std::size_t>(RunSums::kMostSums));
      kernels_.addToBoxes(sums, runs, count, units, n);
    };
  }
  ~StrictKernels() { gRunKernels = kernels_; }
  StrictKernels(const StrictKernels&) = delete;
  StrictKernels& operator=(const StrictKernels&) = delete;

 private:
  template <PixelForm form>
  static void Boxes(std::uint8_t* const* to, const std::uint8_t* const* runs, const BoxUnits* units, std::size_t count,
                    std::size_t n) {
    EXPECT_GE(units->left, 1u);
    EXPECT_LE(units->left, units->ofRun);
    EXPECT_GE(units->ofBox, kWholeBox - kMostMissing);
    EXPECT_LE(units->ofBox, kWholeBox);
    BoxWalk walk(*units);
    for (std::size_t i = 0; i < count; ++i) EXPECT_LE(walk.Next().count, kMostBoxRuns);
    kernels_.of[form].boxes(to, runs, units, count, n);
  }

  static RunKernels kernels_;
};
RunKernels StrictKernels::kernels_;

struct Size {
  std::int32_t width;
  std::int32_t height;
};

struct Stretch {
  Size source;
  Size temporary;
  Size result;
  int forms = 0;  // one bit for each of the three pictures: whether it is a buffer
  std::vector<int> missingRows[3];
  long yield = 0;
};

// The contents of the result, and the number of host calls.
using Outcome = std::pair<std::vector<std::uint32_t>, std::size_t>;

void Fill(const LockedPicture& locked, Random random) {
  for (std::int32_t y = 0; y < locked.wrapper.height; ++y) {
    for (std::int32_t x = 0; x < locked.wrapper.width; ++x) {
      locked.wrapper.WritePixel(locked.picture.PixelAddress(x, y),
                                random.Word() | (random.Below(4) == 0 ? 0 : 0xFF000000));
    }
  }
}

class StretchTest : public LinkedTest {
 protected:
  Outcome Stretched(const Stretch& stretch, bool isTogether) {
    const auto shape = [&](const Size& size, int which) {
      return (stretch.forms >> which & 1) == 0
                 ? Context(size.width, size.height)
                 : Buffer(size.width, size.height, WithoutRows(stretch.missingRows[which]));
    };
    LockedPicture source(shape(stretch.source, 0)), temporary(shape(stretch.temporary, 1)),
        result(shape(stretch.result, 2));
    Fill(source, Random(1));
    Fill(result, Random(2));
    host_.ResetCounts();
    if (isTogether) {
      Priv_StretchThrough(temporary.wrapper, source.wrapper, result.wrapper, stretch.yield);
    } else {
      Priv_StetchHorizontal(source.wrapper, temporary.wrapper, stretch.yield);
      Priv_StetchVertical(temporary.wrapper, result.wrapper, stretch.yield);
    }
    return {result.picture.StoredPixels(), host_.Log().size()};
  }

  void ExpectBothPasses(const Stretch& stretch) {
    const StrictKernels strict;
    SCOPED_TRACE(testing::Message() << stretch.source.width << " x " << stretch.source.height << " by way of "
                                    << stretch.temporary.width << " x " << stretch.temporary.height << " to "
                                    << stretch.result.width << " x " << stretch.result.height << ", forms "
                                    << stretch.forms << ", yield " << stretch.yield);
    EXPECT_TRUE(Stretched(stretch, true) == Stretched(stretch, false));
  }
};

// The temporary picture is wider, narrower, higher or lower than requested, by one or by half, or
// lacks a row. The other pictures may lack rows, too.
TEST_F(StretchTest, GoesThroughWhateverPictureTheHostMade) {
  Random random(1);
  for (int i = 0; i < 250 && !HasFailure(); ++i) {
    const auto length = [&] { return random.Below(5) == 0 ? random.Between(60, 150) : random.Between(2, 40); };
    Stretch stretch;
    stretch.source = {length(), length()};
    stretch.result = {length(), length()};
    stretch.temporary = {stretch.result.width, stretch.source.height};
    std::int32_t& changed = i % 2 == 0 ? stretch.temporary.width : stretch.temporary.height;
    const std::int32_t kLengths[] = {changed, changed + 1, changed - 1, changed + changed / 2, (changed + 1) / 2};
    changed = random.OneOf(kLengths);
    stretch.forms = static_cast<int>(random.Below(8));
    const std::int32_t heights[] = {stretch.source.height, stretch.temporary.height, stretch.result.height};
    for (int k = 0; k < 3; ++k) {
      const std::int32_t rows[] = {0, heights[k] / 2, heights[k] - 1};
      if (random.Below(6) == 0) stretch.missingRows[k] = {random.OneOf(rows)};
    }
    stretch.yield = random.Below(2) == 0 ? 0 : random.Between(1, 3 * stretch.result.height);
    ExpectBothPasses(stretch);
  }
}

// Boxes of as many runs as a kernel accepts, of slightly fewer and of more, in both directions:
// 29.7 to 32.7 runs. Some boxes begin and end within a run.
TEST_F(StretchTest, AsksKernelsForNoMoreRunsThanTheyTake) {
  for (const std::int32_t k : {1, 2, 5}) {
    for (std::int32_t whole = 29; whole <= 32; ++whole) {
      for (const long yield : {0L, 7L}) {
        const std::int32_t few = 10 * k, many = few * whole + 7 * k;
        ExpectBothPasses({{many, 5}, {few, 5}, {few, 3}, 7, {}, yield});
        ExpectBothPasses({{5, many}, {3, many}, {3, few}, 0, {}, yield});
      }
    }
  }
}

// Wider than the strips and sums of columns. Boxes have more runs than a kernel accepts, or fewer.
TEST_F(StretchTest, MakesWidePicturesInStrips) {
  for (const std::int32_t width : {511, 512, 513, 1023, 1025}) {
    for (const std::int32_t height : {71, 5}) {
      for (const long yield : {0L, 2L, 900L, 100000L}) {
        ExpectBothPasses({{width + 1, height}, {width, height}, {width, 2}, 0, {}, yield});
        ExpectBothPasses({{width / 2, height}, {width, height}, {width, height + 3}, 6, {}, yield});
      }
    }
  }
}

}  // namespace
