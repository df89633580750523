// Every breach of the contract is noticed and named, and later calls work.

#include <fnmatch.h>
#include <gtest/gtest.h>

#include <functional>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "host/Host.h"
#include "tests/support/Thrown.h"

namespace {

using host::Host;
using host::Misuse;
using host::Options;
using host::Picture;
using host::Service;
using host::Value;

// A method of the odd plug-in, and a pattern of the complaint that it causes.
using MisuseCase = std::pair<const char*, std::string>;

class Misdeed : public testing::TestWithParam<MisuseCase> {
 protected:
  Misdeed() { host_.Load(ODD_PLUGIN); }

  Host host_;
  Picture picture_{{4, 2}};
};

// Replaces the numbers of objects by #N.
std::string WithoutNumbers(const std::string& complaint) {
  return std::regex_replace(complaint, std::regex("#[0-9]+"), "#N");
}

std::string ComplaintAbout(const std::function<void()>& call) {
  return WithoutNumbers(ThrownBy<Misuse>(call));
}

TEST_P(Misdeed, IsNoticed) {
  const auto& [name, pattern] = GetParam();
  const std::size_t pictures = host_.FindMethod(name)->parameters.size();
  const std::string complaint =
      ComplaintAbout([&, method = name] { host_.Call(method, std::vector<Value>(pictures, picture_)); });
  EXPECT_EQ(fnmatch(pattern.c_str(), complaint.c_str(), 0), 0) << complaint;
  EXPECT_EQ(picture_.Locks(), 0);
  EXPECT_EQ(picture_.References(), 1);
  EXPECT_EQ(host_.Call("Kind", {picture_}).result, 8) << "the host does not go on";
}

constexpr const char* kContext =
    " called with object #N (or its context), which is gone, which is no context of a locked picture";

const std::string kFiveContexts = [] {
  std::string all;
  for (const char* name : {"Width", "Height", "BitsPerPixel", "BytesPerRow", "Data"}) {
    all += (all.empty() ? "" : "\n") + std::string("CGBitmapContextGet") + name + kContext;
  }
  return all;
}();

INSTANTIATE_TEST_SUITE_P(
    Each, Misdeed,
    testing::ValuesIn(std::vector<MisuseCase>{
        {"LeaveLocked", "Odd_LeaveLocked left picture #N locked (open locks: 1)"},
        {"UnlockTwice", "unlockPictureDescription: picture #N is not locked"},
        {"UnlockNonsense", "unlockPictureDescription: called with an address * never gave out, *"},
        {"LockNonsense", "lockPictureDescription: called with an address *, which is no picture"},
        {"LockString", "lockPictureDescription: called with string #N, which is no picture"},
        {"LockUnconstructed", "lockPictureDescription: called with picture #N, whose constructor has not run"},
        {"LockWithoutDescription", "lockPictureDescription: the description is nil"},
        {"UseContextAfterUnlock", kFiveContexts},
        {"UseAfterRelease", "lockPictureDescription: called with object #N *, which is gone, *"},
        {"ReleaseTwice", "REALUnlockObject: called with object #N *, which is gone, *"},
        {"ReleaseForeign", "REALUnlockObject: the plug-in owns no reference to picture #N"},
        {"ReleaseNil", "REALUnlockObject: called with nil, which has no references"},
        {"ReleaseWhileLocked", "REALUnlockObject: picture #N goes while it is locked"},
        {"ConstructTwice", "Constructor: picture #N is constructed already"},
        {"ConstructReleased", "Constructor: called on object #N *, which is gone, which is no picture"},
        {"ConstructEmpty", "Constructor: called with 0 x 2 pixels"},
        {"AskWrongConstructor",
         "REALLoadObjectMethod: the class picture has no method \"Constructor(width as integer)\""},
        {"AskMethodOfNil", "REALLoadObjectMethod: called on nil, which is no picture"},
        {"AskUnknownService", "the resolver was asked for \"REALUnknown\", which is no service"},
        {"AskUnknownClass", "pluginObjectType: there is no class movie"},
        {"InstanceOfNonsense", "CreateInstance: called with an address *, which is no class"},
        {"BuildNegativeString", "REALBuildString: length -1"},
        {"BuildStringOfNil", "REALBuildString: text is nil"},
        {"ShowNonsense", "RuntimeMsgBox: called with an address *, which is no string"},
        {"RegisterAgain", "PluginRegisterModule: a second module"},
        {"RegisterNil", "PluginRegisterModule: the module is nil"},
        {"ReturnArgument", "Odd_ReturnArgument returned picture #N without a reference for the caller"},
        {"ReturnReleased", "Odd_ReturnReleased returned object #N *, which is gone, which is no picture"},
        {"ReturnUnconstructed", "Odd_ReturnUnconstructed returned picture #N, whose constructor has not run"},
        {"ReturnString", "Odd_ReturnString returned string #N, which is no picture"}}));

class Books : public testing::Test {
 protected:
  Books() { host_.Load(ODD_PLUGIN); }

  Host host_;
  Picture picture_{{4, 2}};
};

TEST_F(Books, WritingBesideAByRefArgumentIsNoticed) {
  EXPECT_EQ(ComplaintAbout([&] { host_.Call("WriteTooMuch", {5}); }), "Odd_WriteTooMuch wrote beside its argument i");
}

TEST_F(Books, LocksLeftByAnExceptionAreNoticed) {
  host_.ThrowAt(Service::YieldToRB, 1);
  EXPECT_EQ(ComplaintAbout([&] { host_.Call("YieldAndLeaveLocked", {picture_}); }),
            "Odd_YieldAndLeaveLocked left picture #N locked (open locks: 1)");
  EXPECT_EQ(picture_.Locks(), 0);
}

TEST_F(Books, NobodyCanUnlockWithoutTheService) {
  host_.Withhold(Service::UnlockPictureDescription);
  EXPECT_NO_THROW(host_.Call("LeaveLocked", {picture_}));
  EXPECT_EQ(picture_.Locks(), 0);
}

TEST_F(Books, UnlockOfWhatCouldNotBeLockedIsForgiven) {
  host_.Withhold(Service::LockPictureDescription);
  EXPECT_NO_THROW(host_.Call("EndOuterLock", {picture_}));
}

TEST_F(Books, LocksOfAnOuterCallAreItsOwn) {
  host_.onYield = [&] { host_.Call("EndOuterLock", {picture_}); };
  EXPECT_THROW(host_.Call("Yield", {picture_, 1}), Misuse);
  ASSERT_EQ(host_.Complaints().size(), 2u);
  EXPECT_EQ(WithoutNumbers(host_.Complaints()[0]), "Odd_EndOuterLock ended a lock of picture #N that was not its own");
  EXPECT_EQ(WithoutNumbers(host_.Complaints()[1]), "unlockPictureDescription: picture #N is not locked");
}

TEST_F(Books, LeaksAreReportedAndCanBeDropped) {
  EXPECT_TRUE(host_.Leaks().empty());
  host_.Call("LeakPicture", {});
  host_.Call("Abandon", {});
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

TEST_F(Books, HandlesAreNotReusedSoon) {
  const REALpictureStruct* stale = Picture({1, 1}).Handle();
  for (int i = 0; i < 1000; ++i) EXPECT_NE(Picture({1, 1}).Handle(), stale);
}

Options Collecting() {
  Options options;
  options.throwComplaints = false;
  return options;
}

TEST(Collecting, ComplaintsAreKeptWithoutThrowing) {
  Host host(Collecting());
  host.Load(ODD_PLUGIN);
  const Picture picture({4, 2});
  host.Call("UnlockTwice", {picture});
  host.Call("LeaveLocked", {picture});
  ASSERT_EQ(host.Complaints().size(), 2u);
  EXPECT_EQ(picture.Locks(), 0);
  host.ClearComplaints();
  EXPECT_TRUE(host.Complaints().empty());
}

TEST(LeftBehind, IsGivenUpWithTheHost) {
  Picture kept({1, 1});
  {
    Host host(Collecting());
    host.Load(ODD_PLUGIN);
    host.Call("LeakPicture", {});
  }
  const Host next;
  EXPECT_TRUE(next.Leaks().empty());
  EXPECT_EQ(next.LiveObjects().size(), 1u);
  EXPECT_EQ(kept.References(), 1);
}

}  // namespace
