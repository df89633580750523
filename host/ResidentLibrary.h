// Libraries that stay in the process for good and can be had fresh all the same.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace host {

/// One library, and what its variables held when it had just been loaded. What its constructors and
/// methods did elsewhere, on the heap for example, is not undone.
class ResidentLibrary {
 public:
  /// Takes over the library, of which nothing but the constructors has run.
  explicit ResidentLibrary(void* handle);

  void* Handle() const { return handle_; }
  void PutVariablesBack() const;

  /// The library that was kept under this path, or nil.
  static ResidentLibrary* Find(const std::string& path);
  static void Keep(const std::string& path, ResidentLibrary library);

  bool inUse = false;

 private:
  // Writable memory of the library.
  struct Stretch {
    std::uintptr_t first;
    std::vector<std::uintptr_t> words;
  };

  void* handle_;
  std::vector<Stretch> stretches_;
};

}  // namespace host
