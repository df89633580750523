// What the host program may do while a method yields: leave by an exception, ask for the code, call
// other methods, or the same one on the same picture.
#include <stdexcept>

#include "FaultsCases.h"

namespace faults {

using host::Service;
using host::Storage;

namespace {

class Interrupted : public std::runtime_error {
 public:
  Interrupted() : std::runtime_error("interrupted") {}
};

}  // namespace

class FaultsYield : public FaultsTest {
 protected:
  // Runs `body` once, during the nth yield; what it calls may yield as well.
  template <class Body>
  void AtYield(int yield, Body body) {
    host_->onYield = [yield, body, count = 0]() mutable {
      if (++count == yield) body();
    };
  }
};

TEST_F(FaultsYield, ProgramsMayLeaveByAnyException) {
  ForEveryMethod([this](const MethodCase& method, const Forms& forms) {
    for (int yield = 1; yield <= method.yields; ++yield) {
      SCOPED_TRACE(yield);
      int yields = 0;
      host_->onYield = [&] {
        if (++yields == yield) throw Interrupted();
      };
      EXPECT_THROW(Run(method, forms), Interrupted);
      host_->onYield = nullptr;
      EXPECT_EQ(yields, yield) << "no yield after the exception";
      EXPECT_EQ(host_->Call("GetLastError", {}).result.AsInteger(), 0);
      for (const host::LiveObject& leak : host_->Leaks()) {
        EXPECT_EQ(leak.locks, 0);
        EXPECT_EQ(leak.references, 1);
      }
      const bool resultExists = method.MakesResult() && (method.name != "FreeRotateByShear" || yield > 16);
      EXPECT_EQ(host_->Leaks().size(), resultExists ? 1u : 0u) << "a result is never given up";
      host_->DropLeaks();
    }
    ExpectClean(method, forms, Run(method, forms));
  });
}

TEST_F(FaultsYield, TheCodeIsThatOfTheEntry) {
  ForEveryMethod([this](const MethodCase& method, const Forms& forms) {
    host_->onYield = [this] { EXPECT_EQ(host_->Call("GetLastError", {}).result.AsInteger(), 0); };
    const Ran ran = Run(method, forms);
    host_->onYield = nullptr;
    EXPECT_EQ(ran.Calls(Service::YieldToRB), method.yields);
  });
}

TEST_F(FaultsYield, TheCodeOfACallMeanwhileStays) {
  ForEveryMethod([this](const MethodCase& method, const Forms& forms) {
    if (method.yields == 0) return;
    AtYield(1, [this] { host_->Call("FlipRotate", {host::Value(), false, false, 360, 0}); });
    const Ran ran = Run(method, forms);
    host_->onYield = nullptr;
    EXPECT_EQ(ran.code, 31) << "nothing assigns a code after the entry but a failure";
  });
}

TEST_F(FaultsYield, PicturesStayLocked) {
  ForEveryMethod([this](const MethodCase& method, const Forms& forms) {
    const host::Picture source = method.hasSource ? Numbered(SourceShape(forms.source)) : host::Picture();
    host_->newPictures.storage = forms.made;
    int yields = 0;
    host_->onYield = [&] {
      ++yields;
      if (method.hasSource) {
        EXPECT_EQ(source.Locks(), 1);
      }
      int locked = 0;
      for (const host::LiveObject& object : host_->LiveObjects()) locked += object.locks;
      // Free rotation never holds more than the picture it reads, the one it writes, and the
      // source.
      const int most = (method.hasSource ? 1 : 0) + (method.made.size() > 1 ? 2 : method.MakesResult() ? 1 : 0);
      EXPECT_LE(locked, most);
      EXPECT_GE(locked, (method.hasSource ? 1 : 0) + (method.MakesResult() ? 1 : 0));
    };
    Run(method, source);
    host_->onYield = nullptr;
    EXPECT_EQ(yields, method.yields);
  });
}

// ------------------------------------------------------------------------------------ nested calls

TEST_F(FaultsYield, EveryMethodRunsInsideEveryOther) {
  const Forms forms = kAllForms[1];
  for (const MethodCase& outer : Methods()) {
    if (outer.yields == 0) continue;
    for (const MethodCase& inner : Methods()) {
      SCOPED_TRACE(testing::Message() << inner.name << " inside " << outer.name);
      Clean(outer, forms);
      const Ran& expected = Clean(inner, forms);
      host::Picture picture;
      std::vector<host::Value> arguments = inner.arguments;
      if (inner.hasSource) {
        picture = Numbered(SourceShape(forms.source));
        arguments.insert(arguments.begin(), host::Value(picture));
      }
      arguments.emplace_back(kEveryLine);
      host::Outcome outcome;
      AtYield((outer.yields + 1) / 2, [&] { outcome = host_->Call(inner.name, arguments); });
      const Ran ran = Run(outer, forms);
      host_->onYield = nullptr;
      ExpectClean(outer, forms, ran);
      ASSERT_EQ(outcome.result.IsNil(), !inner.MakesResult());
      if (inner.MakesResult()) {
        EXPECT_TRUE(outcome.result.AsPicture().SamePixels(expected.result));
      }
      if (inner.hasSource) {
        EXPECT_TRUE(picture.SamePixels(expected.source));
        arguments[0] = outcome.arguments[0];
        for (std::size_t i = 0; i < expected.arguments.size(); ++i) {
          EXPECT_EQ(outcome.arguments[i + 1], expected.arguments[i]) << "argument " << i;
        }
      }
    }
  }
}

TEST_F(FaultsYield, EveryMethodRunsInsideItselfOnTheSamePicture) {
  ForEveryMethod([this](const MethodCase& method, const Forms& forms) {
    if (!method.hasSource || method.inPlace || method.yields == 0) return;
    const Ran& expected = Clean(method, forms);
    const host::Picture source = Numbered(SourceShape(forms.source));
    std::vector<host::Value> arguments = method.arguments;
    arguments.insert(arguments.begin(), host::Value(source));
    arguments.emplace_back(kEveryLine);
    host::Outcome inner;
    AtYield(method.yields, [&] {
      EXPECT_EQ(source.Locks(), 1);
      inner = host_->Call(method.name, arguments);
      EXPECT_EQ(source.Locks(), 1);
    });
    host_->newPictures.storage = forms.made;
    const Ran ran = Run(method, source);
    host_->onYield = nullptr;
    ExpectClean(method, forms, ran);
    if (method.MakesResult()) {
      EXPECT_TRUE(inner.result.AsPicture().SamePixels(expected.result));
      EXPECT_FALSE(inner.result.AsPicture() == ran.result);
    }
  });
}

// Both add 1: rows before the yield by the outer call first, rows after it by the inner one.
TEST_F(FaultsYield, ChangesInPlaceAddUp) {
  for (const Storage storage : {Storage::BitmapContext, Storage::Buffer}) {
    host::Picture source({6, 5, storage, {}, {}});
    source.Fill(storage == Storage::Buffer ? 0x00203040 : 0xFF203040);
    const std::vector<host::Value> arguments = {source, 0, 0, 5, 4, 1, 1, 1, 1};
    AtYield(3, [&] { host_->Call("AdjustRGB_InPlace", arguments); });
    host_->Call("AdjustRGB_InPlace", arguments);
    host_->onYield = nullptr;
    for (const std::uint32_t word : source.StoredPixels()) EXPECT_EQ(word & 0xFFFFFF, 0x223242u);
    EXPECT_EQ(source.Locks(), 0);
  }
}

TEST_F(FaultsYield, CallsNestDeeply) {
  const Forms forms = kAllForms[3];
  const MethodCase& method = Methods()[0];
  const Ran& expected = Clean(method, forms);
  const host::Picture source = Numbered(SourceShape(forms.source));
  std::vector<host::Value> arguments = method.arguments;
  arguments.insert(arguments.begin(), host::Value(source));
  arguments.emplace_back(1000 * 1000);
  arguments.back() = kEveryLine;
  constexpr int kDepth = 20;
  int depth = 0;
  host_->onYield = [&] {
    if (depth == kDepth) return;
    ++depth;
    EXPECT_EQ(source.Locks(), depth);
    EXPECT_TRUE(host_->Call(method.name, arguments).result.AsPicture().SamePixels(expected.result));
  };
  const Ran ran = Run(method, source);
  host_->onYield = nullptr;
  EXPECT_EQ(depth, kDepth);
  ExpectClean(method, forms, ran);
}

// ------------------------------------------------------------------------------------------ stacks

TEST_F(FaultsYield, EveryMethodRunsOnAnyStack) {
  ForEveryMethod([this](const MethodCase& method, const Forms& forms) {
    host_->SetStackMisalignment(0);
    Clean(method, forms);
    for (const unsigned misalignment : {4u, 8u, 12u}) {
      SCOPED_TRACE(misalignment);
      host_->SetStackMisalignment(misalignment);
      ExpectClean(method, forms, Run(method, forms));
      EXPECT_EQ(host_->Call("GetErrorMessage", {0}).result.AsText(), "General Error: No Error");
    }
    host_->SetStackMisalignment(std::nullopt);
  });
}

TEST_F(FaultsYield, ExceptionsPassThroughAnyStack) {
  ForEveryMethod([this](const MethodCase& method, const Forms& forms) {
    if (method.yields == 0) return;
    for (const unsigned misalignment : {0u, 4u, 8u, 12u}) {
      SCOPED_TRACE(misalignment);
      host_->SetStackMisalignment(misalignment);
      const Ran ran = Run(method, forms, [this] { host_->ThrowAt(Service::YieldToRB, 1); });
      ExpectThrown(method, Service::YieldToRB, ran, !method.inPlace);
    }
    host_->SetStackMisalignment(std::nullopt);
  });
}

}  // namespace faults
