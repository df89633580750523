// The yields, compared with a rule applied line by line, in the three orders that workers use.
#include "LMX_Yield.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <vector>

#include "LinkedTest.h"

namespace {

constexpr std::int32_t kLines = 40;

// The number of complete lines at each yield.
using Yields = std::vector<std::int32_t>;

enum class Order { kYieldThenCountThenLine, kLineThenCountThenYield, kLineThenYieldThenCount };

// The rule, applied line by line.
Yields Expected(Order order, long yield, std::int32_t pixelsPerLine) {
  Yields yields;
  std::int64_t counter = 0;
  const auto check = [&](std::int32_t done) {
    if (yield > 0 && counter >= yield) {
      yields.push_back(done);
      counter = 0;
    }
  };
  for (std::int32_t line = 0; line < kLines; ++line) {
    if (order == Order::kYieldThenCountThenLine) check(line);
    if (order == Order::kLineThenYieldThenCount) check(line + 1);
    counter += pixelsPerLine;
    if (order == Order::kLineThenCountThenYield) check(line + 1);
  }
  return yields;
}

class YieldPaceTest : public LinkedTest {
 protected:
  YieldPaceTest() {
    host_.onYield = [this] { yields_.push_back(done_); };
  }

  // Runs a worker's loop over kLines lines. `lines` makes some of them and returns how many.
  template <class Lines>
  Yields Run(Lines lines) {
    yields_.clear();
    for (done_ = 0; done_ < kLines;) done_ += lines(kLines - done_);
    return yields_;
  }

  template <class Test>
  void ForEveryPace(Test test) {
    for (const std::int32_t pixelsPerLine : {1, 2, 7, 10, 64, 65536, INT_MAX / kLines}) {
      std::vector<long> paces = {LONG_MIN, INT_MIN, -1, 0, 1, 2, 3, 64, 100, 1000, INT_MAX};
      for (const std::int32_t lines : {1, 2, 3, 8, 9, kLines - 1, kLines, kLines + 1}) {
        for (const int off : {-1, 0, 1}) {
          const std::int64_t pace = static_cast<std::int64_t>(lines) * pixelsPerLine + off;
          paces.push_back(static_cast<long>(std::min<std::int64_t>(pace, LONG_MAX)));
        }
      }
      for (const long yield : paces) {
        SCOPED_TRACE(testing::Message() << pixelsPerLine << " pixels a line, yield " << yield);
        test(yield, pixelsPerLine);
      }
    }
  }

  std::int32_t done_ = 0;
  Yields yields_;
};

TEST_F(YieldPaceTest, ComesBeforeALine) {
  ForEveryPace([this](long yield, std::int32_t pixelsPerLine) {
    const Yields expected = Expected(Order::kYieldThenCountThenLine, yield, pixelsPerLine);
    for (const std::int32_t band : {1, 3, 8, kLines}) {
      YieldPace pace(yield);
      EXPECT_EQ(Run([&](std::int32_t left) { return pace.BeginLines(pixelsPerLine, std::min(band, left)); }), expected)
          << "at most " << band << " lines together";
    }
  });
}

// Lines that nobody sees are made before their yields. The yields then come for each line, as if
// the lines were made one by one.
TEST_F(YieldPaceTest, ComesOnceForEveryLineOfABandThatIsDone) {
  ForEveryPace([this](long yield, std::int32_t pixelsPerLine) {
    const std::size_t expected = Expected(Order::kYieldThenCountThenLine, yield, pixelsPerLine).size();
    for (const std::int32_t band : {1, 3, 8, kLines}) {
      YieldPace pace(yield);
      const Yields yields = Run([&](std::int32_t left) {
        pace.ReportLines(std::min(band, left), pixelsPerLine);
        return std::min(band, left);
      });
      EXPECT_EQ(yields.size(), expected) << band << " lines together";
    }
  });
}

TEST_F(YieldPaceTest, AllowsABandAhead) {
  EXPECT_EQ(YieldPace::LinesAhead(1, 16), 16);
  EXPECT_EQ(YieldPace::LinesAhead(1 << 14, 16), 16);
  EXPECT_EQ(YieldPace::LinesAhead((1 << 14) + 1, 16), 15);
  EXPECT_EQ(YieldPace::LinesAhead(1 << 18, 16), 1);
  EXPECT_EQ(YieldPace::LinesAhead(INT_MAX, 16), 1);
  EXPECT_EQ(YieldPace::LinesAhead(0, 16), 16);
}

TEST_F(YieldPaceTest, ComesAfterALine) {
  ForEveryPace([this](long yield, std::int32_t pixelsPerLine) {
    YieldPace pace(yield);
    const auto line = [&](std::int32_t) {
      ++done_;
      pace.EndLines(1, pixelsPerLine);
      return 0;
    };
    EXPECT_EQ(Run(line), Expected(Order::kLineThenCountThenYield, yield, pixelsPerLine));
  });
}

TEST_F(YieldPaceTest, ComesAfterALineThatDoesNotCountYet) {
  ForEveryPace([this](long yield, std::int32_t pixelsPerLine) {
    YieldPace pace(yield);
    const auto line = [&](std::int32_t) {
      ++done_;
      pace.YieldIfDue();
      pace.Count(1, pixelsPerLine);
      return 0;
    };
    EXPECT_EQ(Run(line), Expected(Order::kLineThenYieldThenCount, yield, pixelsPerLine));
  });
}

TEST_F(YieldPaceTest, AllowsAsManyLinesAsThereIsRoomFor) {
  YieldPace pace(100);
  EXPECT_EQ(pace.LinesUntilDue(40, 8), 3) << "two lines leave 20 pixels to go";
  EXPECT_EQ(pace.LinesUntilDue(50, 8), 2);
  EXPECT_EQ(pace.LinesUntilDue(100, 8), 1);
  EXPECT_EQ(pace.LinesUntilDue(101, 8), 1);
  EXPECT_EQ(pace.LinesUntilDue(1, 8), 8);
  pace.Count(2, 40);
  EXPECT_EQ(pace.LinesUntilDue(40, 8), 1);
  EXPECT_EQ(YieldPace(0).LinesUntilDue(40, 8), 8);
  EXPECT_EQ(YieldPace(-1).LinesUntilDue(40, 8), 8);
  EXPECT_EQ(YieldPace(INT_MAX).LinesUntilDue(1, INT_MAX), INT_MAX);
}

TEST_F(YieldPaceTest, TheFirstLineHasNoYieldBeforeIt) {
  YieldPace pace(1);
  pace.YieldIfDue();
  EXPECT_TRUE(yields_.empty());
  pace.Count(1, 1);
  pace.YieldIfDue();
  EXPECT_EQ(yields_.size(), 1u);
  pace.YieldIfDue();
  EXPECT_EQ(yields_.size(), 1u) << "counting starts anew";
}

TEST_F(YieldPaceTest, LinesWithoutPixelsDoNotCount) {
  YieldPace pace(1);
  for (int line = 0; line < 10; ++line) pace.EndLines(1, 0);
  EXPECT_TRUE(yields_.empty());
}

TEST_F(YieldPaceTest, StartsAnewBeforeTheHostIsCalled) {
  YieldPace pace(10);
  pace.Count(1, 10);
  host_.ThrowAt(host::Service::YieldToRB, 1);
  EXPECT_THROW(pace.YieldIfDue(), host::Thrown);
  pace.YieldIfDue();
  EXPECT_EQ(host_.Calls(host::Service::YieldToRB), 1);
}

}  // namespace
