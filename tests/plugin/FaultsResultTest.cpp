// New pictures that are not what the plug-in asked for, of every kind, for every method and each of
// its new pictures.
#include <algorithm>
#include <climits>

#include "FaultsCases.h"

namespace faults {

using host::PictureShape;
using host::Storage;

namespace {

// What the plug-in can make of such a picture.
enum class Use { Refused, NotLockable, Usable };

struct Kind {
  const char* name;
  Use use;
  std::optional<Storage> only;  ///< of this form
  std::function<void(PictureShape& shape)> spoil;
};

const std::vector<Kind>& Kinds() {
  static const std::vector<Kind> kinds = {
      {"type 0", Use::Refused, {}, [](PictureShape& shape) { shape.defects.pictureType = 0; }},
      {"type 9", Use::Refused, {}, [](PictureShape& shape) { shape.defects.pictureType = 9; }},
      {"type 11", Use::Refused, {}, [](PictureShape& shape) { shape.defects.pictureType = 11; }},
      {"tells nothing", Use::Refused, {}, [](PictureShape& shape) { shape.defects.refusesLock = true; }},
      {"nil", Use::NotLockable, Storage::BitmapContext, [](PictureShape& shape) { shape.defects.nilData = true; }},
      {"nil", Use::Usable, Storage::Buffer, [](PictureShape& shape) { shape.defects.nilData = true; }},
      {"no address", Use::NotLockable, Storage::BitmapContext,
       [](PictureShape& shape) { shape.defects.nilPixels = true; }},
      {"depth 16", Use::Usable, Storage::BitmapContext, [](PictureShape& shape) { shape.defects.bitsPerPixel = 16; }},
      {"depth 24", Use::Usable, Storage::BitmapContext, [](PictureShape& shape) { shape.defects.bitsPerPixel = 24; }},
      {"depth 64", Use::Usable, Storage::BitmapContext, [](PictureShape& shape) { shape.defects.bitsPerPixel = 64; }},
      {"larger",
       Use::Usable,
       {},
       [](PictureShape& shape) {
         shape.width += 3;
         shape.height += 2;
       }},
      {"smaller",
       Use::Usable,
       {},
       [](PictureShape& shape) {
         --shape.width;
         --shape.height;
       }},
      {"wider, lower",
       Use::Usable,
       {},
       [](PictureShape& shape) {
         shape.width += 40;
         shape.height = 1;
       }},
      {"narrower, higher",
       Use::Usable,
       {},
       [](PictureShape& shape) {
         shape.width = 1;
         shape.height += 40;
       }},
      {"no columns", Use::Usable, {}, [](PictureShape& shape) { shape.width = 0; }},
      {"no rows", Use::Usable, {}, [](PictureShape& shape) { shape.height = 0; }},
      {"negative", Use::Usable, {}, [](PictureShape& shape) { shape.width = shape.height = -1; }},
      {"first row missing", Use::Usable, Storage::Buffer, [](PictureShape& shape) { shape.defects.nilRows = {0}; }},
      {"second row missing", Use::Usable, Storage::Buffer, [](PictureShape& shape) { shape.defects.nilRows = {1}; }},
      {"last row missing", Use::Usable, Storage::Buffer,
       [](PictureShape& shape) { shape.defects.nilRows = {shape.height - 1}; }},
      {"no row table", Use::Usable, Storage::Buffer, [](PictureShape& shape) { shape.defects.nilRowTable = true; }},
      {"rows coincide", Use::Usable, Storage::BitmapContext,
       [](PictureShape& shape) { shape.defects.bytesPerRow = 0; }},
      {"scattered rows", Use::Usable, Storage::Buffer, [](PictureShape& shape) { shape.layout.scattered = true; }},
      {"unaligned rows", Use::Usable, {}, [](PictureShape& shape) { shape.layout.padding = 5; }},
  };
  return kinds;
}

// What becomes of a method whose nth new picture is of that kind.
Failure Expected(const MethodCase& method, std::size_t made, const Kind& kind, const PictureShape& shape) {
  const bool result = method.made[made] == Role::Result;
  const bool stretchWithoutColumns = method.name == "Stretch" && result && (shape.width < 1 || shape.defects.nilData);
  switch (kind.use) {
    case Use::Refused:
      return result ? method.result : method.temporary;
    case Use::NotLockable:
      return result ? method.resultLock : method.temporary;
    case Use::Usable:
      break;
  }
  // Of no width, no temporary picture can be made.
  return stretchWithoutColumns ? method.temporary : Failure{0, true};
}

}  // namespace

class FaultsResult : public FaultsTest {
 protected:
  void CheckKind(const MethodCase& method, const Forms& forms, std::size_t made, const Kind& kind) {
    PictureShape spoiled;
    const Ran ran = Run(method, forms, [&] {
      host_->newPictures.change = [&](int ordinal, PictureShape& shape) {
        if (ordinal != static_cast<int>(made) + 1) return;
        kind.spoil(shape);
        spoiled = shape;
      };
    });
    host_->newPictures.change = nullptr;
    const Failure expected = Expected(method, made, kind, spoiled);
    ExpectFailure(method, expected, ran);
    if (ran.result) {
      EXPECT_TRUE(ran.result.PaddingIntact());
      EXPECT_EQ(ran.result.References(), 1);
      EXPECT_EQ(ran.result.Locks(), 0);
    }
    CheckReferences(method, made, kind, expected, ran);
    ExpectClean(method, forms, Run(method, forms));
  }

  // All new pictures are changed.
  void ExpectSamePixels(const MethodCase& method, const Forms& forms, void (*change)(PictureShape& shape)) {
    const Ran ran =
        Run(method, forms, [&] { host_->newPictures.change = [change](int, PictureShape& shape) { change(shape); }; });
    host_->newPictures.change = nullptr;
    ExpectClean(method, forms, ran);
    if (ran.result) {
      EXPECT_TRUE(ran.result.PaddingIntact());
    }
  }

  // A picture that is refused is abandoned; a result is never given up, a temporary that could be
  // held always is.
  static void CheckReferences(const MethodCase& method, std::size_t made, const Kind& kind, const Failure& expected,
                              const Ran& ran) {
    const bool result = method.made[made] == Role::Result;
    const bool left = kind.use == Use::Refused || (result && !expected.returnsResult);
    ASSERT_EQ(ran.leaks.size(), left ? 1u : 0u);
    for (const host::LiveObject& leak : ran.leaks) {
      EXPECT_TRUE(leak.constructed);
      EXPECT_EQ(leak.references, 1);
      EXPECT_EQ(leak.locks, 0);
    }
    const int constructed = static_cast<int>(std::count_if(
        ran.log.begin(), ran.log.end(), [](const auto& call) { return std::string(call.name) == "Constructor"; }));
    const auto temporaries = std::count(method.made.begin(), method.made.begin() + constructed, Role::Temporary);
    const bool abandoned = !result && kind.use == Use::Refused;
    EXPECT_EQ(ran.Calls(host::Service::UnlockObject), temporaries - (abandoned ? 1 : 0));
  }
};

TEST_F(FaultsResult, EveryNewPictureIsOfEveryKind) {
  for (const Kind& kind : Kinds()) {
    ForEveryMethod([&](const MethodCase& method, const Forms& forms) {
      if (kind.only && forms.made != *kind.only) return;
      for (std::size_t made = 0; made < method.made.size(); ++made) {
        SCOPED_TRACE(testing::Message() << "new picture " << made + 1 << ": " << kind.name);
        CheckKind(method, forms, made, kind);
      }
    });
  }
}

// Yields count the lines of the result that the host made, and the pixels that these have. (Of
// methods that make a result only; for the others' new pictures there is no such number.)
TEST_F(FaultsResult, YieldsCountThePixelsThatTheHostMade) {
  ForEveryMethod([this](const MethodCase& method, const Forms& forms) {
    if (method.made.size() != 1) return;
    for (const auto& [times, parts] : {std::pair(2, 1), std::pair(1, 2)}) {
      SCOPED_TRACE(testing::Message() << times << " / " << parts << " of the size");
      int line = 0;
      host_->newPictures.change = [&, scale = times, divisor = parts](int, PictureShape& shape) {
        shape.width = shape.width * scale / divisor;
        shape.height = shape.height * scale / divisor;
        line = method.name == "ShearVertical" ? shape.height : shape.width;
      };
      const int lines = Run(method, forms, nullptr, 1).Calls(host::Service::YieldToRB);
      EXPECT_EQ(Run(method, forms, nullptr, line).Calls(host::Service::YieldToRB), lines);
      EXPECT_EQ(Run(method, forms, nullptr, line + 1).Calls(host::Service::YieldToRB), lines / 2);
      host_->newPictures.change = nullptr;
    }
  });
}

// Methods that put every pixel of the source somewhere, into a larger result and into a smaller
// one.
TEST_F(FaultsResult, WhatTheSourceLacksIsClear) {
  ForEveryMethod([this](const MethodCase& method, const Forms& forms) {
    const bool isTurn = method.name == "FlipRotate" && method.arguments[2] == host::Value(90);
    if (method.name != "FlipRotate" && method.name != "AdjustHSV" && method.name != "AdjustRGB") return;
    if (isTurn && forms.source == Storage::Buffer) return;  // whose columns end with their last pixel again
    const host::Picture& clean = Clean(method, forms).result;
    const std::uint32_t clear = forms.made == Storage::Buffer ? 0x7F000000 : 0;
    for (const int more : {3, -3}) {
      host_->newPictures.change = [more](int, PictureShape& shape) {
        shape.width += more;
        shape.height += more;
      };
      const host::Picture result = Run(method, forms).result;
      host_->newPictures.change = nullptr;
      ASSERT_EQ(result.Width(), clean.Width() + more);
      for (int y = 0; y < result.Height(); ++y) {
        for (int x = 0; x < result.Width(); ++x) {
          const bool isInside = x < clean.Width() && y < clean.Height();
          ASSERT_EQ(result.Stored(x, y), isInside ? clean.Stored(x, y) : clear) << x << ", " << y << " of " << more;
        }
      }
    }
  });
}

// Where the pixels of new pictures lie makes no difference.
TEST_F(FaultsResult, UnusualLayoutsHoldTheSamePixels) {
  const auto scattered = [](PictureShape& shape) { shape.layout.scattered = shape.storage == Storage::Buffer; };
  const auto unaligned = [](PictureShape& shape) { shape.layout.padding = 5; };
  ForEveryMethod([&](const MethodCase& method, const Forms& forms) {
    ExpectSamePixels(method, forms, scattered);
    ExpectSamePixels(method, forms, unaligned);
  });
}

TEST_F(FaultsResult, RowsMayLieUpwards) {
  ForEveryMethod([this](const MethodCase& method, const Forms& forms) {
    if (forms.made == Storage::Buffer) return;
    ExpectSamePixels(method, forms, [](PictureShape& shape) { shape.defects.bytesPerRow = -4 * shape.width; });
  });
}

// A picture of another depth ignores writes.
TEST_F(FaultsResult, OtherDepthsStayUntouched) {
  for (const int depth : {16, 24, 64}) {
    for (const MethodCase& method : Methods()) {
      if (!method.MakesResult()) continue;
      SCOPED_TRACE(testing::Message() << method.name << ", depth " << depth);
      host_->newPictures.change = [depth](int, PictureShape& shape) { shape.defects.bitsPerPixel = depth; };
      const Ran ran = Run(method, kAllForms[0]);
      host_->newPictures.change = nullptr;
      ASSERT_FALSE(ran.result.IsNil());
      EXPECT_TRUE(ran.result.TakeSnapshot() == host::Picture(ran.result.Shape()).TakeSnapshot());
    }
  }
}

// A picture without memory, as a host makes it that has none left.
TEST_F(FaultsResult, HostsRunOutOfMemory) {
  for (const MethodCase& method : Methods()) {
    if (!method.MakesResult()) continue;
    SCOPED_TRACE(method.name);
    const Ran ran = Run(method, kAllForms[0], [this] {
      host_->newPictures.change = [](int, PictureShape& shape) { shape.width = shape.height = INT_MAX; };
    });
    host_->newPictures.change = nullptr;
    ExpectFailure(method, method.made[0] == Role::Result ? method.resultLock : method.temporary, ran);
  }
}

}  // namespace faults
