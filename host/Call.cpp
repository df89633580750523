// One call of a method: passes the arguments, takes the result, and checks locks and references.

#include <cstddef>
#include <utility>

#include "Arguments.h"
#include "HostState.h"
#include "ProgramReference.h"

namespace host {
namespace {

// Compares the locks at the end of a call with those at its start. A call inside a yield starts
// with the locks of the outer call.
class LockBalance {
 public:
  LockBalance() {
    for (const PictureObject* picture : Table().Pictures()) {
      if (picture->locks > 0) locks_.emplace_back(picture->id, picture->locks);
    }
  }

  /// Complains about locks that the call left, and ends them.
  void Check(HostState& state, const std::string& method) const {
    const bool excused = state.Book(Service::UnlockPictureDescription).wasWithheld;
    for (PictureObject* picture : Table().Pictures()) {
      const int before = LocksBefore(*picture);
      if (picture->locks < before)
        state.Complain(method + " ended a lock of " + NameOf(*picture) + " that was not its own");
      if (picture->locks > before && !excused) {
        state.Complain(method + " left " + NameOf(*picture) +
                       " locked (open locks: " + std::to_string(picture->locks - before) + ")");
      }
      while (picture->locks > before) Table().Unlock(*picture);
    }
  }

 private:
  int LocksBefore(const PictureObject& picture) const {
    for (const auto& [id, locks] : locks_) {
      if (id == picture.id) return locks;
    }
    return 0;
  }

  std::vector<std::pair<std::uint32_t, int>> locks_;
};

const void* Pointer(std::uint64_t word) {
  return reinterpret_cast<const void*>(static_cast<std::uintptr_t>(word));
}

// The object that a method returned, with a reference that the caller owns. Nil, with a complaint,
// if the handle is no such object.
Object* ReturnedObject(HostState& state, const Method& method, Object::Kind kind, const void* handle) {
  if (handle == nullptr) return nullptr;
  Object* object = Table().Find(handle);
  if (object == nullptr || object->kind != kind) {
    state.Complain(method.name + " returned " + Table().Describe(handle) + ", which is no " + TypeName(method.result));
    return nullptr;
  }
  if (object->PluginReferences() < 1) {
    state.Complain(method.name + " returned " + NameOf(*object) + " without a reference for the caller");
    return nullptr;
  }
  return object;
}

Value ReturnedPicture(HostState& state, const Method& method, const void* handle) {
  Object* object = ReturnedObject(state, method, Object::Kind::Picture, handle);
  if (object == nullptr) return {};
  auto& picture = static_cast<PictureObject&>(*object);
  if (picture.memory == nullptr) {
    state.Complain(method.name + " returned " + NameOf(picture) + ", whose constructor has not run");
    return {};
  }
  return ProgramReference::Adopt(picture);
}

Value ReturnedString(HostState& state, const Method& method, const void* handle) {
  Object* object = ReturnedObject(state, method, Object::Kind::String, handle);
  if (object == nullptr) return {};
  Value text = object->text;
  Table().Release(*object);
  return text;
}

Value Invoke(HostState& state, const Method& method, const NativeCall& native) {
  constexpr unsigned kMisalignments = 4;
  const unsigned turn = 4 * (state.methodCalls++ % kMisalignments);
  const unsigned misalignment = state.misalignment.value_or(turn);
  if (method.result == Type::Double) return native.CallDouble(method.entry, misalignment);
  const std::uint64_t word = native.Call(method.entry, misalignment);
  switch (method.result) {
    case Type::Integer:
      return static_cast<std::int32_t>(static_cast<std::uint32_t>(word));
    case Type::Boolean:
      return (word & 0xFF) != 0;
    case Type::Colour:
      return Colour{static_cast<std::uint32_t>(word)};
    case Type::Picture:
      return ReturnedPicture(state, method, Pointer(word));
    case Type::String:
      return ReturnedString(state, method, Pointer(word));
    case Type::Double:
    case Type::None:
      break;
  }
  return {};
}

}  // namespace

const Method* Host::FindMethod(std::string_view name) const {
  if (state_->module == nullptr) return nullptr;
  const char* moduleName = state_->module->name;
  const std::string prefixed = std::string(moduleName == nullptr ? "" : moduleName) + "_" + std::string(name);
  for (const Method& method : state_->methods) {
    if (SameName(method.name, name) || SameName(method.name, prefixed)) return &method;
  }
  return nullptr;
}

Outcome Host::Call(std::string_view name, const std::vector<Value>& values) {
  const Method* method = FindMethod(name);
  if (method == nullptr) throw Error("the plug-in has no method " + std::string(name));
  Arguments arguments(*method, values);
  HostState& state = *state_;
  const LockBalance balance;
  Table().ProtectAll();

  Outcome outcome;
  const auto settle = [&] {
    balance.Check(state, method->name);
    for (const std::string& parameter : arguments.Overwritten()) {
      state.Complain(method->name + " wrote beside its argument " + parameter);
    }
    state.ThrowNewComplaints();
  };
  try {
    outcome.result = Invoke(state, *method, arguments.Native());
  } catch (...) {
    settle();
    throw;
  }
  settle();
  outcome.arguments = arguments.Results();
  return outcome;
}

}  // namespace host
