// Every service call of every method fails, or throws: one at a time, at every position. The method
// ends as its rules say, no lock or reference is lost that the rules do not give up, and the next
// call works.
#include <algorithm>

#include "FaultsCases.h"

namespace faults {

using host::Service;

namespace {

// Which new picture the nth call of a service is about, counted from 0.
std::size_t MadeAt(const MethodCase& method, Service service, int call) {
  const bool locksSource = service == Service::LockPictureDescription && method.hasSource;
  return static_cast<std::size_t>(call) - (locksSource ? 2 : 1);
}

bool IsSourceLock(const MethodCase& method, Service service, int call) {
  return service == Service::LockPictureDescription && method.hasSource && call == 1;
}

// Results are never given up by the plug-in: those that exist when an exception passes are left.
int ResultsConstructed(const MethodCase& method, const Ran& ran) {
  int made = 0;
  int results = 0;
  for (const host::ServiceCall& call : ran.log) {
    if (std::string(call.name) != "Constructor") continue;
    if (method.made[static_cast<std::size_t>(made++)] == Role::Result) ++results;
  }
  return results;
}

void ExpectAbandoned(const std::vector<host::LiveObject>& leaks, int constructed, int unconstructed) {
  const auto isConstructed = [](const host::LiveObject& leak) { return leak.constructed; };
  EXPECT_EQ(std::count_if(leaks.begin(), leaks.end(), isConstructed), constructed);
  EXPECT_EQ(leaks.size(), static_cast<std::size_t>(constructed + unconstructed));
  for (const host::LiveObject& leak : leaks) {
    EXPECT_STREQ(leak.kind, "picture");
    EXPECT_EQ(leak.references, 1);
    EXPECT_EQ(leak.pluginReferences, 1);
    EXPECT_EQ(leak.locks, 0);
  }
}

bool ResultIsUnwritten(const Ran& ran) {
  const std::vector<std::uint32_t> words = ran.result.StoredPixels();
  return std::all_of(words.begin(), words.end(), [](std::uint32_t word) { return word == host::kUnwritten; });
}

}  // namespace

class FaultsServices : public FaultsTest {
 public:
  using Sweep = void (FaultsServices::*)(const MethodCase& method, const Forms& forms, Service service, int call);

  // One call at a time, over all positions of a call without faults, and one that is not reached.
  void SweepCalls(Sweep sweep) {
    ForEveryMethod([this, sweep](const MethodCase& method, const Forms& forms) {
      for (const Service service : kCallServices) {
        const int calls = Clean(method, forms).Calls(service);
        for (int call = 1; call <= calls + 1; ++call) {
          SCOPED_TRACE(testing::Message() << host::EntryName(service) << ", call " << call << " of " << calls);
          (this->*sweep)(method, forms, service, call);
          ExpectClean(method, forms, Run(method, forms));
        }
      }
    });
  }

  void Fail(const MethodCase& method, const Forms& forms, Service service, int call) {
    const Ran ran = Run(method, forms, [&] { host_->FailAt(service, call); });
    const bool makes = service == Service::NewInstance || service == Service::LoadObjectMethod ||
                       service == Service::LockPictureDescription;
    if (!makes || call > Clean(method, forms).Calls(service)) {
      ExpectClean(method, forms, ran);
      return ExpectAbandoned(ran.leaks, 0, 0);
    }
    if (IsSourceLock(method, service, call)) {
      ExpectFailure(method, method.source, ran);
      ExpectAbandoned(ran.leaks, 0, 0);
      EXPECT_EQ(Sequence(method, ran), std::vector<std::string>({"lock S", "unlock S"}));
      return;
    }
    const bool result = method.made[MadeAt(method, service, call)] == Role::Result;
    ExpectFailure(method, result ? method.result : method.temporary, ran);
    if (ran.result) {
      EXPECT_TRUE(ResultIsUnwritten(ran));
    }
    ExpectAbandoned(ran.leaks, service == Service::LockPictureDescription, service == Service::LoadObjectMethod);
  }

  void Throw(const MethodCase& method, const Forms& forms, Service service, int call) {
    const Ran ran = Run(method, forms, [&] { host_->ThrowAt(service, call); });
    const bool ends = service == Service::UnlockPictureDescription || service == Service::UnlockObject;
    if (ends || call > Clean(method, forms).Calls(service)) {  // a release is done, whatever it throws
      ExpectClean(method, forms, ran);
      return ExpectAbandoned(ran.leaks, 0, 0);
    }
    const bool inPlace = method.inPlace && service == Service::YieldToRB;
    ExpectThrown(method, service, ran, !inPlace);
    if (inPlace) ExpectRowsDone(method, forms, ran, call);
    if (service == Service::YieldToRB) ExpectReleases(method, ran);
    int left = ResultsConstructed(method, ran);
    const bool locksMade = service == Service::LockPictureDescription && !IsSourceLock(method, service, call);
    if (locksMade && method.made[MadeAt(method, service, call)] == Role::Temporary) ++left;
    ExpectAbandoned(ran.leaks, left, service == Service::LoadObjectMethod);
  }

  // What a call holds when an exception leaves a pass goes as at its end: temporary pictures, the
  // result, the source.
  static void ExpectReleases(const MethodCase& method, const Ran& ran) {
    const std::vector<std::string> sequence = Sequence(method, ran);
    const auto isLock = [](const std::string& step) { return step.rfind("lock ", 0) == 0; };
    const std::vector<std::string> releases(std::find_if(sequence.rbegin(), sequence.rend(), isLock).base(),
                                            sequence.end());
    std::vector<std::string> expected;
    for (const std::string& step : releases) {
      if (step.rfind("give up T", 0) == 0) expected.insert(expected.end(), {"unlock " + step.substr(8), step});
    }
    if (ResultsConstructed(method, ran) > 0) expected.emplace_back("unlock R");
    if (method.hasSource) expected.emplace_back("unlock S");
    EXPECT_EQ(releases, expected);
  }

  // The rows before the nth yield are as after a whole call, the others as before it.
  void ExpectRowsDone(const MethodCase& method, const Forms& forms, const Ran& ran, int yield) {
    const host::Picture before = Numbered(ran.source.Shape());
    const host::Picture& after = Clean(method, forms).source;
    for (int y = 0; y < ran.source.Height(); ++y) {
      const host::Picture& expected = y < method.firstLine + yield ? after : before;
      for (int x = 0; x < ran.source.Width(); ++x) {
        EXPECT_EQ(ran.source.Stored(x, y), expected.Stored(x, y)) << x << ", " << y;
      }
    }
  }
};

TEST_F(FaultsServices, EachFailsAtEveryPosition) {
  SweepCalls(&FaultsServices::Fail);
}

TEST_F(FaultsServices, EachThrowsAtEveryPosition) {
  SweepCalls(&FaultsServices::Throw);
}

TEST_F(FaultsServices, TheLockOfAnUnusablePictureIsGivenBackWhateverThatThrows) {
  for (const MethodCase& method : Methods()) {
    if (!method.hasSource) continue;
    SCOPED_TRACE(method.name);
    host::PictureShape shape = SourceShape(host::Storage::Buffer);
    shape.defects.pictureType = 9;
    const Ran ran = Run(method, Numbered(shape), [this] { host_->ThrowAt(Service::UnlockPictureDescription, 1); });
    ExpectFailure(method, method.source, ran);
    EXPECT_EQ(ran.source.Locks(), 0);
  }
}

// A constructor is the host's code, too.
TEST_F(FaultsServices, EachConstructorThrows) {
  ForEveryMethod([this](const MethodCase& method, const Forms& forms) {
    for (std::size_t made = 1; made <= method.made.size(); ++made) {
      SCOPED_TRACE(made);
      const Ran ran = Run(method, forms, [&] {
        host_->newPictures.change = [made](int ordinal, host::PictureShape&) {
          if (ordinal == static_cast<int>(made)) throw host::Thrown(Service::NewInstance);
        };
      });
      host_->newPictures.change = nullptr;
      ExpectThrown(method, Service::NewInstance, ran, true);
      const bool failsItself = method.made[made - 1] == Role::Result;
      ExpectAbandoned(ran.leaks, ResultsConstructed(method, ran) - (failsItself ? 1 : 0), 1);
      ExpectClean(method, forms, Run(method, forms));
    }
  });
}

// ------------------------------------------------------------------------------ services that lack

class FaultsWithheld : public FaultsTest {
 protected:
  // A host that lacks the service from the first lookup on; complaints are for the test to judge.
  Ran RunWithout(Service service, const MethodCase& method, const Forms& forms) {
    Clean(method, forms);  // by a host that has it
    host::Options options;
    options.throwComplaints = false;
    Restart(options);
    return Run(method, forms, [&] { host_->Withhold(service); });
  }

  void ExpectNextCallFindsIt(Service service, const MethodCase& method, const Forms& forms) {
    host_->ClearComplaints();
    const Ran ran = Run(method, forms);
    ExpectClean(method, forms, ran);
    EXPECT_EQ(host_->Lookups(service), ran.Calls(service) > 0 ? 1 : 0);
    EXPECT_TRUE(ran.leaks.empty());
    EXPECT_TRUE(host_->Complaints().empty());
  }
};

TEST_F(FaultsWithheld, ALockMakesPicturesUnusable) {
  ForEveryMethod([this](const MethodCase& method, const Forms& forms) {
    const Ran ran = RunWithout(Service::LockPictureDescription, method, forms);
    ExpectFailure(method, method.hasSource ? method.source : method.result, ran);
    ExpectAbandoned(ran.leaks, method.hasSource ? 0 : 1, 0);
    EXPECT_EQ(host_->Lookups(Service::LockPictureDescription), 1);
    EXPECT_TRUE(host_->Complaints().empty());
    ExpectNextCallFindsIt(Service::LockPictureDescription, method, forms);
  });
}

TEST_F(FaultsWithheld, ObjectsCannotBeMade) {
  ForEveryMethod([this](const MethodCase& method, const Forms& forms) {
    if (!method.MakesResult()) return;
    for (const Service service : {Service::NewInstance, Service::LoadObjectMethod}) {
      SCOPED_TRACE(host::EntryName(service));
      const Ran ran = RunWithout(service, method, forms);
      ExpectFailure(method, method.made[0] == Role::Result ? method.result : method.temporary, ran);
      ExpectAbandoned(ran.leaks, 0, service == Service::LoadObjectMethod);
      EXPECT_EQ(host_->Lookups(service), 1);
      EXPECT_TRUE(host_->Complaints().empty());
      ExpectNextCallFindsIt(service, method, forms);
    }
  });
}

TEST_F(FaultsWithheld, LocksAreNotGivenBack) {
  ForEveryMethod([this](const MethodCase& method, const Forms& forms) {
    const Ran ran = RunWithout(Service::UnlockPictureDescription, method, forms);
    ExpectClean(method, forms, ran);
    ExpectAbandoned(ran.leaks, 0, 0);
    EXPECT_EQ(host_->Lookups(Service::UnlockPictureDescription),
              Clean(method, forms).Calls(Service::UnlockPictureDescription))
        << "asked for again every time";
    for (const std::string& complaint : host_->Complaints()) {
      EXPECT_NE(complaint.find("goes while it is locked"), std::string::npos) << complaint;
    }
    ExpectNextCallFindsIt(Service::UnlockPictureDescription, method, forms);
  });
}

TEST_F(FaultsWithheld, TemporariesAreNotGivenUp) {
  ForEveryMethod([this](const MethodCase& method, const Forms& forms) {
    const Ran ran = RunWithout(Service::UnlockObject, method, forms);
    ExpectClean(method, forms, ran);
    const auto temporaries = std::count(method.made.begin(), method.made.end(), Role::Temporary);
    ExpectAbandoned(ran.leaks, static_cast<int>(temporaries), 0);
    EXPECT_EQ(host_->Lookups(Service::UnlockObject), temporaries);
    EXPECT_TRUE(host_->Complaints().empty());
    ExpectNextCallFindsIt(Service::UnlockObject, method, forms);
  });
}

TEST_F(FaultsWithheld, NobodyYields) {
  ForEveryMethod([this](const MethodCase& method, const Forms& forms) {
    const Ran ran = RunWithout(Service::YieldToRB, method, forms);
    ExpectClean(method, forms, ran);
    ExpectAbandoned(ran.leaks, 0, 0);
    EXPECT_EQ(ran.Calls(Service::YieldToRB), 0);
    EXPECT_EQ(host_->Lookups(Service::YieldToRB), method.yields) << "asked for again every time";
    EXPECT_TRUE(host_->Complaints().empty());
    ExpectNextCallFindsIt(Service::YieldToRB, method, forms);
  });
}

TEST_F(FaultsWithheld, MessagesAreNil) {
  host_->Withhold(Service::BuildString);
  for (int call = 1; call <= 3; ++call) {
    EXPECT_TRUE(host_->Call("GetErrorMessage", {4}).result.IsNil());
    EXPECT_EQ(host_->Lookups(Service::BuildString), call);
  }
  host_->ClearFaults();
  EXPECT_EQ(host_->Call("GetErrorMessage", {5}).result.AsText(), "General Error: can't lock intermediate picture");
  EXPECT_EQ(host_->Lookups(Service::BuildString), 4);
}

}  // namespace faults
