// What a Host keeps between calls; shared by the files that make it up.
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

/// What one service was asked, and what it shall do wrong.
struct ServiceBook {
  int lookups = 0;
  int calls = 0;
  int withheldFrom = 0;      ///< first lookup that is answered with nil; 0: none
  bool wasWithheld = false;  ///< ever, to this plug-in
  std::set<int> failing;     ///< calls
  std::set<int> throwing;    ///< calls
};

struct HostState {
  HostState(Host& owner, const Options& hostOptions) : host(owner), options(hostOptions) {}

  ServiceBook& Book(Service service) { return books[static_cast<std::size_t>(service)]; }
  void Complain(std::string text) { complaints.push_back(std::move(text)); }
  /// Throws the complaints that were not thrown before, if the host shall throw at all.
  void ThrowNewComplaints();
  void CheckModule(const REALmoduleDefinition& definition);

  Host& host;
  const Options options;
  Library library;
  REALPluginMainFunction* entry = nullptr;  ///< of the plug-in, once it has been started

  const REALmoduleDefinition* module = nullptr;
  std::vector<Method> methods;
  std::vector<int> pluginVersions;

  std::array<ServiceBook, kServiceCount> books;
  std::vector<ServiceCall> log;
  std::vector<std::string> complaints;
  std::size_t thrownComplaints = 0;  ///< how many of them have been thrown
  int newPictures = 0;               ///< constructors run
  std::optional<unsigned> misalignment;
  unsigned methodCalls = 0;

  /// The one that lives, or nil.
  static HostState* current;
};

/// The resolver that the plug-in gets.
void* Resolve(const char* entryName);

}  // namespace host
