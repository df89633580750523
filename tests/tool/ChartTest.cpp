// The test chart contains what makes each operation visible.
#include "tool/Chart.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "Files.h"
#include "Process.h"

namespace tool_test {
namespace {

class ChartTest : public FileTest {
 protected:
  const tool::Image chart_ = tool::MakeChart();
};

TEST_F(ChartTest, IsWrittenAsItIsDrawn) {
  EXPECT_EQ(Lmx({"chart", "-o", Path("chart.png")}).status, 0);
  const tool::Image written = Result("chart.png");
  EXPECT_EQ(written.width, chart_.width);
  EXPECT_EQ(written.height, chart_.height);
  EXPECT_EQ(written.pixels, chart_.pixels);
}

TEST_F(ChartTest, HasOddSidesThatDiffer) {
  EXPECT_EQ(chart_.width % 2, 1);
  EXPECT_EQ(chart_.height % 2, 1);
  EXPECT_NE(chart_.width, chart_.height);
}

TEST_F(ChartTest, HasEveryAlphaFromClearToOpaque) {
  std::set<std::uint32_t> alphas;
  for (const std::uint32_t pixel : chart_.pixels) alphas.insert(pixel >> 24);
  EXPECT_GT(alphas.size(), 200u);
  EXPECT_EQ(*alphas.begin(), 0u);
  EXPECT_EQ(*alphas.rbegin(), 255u);
  EXPECT_EQ(chart_.pixels.front() >> 24, 0u);
}

TEST_F(ChartTest, HasFourDifferentCorners) {
  const auto at = [&](int x, int y) {
    return chart_
        .pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(chart_.width) + static_cast<std::size_t>(x)];
  };
  const int right = chart_.width - 1 - 30, bottom = chart_.height - 1 - 30;
  const std::set<std::uint32_t> corners = {at(30, 30), at(right, 30), at(30, bottom), at(right, bottom)};
  EXPECT_EQ(corners.size(), 4u);
  for (const std::uint32_t corner : corners) EXPECT_EQ(corner >> 24, 255u);
}

TEST_F(ChartTest, HasEveryGreyAndEveryFullColour) {
  const std::set<std::uint32_t> pixels(chart_.pixels.begin(), chart_.pixels.end());
  for (std::uint32_t level = 0; level < 256; ++level) {
    EXPECT_EQ(pixels.count(0xFF000000 | level * 0x010101), 1u) << level;
  }
  for (const std::uint32_t colour : {0xFF0000u, 0x00FF00u, 0x0000FFu, 0xFFFF00u, 0x00FFFFu, 0xFF00FFu}) {
    EXPECT_EQ(pixels.count(0xFF000000 | colour), 1u) << colour;
  }
}

}  // namespace
}  // namespace tool_test
