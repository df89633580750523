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

  /// Loads the file with fresh variables. If the file is already in the process, a private copy is
  /// loaded. Throws host::Error.
  void Load(const std::string& path);
  /// Unloads the library, if there is one. A resident library stays, and the next Load may use it.
  void Unload();
  /// The address of an exported symbol. Throws host::Error if there is none of that name.
  void* Symbol(const char* name) const;

  /// Whether this very file is loaded in the process.
  static bool IsResident(const std::string& path);
  /// Loads the file and never unloads it. From then on, Load restores its variables and does not
  /// map it again. Throws host::Error.
  static void KeepResident(const std::string& path);

 private:
  void* handle_ = nullptr;
  ResidentLibrary* resident_ = nullptr;  // set if the handle belongs to a resident library
};

}  // namespace host
