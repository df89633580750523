// Ctrl-C, and output on a terminal. The signal is pending when lmx starts, so it arrives at a known
// point: before the method is called. lmx notices it at the method's first yield.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <random>

#include "Files.h"
#include "Process.h"
#include "tests/support/Thrown.h"
#include "tool/Encode.h"
#include "tool/Errors.h"
#include "tool/File.h"
#include "tool/Interrupt.h"

namespace tool_test {
namespace {

class InterruptTest : public FileTest {
 protected:
  InterruptTest() {
    interrupted_.pendingInterrupt = true;
    terminal_.terminal = true;
  }

  const std::string small_ = Given("small.png", SmallImage());
  // More pixels than lmx lets pass between two yields by default.
  const std::vector<std::string> large_ = {"MakeGradient", "width=1100", "height=1100", "-o", Path("out.png")};
  Surroundings interrupted_, terminal_;
};

TEST_F(InterruptTest, StopsAMethodAtItsYield) {
  WriteFile(Path("out.png"), Text("old"));
  EXPECT_EQ(
      Lmx({"Stretch", small_, "width=9", "yield=1", "+", "FlipRotate", "-v", "-o", Path("out.png")}, interrupted_),
      (Ended{130, "", "lmx: stopped in LMX_Stretch\n"}));
  EXPECT_EQ(ReadFile(Path("out.png")), Text("old"));
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

TEST_F(InterruptTest, StopsBeforeAFileTakesTheOldOnesPlace) {
  WriteFile(Path("out.png"), Text("old"));
  const int status = InChild([&] {
    tool::WatchSignals();
    tool::Replacement replacement(Path("out.png"));
    raise(SIGINT);
    EXPECT_THROW(replacement.TakePlace(nullptr), tool::Interrupted);
  });
  EXPECT_EQ(status, 0);
  EXPECT_EQ(ReadFile(Path("out.png")), Text("old"));
  EXPECT_EQ(Names(), (std::vector<std::string>{"out.png", "small.png"}));
}

TEST_F(InterruptTest, SignalsThatEndTheProcessLeaveNoFile) {
  for (const std::vector<int>& signals : {std::vector<int>{SIGTERM}, {SIGHUP}, {SIGINT, SIGINT}}) {
    const int status = InChild([&] {
      tool::WatchSignals();
      const tool::Replacement replacement(Path("out.png"));
      for (const int signal : signals) raise(signal);
    });
    ASSERT_TRUE(WIFSIGNALED(status)) << status;
    EXPECT_EQ(WTERMSIG(status), signals.back());
    EXPECT_EQ(Names(), std::vector<std::string>{"small.png"});
  }
}

TEST_F(InterruptTest, AnIgnoredSignalStaysIgnored) {
  const int status = InChild([] {
    signal(SIGHUP, SIG_IGN);
    tool::WatchSignals();
    raise(SIGHUP);
  });
  EXPECT_EQ(status, 0);
}

// lmx does not begin to write before there is a reader. Then it writes more than a pipe can hold.
TEST_F(InterruptTest, StopsWhileWriting) {
  ASSERT_EQ(mkfifo(Path("pipe.png").c_str(), 0600), 0);
  tool::Image noise = OpaqueImage(300, 300);
  std::mt19937 random(3);
  for (std::uint32_t& pixel : noise.pixels) pixel = static_cast<std::uint32_t>(random()) | 0xFF000000;
  const std::string large = Given("large.png", noise);
  Surroundings surroundings;
  int reader = -1;
  surroundings.started = [&](pid_t lmx, int) {
    reader = open(Path("pipe.png").c_str(), O_RDONLY | O_CLOEXEC);
    kill(lmx, SIGINT);
    std::array<char, 4096> buffer{};
    while (read(reader, buffer.data(), buffer.size()) > 0) continue;
  };
  const Ended ended = Lmx({"FlipRotate", large, "-o", Path("pipe.png")}, surroundings);
  close(reader);
  EXPECT_EQ(ended.status, 130) << ended.error;
  EXPECT_EQ(ended.error, "lmx: stopped at " + Path("pipe.png") + "\n");
}

TEST_F(InterruptTest, StopsWhileReading) {
  const std::string path = Path("huge.png");
  WriteFile(path, {0x89, 'P', 'N', 'G'});
  ASSERT_EQ(truncate(path.c_str(), 2 << 20), 0);
  EXPECT_EQ(Lmx({"GetAverageRGB", path}, interrupted_).error, "lmx: stopped at " + path + "\n");
  EXPECT_EQ(Lmx({"GetAverageRGB", path}, interrupted_).status, 130);
}

// One colour: the file is small and quickly read, and has many pixels.
TEST_F(InterruptTest, StopsBetweenTheRowsOfALargePicture) {
  const tool::Image large{2100, 2000, std::vector<std::uint32_t>(2100 * 2000, 0xFF336699)};
  const std::string png = Given("large.png", large), jpeg = Path("large.jpg");
  WriteFile(jpeg, Jpeg(large));
  for (const std::string& path : {png, jpeg}) {
    EXPECT_EQ(Lmx({"GetAverageRGB", path}, interrupted_), (Ended{130, "", "lmx: stopped at " + path + "\n"}));
  }
  for (const tool::Format format : {tool::Format::Png, tool::Format::Jpeg}) {
    const int status = InChild([&] {
      tool::WatchSignals();
      raise(SIGINT);
      tool::Encoding encoding;
      encoding.format = format;
      EXPECT_EQ(ThrownBy<tool::Interrupted>([&] { tool::Encode("large", large, encoding); }), "stopped at large");
    });
    EXPECT_EQ(status, 0);
  }
}

TEST_F(InterruptTest, ATerminalShowsTheWayOfALargePicture) {
  const tool::Image large{2100, 2000, std::vector<std::uint32_t>(2100 * 2000, 0xFF336699)};
  WriteFile(Path("large.jpg"), Jpeg(large));
  const std::string png = Path("large.png"), jpeg = Path("large.jpg"), erase = "\r\x1b[K";
  const auto shows = [&](const std::string& source, const std::string& result, const std::string& text) {
    const Ended ended = Lmx({"FlipRotate", source, "-o", result}, terminal_);
    EXPECT_EQ(ended.status, 0) << ended.error;
    EXPECT_PRED2(Contains, ended.error, erase + text + " (Ctrl-C stops)" + erase);
    EXPECT_EQ(ended.error.substr(ended.error.size() - 4), erase);
  };
  shows(jpeg, png, "reading " + jpeg + ": 0 %");
  shows(jpeg, png, "writing " + png + ": 0 %");
  shows(png, jpeg, "reading " + png + ": 0 %");
  shows(png, jpeg, "writing " + jpeg + ": 0 kB");
}

// When the pipe is empty, lmx waits for more input or is about to.
TEST_F(InterruptTest, StopsWhileItWaitsForInput) {
  Surroundings surroundings;
  surroundings.input = "\x89PNG";
  surroundings.started = [](pid_t lmx, int input) {
    for (int left = 1; left != 0;) ASSERT_EQ(ioctl(input, FIONREAD, &left), 0);
    kill(lmx, SIGINT);
  };
  const Ended ended = Lmx({"GetAverageRGB", "-"}, surroundings);
  EXPECT_EQ(ended.status, 130);
  EXPECT_EQ(ended.error, "lmx: stopped at standard input\n");
}

TEST_F(InterruptTest, ATerminalShowsProgressAndCanStopByItself) {
  const Ended ended = Lmx(large_, terminal_);
  EXPECT_EQ(ended.status, 0);
  EXPECT_PRED2(StartsWith, ended.error, "\r\x1b[KLMX_MakeGradient: over 1.0 megapixels in ");
  EXPECT_EQ(ended.error.substr(ended.error.size() - 4), "\r\x1b[K") << "the line is left behind";

  Surroundings both = terminal_;
  both.pendingInterrupt = true;
  EXPECT_EQ(Lmx(large_, both).error, "lmx: stopped in LMX_MakeGradient\r\n");
}

TEST_F(InterruptTest, ProgressNeedsATerminal) {
  EXPECT_EQ(Lmx(large_), (Ended{0, "", ""}));
}

TEST_F(InterruptTest, TheUsersYieldCountsOnATerminalToo) {
  std::vector<std::string> never = large_;
  never.push_back("--yield=0");
  EXPECT_EQ(Lmx(never, terminal_).error, "");
  EXPECT_PRED2(StartsWith, Lmx({"FlipRotate", small_, "yield=2", "-o", Path("out.png")}, terminal_).error,
               "\r\x1b[KLMX_Flip");
}

}  // namespace
}  // namespace tool_test
