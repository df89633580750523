#include "FaultyCall.h"

#include <algorithm>
#include <exception>
#include <map>

#include "Pictures.h"

namespace support {
namespace {

using host::Picture;
using host::Service;
using host::Value;
using model::Fault;
using model::StoredPicture;
using Steps = std::vector<std::string>;

class ProgramsOwn : public std::exception {};

// The names of new pictures, in order.
Steps NewPicturesOf(const Method& method) {
  Steps names;
  int temporaries = 0;
  for (const char* made = method.made; *made != '\0'; ++made) {
    names.push_back(*made == 't' ? "T" + std::to_string(++temporaries) : "R");
  }
  return names;
}

void AddRelease(const std::string& picture, Steps& steps) {
  steps.push_back("unlock " + picture);
  if (picture[0] == 'T') steps.push_back("give up " + picture);
}

// Whether rows of the picture share memory.
bool IsTangled(const host::PictureShape& shape) {
  return shape.height > 1 && shape.defects.bytesPerRow.has_value() &&
         std::abs(std::int64_t{*shape.defects.bytesPerRow}) < std::int64_t{shape.width} * 4;
}

class FaultyCall {
 public:
  FaultyCall(host::Host& host, const MethodCall& call, const Setting& setting, const HostFault& fault)
      : host_(host), method_(*call.method), setting_(setting), fault_(fault) {
    if (setting_.source) MakeSource();
    expected_ = Expect(call, setting_, fault);
    if (method_.hasSource) passed_.emplace_back(source_);
    passed_.insert(passed_.end(), call.arguments.begin(), call.arguments.end());
  }

  std::optional<int> Check() {
    host_.Call("Trim", {Value(), 0, 0, 1, 1, host::Colour{}, 0});  // leaves code 2
    Call();
    CheckBooks();
    CheckOrder();
    const model::Outcome& outcome = expected_.outcome;
    EXPECT_EQ(thrower_, expected_.thrower) << "the service whose exception leaves the method";
    EXPECT_EQ(called_.code, outcome.code);
    EXPECT_EQ(called_.yields, static_cast<int>(outcome.yields.size()));
    EXPECT_EQ(called_.result.IsNil(), outcome.result == 0) << "nil, or not";
    const bool failed = thrower_ || outcome.code != 0;
    if (failed || !tangled_) CheckResults(outcome, setting_, passed_, called_);
    return thrower_ ? std::nullopt : std::optional(called_.code);
  }

 private:
  void MakeSource() {
    StoredPicture& value = *setting_.source;
    host::PictureShape shape = ShapeOf(value, setting_.layout, setting_.variant);
    if (setting_.spoilSource) setting_.spoilSource(shape);
    tangled_ = IsTangled(shape);
    source_ = Picture(shape);
    const std::vector<std::uint32_t> words = std::move(value.words);
    value = ValueIn(setting_, shape);
    if (HasWords(shape)) {
      if (words.size() == value.words.size()) source_.SetStoredPixels(words);
      value.words = source_.StoredPixels();
    }
    before_ = source_.TakeSnapshot();
  }

  void Prepare() {
    host_.ResetCounts();
    Inject(fault_, host_);
    host_.onYield = [this] { Yield(); };
    host_.newPictures.change = [this](int ordinal, host::PictureShape& shape) {
      if (fault_.kind == FaultKind::ConstructorThrows && ordinal == fault_.n) throw host::Thrown(Service::NewInstance);
      NewShapes(setting_)(ordinal, shape);
      tangled_ = tangled_ || IsTangled(shape);
    };
  }

  void Call() {
    Prepare();
    called_.arguments = passed_;
    try {
      host::Outcome outcome = host_.Call(method_.name, passed_);
      called_.result = outcome.result.AsPicture();
      called_.arguments = std::move(outcome.arguments);
    } catch (const host::Thrown& thrown) {
      thrower_ = thrown.service();
    } catch (const ProgramsOwn&) {
      thrower_ = Service::YieldToRB;
    }
    EXPECT_EQ(std::uncaught_exceptions(), 0) << "an exception that the plug-in caught is still on its way for the host";
    called_.yields = host_.Calls(Service::YieldToRB);
    host_.ClearFaults();
    host_.onYield = nullptr;
    host_.newPictures.change = nullptr;
    called_.code = host_.Call("GetLastError", {}).result.AsInteger();
  }

  void Yield() {
    const auto yield = static_cast<std::size_t>(host_.Calls(Service::YieldToRB)) - 1;
    if (yield < expected_.outcome.yields.size() && fault_.kind != FaultKind::Withhold) {
      const std::size_t pictures = expected_.outcome.yields[yield].alive.size() + (source_ ? 1 : 0);
      std::size_t locks = 0;
      for (const host::LiveObject& object : host_.LiveObjects()) locks += static_cast<std::size_t>(object.locks);
      EXPECT_EQ(locks, pictures) << "pictures that are locked at yield " << yield + 1;
    }
    if (fault_.kind == FaultKind::ProgramThrows && static_cast<int>(yield) + 1 == fault_.n) throw ProgramsOwn();
  }

  void CheckBooks() {
    const bool keepsLocks = fault_.kind == FaultKind::Withhold && fault_.service == Service::UnlockPictureDescription;
    for (const std::string& complaint : host_.Complaints()) {
      EXPECT_TRUE(keepsLocks && complaint.find("goes while it is locked") != std::string::npos) << complaint;
    }
    host_.ClearComplaints();
    std::size_t unconstructed = 0;
    const std::vector<host::LiveObject> leaks = host_.Leaks();
    for (const host::LiveObject& leak : leaks) {
      EXPECT_STREQ(leak.kind, "picture");
      EXPECT_EQ(leak.references, 1);
      EXPECT_EQ(leak.pluginReferences, 1);
      EXPECT_EQ(leak.locks, 0);
      if (!leak.constructed) ++unconstructed;
    }
    EXPECT_EQ(leaks.size(), expected_.leaks) << "objects without an owner";
    EXPECT_EQ(unconstructed, expected_.unconstructed);
    host_.DropLeaks();
    if (source_) {
      ExpectHeldByProgramOnly(source_);
      const bool mayChange = method_.InPlace() && called_.code == 0;
      EXPECT_TRUE(mayChange || source_.TakeSnapshot() == before_) << "the source has changed";
    }
    if (called_.result) {
      ExpectHeldByProgramOnly(called_.result);
      EXPECT_EQ(called_.result.References(), 1);
    }
  }

  static void ExpectHeldByProgramOnly(const Picture& picture) {
    EXPECT_EQ(picture.Locks(), 0);
    EXPECT_EQ(picture.PluginReferences(), 0);
    EXPECT_TRUE(picture.PaddingIntact()) << "written between the rows";
  }

  // A call that ends early starts with the same calls as one without faults. Then it releases what
  // it holds, in this order: a picture of unusable type, which is abandoned; temporary pictures,
  // the latest first; the result; the source.
  void CheckOrder() const {
    if (fault_.kind == FaultKind::Withhold || host_.Log().empty()) return;
    const Steps got = ServiceCalls(method_, host_);
    const Steps whole = ServiceCalls(method_);
    const auto [end, next] = std::mismatch(got.begin(), got.end(), whole.begin(), whole.end());
    Steps held;
    for (auto step = got.begin(); step != end; ++step) {
      if (step->rfind("lock ", 0) == 0) held.push_back(step->substr(5));
      if (step->rfind("unlock ", 0) == 0) held.erase(std::find(held.begin(), held.end(), step->substr(7)));
    }
    if (thrower_ == Service::LockPictureDescription) held.pop_back();
    Steps releases;
    if (!held.empty() && IsUnusable(held.back())) {
      releases.push_back("unlock " + held.back());
      held.pop_back();
    }
    for (const char kind : {'T', 'R', 'S'}) {
      for (auto picture = held.rbegin(); picture != held.rend(); ++picture) {
        if ((*picture)[0] == kind) AddRelease(*picture, releases);
      }
    }
    EXPECT_EQ(Steps(end, got.end()), releases) << "releases at the end";
  }

  bool IsUnusable(const std::string& picture) const {
    const Steps pictures = NewPicturesOf(method_);
    const auto place = std::find(pictures.begin(), pictures.end(), picture) - pictures.begin();
    const std::deque<StoredPicture>& made = expected_.outcome.made;
    return place < static_cast<std::ptrdiff_t>(made.size()) &&
           made[static_cast<std::size_t>(place)].fault == Fault::UnusableType;
  }

  host::Host& host_;
  const Method& method_;
  Setting setting_;
  const HostFault fault_;
  Expectation expected_;

  Picture source_;
  host::Snapshot before_;
  std::vector<Value> passed_;
  Called called_;
  std::optional<Service> thrower_;
  bool tangled_ = false;
};

}  // namespace

void Inject(const HostFault& fault, host::Host& host) {
  if (fault.kind == FaultKind::Fail) host.FailAt(fault.service, fault.n);
  if (fault.kind == FaultKind::Throw) host.ThrowAt(fault.service, fault.n);
  if (fault.kind == FaultKind::Withhold) host.Withhold(fault.service);
}

std::optional<int> CheckFaultyCall(host::Host& host, const MethodCall& call, const Setting& setting,
                                   const HostFault& fault) {
  return FaultyCall(host, call, setting, fault).Check();
}

std::vector<std::string> ServiceCalls(const Method& method) {
  Steps steps;
  if (method.hasSource) steps.push_back("lock S");
  std::string last;
  const auto endLast = [&] {
    if (last[0] == 'T') AddRelease(last, steps);
  };
  for (const std::string& picture : NewPicturesOf(method)) {
    steps.insert(steps.end(), {"create", "load " + picture, "construct " + picture, "lock " + picture});
    endLast();
    last = picture;
  }
  endLast();
  if (method.Result() != 0) AddRelease("R", steps);
  if (method.hasSource) AddRelease("S", steps);
  return steps;
}

std::vector<std::string> ServiceCalls(const Method& method, const host::Host& host) {
  static const std::map<std::string, std::string> verbs = {
      {"REALLoadObjectMethod", "load "},       {"Constructor", "construct "},    {"lockPictureDescription", "lock "},
      {"unlockPictureDescription", "unlock "}, {"REALUnlockObject", "give up "},
  };
  Steps fresh = NewPicturesOf(method);
  std::map<std::uint32_t, std::string> names;
  Steps steps;
  for (const host::ServiceCall& call : host.Log()) {
    const std::string service = call.name;
    const auto verb = verbs.find(service);
    if (service == "REALYieldToRB") continue;
    if (verb == verbs.end()) {
      steps.push_back(service == "CreateInstance" ? "create" : service);
      continue;
    }
    std::string& name = names[call.object];
    if (name.empty() && verb->second != "load ") name = "S";
    if (name.empty() && !fresh.empty()) {
      name = fresh.front();
      fresh.erase(fresh.begin());
    }
    steps.push_back(verb->second + name);
  }
  return steps;
}

}  // namespace support
