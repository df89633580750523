#include "PluginTest.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "Pictures.h"
#include "host/ObjectTable.h"
#include "host/ProgramReference.h"

namespace support {

using host::Picture;
using host::Storage;
using host::Value;
using model::Fault;
using model::MakePicture;
using model::Order;
using model::Outcome;
using model::StoredPicture;

namespace {

// The most pixels that are compared at the yields of one call.
constexpr std::size_t kMostLookedAt = 100000;
// The most scattered rows: a process can have only a limited number of memory mappings.
constexpr int kMostScatteredRows = 2000;

NewPicture Planned(const Setting& setting, std::size_t number, int width, int height) {
  NewPicture plan = number <= setting.newPictures.size() ? setting.newPictures[number - 1] : NewPicture{};
  if (std::int64_t{width} * height > setting.mostPixels && plan.fault == Fault::None) {
    plan.fault = Fault::NoPixels;
    plan.variant = 0;
  }
  return plan;
}

Size SizeOf(Resized resized, Size asked) {
  const auto [width, height] = asked;
  switch (resized) {
    case Resized::No:
      break;
    case Resized::WiderByOne:
      return {width + 1, height};
    case Resized::WiderByHalf:
      return {width + (width + 1) / 2, height};
    case Resized::NarrowerByOne:
      return {std::max(width - 1, 1), height};
    case Resized::HalfAsWide:
      return {(width + 1) / 2, height};
    case Resized::TallerByOne:
      return {width, height + 1};
    case Resized::TallerByHalf:
      return {width, height + (height + 1) / 2};
    case Resized::LowerByOne:
      return {width, std::max(height - 1, 1)};
    case Resized::HalfAsHigh:
      return {width, (height + 1) / 2};
  }
  return asked;
}

// A buffer picture without pixels can be locked. Its size is 0 x 0.
bool IsEmptyBuffer(const NewPicture& plan) {
  return plan.form == Storage::Buffer && plan.fault == Fault::NoPixels;
}

void MakeShape(const NewPicture& plan, host::PictureShape& shape) {
  shape.storage = plan.form;
  shape.layout = plan.layout;
  if (shape.height > kMostScatteredRows) shape.layout.scattered = false;
  shape.defects = DefectsFor(plan.fault, plan.form, plan.variant);
  if (IsEmptyBuffer(plan)) shape.width = shape.height = 0;
  if (plan.fault != Fault::None && !IsEmptyBuffer(plan)) shape.width = shape.height = 1;
  const Size size = SizeOf(plan.resized, {shape.width, shape.height});
  shape.width = size.width;
  shape.height = size.height;
  const std::set<int> missing = MissingRows(plan.missing, shape.height);
  shape.defects.nilRows.assign(missing.begin(), missing.end());
}

bool SameDouble(double a, double b) {
  return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}

bool IsDone(const model::Yield& yield, const StoredPicture& picture, int x, int y) {
  if (yield.order == Order::LeftRight) return x < yield.linesDone;
  const int line = yield.order == Order::BottomUp ? picture.height - 1 - y : y;
  return line < yield.linesDone;
}

// Compares the lines that are complete at a yield with `after`, and all others with `before`.
std::string Progress(const model::Yield& yield, const StoredPicture& before, const StoredPicture& after,
                     const StoredPicture& now) {
  if (now.words.size() != after.words.size()) return Difference(after, now);
  std::size_t i = 0;
  for (int y = 0; y < after.height; ++y) {
    for (int x = 0; x < after.width; ++x, ++i) {
      const bool done = IsDone(yield, after, x, y);
      if (now.words[i] == (done ? after : before).words[i]) continue;
      return "pixel (" + std::to_string(x) + "," + std::to_string(y) + ") is " +
             (done ? "not as it should be when it is done" : "written too early");
    }
  }
  return "";
}

void CheckMeans(const Outcome& expected, const std::vector<Value>& before, const std::vector<Value>& after) {
  for (std::size_t i = 0; i < before.size(); ++i) {
    const std::size_t mean = i - 5;  // arguments 0 to 4 are the source and the rectangle
    const std::string which = "argument " + std::to_string(i);
    const bool isMean = i >= 5 && mean < 3 && !before[i].IsNil();
    if (isMean && expected.meanHsv) {
      const double got = after[i].AsDouble();
      const double want = (*expected.meanHsv)[mean];
      EXPECT_TRUE(SameDouble(got, want)) << which << " is " << got << " instead of " << want;
    } else if (isMean && expected.meanRgb) {
      EXPECT_EQ(after[i].AsInteger(), (*expected.meanRgb)[mean]) << which;
    } else if (before[i].Is<double>()) {
      EXPECT_TRUE(SameDouble(before[i].AsDouble(), after[i].AsDouble())) << which << " has changed";
    } else {
      EXPECT_EQ(before[i], after[i]) << which << " has changed";
    }
  }
}

}  // namespace

std::set<int> MissingRows(MissingRow missing, int height) {
  switch (missing) {
    case MissingRow::None:
      break;
    case MissingRow::First:
      return {0};
    case MissingRow::Inner:
      return {height / 2};
    case MissingRow::Last:
      return {height - 1};
  }
  return {};
}

StoredPicture ValueIn(const Setting& setting, const host::PictureShape& shape) {
  StoredPicture value = ValueOf(shape);
  const bool isUnknown = setting.lacksContexts && value.form == Storage::BitmapContext;
  if (isUnknown && value.fault == Fault::None) value.fault = Fault::NoPixels;
  return value;
}

MakePicture NewValues(const Setting& setting) {
  return [&setting](std::size_t number, int width, int height) {
    host::PictureShape shape = {width, height};
    NewShapes(setting)(static_cast<int>(number), shape);
    return ValueIn(setting, shape);
  };
}

std::function<void(int ordinal, host::PictureShape& shape)> NewShapes(const Setting& setting) {
  return [&setting](int ordinal, host::PictureShape& shape) {
    MakeShape(Planned(setting, static_cast<std::size_t>(ordinal), shape.width, shape.height), shape);
    if (setting.spoilNew) setting.spoilNew(ordinal, shape);
  };
}

void CheckResults(const Outcome& expected, const Setting& setting, const std::vector<Value>& before,
                  const Called& called) {
  CheckMeans(expected, before, called.arguments);
  ASSERT_EQ(called.result.IsNil(), expected.result == 0) << "nil, or not";
  if (called.result) {
    EXPECT_EQ(Difference(expected.made[expected.result - 1], called.result), "") << "the result";
  }
  if (before[0].Is<Picture>()) {
    EXPECT_EQ(Difference(expected.changed.value_or(*setting.source), before[0].AsPicture()), "") << "the source";
  }
}

MethodCall::MethodCall(const Operation& operation, Size result, host::Colour colour, int yield)
    : MethodCall(operation.method, operation.arguments(operation.SourceOf(result), result, colour)) {
  arguments.emplace_back(yield);
}

std::string LibraryPath() {
  const char* other = std::getenv("LMX_LIBRARY");
  return other == nullptr ? LMX_LIBRARY_FILE : other;
}

std::vector<std::pair<std::size_t, Picture>> LiveNewPictures(const host::Host& host) {
  std::vector<std::uint32_t> ids;
  for (const host::ServiceCall& call : host.Log()) {
    if (std::strcmp(call.name, "Constructor") == 0) ids.push_back(call.object);
  }
  std::vector<std::pair<std::size_t, Picture>> live;
  for (host::PictureObject* object : host::Table().Pictures()) {
    for (std::size_t i = 0; i < ids.size(); ++i) {
      if (ids[i] == object->id) live.emplace_back(i + 1, host::ProgramReference::Share(*object));
    }
  }
  return live;
}

Called PluginTest::Run(const std::string& name, const std::vector<Value>& arguments, int lost) {
  std::vector<std::pair<Picture, host::Snapshot>> pictures;
  for (const Value& argument : arguments) {
    if (argument.Is<Picture>()) pictures.emplace_back(argument.AsPicture(), argument.AsPicture().TakeSnapshot());
  }
  host_.ResetCounts();

  Called called;
  {
    host::Outcome outcome = host_.Call(name, arguments);
    if (outcome.result.Is<Picture>()) called.result = outcome.result.AsPicture();
    called.arguments = std::move(outcome.arguments);
  }
  called.yields = host_.Calls(host::Service::YieldToRB);
  called.code = LastError();

  for (const auto& [picture, snapshot] : pictures) {
    EXPECT_EQ(picture.PluginReferences(), 0) << name;
    EXPECT_EQ(picture.Locks(), 0) << name;
    EXPECT_TRUE(picture.PaddingIntact()) << name << " wrote between the source's rows";
    EXPECT_TRUE(FindMethod(name).InPlace() || snapshot == picture.TakeSnapshot()) << name << " wrote to the source";
  }
  if (called.result) {
    EXPECT_EQ(called.result.References(), 1) << name;
    EXPECT_EQ(called.result.PluginReferences(), 0) << name;
    EXPECT_EQ(called.result.Locks(), 0) << name;
    EXPECT_TRUE(called.result.PaddingIntact()) << name << " wrote between the result's rows";
  }
  EXPECT_EQ(host_.Leaks().size(), static_cast<std::size_t>(lost)) << name << " left objects without an owner";
  host_.DropLeaks();
  return called;
}

// Checks the pictures at every yield. If that would be too many pixels, checks at every nth yield
// and at the last one.
class PluginTest::Watch {
 public:
  Watch(PluginTest& test, const Outcome& expected, const Picture& source, const std::optional<StoredPicture>& before)
      : test_(test), expected_(expected), source_(source), sourceBefore_(before) {
    std::size_t pixels = expected.changed ? expected.changed->words.size() : 0;
    for (const StoredPicture& made : expected.made) pixels += made.words.size();
    stride_ = 1 + pixels * expected.yields.size() / kMostLookedAt;
    test_.host_.onYield = [this] { Look(); };
  }
  ~Watch() { test_.host_.onYield = nullptr; }
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;

 private:
  void Look() {
    const std::size_t index = seen_++;
    if (index >= expected_.yields.size() || testing::Test::HasFailure()) return;
    if (index % stride_ != 0 && index + 1 != expected_.yields.size()) return;
    const model::Yield& yield = expected_.yields[index];
    EXPECT_EQ(test_.LastError(), expected_.code) << "during a yield";
    std::vector<std::size_t> alive;
    for (const auto& [number, picture] : LiveNewPictures(test_.host_)) {
      alive.push_back(number);
      if (number == expected_.result) {
        model::Yield progress = yield;
        if (number != yield.writing) progress.linesDone = 0;
        CheckProgress(index, progress, picture, Unwritten(number), expected_.made[number - 1]);
      } else {  // a temporary picture, which no caller sees: any content is allowed
        EXPECT_TRUE(picture.PaddingIntact()) << "at yield " << index + 1 << ", of new picture " << number;
      }
    }
    EXPECT_EQ(alive, yield.alive) << "pictures that exist at yield " << index + 1;
    if (expected_.changed) CheckProgress(index, yield, source_, *sourceBefore_, *expected_.changed);
  }

  StoredPicture Unwritten(std::size_t number) const {
    const StoredPicture& made = expected_.made[number - 1];
    return StoredPicture(made.form, made.width, made.height, host::kUnwritten);
  }

  static void CheckProgress(std::size_t index, const model::Yield& yield, const Picture& picture,
                            const StoredPicture& before, const StoredPicture& after) {
    EXPECT_EQ(Progress(yield, before, after, FromHost(picture)), "")
        << "at yield " << index + 1 << ", with " << yield.linesDone << " lines done of picture " << yield.writing;
  }

  PluginTest& test_;
  const Outcome& expected_;
  const Picture& source_;
  const std::optional<StoredPicture>& sourceBefore_;
  std::size_t stride_ = 1;
  std::size_t seen_ = 0;
};

void PluginTest::CheckCall(const MethodCall& call, const Setting& setting) {
  host_.newPictures.change = NewShapes(setting);
  const Outcome expected = call.ByModel(setting.source, NewValues(setting));

  Picture source;
  if (setting.source) source = ToHost(*setting.source, setting.layout, setting.variant);
  Arguments arguments = call.arguments;
  if (call.method->hasSource) arguments.insert(arguments.begin(), Value(source));
  Called called;
  {
    const Watch watch(*this, expected, source, setting.source);
    called = Run(call.method->name, arguments, expected.lost);
  }
  host_.newPictures.change = nullptr;

  EXPECT_EQ(called.code, expected.code);
  EXPECT_EQ(called.yields, static_cast<int>(expected.yields.size()));
  CheckResults(expected, setting, arguments, called);
}

}  // namespace support
