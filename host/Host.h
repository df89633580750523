// The stand-in host: loads the plug-in, offers it the host's services, and calls its methods by
// their declarations.
//
//   host::Host host;
//   host.Load("build/native/libLMX.so");
//   host::Picture source({4, 3, host::Storage::Buffer});
//   source.Fill(0x00336699);
//   host::Picture result = host.Call("Stretch", {source, 8, 6, 0}).result.AsPicture();
//
// The host is strict. It counts references and locks, checks every request of the plug-in, and
// records every breach of the contract as a complaint. A Call that ends with new complaints throws
// them as host::Misuse, unless the host was told only to collect them. The host knows no method by
// name: it can call what the plug-in registered.
//
// Only one Host can live at a time, because the resolver that the plug-in gets is a plain function.
// Everything happens on one thread. Services can be withheld, made to fail and made to throw,
// before Load and between calls.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Declaration.h"
#include "HostInterface.h"
#include "Picture.h"
#include "Service.h"
#include "Value.h"

namespace host {

/// The pictures that the plug-in makes ("CreateInstance" and the constructor).
struct NewPictures {
  Storage storage = Storage::BitmapContext;
  Layout layout = {};
  /// Called for each new picture, with its number (from 1 since the Host was made or ResetCounts)
  /// and its shape. It may change size, form and defects. A shape that cannot be made (no memory,
  /// or it contradicts itself) becomes a picture with nil data.
  std::function<void(int ordinal, PictureShape& shape)> change;
};

struct Options {
  /// The answer of "REALGetRBVersion".
  double version = 2011.04;
  NewPictures newPictures = {};
  /// Whether Load and Call throw their complaints as host::Misuse at the end. If not, they are only
  /// kept for Complaints().
  bool throwComplaints = true;
  /// Whether service calls are recorded in Log().
  bool keepLog = true;
};

/// The result of a method call.
struct Outcome {
  Value result;                  ///< nil for a method without a result
  std::vector<Value> arguments;  ///< as passed; ByRef arguments with the values that the method wrote
};

/// A live object, for reports of leaks.
struct LiveObject {
  std::uint32_t id;      ///< see Picture::Id
  const char* kind;      ///< "picture" or "string"
  bool constructed;      ///< false if the constructor was never called
  int references;        ///< all references
  int pluginReferences;  ///< the references that no Picture of the program holds
  int locks;
};

struct HostState;

class Host {
 public:
  /// Throws host::Error if another Host lives.
  explicit Host(const Options& options = {});
  /// Unloads the library, and releases the references and locks that the plug-in left. Pictures of
  /// the program stay.
  ~Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  // Loading.

  /// Loads the library and calls its REALPluginMain with the resolver. If an earlier Host could not
  /// unload the library, a private copy is loaded, so the plug-in always starts with fresh
  /// variables. Throws host::Error if the library cannot be loaded or lacks the entry, host::Misuse
  /// for complaints.
  void Load(const std::string& path);
  /// Calls the entry of a plug-in that is linked into the program, with the same checks. Nothing is
  /// unloaded at the end, and the plug-in's variables are not reset.
  void Start(REALPluginMainFunction* entry);
  /// Calls the entry once more, which no host should do.
  void CallPluginMainAgain();
  /// Whether the library at this path is loaded in the process. After the end of its Host it should
  /// not be.
  static bool IsLoaded(const std::string& path);
  /// Loads the library for the life of the process. Load then restores its variables to what they
  /// were before its REALPluginMain ran, which takes microseconds. For programs that start a fresh
  /// plug-in very often, and for those that measure code coverage. Throws host::Error if the
  /// library cannot be loaded or is loaded already.
  static void KeepLoaded(const std::string& path);

  // The registered module.

  /// The plug-in's own record, in the plug-in's memory; nil before registration.
  const REALmoduleDefinition* Module() const;
  /// The methods of the module in their order. A method whose declaration cannot be parsed is left
  /// out, with a complaint.
  const std::vector<Method>& Methods() const;
  /// Finds a method by name, with or without the module's name and an underscore before it. Case
  /// does not matter. Nil if there is none.
  const Method* FindMethod(std::string_view name) const;
  /// The arguments of all calls of "RegisterPluginVersion", in order.
  const std::vector<int>& PluginVersions() const;

  // Calling.

  /// Calls a method with arguments in the declared order. An argument must have the declared type,
  /// but integers are accepted for doubles, booleans (0 and 1) and colours, and a BooleanByte for a
  /// boolean. Nil is accepted for pictures, strings and ByRef arguments, and is passed as a nil
  /// pointer. The value of a ByRef argument is what the method finds there at the start. onYield
  /// may call this function again.
  ///
  /// Throws host::Error, before the call, if the declaration does not allow the arguments. Throws
  /// host::Misuse after the call for complaints. An exception that leaves the method is passed on;
  /// locks that the call left are then complaints, too, and the host ends them.
  Outcome Call(std::string_view name, const std::vector<Value>& values);

  /// 32-bit x86: the stack pointer modulo 16 (0, 4, 8, 12) at the call instruction of methods.
  /// Compilers use 0. Without a setting it changes from call to call. On other ABIs it is always 0,
  /// and this function does nothing.
  void SetStackMisalignment(std::optional<unsigned> bytes);

  // What the program does during a call.

  /// Runs inside "REALYieldToRB". May call methods, use pictures, or throw; the exception leaves
  /// through the method.
  std::function<void()> onYield;
  /// May be changed at any time.
  NewPictures newPictures;
  /// The texts of all message boxes, in order.
  std::vector<std::string> messageBoxes;

  // Faults. Lookups and calls are counted from 1, since the Host was made or since ResetCounts.

  /// The resolver answers nil from this lookup on.
  void Withhold(Service service, int fromLookup = 1);
  /// This call does nothing and answers nil or 0. A lock still counts and must be ended, but
  /// answers an unusable picture type. A call that ends a lock or releases a reference still does
  /// so: the plug-in has no second chance.
  void FailAt(Service service, int call);
  /// This call throws host::Thrown and does nothing else. A call that ends a lock or releases a
  /// reference does so first.
  void ThrowAt(Service service, int call);
  /// Removes all three kinds of faults from every service.
  void ClearFaults();

  // Observation.

  int Lookups(Service service) const;
  int Calls(Service service) const;
  /// Calls of all services and of constructors, in order.
  const std::vector<ServiceCall>& Log() const;
  /// Sets all counts to 0 and clears the log.
  void ResetCounts();

  /// Every breach of the contract so far, one sentence each.
  const std::vector<std::string>& Complaints() const;
  void ClearComplaints();

  /// Every live object that the plug-in holds references to or locks of.
  std::vector<LiveObject> Leaks() const;
  /// Every object that is alive.
  std::vector<LiveObject> LiveObjects() const;
  /// The number of objects that "CreateInstance" made, whose constructor never ran and which nobody
  /// has released.
  int AbandonedObjects() const;
  /// Releases what Leaks() lists, abandoned objects included, for tests that go on after a leak.
  void DropLeaks();

 private:
  std::unique_ptr<HostState> state_;
};

}  // namespace host
