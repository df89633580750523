// The state of a Host between calls, shared by the files that implement it.
#pragma once

#include <array>
#include <cstddef>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "Host.h"
#include "Library.h"
#include "ObjectTable.h"

namespace host {

/// The calls that one service has got, and the faults that it is told to show.
struct ServiceBook {
  int lookups = 0;
  int calls = 0;
  int withheldFrom = 0;      ///< the first lookup that is answered with nil; 0: none
  bool wasWithheld = false;  ///< whether a lookup by this plug-in was ever answered with nil
  std::set<int> failing;     ///< numbers of the calls that fail
  std::set<int> throwing;    ///< numbers of the calls that throw
};

struct HostState {
  HostState(Host& owner, const Options& hostOptions) : host(owner), options(hostOptions) {}

  ServiceBook& Book(Service service) { return books[static_cast<std::size_t>(service)]; }
  void Complain(std::string text) { complaints.push_back(std::move(text)); }
  /// Throws the complaints that were not thrown before, unless the host only collects them.
  void ThrowNewComplaints();
  void CheckModule(const REALmoduleDefinition& definition);

  Host& host;
  const Options options;
  Library library;
  REALPluginMainFunction* entry = nullptr;  ///< the plug-in's entry, once it has been started

  const REALmoduleDefinition* module = nullptr;
  std::vector<Method> methods;
  std::vector<int> pluginVersions;

  std::array<ServiceBook, kServiceCount> books;
  std::vector<ServiceCall> log;
  std::vector<std::string> complaints;
  std::size_t thrownComplaints = 0;  ///< the first so many complaints have been thrown
  int newPictures = 0;               ///< how many constructors have run
  std::optional<unsigned> misalignment;
  unsigned methodCalls = 0;

  /// The Host that lives, or nil.
  static HostState* current;
};

/// The resolver that is passed to the plug-in.
void* Resolve(const char* entryName);

}  // namespace host
