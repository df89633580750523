// The layer of host calls, function by function: the name that each asks for, the arguments that it
// passes on, and its result while the host lacks the service.
#include "HostCalls.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "host/HostState.h"

namespace {

using host::Service;

REALmoduleDefinition gModule = {kPluginInterfaceVersion, "a module", nullptr, 0, {}};

std::string TextOf(const void* handle) {
  return handle == nullptr ? "nil" : host::Table().Find(handle)->text;
}

// A text, with a reference that the plug-in owns.
template <class Handle>
Handle* NewText(const char* text) {
  host::Object& object = host::Table().Add(host::Object::Kind::String, text);
  object.references = 1;
  return static_cast<Handle*>(object.handle);
}

class HostCallsTest : public testing::Test {
 protected:
  struct Case {
    Service service;
    std::string answer;     // of the host
    std::string withoutIt;  // while the host lacks the service
    std::function<std::string()> call;
  };

  HostCallsTest() { gResolver = host::Resolve; }

  // In an order in which no service needs a later one.
  const std::vector<Case> cases_ = {
      {Service::BuildString, "abc", "nil", [] { return TextOf(REALBuildString("abcdef", 3)); }},
      {Service::MessageBox, "a text", "",
       [this] {
         host_.messageBoxes = {""};
         REALMessageBox(NewText<REALstringStruct>("a text"));
         return host_.messageBoxes.back();
       }},
      {Service::UnlockObject, "gone", "there",
       [] {
         auto* const object = NewText<REALobjectStruct>("another");
         REALUnlockObject(object);
         return host::Table().Find(object) == nullptr ? "gone" : "there";
       }},
      {Service::LockPictureDescription, "10 not nil, 1", "5 nil, 0",
       [] {
         const host::Picture picture({3, 2, host::Storage::Buffer});
         REALpictureDescription description = {5, nullptr, {}};
         REALLockPictureDescription(picture.Handle(), &description);
         return std::to_string(description.pictureType) +
                (description.pictureData == nullptr ? " nil, " : " not nil, ") + std::to_string(picture.Locks());
       }},
      {Service::UnlockPictureDescription, "0", "1",
       [] {
         const host::Picture picture({3, 2, host::Storage::Buffer});
         REALpictureDescription description;
         REALLockPictureDescription(picture.Handle(), &description);
         REALUnlockPictureDescription(picture.Handle());
         return std::to_string(picture.Locks());
       }},
      {Service::GetRBVersion, "2024.250000", "0.000000", [] { return std::to_string(REALGetRBVersion()); }},
      {Service::YieldToRB, "yielded", "",
       [this] {
         std::string text;
         host_.onYield = [&] { text = "yielded"; };
         REALYieldToRB();
         return text;
       }},
      {Service::GetClassRef, "picture", "nil", [] { return TextOf(REALGetClassRef("picture")); }},
      {Service::NewInstance, "a picture", "nil",
       [] {
         const void* const object = REALnewInstance(REALGetClassRef("picture"));
         return host::Table().FindPicture(object) == nullptr ? "nil" : "a picture";
       }},
      {Service::LoadObjectMethod, "not nil", "nil",
       [] {
         const host::Picture picture({3, 2});
         auto* const object = reinterpret_cast<REALobjectStruct*>(picture.Handle());
         const void* method = REALLoadObjectMethod(object, "Constructor(width as integer, height as integer)");
         return method == nullptr ? "nil" : "not nil";
       }},
      {Service::RegisterModule, "a module", "nil",
       [this] {
         REALRegisterModule(&gModule);
         return host_.Module() == nullptr ? "nil" : host_.Module()->name;
       }},
  };

  host::Host host_{{2024.25, {}, true, true}};
};

TEST_F(HostCallsTest, PassOnArgumentsAndResults) {
  for (const Case& service : cases_) {
    SCOPED_TRACE(host::EntryName(service.service));
    host_.ClearComplaints();
    EXPECT_EQ(service.call(), service.answer);
    EXPECT_EQ(host_.Calls(service.service), 1);
    if (service.service == Service::RegisterModule) continue;  // complains: the module has no methods
    EXPECT_EQ(host_.Complaints(), std::vector<std::string>());
  }
}

TEST_F(HostCallsTest, PassOnTexts) {
  EXPECT_EQ(TextOf(REALBuildString("with a \0 inside", 15)), std::string("with a \0 inside", 15));
  EXPECT_EQ(TextOf(REALBuildString("nothing of this", 0)), "");
}

TEST_F(HostCallsTest, PassOnWhatTheHostThrows) {
  for (const Case& service : cases_) {
    host_.ResetCounts();
    host_.ThrowAt(service.service, 1);
    EXPECT_THROW(service.call(), host::Thrown) << host::EntryName(service.service);
    host_.ClearFaults();
  }
}

// In a process in which no service has been called yet.
TEST_F(HostCallsTest, AMissingServiceIsAskedForUntilItIsFound) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";  // starts a fresh process
  const auto expectLookups = [this] {
    EXPECT_EQ(REALnewInstance(nullptr), nullptr);
    EXPECT_EQ(host_.Lookups(Service::NewInstance), 0) << "for a class that is nil";
    for (const Case& service : cases_) {
      SCOPED_TRACE(host::EntryName(service.service));
      host_.Withhold(service.service);
      for (int call = 1; call <= 3; ++call) {
        EXPECT_EQ(service.call(), service.withoutIt);
        EXPECT_EQ(host_.Lookups(service.service), call);
        EXPECT_EQ(host_.Calls(service.service), 0);
      }
      host_.ClearFaults();
      for (int call = 1; call <= 3; ++call) {
        EXPECT_EQ(service.call(), service.answer);
        EXPECT_EQ(host_.Lookups(service.service), 4) << "found once, it is kept";
        EXPECT_EQ(host_.Calls(service.service), call);
      }
    }
    std::exit(testing::Test::HasFailure() ? 1 : 0);
  };
  EXPECT_EXIT(expectLookups(), testing::ExitedWithCode(0), "");
}

}  // namespace
