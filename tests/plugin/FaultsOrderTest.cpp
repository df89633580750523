// What every method asks of the host when nothing goes wrong: which services, in which order, how
// often.
#include <climits>

#include "FaultsCases.h"
#include "support/PluginTest.h"

namespace faults {

using host::Service;

class FaultsOrder : public FaultsTest {};

TEST_F(FaultsOrder, ServicesAreCalledInOrder) {
  ForEveryMethod([this](const MethodCase& method, const Forms& forms) {
    const Ran& ran = Clean(method, forms);
    EXPECT_EQ(Sequence(method, ran), method.sequence);
    EXPECT_EQ(ran.code, 0);
    EXPECT_EQ(!ran.result.IsNil(), method.MakesResult());
    EXPECT_TRUE(ran.leaks.empty());
  });
}

TEST_F(FaultsOrder, PicturesHaveTheReferencesOfTheirOwners) {
  ForEveryMethod([this](const MethodCase& method, const Forms& forms) {
    const Ran ran = Run(method, forms);
    if (ran.result) {
      EXPECT_EQ(ran.result.References(), 1);
      EXPECT_EQ(ran.result.PluginReferences(), 0);
      EXPECT_EQ(ran.result.Locks(), 0);
    }
    if (ran.source) {
      EXPECT_EQ(ran.source.PluginReferences(), 0);
      EXPECT_EQ(ran.source.Locks(), 0);
      EXPECT_TRUE(ran.source.PaddingIntact());
      EXPECT_EQ(ran.source.TakeSnapshot() == ran.before, !method.inPlace);
    }
  });
}

TEST_F(FaultsOrder, YieldsAreAsManyAsThePaceSays) {
  ForEveryMethod([this](const MethodCase& method, const Forms& forms) {
    EXPECT_EQ(Clean(method, forms).Calls(Service::YieldToRB), method.yields);
    for (const int never : {0, -1, INT_MIN, INT_MAX}) {
      const Ran ran = Run(method, forms, nullptr, never);
      EXPECT_EQ(ran.Calls(Service::YieldToRB), 0) << "yield " << never;
      ExpectClean(method, forms, ran);
    }
  });
}

TEST_F(FaultsOrder, ServicesAreLookedUpOnFirstUse) {
  ForEveryMethod([this](const MethodCase& method, const Forms& forms) {
    Restart();
    for (const bool again : {false, true}) {
      Ran ran;
      const auto count = [&](Service service) { return ran.Calls(service) > 0 && !again ? 1 : 0; };
      ran = Run(method, forms);
      for (const Service service : host::kServices) {
        EXPECT_EQ(host_->Lookups(service), count(service)) << host::EntryName(service) << (again ? ", again" : "");
      }
    }
  });
}

TEST_F(FaultsOrder, ErrorMethodsAskForTextsOnly) {
  for (int call = 0; call < 2; ++call) {
    host_->ResetCounts();
    host_->Call("GetLastError", {});
    EXPECT_TRUE(host_->Log().empty());
    host_->Call("GetErrorMessage", {2});
    EXPECT_EQ(host_->Log().size(), 1u);
    for (const Service service : host::kServices) {
      const bool text = service == Service::BuildString;
      EXPECT_EQ(host_->Calls(service), text ? 1 : 0) << host::EntryName(service);
      EXPECT_EQ(host_->Lookups(service), text && call == 0 ? 1 : 0) << host::EntryName(service);
    }
  }
}

// What a method does before it has accepted its arguments.
TEST_F(FaultsOrder, RefusedArgumentsAskForNothing) {
  for (const MethodCase& method : Methods()) {
    if (!method.hasSource) continue;
    SCOPED_TRACE(method.name);
    Restart();
    const Ran ran = Run(method, host::Picture());
    EXPECT_EQ(ran.code, 2);
    EXPECT_TRUE(ran.result.IsNil());
    EXPECT_TRUE(ran.log.empty());
    for (const Service service : host::kServices) EXPECT_EQ(host_->Lookups(service), 0) << host::EntryName(service);
  }
}

// FaultsServices fails every call of the services that it knows.
TEST_F(FaultsOrder, NoOtherServiceIsCalled) {
  ForEveryMethod([this](const MethodCase& method, const Forms& forms) {
    const Ran& ran = Clean(method, forms);
    int listed = ran.Calls(Service::LoadObjectMethod);  // each followed by a constructor
    for (const Service service : kCallServices) listed += ran.Calls(service);
    EXPECT_EQ(ran.log.size(), static_cast<std::size_t>(listed));
  });
}

}  // namespace faults
