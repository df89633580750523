// Libraries that stay loaded, and whose variables can be reset.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace host {

/// A loaded library and a copy of its variables as they were right after loading.
/// PutVariablesBack() does not undo what its code did elsewhere, for example on the heap.
class ResidentLibrary {
 public:
  /// Takes over a library of which only the constructors have run.
  explicit ResidentLibrary(void* handle);

  void* Handle() const { return handle_; }
  void PutVariablesBack() const;

  /// The library that was kept under this path, or nil.
  static ResidentLibrary* Find(const std::string& path);
  static void Keep(const std::string& path, ResidentLibrary library);

  bool inUse = false;

 private:
  // A piece of the library's writable memory.
  struct Stretch {
    std::uintptr_t first;
    std::vector<std::uintptr_t> words;
  };

  void* handle_;
  std::vector<Stretch> stretches_;
};

}  // namespace host
