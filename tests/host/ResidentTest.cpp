// A library that stays in the process starts with fresh variables in every host.

#include <gtest/gtest.h>

#include <memory>

#include "host/Host.h"

namespace {

using host::Host;

// The second call must have no effect.
void Keep() {
  Host::KeepLoaded(KEPT_PLUGIN);
  Host::KeepLoaded(KEPT_PLUGIN);
  ASSERT_TRUE(Host::IsLoaded(KEPT_PLUGIN));
}

TEST(Resident, EveryHostStartsWithFreshVariables) {
  Keep();
  const host::Method* method = nullptr;
  void (*last)() = nullptr;
  for (int round = 0; round < 3; ++round) {
    Host host;
    host.Load(KEPT_PLUGIN);
    method = host.FindMethod("Next");
    ASSERT_NE(method, nullptr);
    if (round > 0) {
      EXPECT_EQ(method->entry, last) << "not the library that is kept";
    }
    last = method->entry;
    EXPECT_EQ(host.Call("Next", {}).result, 1);
    EXPECT_EQ(host.Call("Next", {}).result, 2);
  }
  EXPECT_TRUE(Host::IsLoaded(KEPT_PLUGIN));
}

TEST(Resident, AHostThatFailedToStartLeavesItUsable) {
  Keep();
  {
    Host host;
    host.ThrowAt(host::Service::RegisterModule, 1);
    EXPECT_THROW(host.Load(KEPT_PLUGIN), host::Thrown);
  }
  Host host;
  host.Load(KEPT_PLUGIN);
  EXPECT_EQ(host.Call("Next", {}).result, 1);
}

TEST(Resident, ALoadedLibraryIsTooLateToKeep) {
  Host host;
  host.Load(ODD_PLUGIN);
  EXPECT_THROW(Host::KeepLoaded(ODD_PLUGIN), host::Error);
  EXPECT_THROW(Host::KeepLoaded("no/such/library.so"), host::Error);
}

}  // namespace
