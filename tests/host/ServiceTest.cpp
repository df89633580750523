// Services that are withheld, fail or throw, their counts, and the log.

#include <gtest/gtest.h>

#include "host/Host.h"

namespace {

using host::Host;
using host::Picture;
using host::Service;
using host::ServiceCall;
using host::ServiceOutcome;
using host::Storage;
using host::Thrown;

class Services : public testing::Test {
 protected:
  Services() { host_.Load(ODD_PLUGIN); }

  Host host_;
  Picture picture_{{4, 2, Storage::Buffer}};
};

TEST_F(Services, AreCountedAndLogged) {
  host_.ResetCounts();
  host_.Call("Yield", {picture_, 2});
  EXPECT_EQ(host_.Calls(Service::YieldToRB), 2);
  EXPECT_EQ(host_.Lookups(Service::YieldToRB), 2);
  EXPECT_EQ(host_.Calls(Service::LockPictureDescription), 1);
  const std::vector<ServiceCall> expected = {
      {"lockPictureDescription", picture_.Id(), ServiceOutcome::Done},
      {"REALYieldToRB", 0, ServiceOutcome::Done},
      {"REALYieldToRB", 0, ServiceOutcome::Done},
      {"unlockPictureDescription", picture_.Id(), ServiceOutcome::Done},
  };
  EXPECT_EQ(host_.Log(), expected);
}

TEST_F(Services, CreationIsLogged) {
  host_.ResetCounts();
  const Picture made = host_.Call("New", {1, 1}).result.AsPicture();
  const std::vector<ServiceCall> expected = {
      {"pluginObjectType", 0, ServiceOutcome::Done},
      {"CreateInstance", 0, ServiceOutcome::Done},
      {"REALLoadObjectMethod", made.Id(), ServiceOutcome::Done},
      {"Constructor", made.Id(), ServiceOutcome::Done},
  };
  EXPECT_EQ(host_.Log(), expected);
}

TEST_F(Services, FailAtTheGivenCallOnly) {
  host_.FailAt(Service::NewInstance, 2);
  EXPECT_FALSE(host_.Call("New", {1, 1}).result.IsNil());
  EXPECT_TRUE(host_.Call("New", {1, 1}).result.IsNil());
  EXPECT_FALSE(host_.Call("New", {1, 1}).result.IsNil());
  EXPECT_EQ(host_.Calls(Service::NewInstance), 3);
}

TEST_F(Services, FailedLockIsUnusableButCounts) {
  host_.FailAt(Service::LockPictureDescription, 1);
  EXPECT_EQ(host_.Call("Kind", {picture_}).result, 0);
  EXPECT_EQ(host_.Call("Kind", {picture_}).result, 10);
  EXPECT_EQ(picture_.Locks(), 0);
}

TEST_F(Services, ThrowAtTheGivenCall) {
  host_.ThrowAt(Service::YieldToRB, 2);
  try {
    host_.Call("Yield", {picture_, 3});
    FAIL();
  } catch (const Thrown& thrown) {
    EXPECT_EQ(thrown.service(), Service::YieldToRB);
  }
  EXPECT_EQ(host_.Calls(Service::YieldToRB), 2);
  EXPECT_EQ(picture_.Locks(), 0);
  host_.ClearFaults();
  host_.ResetCounts();
  host_.Call("Yield", {picture_, 3});
  EXPECT_EQ(host_.Calls(Service::YieldToRB), 3);
}

TEST_F(Services, ServicesOfACallCanThrow) {
  host_.ResetCounts();
  const Picture context({1, 1});
  for (Service service : {Service::BuildString, Service::MessageBox, Service::GetClassRef, Service::NewInstance,
                          Service::LoadObjectMethod, Service::LockPictureDescription, Service::YieldToRB}) {
    host_.ThrowAt(service, host_.Calls(service) + 1);
    const auto callAll = [&] {
      host_.Call("ShowBox", {});
      host_.Call("New", {1, 1});
      host_.Call("Yield", {context, 1});
    };
    EXPECT_THROW(callAll(), Thrown) << EntryName(service);
    host_.ClearFaults();
    EXPECT_NO_THROW(callAll()) << EntryName(service);
  }
}

TEST_F(Services, AnUnlockThatThrowsEndsTheLock) {
  host_.ThrowAt(Service::UnlockPictureDescription, host_.Calls(Service::UnlockPictureDescription) + 1);
  EXPECT_THROW(host_.Call("UnlockTwice", {picture_}), Thrown);
  EXPECT_EQ(picture_.Locks(), 0);
}

TEST_F(Services, WithheldFromTheGivenLookupOn) {
  EXPECT_EQ(host_.Lookups(Service::GetRBVersion), 1);
  host_.ResetCounts();
  host_.Withhold(Service::UnlockPictureDescription, 3);
  host_.Call("Kind", {picture_});
  host_.Call("Kind", {picture_});
  EXPECT_EQ(host_.Lookups(Service::UnlockPictureDescription), 2);
  EXPECT_DEATH(host_.Call("Kind", {picture_}), "");  // the odd plug-in calls nil
}

TEST(WithheldServices, AreAnsweredWithNilFromTheStart) {
  Host host;
  host.Withhold(Service::RegisterModule);
  host.Load(ODD_PLUGIN);
  EXPECT_EQ(host.Lookups(Service::RegisterModule), 1);
  EXPECT_EQ(host.Calls(Service::RegisterModule), 0);
  EXPECT_EQ(host.Module(), nullptr);
  EXPECT_TRUE(host.Methods().empty());
}

TEST(FailingServices, ModuleIsNotRegistered) {
  Host host;
  host.FailAt(Service::RegisterModule, 1);
  host.Load(ODD_PLUGIN);
  EXPECT_EQ(host.Calls(Service::RegisterModule), 1);
  EXPECT_EQ(host.Module(), nullptr);
}

TEST_F(Services, MessageBoxesAreKept) {
  host_.Call("ShowBox", {});
  EXPECT_EQ(host_.messageBoxes, std::vector<std::string>{"Hello"});
}

TEST_F(Services, EveryServiceHasItsEntryName) {
  const char* names[] = {"RegisterPluginVersion",  "REALGetRBVersion",         "REALBuildString",
                         "RuntimeMsgBox",          "PluginRegisterModule",     "pluginObjectType",
                         "CreateInstance",         "REALLoadObjectMethod",     "REALUnlockObject",
                         "lockPictureDescription", "unlockPictureDescription", "REALYieldToRB"};
  for (std::size_t i = 0; i < host::kServiceCount; ++i) EXPECT_STREQ(host::EntryName(host::kServices[i]), names[i]);
}

}  // namespace
