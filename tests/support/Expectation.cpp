#include "Expectation.h"

#include <algorithm>

namespace support {
namespace {

using host::Service;
using model::Fault;
using model::Outcome;
using model::StoredPicture;

constexpr std::size_t kSource = 0;

bool Makes(Service service) {
  return service == Service::NewInstance || service == Service::LoadObjectMethod ||
         service == Service::LockPictureDescription;
}

class FaultyModel {
 public:
  FaultyModel(const MethodCall& call, const Setting& setting, const HostFault& fault)
      : call_(call), setting_(setting), fault_(fault), clean_(Call({})), result_(call.method->Result()) {}

  Expectation Expect() const {
    switch (fault_.kind) {
      case FaultKind::None:
        break;
      case FaultKind::Fail:
        if (Makes(fault_.service)) return WithoutPicture(Concerned());
        break;
      case FaultKind::Throw:
        if (fault_.service == Service::YieldToRB) return LeftAtYield();
        if (Makes(fault_.service)) return LeftMaking(Concerned(), fault_.service);
        break;  // a release takes effect even if it fails
      case FaultKind::Withhold:
        return Withheld();
      case FaultKind::ConstructorThrows:
        return LeftMaking(Nth(), Service::LoadObjectMethod);
      case FaultKind::ProgramThrows:
        return LeftAtYield();
    }
    return Clean();
  }

 private:
  // A call in which one picture is unusable: the source (kSource), or a new one (from 1).
  Outcome Call(std::optional<std::size_t> useless) const {
    std::optional<StoredPicture> source = setting_.source;
    if (source && useless == kSource) source->fault = Fault::UnusableType;
    const model::MakePicture make = NewValues(setting_);
    return call_.ByModel(source, [&](std::size_t number, int width, int height) {
      StoredPicture picture = make(number, width, height);
      if (useless == number) picture.fault = Fault::UnusableType;
      return picture;
    });
  }

  std::size_t Nth() const { return static_cast<std::size_t>(fault_.n); }

  // Whether the arguments let the method come as far as locking the source. If so, a refused lock
  // makes it fail.
  bool LocksSource() const {
    if (!setting_.source) return false;
    const int code = Call(kSource).code;
    return code == 0 || code == 4;
  }

  // The number of the picture that the fault affects.
  std::size_t Concerned() const {
    const bool locks = fault_.service == Service::LockPictureDescription;
    return Nth() - (locks && LocksSource() ? 1 : 0);
  }

  Expectation Clean() const { return {clean_, {}, static_cast<std::size_t>(clean_.lost), 0}; }

  // A service refuses the picture. The result is the same as for an unusable picture type, but
  // fewer objects may be abandoned.
  Expectation WithoutPicture(std::size_t number) const {
    if (number > clean_.made.size()) return Clean();
    Outcome outcome = Call(number);
    const bool made =
        number != kSource && fault_.service != Service::NewInstance && fault_.service != Service::GetClassRef;
    if (number != kSource && !made) --outcome.lost;
    const auto leaks = static_cast<std::size_t>(outcome.lost);
    return {std::move(outcome), {}, leaks, made && fault_.service == Service::LoadObjectMethod ? 1u : 0u};
  }

  // The state when an exception leaves the call: some yields were made, and in place the rows
  // before them are changed.
  Outcome Left(std::size_t yields) const {
    Outcome outcome;
    outcome.yields.assign(clean_.yields.begin(), clean_.yields.begin() + static_cast<std::ptrdiff_t>(yields));
    if (clean_.changed) {
      outcome.changed = setting_.source;
      const int rows = yields == 0 ? 0 : outcome.yields.back().linesDone;
      std::copy_n(clean_.changed->words.begin(), rows * clean_.changed->width, outcome.changed->words.begin());
    }
    return outcome;
  }

  // An unfinished result has no owner any more.
  Expectation LeftAtYield() const {
    if (Nth() > clean_.yields.size()) return Clean();
    const std::vector<std::size_t>& alive = clean_.yields[Nth() - 1].alive;
    const auto results = std::count(alive.begin(), alive.end(), result_);
    return {Left(Nth()), Service::YieldToRB, static_cast<std::size_t>(results), 0};
  }

  // An exception left the call while a picture was made. `like` is a service that abandons as much
  // when it throws. The stretch makes its result before its temporary picture, so the result is
  // abandoned, too.
  Expectation LeftMaking(std::size_t number, Service like) const {
    if (number > clean_.made.size()) return Clean();
    const Service thrower = fault_.kind == FaultKind::ConstructorThrows ? Service::NewInstance : fault_.service;
    if (number == kSource) return {Left(0), thrower, 0, 0};
    const auto isBefore = [number](const model::Yield& yield) {
      return std::all_of(yield.alive.begin(), yield.alive.end(), [=](std::size_t alive) { return alive < number; });
    };
    const auto yields = std::count_if(clean_.yields.begin(), clean_.yields.end(), isBefore);
    const std::size_t results = result_ != 0 && result_ < number ? 1 : 0;
    return {Left(static_cast<std::size_t>(yields)), thrower, results + (like == Service::NewInstance ? 0 : 1),
            like == Service::LoadObjectMethod ? 1u : 0u};
  }

  Expectation Withheld() const {
    Expectation expected = Clean();
    switch (fault_.service) {
      case Service::GetClassRef:
      case Service::NewInstance:
      case Service::LoadObjectMethod:
        return WithoutPicture(1);
      case Service::LockPictureDescription:
        return WithoutPicture(LocksSource() ? kSource : 1);
      case Service::UnlockObject:
        expected.leaks += HeldTemporaries();
        return expected;
      case Service::YieldToRB:
        expected.outcome.yields.clear();
        return expected;
      default:
        return expected;
    }
  }

  std::size_t HeldTemporaries() const {
    std::size_t held = 0;
    for (std::size_t i = 0; i < clean_.made.size(); ++i) {
      if (i + 1 != result_ && clean_.made[i].fault != Fault::UnusableType) ++held;
    }
    return held;
  }

  const MethodCall& call_;
  const Setting& setting_;
  const HostFault fault_;
  const Outcome clean_;
  const std::size_t result_;
};

}  // namespace

Expectation Expect(const MethodCall& call, const Setting& setting, const HostFault& fault) {
  return FaultyModel(call, setting, fault).Expect();
}

}  // namespace support
