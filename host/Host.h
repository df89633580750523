// The stand-in host: loads the plug-in, offers it the host's services, and calls its methods by
// their declarations.
//
//   host::Host host;
//   host.Load("build/native/libLMX.so");
//   host::Picture source({4, 3, host::Storage::Buffer});
//   source.Fill(0x00336699);
//   host::Picture result = host.Call("Stretch", {source, 8, 6, 0}).result.AsPicture();
//
// The host is strict. It counts references and locks, answers only what it was asked for correctly,
// and records every breach of the contract as a complaint; a Call that ends with new complaints
// throws them as host::Misuse, unless the host was told to collect. It knows no method by name:
// what it can call is what the plug-in registered.
//
// One Host lives at a time, because the resolver that the plug-in gets is a plain function.
// Everything happens on one thread. Services can be withheld, made to fail and made to throw before
// Load as well as between calls.
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

/// How pictures that the plug-in makes ("CreateInstance" and the constructor) come out.
struct NewPictures {
  Storage storage = Storage::BitmapContext;
  Layout layout = {};
  /// Called with each new picture's number (1 is the first since the Host was made, or since
  /// ResetCounts) and its shape, which it may change: other size, other form, defects. A shape that
  /// cannot be made (no memory, or one that contradicts itself) becomes a picture with nil data.
  std::function<void(int ordinal, PictureShape& shape)> change;
};

struct Options {
  /// What "REALGetRBVersion" answers.
  double version = 2011.04;
  NewPictures newPictures = {};
  /// Whether complaints are thrown as host::Misuse at the end of Load and Call, or only kept for
  /// Complaints().
  bool throwComplaints = true;
  /// Whether service calls are written to Log().
  bool keepLog = true;
};

/// What a method call gave.
struct Outcome {
  Value result;                  ///< nil for a method without a result
  std::vector<Value> arguments;  ///< as passed; ByRef arguments with what the method left there
};

/// An object that is alive, for reports of leaks.
struct LiveObject {
  std::uint32_t id;      ///< see Picture::Id
  const char* kind;      ///< "picture" or "string"
  bool constructed;      ///< false: made by "CreateInstance", constructor never called
  int references;        ///< of everybody
  int pluginReferences;  ///< of which no Picture of the program accounts for
  int locks;
};

struct HostState;

class Host {
 public:
  /// Throws host::Error if another Host lives.
  explicit Host(const Options& options = {});
  /// Unloads the library; gives up what the plug-in left: references and locks. Pictures of the
  /// program stay.
  ~Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  // Loading.

  /// Loads the library and calls its REALPluginMain with the resolver. A library that an earlier
  /// Host could not unload is loaded as a private copy, so the plug-in always starts with fresh
  /// variables. Throws host::Error if it cannot be loaded or lacks the entry, host::Misuse for
  /// complaints.
  void Load(const std::string& path);
  /// Calls the entry of a plug-in that is linked into the program, with the same checks. The host
  /// has nothing to unload then, and variables are as the program has left them.
  void Start(REALPluginMainFunction* entry);
  /// Calls the entry once more, as no host should.
  void CallPluginMainAgain();
  /// Whether the library at this path is in the process; after a Host is gone, it should not be.
  static bool IsLoaded(const std::string& path);
  /// Loads the library for the life of the process. Load then puts its variables back to what they
  /// were before its REALPluginMain ran, which takes microseconds: for programs that start with a
  /// fresh plug-in very often, and for those that measure what of it has been executed. Throws
  /// host::Error if it cannot be loaded, or is loaded.
  static void KeepLoaded(const std::string& path);

  // The registered module.

  /// The plug-in's own record as it lies in the plug-in's memory; nil before registration.
  const REALmoduleDefinition* Module() const;
  /// The methods of the module in their order; those whose declaration cannot be parsed are missing
  /// (a complaint).
  const std::vector<Method>& Methods() const;
  /// By name, with or without the module's name and an underscore before it, in upper or lower
  /// case; nil if unknown.
  const Method* FindMethod(std::string_view name) const;
  /// What was passed to "RegisterPluginVersion", call by call.
  const std::vector<int>& PluginVersions() const;

  // Calling.

  /// Calls a method with arguments in the declared order. Integers serve for doubles, booleans (0
  /// and 1) and colours as well, a BooleanByte for a boolean; anything else must have the declared
  /// type. Nil serves for pictures, strings and ByRef arguments, and is passed as a nil pointer.
  /// The value of a ByRef argument is what it holds when the method starts. May be called again
  /// from onYield. Throws host::Error before the call for a call that the declaration does not
  /// allow, host::Misuse after it for complaints, and passes on whatever leaves the method; locks
  /// that the call left are then complaints, too, and ended by the host.
  Outcome Call(std::string_view name, const std::vector<Value>& values);

  /// 32-bit x86: the stack pointer modulo 16 (0, 4, 8, 12) at the call instruction of methods; 0 is
  /// what a compiler gives. Without a setting it changes from call to call. No effect on other
  /// ABIs, where it is always 0.
  void SetStackMisalignment(std::optional<unsigned> bytes);

  // What the program does meanwhile.

  /// Runs inside "REALYieldToRB". May call methods, use pictures, or throw: the exception leaves
  /// through the method.
  std::function<void()> onYield;
  /// May be changed at any time.
  NewPictures newPictures;
  /// The texts of all message boxes, in order.
  std::vector<std::string> messageBoxes;

  // Faults. Lookups and calls are counted from 1 since the Host was made, or since ResetCounts.

  /// The resolver answers nil from the given lookup on.
  void Withhold(Service service, int fromLookup = 1);
  /// The given call does nothing and answers nil, 0 or, for a lock, an unusable picture type. What
  /// ends a lock or gives up a reference is done all the same, since nobody could make up for it.
  void FailAt(Service service, int call);
  /// The given call throws host::Thrown instead of doing anything (what ends a lock or gives up a
  /// reference: as well).
  void ThrowAt(Service service, int call);
  /// Takes back all three, for every service.
  void ClearFaults();

  // Observation.

  int Lookups(Service service) const;
  int Calls(Service service) const;
  /// Calls of all services, and of constructors, in order.
  const std::vector<ServiceCall>& Log() const;
  /// Sets all counts to 0 and empties the log.
  void ResetCounts();

  /// Every breach of the contract so far, in clear words.
  const std::vector<std::string>& Complaints() const;
  void ClearComplaints();

  /// Every object that is alive and not solely the program's: with references, locks or both of the
  /// plug-in.
  std::vector<LiveObject> Leaks() const;
  /// Every object that is alive.
  std::vector<LiveObject> LiveObjects() const;
  /// Objects that "CreateInstance" made, whose constructor never ran and which nobody has given up.
  int AbandonedObjects() const;
  /// Gives up what Leaks() lists (abandoned objects included), for tests that go on after a leak.
  void DropLeaks();

 private:
  std::unique_ptr<HostState> state_;
};

}  // namespace host
