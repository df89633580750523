// Ctrl-C and what a terminal shows. The signal is pending when lmx starts, so it arrives at a known point: before the
// method is called, and noticed at the method's first yield.
#include <gtest/gtest.h>

#include "Files.h"
#include "Process.h"

namespace tool_test {
namespace {

class InterruptTest : public FileTest {
 protected:
  InterruptTest() {
    interrupted_.pendingInterrupt = true;
    terminal_.terminal = true;
  }

  const std::string small_ = Given("small.png", SmallImage());
  // More pixels than lmx lets pass between two yields of its own accord.
  const std::vector<std::string> large_ = {"MakeGradient", "width=1100", "height=1100", "-o", Path("out.png")};
  Surroundings interrupted_, terminal_;
};

TEST_F(InterruptTest, StopsAMethodAtItsYield) {
  WriteFile(Path("out.png"), {'o', 'l', 'd'});
  const Ended ended =
      Lmx({"Stretch", small_, "width=9", "yield=1", "+", "FlipRotate", "-v", "-o", Path("out.png")}, interrupted_);
  EXPECT_EQ(ended.status, 130);
  EXPECT_EQ(ended.error, "lmx: stopped in LMX_Stretch\n");
  EXPECT_EQ(ended.out, "") << "the call never ended";
  EXPECT_EQ(ReadFile(Path("out.png")), (Bytes{'o', 'l', 'd'}));
  EXPECT_EQ(Names(), (std::vector<std::string>{"out.png", "small.png"}));
}

TEST_F(InterruptTest, EveryMethodThatYieldsCanBeStopped) {
  const std::vector<std::vector<std::string>> calls = {
      {"FlipRotate", small_},
      {"FreeRotateByShear", small_, "rotation=30"},
      {"ShearHorizontal", small_, "shear=0.5"},
      {"ShearVertical", small_, "shear=0.5"},
      {"Stretch", small_},
      {"AdjustHSV", small_},
      {"AdjustHSV_InPlace", small_},
      {"GetAverageHSV", small_},
      {"AdjustRGB", small_},
      {"AdjustRGB_InPlace", small_},
      {"GetAverageRGB", small_},
      {"MakeGradient"},
      {"MakeDoubleGradient"},
  };
  for (std::vector<std::string> call : calls) {
    call.insert(call.end(), {"--yield=1", "-v", "-o", Path("out.png")});
    const Ended ended = Lmx(call, interrupted_);
    EXPECT_EQ(ended.status, 130) << call.front();
    EXPECT_EQ(ended.error, "lmx: stopped in LMX_" + call.front() + "\n");
    EXPECT_EQ(ended.out, "") << call.front();
  }
  EXPECT_EQ(Names(), std::vector<std::string>{"small.png"});
}

TEST_F(InterruptTest, WithoutAYieldTheCallEndsButNothingFollows) {
  const Ended ended = Lmx({"FlipRotate", small_, "+", "Stretch", "-v", "-o", Path("out.png")}, interrupted_);
  EXPECT_EQ(ended.status, 130);
  EXPECT_EQ(ended.error, "lmx: stopped in LMX_FlipRotate\n");
  EXPECT_NE(ended.out.find("LMX_FlipRotate("), std::string::npos);
  EXPECT_EQ(ended.out.find("LMX_Stretch("), std::string::npos);
  EXPECT_EQ(Names(), std::vector<std::string>{"small.png"});
}

TEST_F(InterruptTest, ATerminalShowsProgressAndCanStopByItself) {
  const Ended ended = Lmx(large_, terminal_);
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.error.rfind("\r\x1b[KLMX_MakeGradient: over 1.0 megapixels in ", 0), 0u) << ended.error;
  EXPECT_EQ(ended.error.substr(ended.error.size() - 4), "\r\x1b[K") << "the line is left behind";

  Surroundings both = terminal_;
  both.pendingInterrupt = true;
  EXPECT_EQ(Lmx(large_, both).error, "lmx: stopped in LMX_MakeGradient\r\n");
}

TEST_F(InterruptTest, ProgressNeedsATerminal) {
  const Ended ended = Lmx(large_);
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.error, "");
}

TEST_F(InterruptTest, TheUsersYieldCountsOnATerminalToo) {
  std::vector<std::string> never = large_;
  never.push_back("--yield=0");
  EXPECT_EQ(Lmx(never, terminal_).error, "");
  EXPECT_EQ(Lmx({"FlipRotate", small_, "yield=2", "-o", Path("out.png")}, terminal_).error.rfind("\r\x1b[KLMX_Flip", 0),
            0u);
}

}  // namespace
}  // namespace tool_test
