// The layer of host calls, function by function: the name that each asks for, what it passes on,
// and what it gives while the host lacks the service.
#include "HostCalls.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "FakeHost.h"

namespace {

using Calls = std::vector<std::string>;

REALpictureStruct gPicture = {"p", 11, &gPicture};
REALstringStruct gString;
REALclassRefStruct gClass = {"some class"};
REALmoduleDefinition gModule = {10, "a module", nullptr, 0, {}};

struct ServiceCase {
  const char* entryName;
  std::string logged;                 // by the fake host
  std::string answer;                 // of the host
  std::string withoutIt;              // while the host lacks the service
  std::function<std::string()> call;  // gives the function's result as a text
};

std::string Answer(const void* got, const void* expected) {
  return got == nullptr ? "nil" : got == expected ? "the host's" : "another";
}

const std::vector<ServiceCase>& Cases() {
  static const std::vector<ServiceCase> cases = {
      {"REALBuildString", "REALBuildString(3)", "the host's", "nil",
       [] { return Answer(REALBuildString("abcdef", 3), &gString); }},
      {"REALUnlockObject", "REALUnlockObject(p)", "", "",
       [] {
         REALUnlockObject(fake::AsObject(&gPicture));
         return "";
       }},
      {"lockPictureDescription", "lockPictureDescription(p)", "11 the host's", "5 nil",
       [] {
         REALpictureDescription description = {5, nullptr, {}};
         REALLockPictureDescription(&gPicture, &description);
         return std::to_string(description.pictureType) + " " + Answer(description.pictureData, &gPicture);
       }},
      {"unlockPictureDescription", "unlockPictureDescription(p)", "", "",
       [] {
         REALUnlockPictureDescription(&gPicture);
         return "";
       }},
      {"REALGetRBVersion", "REALGetRBVersion()", "2024.250000", "0.000000",
       [] { return std::to_string(REALGetRBVersion()); }},
      {"REALYieldToRB", "REALYieldToRB()", "", "",
       [] {
         REALYieldToRB();
         return "";
       }},
      {"pluginObjectType", "pluginObjectType(some name)", "the host's", "nil",
       [] { return Answer(REALGetClassRef("some name"), &gClass); }},
      {"CreateInstance", "CreateInstance(some class)", "the host's", "nil",
       [] { return Answer(REALnewInstance(&gClass), &gPicture); }},
      {"PluginRegisterModule", "PluginRegisterModule(a module)", "", "",
       [] {
         REALRegisterModule(&gModule);
         return "";
       }},
      {"REALLoadObjectMethod", "REALLoadObjectMethod(p, Some(declaration))", "not nil", "nil",
       [] {
         void* method = REALLoadObjectMethod(fake::AsObject(&gPicture), "Some(declaration)");
         return method == nullptr ? "nil" : "not nil";
       }},
      {"RuntimeMsgBox", "RuntimeMsgBox(a text)", "", "",
       [] {
         gString.text = "a text";
         REALMessageBox(&gString);
         return "";
       }},
  };
  return cases;
}

void GiveAnswers() {
  fake::Reset();
  fake::TheHost().version = 2024.25;
  fake::TheHost().pictureClass = &gClass;
  fake::TheHost().newPicture = &gPicture;
  fake::TheHost().string = &gString;
}

TEST(HostCallsTest, PassOnArgumentsAndResults) {
  for (const ServiceCase& service : Cases()) {
    SCOPED_TRACE(service.entryName);
    GiveAnswers();
    EXPECT_EQ(service.call(), service.answer);
    EXPECT_EQ(fake::TheHost().calls, Calls({service.logged}));
  }
}

TEST(HostCallsTest, PassOnTexts) {
  GiveAnswers();
  REALBuildString("with a \0 inside", 15);
  EXPECT_EQ(gString.text, std::string("with a \0 inside", 15));
  REALBuildString("nothing of this", 0);
  EXPECT_EQ(gString.text, "");
}

TEST(HostCallsTest, PassOnWhatTheHostThrows) {
  for (const ServiceCase& service : Cases()) {
    SCOPED_TRACE(service.entryName);
    GiveAnswers();
    fake::TheHost().throwing = {service.entryName};
    EXPECT_THROW(service.call(), fake::Thrown);
  }
}

TEST(HostCallsTest, NoObjectIsMadeOfANilClass) {
  GiveAnswers();
  EXPECT_EQ(REALnewInstance(nullptr), nullptr);
  EXPECT_TRUE(fake::TheHost().calls.empty());
  EXPECT_TRUE(fake::TheHost().lookups.empty());
}

// What a process sees in which no service has been called yet.
void ExpectLookupsUntilFound() {
  GiveAnswers();
  for (const ServiceCase& service : Cases()) {
    SCOPED_TRACE(service.entryName);
    fake::TheHost().calls.clear();
    fake::TheHost().lookups.clear();
    fake::TheHost().missing = {service.entryName};
    for (int call = 1; call <= 3; ++call) {
      EXPECT_EQ(service.call(), service.withoutIt);
      EXPECT_EQ(fake::TheHost().lookups, Calls(static_cast<std::size_t>(call), service.entryName));
      EXPECT_TRUE(fake::TheHost().calls.empty());
    }
    fake::TheHost().missing = {};
    for (int call = 1; call <= 3; ++call) {
      EXPECT_EQ(service.call(), service.answer);
      EXPECT_EQ(fake::TheHost().lookups, Calls(4, service.entryName)) << "found once, it is kept";
    }
    EXPECT_EQ(fake::TheHost().calls, Calls(3, service.logged));
  }
}

TEST(HostCallsDeathTest, AMissingServiceIsAskedForUntilItIsFound) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";  // which starts a fresh process
  EXPECT_EXIT(
      {
        ExpectLookupsUntilFound();
        std::exit(testing::Test::HasFailure() ? 1 : 0);
      },
      testing::ExitedWithCode(0), "");
}

TEST(HostCallsDeathTest, AnObjectOfANilClassNeedsNoLookup) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(
      {
        GiveAnswers();
        const bool made = REALnewInstance(nullptr) != nullptr;
        std::exit(made || !fake::TheHost().lookups.empty() ? 1 : 0);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
