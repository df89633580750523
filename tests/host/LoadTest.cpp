// Loading, unloading and the registered module.

#include <gtest/gtest.h>

#include <utility>
#include <vector>

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

void ExpectFreshVariables(const char* plugin) {
  Host host;
  host.Load(plugin);
  EXPECT_TRUE(Host::IsLoaded(plugin));
  EXPECT_EQ(host.Call("Next", {}).result, 1);
  EXPECT_EQ(host.Call("Next", {}).result, 2);
}

TEST(Load, NextHostStartsWithFreshVariables) {
  for (int round = 0; round < 2; ++round) {
    ExpectFreshVariables(ODD_PLUGIN);
    EXPECT_FALSE(Host::IsLoaded(ODD_PLUGIN));
  }
}

TEST(Load, LibraryThatStaysIsLoadedAsACopy) {
  for (int round = 0; round < 3; ++round) {
    SCOPED_TRACE(round);
    ExpectFreshVariables(STUBBORN_PLUGIN);
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

TEST(Load, ThePluginGetsTheVersionOfTheOptions) {
  Options options;
  options.version = odd::VersionFor(odd::kWrongFlags);
  options.throwComplaints = false;
  Host host(options);
  host.Load(ODD_PLUGIN);
  EXPECT_EQ(host.Module()->methods[2].flags, 0x15u);
}

using LoadCase = std::pair<odd::LoadMisdeed, const char*>;

class LoadMisdeed : public testing::TestWithParam<LoadCase> {};

TEST_P(LoadMisdeed, IsNoticed) {
  Options options;
  options.version = odd::VersionFor(GetParam().first);
  Host host(options);
  EXPECT_EQ(ThrownBy<Misuse>([&] { host.Load(ODD_PLUGIN); }), GetParam().second);
}

INSTANTIATE_TEST_SUITE_P(
    Each, LoadMisdeed,
    testing::ValuesIn(std::vector<LoadCase>{
        {odd::kWrongInterface, "RegisterPluginVersion: interface version 11 is not known"},
        {odd::kNoInterface, "PluginRegisterModule: called before RegisterPluginVersion"},
        {odd::kWrongModuleVersion, "the module's version is 9"},
        {odd::kNoModuleName, "the module has no name"},
        {odd::kNoMethods, "the module has no methods"},
        {odd::kModuleWordSet, "the module's unused words are not all nil"},
        {odd::kSetter, "method record 3 has a setter"},
        {odd::kWrongFlags, "method record 3 has flags 21"},
        {odd::kMethodWordSet, "method record 3 has unused words that are not nil"},
        {odd::kNoEntry, "method record 3 has no function"},
        {odd::kNoDeclaration, "method record 3 has no declaration"},
        {odd::kMalformedDeclaration,
         "method record 3: malformed declaration \"Odd_Weigh(a as number)\": expected a known type "
         "before this place at character 22"},
        {odd::kSameNameTwice, "method record 3 declares odd_NEXT a second time"}}));

}  // namespace
