// Every way to break the contract is noticed, named, and left behind.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>

#include "OddPlugin.h"
#include "host/Host.h"

namespace {

using host::Host;
using host::Misuse;
using host::Options;
using host::Picture;
using host::Service;

struct MisuseCase {
  odd::Misdeed misdeed;
  const char* complaint;  // a pattern, see Matches
};

void PrintTo(const MisuseCase& misuse, std::ostream* out) {
  *out << misuse.complaint;
}

class Misdeed : public testing::TestWithParam<MisuseCase> {
 protected:
  Misdeed() { host_.Load(ODD_PLUGIN); }

  Host host_;
  Picture picture_{{4, 2}};
};

// Compares all of the text; in the pattern, * stands for any text and # for an object's number.
bool Matches(std::string_view text, std::string_view pattern) {
  if (pattern.empty()) return text.empty();
  if (pattern[0] == '*') {
    for (std::size_t skipped = 0; skipped <= text.size(); ++skipped) {
      if (Matches(text.substr(skipped), pattern.substr(1))) return true;
    }
    return false;
  }
  if (text.empty() || text[0] != pattern[0]) return false;
  std::size_t next = 1;
  if (pattern[0] == '#') {
    next = std::min(text.find_first_not_of("0123456789", 1), text.size());
    if (next == 1) return false;
  }
  return Matches(text.substr(next), pattern.substr(1));
}

TEST_P(Misdeed, IsNoticed) {
  try {
    host_.Call("Misbehave", {picture_, int{GetParam().misdeed}});
    FAIL() << "no complaint";
  } catch (const Misuse& misuse) {
    EXPECT_TRUE(Matches(misuse.what(), GetParam().complaint)) << misuse.what();
  }
  EXPECT_EQ(picture_.Locks(), 0);
  EXPECT_EQ(picture_.References(), 1);
  EXPECT_EQ(host_.Call("Kind", {picture_}).result, 8) << "the host does not go on";
}

constexpr const char* kContext =
    " called with object # (or its context), which is gone, which is no context of a locked picture";

const std::string kFiveContexts = [] {
  std::string all;
  for (const char* name : {"Width", "Height", "BitsPerPixel", "BytesPerRow", "Data"}) {
    all += (all.empty() ? "" : "\n") + std::string("CGBitmapContextGet") + name + kContext;
  }
  return all;
}();

INSTANTIATE_TEST_SUITE_P(
    Each, Misdeed,
    testing::Values(
        MisuseCase{odd::kLeaveLocked, "Odd_Misbehave left picture # locked (open locks: 1)"},
        MisuseCase{odd::kUnlockTwice, "unlockPictureDescription: picture # is not locked"},
        MisuseCase{odd::kUnlockNonsense, "unlockPictureDescription: called with an address * never gave out, *"},
        MisuseCase{odd::kLockNonsense, "lockPictureDescription: called with an address *, which is no picture"},
        MisuseCase{odd::kLockString, "lockPictureDescription: called with string #, which is no picture"},
        MisuseCase{odd::kLockUnconstructed,
                   "lockPictureDescription: called with picture #, whose constructor has not run"},
        MisuseCase{odd::kLockWithoutDescription, "lockPictureDescription: the description is nil"},
        MisuseCase{odd::kUseContextAfterUnlock, kFiveContexts.c_str()},
        MisuseCase{odd::kUseAfterRelease, "lockPictureDescription: called with object # *, which is gone, *"},
        MisuseCase{odd::kReleaseTwice, "REALUnlockObject: called with object # *, which is gone, *"},
        MisuseCase{odd::kReleaseForeign, "REALUnlockObject: the plug-in owns no reference to picture #"},
        MisuseCase{odd::kReleaseNil, "REALUnlockObject: called with nil, which has no references"},
        MisuseCase{odd::kReleaseWhileLocked, "REALUnlockObject: picture # goes while it is locked"},
        MisuseCase{odd::kConstructTwice, "Constructor: picture # is constructed already"},
        MisuseCase{odd::kConstructReleased, "Constructor: called on object # *, which is gone, which is no picture"},
        MisuseCase{odd::kConstructEmpty, "Constructor: called with 0 x 2 pixels"},
        MisuseCase{odd::kAskWrongConstructor,
                   "REALLoadObjectMethod: the class picture has no method \"Constructor(width as integer)\""},
        MisuseCase{odd::kAskMethodOfNil, "REALLoadObjectMethod: called on nil, which is no picture"},
        MisuseCase{odd::kAskUnknownService, "the resolver was asked for \"REALUnknown\", which is no service"},
        MisuseCase{odd::kAskUnknownClass, "pluginObjectType: there is no class movie"},
        MisuseCase{odd::kInstanceOfNonsense, "CreateInstance: called with an address *, which is no class"},
        MisuseCase{odd::kBuildNegativeString, "REALBuildString: length -1"},
        MisuseCase{odd::kBuildStringOfNil, "REALBuildString: text is nil"},
        MisuseCase{odd::kShowNonsense, "RuntimeMsgBox: called with an address *, which is no string"},
        MisuseCase{odd::kRegisterAgain, "PluginRegisterModule: a second module"},
        MisuseCase{odd::kRegisterNil, "PluginRegisterModule: the module is nil"},
        MisuseCase{odd::kReturnArgument, "Odd_Misbehave returned picture # without a reference for the caller"},
        MisuseCase{odd::kReturnReleased, "Odd_Misbehave returned object # *, which is gone, which is no picture"},
        MisuseCase{odd::kReturnUnconstructed, "Odd_Misbehave returned picture #, whose constructor has not run"},
        MisuseCase{odd::kReturnString, "Odd_Misbehave returned string #, which is no picture"}));

class Books : public testing::Test {
 protected:
  explicit Books(const Options& options = {}) : host_(options) { host_.Load(ODD_PLUGIN); }

  Host host_;
  Picture picture_{{4, 2}};
};

TEST_F(Books, WritingBesideAByRefArgumentIsNoticed) {
  try {
    host_.Call("WriteTooMuch", {5});
    FAIL();
  } catch (const Misuse& misuse) {
    EXPECT_STREQ(misuse.what(), "Odd_WriteTooMuch wrote beside its argument i");
  }
}

TEST_F(Books, LocksLeftByAnExceptionAreNoticed) {
  host_.ThrowAt(Service::YieldToRB, 1);
  try {
    host_.Call("Misbehave", {picture_, int{odd::kYieldAndLeaveLocked}});
    FAIL();
  } catch (const Misuse& misuse) {
    EXPECT_TRUE(Matches(misuse.what(), "Odd_Misbehave left picture # locked (open locks: 1)"));
  }
  EXPECT_EQ(picture_.Locks(), 0);
}

TEST_F(Books, NobodyCanUnlockWithoutTheService) {
  host_.Withhold(Service::UnlockPictureDescription);
  EXPECT_NO_THROW(host_.Call("Misbehave", {picture_, int{odd::kLeaveLocked}}));
  EXPECT_EQ(picture_.Locks(), 0);
}

TEST_F(Books, UnlockOfWhatCouldNotBeLockedIsForgiven) {
  host_.Withhold(Service::LockPictureDescription);
  EXPECT_NO_THROW(host_.Call("Misbehave", {picture_, int{odd::kEndOuterLock}}));
}

TEST_F(Books, LocksOfAnOuterCallAreItsOwn) {
  host_.onYield = [&] { host_.Call("Misbehave", {picture_, int{odd::kEndOuterLock}}); };
  EXPECT_THROW(host_.Call("Yield", {picture_, 1}), Misuse);
  ASSERT_EQ(host_.Complaints().size(), 2u);
  EXPECT_TRUE(Matches(host_.Complaints()[0], "Odd_Misbehave ended a lock of picture # that was not its own"));
  EXPECT_TRUE(Matches(host_.Complaints()[1], "unlockPictureDescription: picture # is not locked"));
}

TEST_F(Books, LeaksAreReportedAndCanBeDropped) {
  EXPECT_TRUE(host_.Leaks().empty());
  host_.Call("Misbehave", {picture_, int{odd::kLeakPicture}});
  host_.Call("Misbehave", {picture_, int{odd::kAbandon}});
  ASSERT_EQ(host_.Leaks().size(), 2u);
  EXPECT_STREQ(host_.Leaks()[0].kind, "picture");
  EXPECT_TRUE(host_.Leaks()[0].constructed);
  EXPECT_EQ(host_.Leaks()[0].pluginReferences, 1);
  EXPECT_FALSE(host_.Leaks()[1].constructed);
  EXPECT_EQ(host_.AbandonedObjects(), 1);
  EXPECT_EQ(host_.LiveObjects().size(), 3u);
  host_.DropLeaks();
  EXPECT_TRUE(host_.Leaks().empty());
  EXPECT_EQ(host_.AbandonedObjects(), 0);
  EXPECT_EQ(host_.LiveObjects().size(), 1u);
  EXPECT_EQ(picture_.References(), 1);
}

TEST_F(Books, StaleHandlesAreRecognisedLong) {
  const REALpictureStruct* stale = Picture({1, 1}).Handle();
  for (int i = 0; i < 1000; ++i) EXPECT_NE(Picture({1, 1}).Handle(), stale);
}

class CollectingBooks : public Books {
 protected:
  CollectingBooks() : Books(Collecting()) {}
  static Options Collecting() {
    Options options;
    options.throwComplaints = false;
    return options;
  }
};

TEST_F(CollectingBooks, ComplaintsAreKeptWithoutThrowing) {
  host_.Call("Misbehave", {picture_, int{odd::kUnlockTwice}});
  host_.Call("Misbehave", {picture_, int{odd::kLeaveLocked}});
  ASSERT_EQ(host_.Complaints().size(), 2u);
  EXPECT_EQ(picture_.Locks(), 0);
  host_.ClearComplaints();
  EXPECT_TRUE(host_.Complaints().empty());
}

TEST(LeftBehind, IsGivenUpWithTheHost) {
  Picture kept({1, 1});
  {
    Options options;
    options.throwComplaints = false;
    Host host(options);
    host.Load(ODD_PLUGIN);
    host.Call("Misbehave", {kept, int{odd::kLeakPicture}});
  }
  const Host next;
  EXPECT_TRUE(next.Leaks().empty());
  EXPECT_EQ(next.LiveObjects().size(), 1u);
  EXPECT_EQ(kept.References(), 1);
}

}  // namespace
