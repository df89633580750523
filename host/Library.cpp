#include "Library.h"

#include <dlfcn.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <utility>

#include "ResidentLibrary.h"
#include "Value.h"

namespace host {
namespace {

std::string Absolute(const std::string& path) {
  return std::filesystem::absolute(path).string();
}

void* Open(const std::string& path) {
  void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) throw Error(std::string("cannot load the library: ") + dlerror());
  return handle;
}

// The loader recognises a library by name and file, so the copy needs a name of its own until it is
// loaded.
void* OpenCopy(const std::string& path) {
  std::string copy = (std::filesystem::temp_directory_path() / "library-XXXXXX").string();
  const int file = mkstemp(copy.data());
  if (file < 0) throw Error("cannot make a temporary file for a copy of " + path);
  close(file);
  const auto remove = [&copy] { unlink(copy.c_str()); };
  try {
    std::filesystem::copy_file(path, copy, std::filesystem::copy_options::overwrite_existing);
    void* handle = Open(copy);
    remove();
    return handle;
  } catch (const std::filesystem::filesystem_error& error) {
    remove();
    throw Error(std::string("cannot copy the library: ") + error.what());
  } catch (...) {
    remove();
    throw;
  }
}

}  // namespace

void Library::Unload() {
  if (resident_ != nullptr) {
    std::exchange(resident_, nullptr)->inUse = false;
    handle_ = nullptr;
  }
  if (handle_ != nullptr) dlclose(std::exchange(handle_, nullptr));
}

void Library::Load(const std::string& path) {
  if (handle_ != nullptr) throw Error("a library is loaded already");
  const std::string absolute = Absolute(path);
  if (ResidentLibrary* resident = ResidentLibrary::Find(absolute); resident != nullptr && !resident->inUse) {
    resident->PutVariablesBack();
    resident->inUse = true;
    resident_ = resident;
    handle_ = resident->Handle();
    return;
  }
  handle_ = IsResident(absolute) ? OpenCopy(absolute) : Open(absolute);
}

void* Library::Symbol(const char* name) const {
  void* symbol = handle_ == nullptr ? nullptr : dlsym(handle_, name);
  if (symbol == nullptr) throw Error(std::string("the library has no ") + name);
  return symbol;
}

bool Library::IsResident(const std::string& path) {
  void* handle = dlopen(Absolute(path).c_str(), RTLD_LAZY | RTLD_NOLOAD);
  if (handle == nullptr) return false;
  dlclose(handle);
  return true;
}

void Library::KeepResident(const std::string& path) {
  const std::string absolute = Absolute(path);
  if (ResidentLibrary::Find(absolute) != nullptr) return;
  if (IsResident(absolute)) throw Error("the library is loaded already: " + path);
  ResidentLibrary::Keep(absolute, ResidentLibrary(Open(absolute)));
}

}  // namespace host
