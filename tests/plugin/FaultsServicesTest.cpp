// Every service call of every method fails or throws, one at a time, at every position. The outcome
// is that of the reference model, no lock or reference is lost that the method does not abandon,
// and the next call works. Without faults, the method calls the right services in the right order.
#include <algorithm>
#include <climits>

#include "FaultsTest.h"

namespace faults {

using host::Service;
using support::FaultKind;
using support::HostFault;

class FaultsOrder : public FaultsTest {};

TEST_F(FaultsOrder, ServicesAreCalledInOrder) {
  ForEveryOperation([this](const MethodCall& call, const Setting& setting) {
    EXPECT_EQ(Check(call, setting), 0);
    EXPECT_EQ(ServiceCalls(*call.method, *host_), ServiceCalls(*call.method));
  });
}

TEST_F(FaultsOrder, NobodyYieldsAtOtherPaces) {
  for (const int never : {0, -1, INT_MIN, INT_MAX}) {
    ForEveryOperation([&](MethodCall call, const Setting& setting) {
      call.arguments.back() = never;
      EXPECT_EQ(Check(call, setting), 0);
      EXPECT_EQ(host_->Calls(Service::YieldToRB), 0) << "yield " << never;
    });
  }
}

TEST_F(FaultsOrder, ServicesAreLookedUpOnFirstUse) {
  ForEveryOperation([this](const MethodCall& call, const Setting& setting) {
    Restart();
    for (const bool again : {false, true}) {
      Check(call, setting);
      for (const Service service : host::kServices) {
        const int lookups = host_->Calls(service) > 0 && !again ? 1 : 0;
        EXPECT_EQ(host_->Lookups(service), lookups) << host::EntryName(service) << (again ? ", again" : "");
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

// The calls of a method before it has accepted its arguments.
TEST_F(FaultsOrder, RefusedArgumentsAskForNothing) {
  ForEveryOperation([this](const MethodCall& call, Setting setting) {
    if (!call.method->hasSource) return;
    Restart();
    setting.source.reset();
    EXPECT_EQ(Check(call, setting), 2);
    EXPECT_TRUE(host_->Log().empty());
    for (const Service service : host::kServices) EXPECT_EQ(host_->Lookups(service), 0) << host::EntryName(service);
  });
}

// ----------------------------------------------------------------------- services that fail, throw

class FaultsServices : public FaultsTest {
 protected:
  // The fault at every position, and at one that is never reached.
  void Sweep(const MethodCall& call, const Setting& setting, HostFault fault, int last) {
    for (fault.n = 1; fault.n <= last + 1; ++fault.n) {
      SCOPED_TRACE(testing::Message() << host::EntryName(fault.service) << ", fault of kind "
                                      << static_cast<int>(fault.kind) << " at " << fault.n << " of " << last);
      Check(call, setting, fault);
      Check(call, setting);
    }
  }
};

TEST_F(FaultsServices, EachFailsAndThrowsAtEveryPosition) {
  ForEveryOperation([this](const MethodCall& call, const Setting& setting) {
    for (const Service service : host::kServices) {
      Check(call, setting);
      const int calls = host_->Calls(service);
      if (calls == 0) continue;
      Sweep(call, setting, {FaultKind::Fail, service}, calls);
      Sweep(call, setting, {FaultKind::Throw, service}, calls);
    }
  });
}

// The constructor and the yield handler are the host's code, too.
TEST_F(FaultsServices, ConstructorsAndProgramsThrow) {
  ForEveryOperation([this](const MethodCall& call, const Setting& setting) {
    Check(call, setting);
    const int yields = host_->Calls(Service::YieldToRB);
    Sweep(call, setting, {FaultKind::ConstructorThrows, Service::NewInstance}, host_->Calls(Service::NewInstance));
    Sweep(call, setting, {FaultKind::ProgramThrows, Service::YieldToRB}, yields);
  });
}

TEST_F(FaultsServices, TheLockOfAnUnusablePictureIsGivenBackWhateverThatThrows) {
  ForEveryOperation([this](const MethodCall& call, Setting setting) {
    if (!setting.source) return;
    setting.source->fault = model::Fault::UnusableType;
    Check(call, setting, {FaultKind::Throw, Service::UnlockPictureDescription});
  });
}

// -------------------------------------------------------------------------------- missing services

// If a service that makes something is missing, the call ends. Any other missing service is looked
// up again at every call.
TEST_F(FaultsServices, EachIsMissing) {
  ForEveryOperation([this](const MethodCall& call, const Setting& setting) {
    for (const Service service : host::kServices) {
      SCOPED_TRACE(host::EntryName(service));
      Check(call, setting);
      const int calls = host_->Calls(service);
      if (calls == 0) continue;
      Restart();
      Check(call, setting, {FaultKind::Withhold, service});
      const bool ends = service == Service::NewInstance || service == Service::LoadObjectMethod ||
                        service == Service::LockPictureDescription;
      EXPECT_EQ(host_->Lookups(service), ends ? 1 : calls);
      EXPECT_EQ(Check(call, setting), 0);
      EXPECT_EQ(host_->Lookups(service), 1) << "by the next call";
    }
  });
}

TEST_F(FaultsServices, MessagesAreNilWithoutTheServiceForTexts) {
  host_->Withhold(Service::BuildString);
  for (int call = 1; call <= 3; ++call) {
    EXPECT_TRUE(host_->Call("GetErrorMessage", {4}).result.IsNil());
    EXPECT_EQ(host_->Lookups(Service::BuildString), call);
  }
  host_->ClearFaults();
  EXPECT_EQ(host_->Call("GetErrorMessage", {5}).result.AsText(), "General Error: can't lock intermediate picture");
  EXPECT_EQ(host_->Lookups(Service::BuildString), 4);
}

// ------------------------------------------------------------------------------------------ stacks

TEST_F(FaultsServices, EveryMethodRunsAndIsLeftOnAnyStack) {
  ForEveryOperation([this](const MethodCall& call, const Setting& setting) {
    for (const unsigned misalignment : {0u, 4u, 8u, 12u}) {
      SCOPED_TRACE(misalignment);
      host_->SetStackMisalignment(misalignment);
      Check(call, setting);
      EXPECT_EQ(host_->Call("GetErrorMessage", {0}).result.AsText(), "General Error: No Error");
      Check(call, setting, {FaultKind::Throw, Service::YieldToRB});
    }
    host_->SetStackMisalignment(std::nullopt);
  });
}

}  // namespace faults
