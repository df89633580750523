#include "FaultsCases.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <map>
#include <utility>

#include "support/PluginTest.h"

namespace faults {

using host::Colour;
using host::Picture;
using host::Service;
using host::Storage;
using host::Value;

namespace {

constexpr int kWidth = 7;
constexpr int kHeight = 5;

const Colour kRed = {0x00E01020};
const Colour kVeiled = {0x40102030};

const std::vector<std::string> kOnlySource = {"lock S", "unlock S"};
const std::vector<std::string> kOnlyResult = {"create", "load R", "construct R", "lock R", "unlock R"};
const std::vector<std::string> kSourceAndResult = {"lock S", "create",   "load R",  "construct R",
                                                   "lock R", "unlock R", "unlock S"};

std::vector<MethodCase> Cases() {
  const std::vector<Role> result = {Role::Result};
  const Failure silent = {0, false};
  const Failure lock = {4, false};
  const Failure make = {6, false};

  MethodCase flip = {"FlipRotate", {true, false, 90}, true, false, result, lock, {}, make, make, make, 6, 0, {}};
  flip.sequence = kSourceAndResult;

  MethodCase mirror = flip;
  mirror.arguments = {true, false, 0};
  mirror.yields = 4;

  MethodCase rotate = {"FreeRotateByShear", {30.0, kRed}, true, false, {}, silent, silent, silent,
                       {0, true},           silent,       23,   0,     {}};
  rotate.made = {Role::Temporary, Role::Temporary, Role::Temporary, Role::Result};
  rotate.sequence = {"lock S",     "create",     "load T1",      "construct T1", "lock T1",
                     "create",     "load T2",    "construct T2", "lock T2",      "unlock T1",
                     "give up T1", "create",     "load T3",      "construct T3", "lock T3",
                     "unlock T2",  "give up T2", "create",       "load R",       "construct R",
                     "lock R",     "unlock T3",  "give up T3",   "unlock R",     "unlock S"};

  MethodCase shearH = {
      "ShearHorizontal", {9, 6, 0.3, kVeiled}, true, false, result, silent, {}, silent, silent, {0, true}, 5, 0, {}};
  shearH.sequence = kSourceAndResult;
  MethodCase shearV = shearH;
  shearV.name = "ShearVertical";
  shearV.yields = 8;

  MethodCase stretch = {"Stretch", {4, 3},    true,   false,  {Role::Result, Role::Temporary},
                        lock,      {5, true}, silent, silent, {5, true},
                        7,         0,         {}};
  stretch.sequence = {"lock S",       "create",  "load R",    "construct R", "lock R",   "create",  "load T1",
                      "construct T1", "lock T1", "unlock T1", "give up T1",  "unlock R", "unlock S"};

  MethodCase trim = {"Trim", {-1, 1, 6, 6, kRed}, true, false, result, lock, {}, make, make, {0, true}, 0, 0, {}};
  trim.sequence = kSourceAndResult;

  MethodCase hsv = {
      "AdjustHSV", {1, 1, 3, 2, 40.0, 1.0, 2.0, false}, true, false, result, lock, {}, make, make, make, 5, 0, {}};
  hsv.sequence = kSourceAndResult;
  MethodCase hsvInPlace = {"AdjustHSV_InPlace", hsv.arguments, true, true, {}, lock, {}, {}, {}, silent, 5, 0,
                           kOnlySource};
  MethodCase hsvMean = {
      "GetAverageHSV", {1, 1, 3, 2, -7.0, -8.0, -9.0}, true, false, {}, lock, {}, {}, {}, {38, false}, 3, 0,
      kOnlySource};

  MethodCase rgb = {"AdjustRGB", {1, 1, 3, 2, 10, -20, 30}, true, false, result, lock, {}, make, make, make, 5, 0, {}};
  rgb.sequence = kSourceAndResult;
  MethodCase rgbInPlace = {"AdjustRGB_InPlace", rgb.arguments, true, true, {}, lock, {}, {}, {}, silent, 3, 1,
                           kOnlySource};
  MethodCase rgbMean = {"GetAverageRGB", {1, 1, 3, 2, -7, -8, -9}, true, false, {}, lock, {}, {}, {}, {38, false}, 3, 0,
                        kOnlySource};

  MethodCase gradient = {"MakeGradient", {4, 6, kRed, kVeiled}, false, false, result, {}, {}, make, make, {}, 5, 0,
                         kOnlyResult};
  MethodCase doubled = {
      "MakeDoubleGradient", {4, 6, kRed, kVeiled, kRed}, false, false, result, {}, {}, make, make, {}, 5, 0,
      kOnlyResult};
  return {hsv,    hsvInPlace, hsvMean, rgb,    rgbInPlace, rgbMean, flip, mirror,
          rotate, gradient,   doubled, shearH, shearV,     stretch, trim};
}

}  // namespace

const std::vector<MethodCase>& Methods() {
  static const std::vector<MethodCase> methods = Cases();
  return methods;
}

std::ostream& operator<<(std::ostream& out, const Forms& forms) {
  const auto name = [](Storage storage) { return storage == Storage::Buffer ? "buffer" : "context"; };
  return out << "source " << name(forms.source) << ", new pictures " << name(forms.made);
}

host::PictureShape SourceShape(Storage storage) {
  host::PictureShape shape = {kWidth, kHeight, storage, {}, {}};
  shape.layout.padding = 8;
  return shape;
}

Picture Numbered(const host::PictureShape& shape) {
  Picture picture(shape);
  if (shape.defects.nilPixels || shape.defects.bitsPerPixel != 32) return picture;
  const std::uint32_t translucent = shape.storage == Storage::Buffer ? 0x30000000 : 0x9F000000;
  const std::uint32_t opaque = shape.storage == Storage::Buffer ? 0 : 0xFF000000;
  for (int y = 0; y < shape.height; ++y) {
    for (int x = 0; x < shape.width; ++x) {
      const std::uint32_t alpha = (x + y) % 3 == 0 ? translucent : opaque;
      const auto colour = static_cast<std::uint32_t>(0x081828 + 0x130B07 * (x % 7) + 0x05080D * (y % 5));
      picture.SetStored(x, y, alpha | colour);
    }
  }
  return picture;
}

int Ran::Calls(Service service) const {
  const auto isCall = [service](const host::ServiceCall& call) {
    return std::strcmp(call.name, host::EntryName(service)) == 0;
  };
  return static_cast<int>(std::count_if(log.begin(), log.end(), isCall));
}

std::vector<std::string> Sequence(const MethodCase& method, const Ran& ran) {
  static const std::map<std::string, std::string> verbs = {
      {"REALLoadObjectMethod", "load "},       {"Constructor", "construct "},    {"lockPictureDescription", "lock "},
      {"unlockPictureDescription", "unlock "}, {"REALUnlockObject", "give up "},
  };
  std::map<std::uint32_t, std::string> names;
  if (ran.source) names[ran.source.Id()] = "S";
  std::size_t made = 0;
  int temporaries = 0;
  std::vector<std::string> sequence;
  for (const host::ServiceCall& call : ran.log) {
    const std::string service = call.name;
    if (service == "REALYieldToRB") continue;
    if (service == "CreateInstance") {
      sequence.push_back("create");
      continue;
    }
    if (names.count(call.object) == 0) {
      const bool result = made < method.made.size() && method.made[made] == Role::Result;
      names[call.object] = result ? "R" : "T" + std::to_string(++temporaries);
      ++made;
    }
    const auto verb = verbs.find(service);
    sequence.push_back((verb == verbs.end() ? service + " " : verb->second) + names[call.object]);
  }
  return sequence;
}

// ------------------------------------------------------------------------------------------- calls

void FaultsTest::Restart(const host::Options& options) {
  host_.reset();
  host_ = std::make_unique<host::Host>(options);
  host_->Load(support::LibraryPath());
}

Ran FaultsTest::Run(const MethodCase& method, const Forms& forms, const Inject& inject, int yield) {
  host_->newPictures.storage = forms.made;
  return Run(method, method.hasSource ? Numbered(SourceShape(forms.source)) : Picture(), inject, yield);
}

Ran FaultsTest::Run(const MethodCase& method, const Picture& source, const Inject& inject, int yield) {
  host_->Call("Trim", {Value(), 0, 0, 1, 1, Colour{0}, 0});  // which leaves 2
  host_->ResetCounts();
  if (inject) inject();
  Ran ran;
  ran.source = source;
  if (source) ran.before = source.TakeSnapshot();
  ran.arguments = method.arguments;
  std::vector<Value> arguments = method.arguments;
  if (method.hasSource) arguments.insert(arguments.begin(), Value(source));
  arguments.emplace_back(yield);
  try {
    const host::Outcome outcome = host_->Call(method.name, arguments);
    ran.result = outcome.result.AsPicture();
    ran.arguments.assign(outcome.arguments.begin() + (method.hasSource ? 1 : 0), outcome.arguments.end() - 1);
  } catch (const host::Thrown& thrown) {
    ran.thrower = thrown.service();
  }
  EXPECT_EQ(std::uncaught_exceptions(), 0) << "an exception that the plug-in caught is still on its way for the host";
  ran.log = host_->Log();
  host_->ClearFaults();
  ran.leaks = host_->Leaks();
  host_->DropLeaks();
  ran.code = host_->Call("GetLastError", {}).result.AsInteger();
  return ran;
}

const Ran& FaultsTest::Clean(const MethodCase& method, const Forms& forms) {
  const auto key = std::make_tuple(&method, forms.source, forms.made);
  const auto kept = clean_.find(key);
  return kept != clean_.end() ? kept->second : clean_.emplace(key, Run(method, forms)).first->second;
}

namespace {

void ExpectUntouched(const MethodCase& method, const Ran& ran, bool sourceToo = true) {
  if (ran.source && sourceToo) {
    EXPECT_TRUE(ran.source.TakeSnapshot() == ran.before) << "the source has changed";
  }
  EXPECT_TRUE(ran.arguments == method.arguments) << "a variable of the caller has changed";
}

}  // namespace

void FaultsTest::ExpectClean(const MethodCase& method, const Forms& forms, const Ran& ran) {
  const Ran& clean = Clean(method, forms);
  EXPECT_FALSE(ran.thrower);
  EXPECT_EQ(ran.code, 0);
  ASSERT_EQ(ran.result.IsNil(), clean.result.IsNil());
  if (ran.result) {
    EXPECT_TRUE(ran.result.SamePixels(clean.result)) << "the result differs from that of a call without faults";
  }
  if (ran.source) {
    EXPECT_TRUE(ran.source.SamePixels(clean.source)) << "the source differs from that of a call without faults";
  }
  EXPECT_TRUE(ran.arguments == clean.arguments) << "the measurements differ from those of a call without faults";
}

void FaultsTest::ExpectFailure(const MethodCase& method, const Failure& failure, const Ran& ran) {
  EXPECT_FALSE(ran.thrower);
  EXPECT_EQ(ran.code, failure.code);
  EXPECT_EQ(!ran.result.IsNil(), failure.returnsResult);
  ExpectUntouched(method, ran);
}

void FaultsTest::ExpectThrown(const MethodCase& method, Service service, const Ran& ran, bool sourceUntouched) {
  EXPECT_EQ(ran.thrower, service);
  EXPECT_EQ(ran.code, 0) << "what was assigned at entry";
  ExpectUntouched(method, ran, sourceUntouched);
}

void FaultsTest::ForEveryMethod(const std::function<void(const MethodCase& method, const Forms& forms)>& body) {
  for (const MethodCase& method : Methods()) {
    for (const Forms& forms : kAllForms) {
      if (!method.hasSource && forms.source != forms.made) continue;
      if (!method.MakesResult() && forms.source != forms.made) continue;
      SCOPED_TRACE(testing::Message() << method.name << ", " << forms);
      body(method, forms);
    }
  }
}

}  // namespace faults
