// Loading, unloading and the registered module.

#include <gtest/gtest.h>

#include "OddPlugin.h"
#include "host/Host.h"
#include "tests/support/Thrown.h"

namespace {

using host::Error;
using host::Host;
using host::Misuse;
using host::Options;

TEST(Load, FindsTheMethods) {
  Host host;
  EXPECT_EQ(host.Module(), nullptr);
  EXPECT_EQ(host.FindMethod("Next"), nullptr);
  host.Load(ODD_PLUGIN);
  EXPECT_EQ(host.PluginVersions(), std::vector<int>{10});
  ASSERT_NE(host.Module(), nullptr);
  EXPECT_STREQ(host.Module()->name, "Odd");
  EXPECT_EQ(host.Methods().size(), host.Module()->methodCount);
  EXPECT_EQ(host.Methods()[0].name, "Odd_Next");
  EXPECT_TRUE(host.Complaints().empty());
}

TEST(Load, FindsMethodsByAnySpelling) {
  Host host;
  host.Load(ODD_PLUGIN);
  const host::Method* method = host.FindMethod("Odd_StackPointer");
  ASSERT_NE(method, nullptr);
  EXPECT_EQ(host.FindMethod("StackPointer"), method);
  EXPECT_EQ(host.FindMethod("stackpointer"), method);
  EXPECT_EQ(host.FindMethod("ODD_STACKPOINTER"), method);
  EXPECT_EQ(host.FindMethod("Stack"), nullptr);
  EXPECT_THROW(host.Call("Stack", {}), Error);
}

TEST(Load, RefusesWhatIsNoPlugin) {
  Host host;
  EXPECT_THROW(host.Load("no/such/library.so"), Error);
  EXPECT_THROW(host.Load("/proc/self/exe"), Error);
  EXPECT_THROW(host.CallPluginMainAgain(), Error);
}

TEST(Load, OneHostAtATime) {
  const Host host;
  EXPECT_THROW(Host(), Error);
}

TEST(Load, NextHostStartsWithFreshVariables) {
  for (int round = 0; round < 2; ++round) {
    {
      Host host;
      host.Load(ODD_PLUGIN);
      EXPECT_TRUE(Host::IsLoaded(ODD_PLUGIN));
      EXPECT_EQ(host.Call("Next", {}).result, 1);
      EXPECT_EQ(host.Call("Next", {}).result, 2);
    }
    EXPECT_FALSE(Host::IsLoaded(ODD_PLUGIN));
  }
}

TEST(Load, LibraryThatStaysIsLoadedAsACopy) {
  for (int round = 0; round < 3; ++round) {
    {
      Host host;
      host.Load(STUBBORN_PLUGIN);
      EXPECT_EQ(host.Call("Next", {}).result, 1) << round;
      EXPECT_EQ(host.Call("Next", {}).result, 2) << round;
    }
    EXPECT_TRUE(Host::IsLoaded(STUBBORN_PLUGIN));
  }
}

TEST(Load, EntryCanBeCalledAgain) {
  Host host;
  host.Load(ODD_PLUGIN);
  EXPECT_EQ(ThrownBy<Misuse>([&] { host.CallPluginMainAgain(); }), "PluginRegisterModule: a second module");
  EXPECT_EQ(host.PluginVersions().size(), 2u);
}

TEST(Load, ALinkedEntryIsStartedWithTheSameChecks) {
  Host host;
  const auto entry = [](REALResolver resolver) {
    reinterpret_cast<HostRegisterPluginVersion*>(resolver("RegisterPluginVersion"))(9);
  };
  EXPECT_THROW(host.Start(entry), Misuse);
  EXPECT_THROW(host.CallPluginMainAgain(), Misuse);
  EXPECT_EQ(host.PluginVersions(), (std::vector<int>{9, 9}));
}

TEST(Load, OldHostsGetTheirVersion) {
  Options options;
  options.version = odd::VersionFor(odd::kWrongFlags);
  options.throwComplaints = false;
  Host host(options);
  host.Load(ODD_PLUGIN);
  EXPECT_EQ(host.Module()->methods[2].flags, 0x15u);
}

struct LoadCase {
  odd::LoadMisdeed misdeed;
  const char* complaint;
};

class LoadMisdeed : public testing::TestWithParam<LoadCase> {};

TEST_P(LoadMisdeed, IsNoticed) {
  Options options;
  options.version = odd::VersionFor(GetParam().misdeed);
  Host host(options);
  EXPECT_EQ(ThrownBy<Misuse>([&] { host.Load(ODD_PLUGIN); }), GetParam().complaint);
}

INSTANTIATE_TEST_SUITE_P(
    Each, LoadMisdeed,
    testing::Values(LoadCase{odd::kWrongInterface, "RegisterPluginVersion: interface version 11 is not known"},
                    LoadCase{odd::kNoInterface, "PluginRegisterModule: called before RegisterPluginVersion"},
                    LoadCase{odd::kWrongModuleVersion, "the module's version is 9"},
                    LoadCase{odd::kNoModuleName, "the module has no name"},
                    LoadCase{odd::kNoMethods, "the module has no methods"},
                    LoadCase{odd::kModuleWordSet, "the module's unused words are not all nil"},
                    LoadCase{odd::kSetter, "method record 3 has a setter"},
                    LoadCase{odd::kWrongFlags, "method record 3 has flags 21"},
                    LoadCase{odd::kMethodWordSet, "method record 3 has unused words that are not nil"},
                    LoadCase{odd::kNoEntry, "method record 3 has no function"},
                    LoadCase{odd::kNoDeclaration, "method record 3 has no declaration"},
                    LoadCase{odd::kMalformedDeclaration,
                             "method record 3: malformed declaration \"Odd_Weigh(a as number)\": expected a known type "
                             "before this place at character 22"},
                    LoadCase{odd::kSameNameTwice, "method record 3 declares odd_NEXT a second time"}));

}  // namespace
