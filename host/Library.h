// A shared library, loaded and unloaded by the host.
#pragma once

#include <string>

namespace host {

class ResidentLibrary;

class Library {
 public:
  Library() = default;
  ~Library() { Unload(); }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  /// Loads the file with fresh variables: as itself, or as a private copy if it is in the process
  /// already. Throws host::Error.
  void Load(const std::string& path);
  /// Unloads it, if it is loaded. One that is kept resident only becomes free for the next Load.
  void Unload();
  /// The address of the library's symbol; throws host::Error when it has none of that name.
  void* Symbol(const char* name) const;

  /// Whether this very file is in the process.
  static bool IsResident(const std::string& path);
  /// Loads the file for good: from now on, Load puts its variables back instead of mapping it anew.
  /// Throws host::Error.
  static void KeepResident(const std::string& path);

 private:
  void* handle_ = nullptr;
  ResidentLibrary* resident_ = nullptr;  // whose handle it is, if it is kept resident
};

}  // namespace host
