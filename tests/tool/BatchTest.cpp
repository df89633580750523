// Several pictures at once: the file of each result, the messages, and the state of the others
// after a failure or a signal.
#include "tool/Batch.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <sstream>
#include <thread>

#include "Files.h"
#include "Process.h"
#include "tests/support/Thrown.h"
#include "tool/Errors.h"
#include "tool/File.h"
#include "tool/Interrupt.h"

namespace tool_test {
namespace {

using Strings = std::vector<std::string>;

class BatchTest : public FileTest {
 protected:
  BatchTest() {
    std::filesystem::create_directory(Path("out"));
    WriteFile(bad_, Text("none"));
  }

  // Waits for another process to do something.
  static bool Becomes(const std::function<bool()>& condition) {
    for (int i = 0; i < 3000; ++i) {
      if (condition()) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
  }
  bool Exists(const std::string& name) const { return std::filesystem::exists(Path(name)); }

  void ExpectWrong(Strings arguments, const Strings& parts) {
    arguments.insert(arguments.begin(), "FlipRotate");
    const Ended ended = Lmx(arguments);
    EXPECT_EQ(ended.status, 2) << ended.error;
    for (const std::string& part : parts) EXPECT_PRED2(Contains, ended.error, part);
    EXPECT_TRUE(Names("out").empty());
    EXPECT_FALSE(Exists("made"));
  }

  const std::string a_ = Given("a.png", SmallImage()), b_ = Given("b.png", OpaqueImage(5, 4));
  const std::string bad_ = Path("bad.png");
};

TEST_F(BatchTest, AFolderGetsThePicturesUnderTheirNames) {
  WriteFile(Path("photo.JPG"), Jpeg(OpaqueImage(16, 16)));
  WriteFile(Path("odd.name"), Png(SmallImage()));
  EXPECT_EQ(Lmx({"FlipRotate", a_, Path("photo.JPG"), Path("odd.name"), "flip_h=1", "-o", Path("made/")}),
            (Ended{0, "", ""}));
  EXPECT_EQ(Names("made"), (Strings{"a.png", "odd.png", "photo.JPG"}));
  EXPECT_EQ(Result("made/a.png").pixels[0], SmallImage().pixels[2]);
  EXPECT_EQ(Result("made/odd.png").pixels[0], SmallImage().pixels[2]);
  EXPECT_EQ(ReadFile(Path("made/photo.JPG"))[0], 0xFF);
}

TEST_F(BatchTest, AFolderThatExistsNeedsNoSlash) {
  EXPECT_EQ(Lmx({"FlipRotate", a_, b_, "-o", Path("out")}).status, 0);
  EXPECT_EQ(Names("out"), (Strings{"a.png", "b.png"}));
  EXPECT_EQ(Lmx({"FlipRotate", a_, "-o", Path("alone/")}).status, 0);
  EXPECT_EQ(Names("alone"), (Strings{"a.png"}));
}

TEST_F(BatchTest, PatternsMakeTheNames) {
  WriteFile(Path("c.jpg"), Jpeg(OpaqueImage(16, 16)));
  EXPECT_EQ(Lmx({"FlipRotate", a_, Path("c.jpg"), "-o", Path("out/{name}-{name}.{ext}")}).status, 0);
  EXPECT_EQ(Names("out"), (Strings{"a-a.png", "c-c.jpg"}));
  EXPECT_EQ(Lmx({"FlipRotate", a_, b_, "--format=jpeg", "-o", Path("out/{name}.{ext}")}).status, 0);
  EXPECT_EQ(Names("out"), (Strings{"a-a.png", "a.jpg", "b.jpg", "c-c.jpg"}));
}

TEST_F(BatchTest, APictureMayReplaceItself) {
  EXPECT_EQ(Lmx({"FlipRotate", a_, b_, "flip_h=1", "-o", Path("{name}.png")}).status, 0);
  EXPECT_EQ(Result("a.png").pixels[0], SmallImage().pixels[2]);
}

TEST_F(BatchTest, FailuresAreListedAtTheEndAndTheOthersAreDone) {
  EXPECT_EQ(Lmx({"FlipRotate", bad_, a_, Path("missing.png"), b_, "rotation=180", "-o", Path("out/")}),
            (Ended{1, "",
                   "lmx: 2 of 4 pictures failed\n  " + bad_ + ": is neither a PNG nor a JPEG picture\n  " +
                       Path("missing.png") + ": cannot open: No such file or directory\n"}));
  EXPECT_EQ(Names("out"), (Strings{"a.png", "b.png"}));
}

TEST_F(BatchTest, AMethodThatFailsNamesThePicture) {
  const Ended ended = Lmx({"Trim", a_, b_, "width=0", "-o", Path("out/")});
  EXPECT_EQ(ended.status, 1);
  EXPECT_PRED2(Contains, ended.error, "\n  " + a_ + ": LMX_Trim: ");
  EXPECT_TRUE(Names("out").empty());
}

TEST_F(BatchTest, ValuesComeInTheOrderOfThePicturesAndNotesOnce) {
  Ended ended = Lmx({"GetAverageRGB", a_, b_, "width=0", "height=0"});
  EXPECT_EQ(ended.out, a_ + ": red = 16, green = 32, blue = 48\n" + b_ + ": red = 0, green = 0, blue = 0\n");
  EXPECT_EQ(ended.error, "");
  ended = Lmx({"GetAverageRGB", a_, b_, "width=0", "height=0", "--json"});
  EXPECT_PRED2(StartsWith, ended.out, "{\"picture\":\"" + a_ + "\",\"method\":");
  ended = Lmx({"FlipRotate", a_, b_, "rotation=100", "-o", Path("out/")});
  EXPECT_EQ(ended.error, "lmx: note: rotation=100 counts as 90 in LMX_FlipRotate\n");
  ended = Lmx({"FlipRotate", a_, b_, "-v", "-o", Path("out/")});
  EXPECT_NE(ended.out.find(b_ + ": result = p.LMX_FlipRotate("), std::string::npos) << ended.out;
}

TEST_F(BatchTest, NothingIsWrittenWhereTwoPicturesMeet) {
  std::filesystem::create_directory(Path("sub"));
  const std::string other = Given("sub/a.png", OpaqueImage(5, 4));
  ExpectWrong({a_, other, "-o", Path("made/")}, {a_ + " and " + other + " would both be written to", "made/a.png"});
  ExpectWrong({a_, a_, "-o", Path("made/")}, {"both"});
  ExpectWrong({a_, b_, "-o", Path("out/../made/") + "{name}/../x.png", "--format=png"}, {"both"});
  const std::string next = Given("a-new.png", SmallImage());
  ExpectWrong({a_, next, "-o", Path("{name}-new.png")}, {a_ + " would be written over " + next});
}

TEST_F(BatchTest, WhatDoesNotSuitSeveralPictures) {
  ExpectWrong({a_, b_, "-o", Path("one.png")}, {"what is `" + b_ + "`?", "-o folder/"});
  ExpectWrong({a_, b_, "-o", "-"}, {"what is `" + b_ + "`?"});
  ExpectWrong({a_, b_}, {"Give a folder"});
  ExpectWrong({a_, "-", "-o", Path("made/")}, {"standard input"});
  ExpectWrong({"-", "-o", Path("made/")}, {"standard input has no name"});
  ExpectWrong({a_, b_, "--quality=5", "-o", Path("made/")}, {"--quality"});
  ExpectWrong({a_, b_, "-o", Path("made/{name}.webp")}, {".webp"});
  for (const char* jobs : {"0", "1025", "many"}) ExpectWrong({a_, "-j", jobs, "-o", Path("made/")}, {"-j", jobs});
  const Ended made = Lmx({"MakeGradient", "-o", Path("made/")});
  EXPECT_EQ(made.status, 2);
  EXPECT_PRED2(Contains, made.error, "takes its names from picture files");
}

TEST_F(BatchTest, OptionsForAFormatReachTheFilesThatHaveIt) {
  WriteFile(Path("c.jpg"), Jpeg(OpaqueImage(64, 64)));
  const auto size = [&](const char* quality) {
    EXPECT_EQ(Lmx({"FlipRotate", a_, Path("c.jpg"), "--quality", quality, "-o", Path("out/")}).status, 0);
    return ReadFile(Path("out/c.jpg")).size();
  };
  EXPECT_LT(size("5"), size("95"));
}

TEST_F(BatchTest, AFolderThatCannotBeMade) {
  const Ended ended = Lmx({"FlipRotate", a_, b_, "-o", Path("missing/deep/")});
  EXPECT_EQ(ended.status, 1);
  EXPECT_PRED2(Contains, ended.error, "cannot make the folder");
}

TEST_F(BatchTest, AFullDiskKeepsTheOldFilesAndLeavesNoOthers) {
  const std::string large = Given("large.png", OpaqueImage(300, 200));
  WriteFile(Path("out/large.png"), Text("old"));
  Surroundings full;
  full.largestFile = 1000;
  EXPECT_EQ(Lmx({"FlipRotate", large, a_, "-o", Path("out/")}, full),
            (Ended{1, "",
                   "lmx: 1 of 2 pictures failed\n  " + large + ": " + Path("out/large.png") +
                       ": cannot write: File too large\n"}));
  EXPECT_EQ(Names("out"), (Strings{"a.png", "large.png"}));
  EXPECT_EQ(ReadFile(Path("out/large.png")), Text("old"));
}

TEST_F(BatchTest, ATerminalShowsOneLine) {
  Surroundings terminal;
  terminal.terminal = true;
  const Ended ended = Lmx({"FlipRotate", a_, b_, "-o", Path("out/"), "--jobs=1"}, terminal);
  EXPECT_PRED2(StartsWith, ended.error, "\r\x1b[K0 of 2 pictures (Ctrl-C stops)");
  EXPECT_EQ(ended.error.substr(ended.error.size() - 4), "\r\x1b[K");
}

// The worker for a.png waits for a reader of its output, so the signal arrives in the middle of the
// batch.
TEST_F(BatchTest, SignalsStopAllWorkAndLeaveWhatIsDone) {
  for (const int end : {SIGINT, SIGTERM, SIGHUP}) {
    ASSERT_EQ(mkfifo(Path("out/a.png").c_str(), 0600), 0);
    Surroundings surroundings;
    surroundings.started = [&](pid_t lmx, int) {
      EXPECT_TRUE(Becomes([&] { return Exists("out/b.png"); }));
      kill(lmx, end);
    };
    const Ended stopped = Lmx({"FlipRotate", a_, b_, "-o", Path("out/"), "-j", "2"}, surroundings);
    EXPECT_EQ(stopped.status, end == SIGINT ? 130 : -1) << stopped.error;
    if (end == SIGINT) {
      EXPECT_PRED2(StartsWith, stopped.error, "lmx: stopped after ");
    }
    EXPECT_EQ(Names("out"), (Strings{"a.png", "b.png"}));
    std::filesystem::remove(Path("out/a.png"));
    std::filesystem::remove(Path("out/b.png"));
  }
}

TEST_F(BatchTest, CtrlCBeforeTheFirstPictureStopsAll) {
  Surroundings interrupted;
  interrupted.pendingInterrupt = true;
  EXPECT_EQ(Lmx({"FlipRotate", a_, b_, "-o", Path("out/")}, interrupted),
            (Ended{130, "", "lmx: stopped after 0 of 2 pictures\n"}));
  EXPECT_TRUE(Names("out").empty());
}

// Each waits for the other, and the first one ends last.
TEST_F(BatchTest, WorkGoesOnAtTheSameTimeAndIsToldInOrder) {
  std::ostringstream out;
  tool::RunBatch({"first", "second"}, 2, out, [&](std::size_t i) {
    WriteFile(Path(i == 0 ? "1" : "2"), {});
    const bool met = Becomes([&] { return Exists(i == 0 ? "3" : "1"); });
    if (i == 1) WriteFile(Path("3"), {});
    return tool::Told{met ? std::to_string(i) : "alone", {}, ""};
  });
  EXPECT_EQ(out.str(), "01");
}

TEST_F(BatchTest, NoMoreThanSoManyWorkAtOnce) {
  std::ostringstream out;
  tool::RunBatch(Strings(7, "x"), 2, out, [&](std::size_t i) {
    const std::string mine = Path("out/" + std::to_string(i));
    WriteFile(mine, {});
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    const bool isAllowed = Names("out").size() <= 2;
    std::filesystem::remove(mine);
    return tool::Told{isAllowed ? "." : "!", {}, ""};
  });
  EXPECT_EQ(out.str(), ".......");
}

// More than a pipe can hold.
TEST_F(BatchTest, LongTextsArrive) {
  std::ostringstream out;
  tool::RunBatch({"x"}, 1, out, [](std::size_t) { return tool::Told{std::string(300000, 'x'), {}, ""}; });
  EXPECT_EQ(out.str().size(), 300000u);
}

TEST_F(BatchTest, AProcessThatEndsBadlyIsAFailure) {
  std::ostringstream out;
  const auto work = [](std::size_t i) {
    if (i == 0) raise(SIGKILL);
    if (i == 1) throw std::runtime_error("lost");
    return tool::Told{"fine", {}, ""};
  };
  EXPECT_EQ(ThrownBy<tool::Failure>([&] {
              tool::RunBatch({"a", "b", "c"}, 2, out, work);
            }),
            "2 of 3 pictures failed\n  a: its process was ended: Killed\n  b: its process has told nothing");
  EXPECT_EQ(out.str(), "fine");
}

// The worker ends and its temporary file is removed when the process that started it ends, even if
// that process was killed.
TEST_F(BatchTest, NoWorkerOrFileOutlivesTheBatch) {
  for (const int end : {SIGTERM, SIGKILL}) {
    const int status = InChild([&] {
      tool::WatchSignals();
      std::ostringstream out;
      tool::RunBatch({"x"}, 1, out, [&](std::size_t) {
        const tool::Replacement replacement(Path("out/x.png"));
        WriteFile(Path("begun"), {});
        alarm(60);
        {
          const tool::SignalsHeld slow;
          kill(getppid(), end);
          std::this_thread::sleep_for(std::chrono::milliseconds(300));
        }
        for (;;) pause();
        return tool::Told();
      });
    });
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), end);
    EXPECT_TRUE(Exists("begun"));
    std::filesystem::remove(Path("begun"));
    if (end == SIGTERM) {
      EXPECT_TRUE(Names("out").empty()) << "the batch has not waited";
    }
    EXPECT_TRUE(Becomes([&] { return Names("out").empty(); }));
  }
}

}  // namespace
}  // namespace tool_test
