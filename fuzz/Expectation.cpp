#include "Expectation.h"

#include <algorithm>

namespace fuzz {
namespace {

using host::Service;
using model::Fault;
using model::Outcome;
using support::Setting;

constexpr std::size_t kSource = 0;

bool Makes(Service service) {
  return service == Service::NewInstance || service == Service::LoadObjectMethod ||
         service == Service::LockPictureDescription;
}

class Model {
 public:
  Model(const MethodInput& input, const Setting& setting, const std::vector<host::Value>& arguments)
      : method_(MethodOf(input)), fault_(input.fault), setting_(setting), arguments_(arguments) {
    clean_ = Define(setting_);
    locksSource_ = LocksSource();
  }

  Expectation Expect() const {
    switch (KindOf(fault_)) {
      case FaultKind::None:
        return Clean();
      case FaultKind::Fail:
        return Makes(ServiceOf(fault_)) ? WithoutPicture(Concerned()) : Clean();
      case FaultKind::Throw:
        return Thrown();
      case FaultKind::Withhold:
        return Withheld();
      case FaultKind::ConstructorThrows:
        return LeftBy(Service::NewInstance, Service::LoadObjectMethod, fault_.at + std::size_t{1});
    }
    return Clean();
  }

 private:
  Outcome Define(const Setting& setting) const {
    return method_.byModel(setting.source ? &*setting.source : nullptr, arguments_, support::NewValues(setting));
  }

  // Whether the arguments let the method come that far: then it cannot but fail if that is refused.
  bool LocksSource() const {
    if (!setting_.source) return false;
    Setting unusable = setting_;
    unusable.source->fault = Fault::UnusableType;
    const int code = Define(unusable).code;
    return code == 0 || code == 4;
  }

  // The picture that the fault is about: the source, or a new one, counted from 1.
  std::size_t Concerned() const {
    const bool locks = ServiceOf(fault_) == Service::LockPictureDescription;
    return fault_.at + std::size_t{locks && locksSource_ ? 0u : 1u};
  }

  Expectation Clean() const { return {clean_, {}, 0, static_cast<std::size_t>(clean_.lost)}; }

  // One that is refused by a service: it is as if its type were of no use, but that there may be
  // less to abandon.
  Expectation WithoutPicture(std::size_t number) const {
    Setting setting = setting_;
    if (number == kSource) {
      setting.source->fault = Fault::UnusableType;
    } else if (number > clean_.made.size()) {
      return Clean();
    } else {
      setting.newPictures.resize(std::max(setting.newPictures.size(), number));
      setting.newPictures[number - 1].fault = Fault::UnusableType;
    }
    Outcome outcome = Define(setting);
    const bool nothingMade = ServiceOf(fault_) == Service::NewInstance || ServiceOf(fault_) == Service::GetClassRef;
    if (number != kSource && nothingMade) --outcome.lost;
    const auto leaks = static_cast<std::size_t>(outcome.lost);
    return {std::move(outcome), {}, 0, leaks};
  }

  // The stretch's result, made before its temporary picture, is abandoned when that throws.
  std::size_t ResultsBefore(std::size_t number) const {
    return method_.Result() != 0 && method_.Result() < number ? 1 : 0;
  }

  // An exception of `thrower` while a new picture is made; `like` is a service that leaves as much
  // when it throws.
  Expectation LeftBy(Service thrower, Service like, std::size_t number) const {
    if (number > clean_.made.size()) return Clean();
    const std::size_t leaks = ResultsBefore(number) + (like == Service::NewInstance ? 0 : 1);
    return {{}, thrower, clean_.yields.size(), leaks};
  }

  Expectation Thrown() const {
    const Service service = ServiceOf(fault_);
    if (service == Service::YieldToRB) {
      if (fault_.at >= clean_.yields.size()) return Clean();
      const std::vector<std::size_t>& alive = clean_.yields[fault_.at].alive;
      const auto results = std::count(alive.begin(), alive.end(), method_.Result());
      return {{}, service, fault_.at + std::size_t{1}, static_cast<std::size_t>(results)};
    }
    if (!Makes(service)) return Clean();  // releases are done all the same
    if (Concerned() == kSource) return {{}, service, 0, 0};
    return LeftBy(service, service, Concerned());
  }

  Expectation Withheld() const {
    Expectation expected = Clean();
    switch (ServiceOf(fault_)) {
      case Service::GetClassRef:
      case Service::NewInstance:
      case Service::LoadObjectMethod:
        return WithoutPicture(1);
      case Service::LockPictureDescription:
        return WithoutPicture(locksSource_ ? kSource : 1);
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
      if (i + 1 != method_.Result() && clean_.made[i].fault != Fault::UnusableType) ++held;
    }
    return held;
  }

  const Method& method_;
  const FaultInput fault_;
  const Setting& setting_;
  const std::vector<host::Value>& arguments_;
  Outcome clean_;
  bool locksSource_ = false;
};

}  // namespace

Expectation Expect(const MethodInput& input, const Setting& setting, const std::vector<host::Value>& arguments) {
  return Model(input, setting, arguments).Expect();
}

}  // namespace fuzz
