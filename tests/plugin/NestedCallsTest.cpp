// Calls from inside a yield of another call, to any depth. Both must give the results of the
// reference model, even if they share a picture and if an exception leaves some of them.
#include <algorithm>
#include <stdexcept>

#include "support/Cases.h"
#include "support/Expectation.h"
#include "support/Pictures.h"
#include "support/RandomArguments.h"
#include "support/RandomSettings.h"

namespace {

using host::Colour;
using host::Picture;
using host::Storage;
using host::Value;
using model::Outcome;
using model::StoredPicture;
using support::FromHost;
using support::MethodCall;
using support::NewPicture;
using support::OneIn;
using support::Operation;
using support::Setting;

constexpr Storage kForms[] = {Storage::BitmapContext, Storage::Buffer};
constexpr support::Size kResult = {9, 8};
constexpr const char* kNeverYields = "LMX_Trim";

class Interrupted : public std::runtime_error {
 public:
  Interrupted() : std::runtime_error("interrupted") {}
};

// One operation of every method; the one with unusual arguments for tests if there is one.
const std::vector<Operation>& Operations() {
  static const std::vector<Operation> operations = [] {
    std::vector<Operation> ofMethods;
    for (const Operation& operation : support::Operations()) {
      const bool isFirst = ofMethods.empty() || std::string(ofMethods.back().method) != operation.method;
      if (isFirst) ofMethods.push_back(operation);
      if (ofMethods.back().measured && !operation.measured) ofMethods.back() = operation;
    }
    return ofMethods;
  }();
  return operations;
}

// With a yield after every line.
MethodCall CallOf(const Operation& operation) {
  return MethodCall(operation, kResult, Colour{0x40208060}, 1);
}

Setting NewPicturesOf(Storage form) {
  Setting setting;
  setting.newPictures.assign(4, NewPicture{form, {}, model::Fault::None, 0});
  return setting;
}

class NestedCalls : public testing::Test {
 protected:
  using AtYield = std::function<void(int yield)>;  // yields are counted from 0

  NestedCalls() {
    host_.Load(support::LibraryPath());
    host_.onYield = [this] { Yield(); };
    host_.newPictures.change = [this](int, host::PictureShape& shape) {
      Level& level = *levels_.back();
      support::NewShapes(level.setting)(++level.made, shape);
    };
  }

  ~NestedCalls() override {
    EXPECT_EQ(host_.Leaks().size(), lost_) << "pictures without an owner";
    for (const host::LiveObject& leak : host_.Leaks()) EXPECT_EQ(leak.locks, 0);
  }

  // Calls a method on a picture of the host and compares everything with the reference model. The
  // yield handler may call this function again.
  void Check(const MethodCall& call, Setting setting, Picture source, const AtYield& atYield = nullptr) {
    SCOPED_TRACE(call.method->name);
    if (source && !setting.source) setting.source = FromHost(source);
    const Outcome expected = call.ByModel(setting.source, NewValues(setting));
    std::vector<Value> passed = call.arguments;
    if (call.method->hasSource) passed.insert(passed.begin(), Value(source));
    const int locksBefore = source ? source.Locks() : 0;
    code_ = expected.code;

    Level level = {setting, atYield, 0, 0};
    levels_.push_back(&level);
    support::Called called;
    try {
      host::Outcome outcome = host_.Call(call.method->name, passed);
      called.result = outcome.result.AsPicture();
      called.arguments = std::move(outcome.arguments);
    } catch (const Interrupted&) {
      levels_.pop_back();
      CheckLeft(call, level, source);
      throw;
    }
    levels_.pop_back();
    lost_ += static_cast<std::size_t>(expected.lost);
    EXPECT_EQ(LastError(), code_);
    EXPECT_EQ(level.yields, static_cast<int>(expected.yields.size()));
    if (source) {
      EXPECT_EQ(source.Locks(), locksBefore);
    }
    support::CheckResults(expected, setting, passed, called);
  }

  // The same with a picture of its own.
  void Check(const Operation& operation, Storage form, const AtYield& atYield = nullptr) {
    Random random(static_cast<std::uint64_t>(form));
    const MethodCall call = CallOf(operation);
    Setting setting = NewPicturesOf(form);
    Picture source;
    if (call.method->hasSource) {
      const auto [width, height] = operation.SourceOf(kResult);
      setting.source = support::RandomPicture(random, form, width, height);
      source = support::ToHost(*setting.source, {}, 0);
    }
    Check(call, setting, source, atYield);
  }

  int LastError() { return host_.Call("GetLastError", {}).result.AsInteger(); }

  host::Host host_;

 private:
  struct Level {
    const Setting& setting;
    const AtYield& atYield;
    int made;
    int yields;
  };

  void Yield() {
    Level& level = *levels_.back();
    const int yield = level.yields++;
    EXPECT_EQ(LastError(), code_) << "the code is that of the latest call";
    if (level.atYield) level.atYield(yield);
  }

  void CheckLeft(const MethodCall& call, const Level& level, const Picture& source) {
    const support::HostFault fault = {support::FaultKind::ProgramThrows, {}, level.yields};
    const support::Expectation expected = Expect(call, level.setting, fault);
    lost_ += expected.leaks;
    if (!source) return;
    EXPECT_EQ(source.Locks(), 0);
    const StoredPicture& want = expected.outcome.changed.value_or(*level.setting.source);
    EXPECT_EQ(support::Difference(want, FromHost(source)), "") << "the source of a call that was left";
  }

  std::vector<Level*> levels_;
  std::size_t lost_ = 0;
  int code_ = 0;
};

// ------------------------------------------------------------------------------------------- pairs

TEST_F(NestedCalls, EveryMethodInsideEveryMethod) {
  for (const Operation& outer : Operations()) {
    for (const Operation& inner : Operations()) {
      SCOPED_TRACE(testing::Message() << inner.name << " inside " << outer.name);
      int yields = 0;
      for (const Storage form : kForms) {
        for (const Storage innerForm : kForms) {
          Check(outer, form, [&](int) {
            ++yields;
            Check(inner, innerForm);
          });
        }
      }
      ASSERT_EQ(yields == 0, std::string(outer.method) == kNeverYields);
      if (HasFailure()) return;
    }
  }
}

// Every code that a call can leave, inside the first yield of every method.
TEST_F(NestedCalls, EveryFailureInsideLeavesItsCode) {
  struct Failing {
    int code;
    const char* name;
    std::vector<Value> arguments;  // without the yield, since these calls make none
    model::Fault source = model::Fault::None;
    std::size_t made = 0;  // number of the new picture that is unusable
  };
  constexpr auto kUnusable = model::Fault::UnusableType;
  const std::vector<Value> hsv = {1, 1, 5, 4, 40.0, 1.0, 2.0, false};
  const std::vector<Value> rgb = {1, 1, 5, 4, 10, -20, 30};
  const auto with = [](std::vector<Value> arguments, std::size_t index, const Value& value) {
    arguments[index] = value;
    return arguments;
  };
  const Failing failing[] = {
      {2, "LMX_Stretch", {5, 5}},  // of nil
      {4, "LMX_Stretch", {5, 5}, kUnusable},
      {5, "LMX_Stretch", {5, 5}, model::Fault::None, 2},
      {6, "LMX_FlipRotate", {true, false, 90}, model::Fault::None, 1},
      {31, "LMX_FlipRotate", {true, false, 360}},
      {33, "LMX_ShearVertical", {8, 12, 1.5, Colour{0}}},
      {34, "LMX_Stretch", {0, 5}},
      {35, "LMX_Stretch", {5, 0}},
      {38, "LMX_AdjustRGB", with(rgb, 2, -9)},
      {39, "LMX_Trim", {0, 0, 0, 1, Colour{0}}},
      {40, "LMX_AdjustRGB", with(rgb, 4, 256)},
      {41, "LMX_AdjustRGB", with(rgb, 5, 256)},
      {42, "LMX_AdjustRGB", with(rgb, 6, 256)},
      {43, "LMX_AdjustHSV", with(hsv, 4, 360.0)},
      {44, "LMX_AdjustHSV", with(hsv, 5, 1000.0)},
      {45, "LMX_AdjustHSV", with(hsv, 6, 1000.0)},
  };
  for (const Operation& outer : Operations()) {
    for (const Failing& inner : failing) {
      SCOPED_TRACE(testing::Message() << inner.code << " inside " << outer.name);
      const auto fail = [&](int yield) {
        if (yield != 0) return;
        MethodCall call(inner.name, inner.arguments);
        call.arguments.emplace_back(0);
        Setting setting = NewPicturesOf(Storage::Buffer);
        if (inner.made != 0) setting.newPictures[inner.made - 1].fault = kUnusable;
        if (inner.code == 2) return Check(call, setting, Picture());
        setting.source = StoredPicture(Storage::Buffer, kResult.width, kResult.height);
        setting.source->fault = inner.source;
        const Picture source = support::ToHost(*setting.source, {}, 0);
        Check(call, setting, source);
        EXPECT_EQ(LastError(), inner.code);
      };
      Check(outer, Storage::BitmapContext, fail);
      if (HasFailure()) return;
    }
  }
}

// --------------------------------------------------------------------------------- shared pictures

TEST_F(NestedCalls, CallsInsideReadTheSameSource) {
  for (const Operation& outer : Operations()) {
    for (const Operation& inner : Operations()) {
      const MethodCall outerCall = CallOf(outer), innerCall = CallOf(inner);
      if (!outerCall.method->hasSource || !innerCall.method->hasSource || innerCall.method->InPlace()) continue;
      for (const Storage form : kForms) {
        SCOPED_TRACE(testing::Message() << inner.name << " inside " << outer.name);
        Random random(1);
        const auto [width, height] = outer.SourceOf(kResult);
        const Picture source = support::ToHost(support::RandomPicture(random, form, width, height), {}, 0);
        Check(outerCall, NewPicturesOf(form), source, [&](int) {
          EXPECT_EQ(source.Locks(), 1);
          Check(innerCall, NewPicturesOf(form), source);
        });
      }
    }
  }
}

TEST_F(NestedCalls, EachHoldsALockOfTheSameSource) {
  constexpr int kDepth = 20;
  const MethodCall call("AdjustHSV", {1, 1, 5, 4, 40.0, 1.0, 2.0, false, 1});
  Random random(1);
  const Picture source = support::ToHost(support::RandomPicture(random, Storage::Buffer, 9, 8), {}, 0);
  int depth = 0;
  const std::function<void(int)> inside = [&](int yield) {
    if (yield != 0 || depth == kDepth) return;
    EXPECT_EQ(source.Locks(), ++depth);
    Check(call, NewPicturesOf(Storage::Buffer), source, inside);
  };
  Check(call, NewPicturesOf(Storage::Buffer), source, inside);
  EXPECT_EQ(depth, kDepth);
}

// Both add 1. Rows before the yield are changed by the outer call first, rows after it by the inner
// one.
TEST_F(NestedCalls, ChangesOfTheSamePictureAddUp) {
  for (const Storage form : kForms) {
    const StoredPicture before(form, 6, 5, form == Storage::Buffer ? 0x00203040 : 0xFF203040);
    const Picture source = support::ToHost(before, {}, 0);
    int yields = 0;
    host_.onYield = [&] {
      if (++yields == 3) host_.Call("AdjustRGB_InPlace", {source, 0, 0, 5, 4, 1, 1, 1, 1});
    };
    host_.Call("AdjustRGB_InPlace", {source, 0, 0, 5, 4, 1, 1, 1, 1});
    for (const std::uint32_t word : source.StoredPixels()) EXPECT_EQ(word & 0xFFFFFF, 0x223242u);
    EXPECT_EQ(source.Locks(), 0);
  }
}

TEST_F(NestedCalls, CallsInsideReadWhatTheOuterCallIsWriting) {
  for (const Operation& outer : Operations()) {
    for (const Operation& inner : Operations()) {
      const MethodCall call = CallOf(inner);
      if (support::FindMethod(outer.method).Result() == 0 || !call.method->hasSource || call.method->InPlace())
        continue;
      for (const Storage form : kForms) {
        SCOPED_TRACE(testing::Message() << inner.name << " inside " << outer.name);
        host_.ResetCounts();
        Check(outer, form, [&](int) {
          const auto pictures = support::LiveNewPictures(host_);
          ASSERT_FALSE(pictures.empty());
          for (const auto& [number, picture] : pictures) {
            Check(call, NewPicturesOf(form), picture);
          }
        });
      }
    }
  }
}

// Complete lines of the result stay as the inner call left them. The others are made afterwards.
TEST_F(NestedCalls, CallsInsideChangeWhatIsDoneOfTheResult) {
  const std::vector<Value> change = {0, 0, 100, 100, 40, -50, 60, 0};
  for (const Operation& outer : Operations()) {
    const MethodCall call = CallOf(outer);
    if (std::string(call.method->made).size() != 1) continue;
    for (const Storage form : kForms) {
      SCOPED_TRACE(outer.name);
      Random random(2);
      const auto [width, height] = outer.SourceOf(kResult);
      const StoredPicture source = support::RandomPicture(random, form, width, height);
      Setting setting = NewPicturesOf(form);
      const Outcome plain = call.ByModel(source, NewValues(setting));
      if (plain.yields.empty()) continue;
      const model::Yield& yield = plain.yields[plain.yields.size() / 2];
      const StoredPicture& made = plain.made[0];
      const StoredPicture changed = *model::AdjustRgbInPlace(&made, {0, 0, 100, 100}, {40, -50, 60}, 0).changed;

      host_.newPictures.change = support::NewShapes(setting);
      host_.ResetCounts();
      int yields = 0;
      host_.onYield = [&] {
        if (yields++ != static_cast<int>(plain.yields.size() / 2)) return;
        std::vector<Value> arguments = change;
        arguments.insert(arguments.begin(), Value(support::LiveNewPictures(host_)[0].second));
        host_.Call("AdjustRGB_InPlace", arguments);
      };
      std::vector<Value> arguments = call.arguments;
      if (call.method->hasSource) arguments.insert(arguments.begin(), Value(support::ToHost(source, {}, 0)));
      const StoredPicture got = FromHost(host_.Call(outer.method, arguments).result.AsPicture());
      StoredPicture want = made;
      for (int y = 0; y < want.height; ++y) {
        for (int x = 0; x < want.width; ++x) {
          const int line = yield.order == model::Order::LeftRight  ? x
                           : yield.order == model::Order::BottomUp ? want.height - 1 - y
                                                                   : y;
          if (line < yield.linesDone) want.Word(x, y) = changed.Word(x, y);
        }
      }
      EXPECT_EQ(support::Difference(want, got), "");
    }
  }
}

// ------------------------------------------------------------------------------------------- depth

// Chains of random calls, each inside a yield of the one before. In some chains an exception leaves
// the last few calls.
class NestedChains : public NestedCalls {
 protected:
  void Nest(Random& random, int depth, bool leaves) {
    deepest_ = std::max(deepest_, ++depth_);
    if (depth == 0) {
      CallAnything(random);
      --depth_;
      if (leaves) throw Interrupted();
      return;
    }
    const MethodCall call = CallOf(AnyOperation(random, true));
    const Storage form = support::RandomForm(random);
    Setting setting = support::RandomNewPictures(random);
    for (NewPicture& plan : setting.newPictures) plan.fault = model::Fault::None;
    Picture source;
    if (call.method->hasSource) {
      setting.source = support::RandomPicture(random, form, random.Between(8, 90), random.Between(8, 90));
      setting.layout = support::RandomLayout(random, form);
      source = support::ToHost(*setting.source, setting.layout, 0);
    }
    const int when = static_cast<int>(random.Below(4));
    const bool catches = OneIn(random, 3);
    const auto inside = [&](int yield) {
      if (yield != when) return;
      if (!catches) return Nest(random, depth - 1, leaves);
      try {
        Nest(random, depth - 1, leaves);
      } catch (const Interrupted&) {
        ++caught_;
      }
    };
    try {
      Check(call, setting, source, inside);
    } catch (const Interrupted&) {
      --depth_;
      throw;
    }
    --depth_;
  }

  int deepest_ = 0;
  int caught_ = 0;

 private:
  // Faults included.
  void CallAnything(Random& random) {
    MethodCall call = CallOf(AnyOperation(random, false));
    call.arguments.back() = support::RandomYield(random, 10);
    Setting setting = support::RandomSetting(random);
    Picture source;
    if (!call.method->hasSource) setting.source.reset();
    if (setting.source) source = support::ToHost(*setting.source, setting.layout, setting.variant);
    Check(call, setting, source);
  }

  static const Operation& AnyOperation(Random& random, bool yields) {
    for (;;) {
      const Operation& operation = Operations()[random.Below(static_cast<std::uint32_t>(Operations().size()))];
      if (!yields || std::string(operation.method) != kNeverYields) return operation;
    }
  }

  int depth_ = 0;
};

TEST_F(NestedChains, OfRandomCalls) {
  support::ForEachCase(150, [this](Random& random) { Nest(random, random.Between(2, 8), false); });
  EXPECT_GE(deepest_, 9);
}

TEST_F(NestedChains, LeftByAnException) {
  int left = 0;
  support::ForEachCase(150, [&](Random& random) {
    try {
      Nest(random, random.Between(2, 8), true);
    } catch (const Interrupted&) {
      ++left;
    }
  });
  EXPECT_GE(deepest_, 9);
  EXPECT_GT(left, 0);
  EXPECT_GT(caught_, 0);
}

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kInstrumented = true;
#elif defined(__has_feature)
constexpr bool kInstrumented = __has_feature(address_sanitizer);
#else
constexpr bool kInstrumented = false;
#endif

// While a method yields, no tiles or row rings are on the stack.
TEST_F(NestedCalls, WaitOnLittleOfTheStackEach) {
  constexpr int kDepth = 40;
  constexpr std::size_t kMostBytes = 16 * 1024;
  for (const Operation& operation : Operations()) {
    if (std::string(operation.method) == kNeverYields) continue;
    SCOPED_TRACE(operation.name);
    std::vector<std::uintptr_t> stack;
    std::function<void(int)> inside = [&](int yield) {
      if (yield != 0) return;
      stack.push_back(reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)));
      if (stack.size() < kDepth) Check(operation, Storage::BitmapContext, inside);
    };
    Check(operation, Storage::BitmapContext, inside);
    ASSERT_EQ(stack.size(), static_cast<std::size_t>(kDepth));
    for (std::size_t i = 1; i < stack.size() && !kInstrumented; ++i) EXPECT_LE(stack[i - 1] - stack[i], kMostBytes);
  }
}

}  // namespace
