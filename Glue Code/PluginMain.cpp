// The library's one export, and the layer through which every service of the host is reached.
#include <cstdio>
#include <cstdlib>

#include "HostCalls.h"
#include "LMX_Main.h"

REALResolver gResolver = nullptr;

namespace {

// Whether the host has the service; `slot` keeps its address once it is found.
template <class Service>
bool Find(Service*& slot, const char* entryName) {
  if (!slot) slot = reinterpret_cast<Service*>(gResolver(entryName));
  return slot != nullptr;
}

// Rationale: the text is fixed to the letter, line number 1922 included. People who read crash
// reports know the case by it, so it does not follow the sources.
[[noreturn]] void StopLoadedTwice() {
  std::fprintf(stderr, "Assertion failed: (%s), function %s, file %s, line %d.\n",
               "!gResolver && \"Plugin loaded twice?\"", "REALPluginMain", "Glue Code/PluginMain", 1922);
  std::abort();
}

}  // namespace

REALstringStruct* REALBuildString(const char* text, int length) {
  static HostBuildString* service;
  return Find(service, "REALBuildString") ? service(text, length) : nullptr;
}

void REALUnlockObject(REALobjectStruct* object) {
  static HostUnlockObject* service;
  if (Find(service, "REALUnlockObject")) service(object);
}

void REALLockPictureDescription(REALpictureStruct* picture, REALpictureDescription* description) {
  static HostLockPictureDescription* service;
  if (Find(service, "lockPictureDescription")) service(picture, description);
}

void REALUnlockPictureDescription(REALpictureStruct* picture) {
  static HostUnlockPictureDescription* service;
  if (Find(service, "unlockPictureDescription")) service(picture);
}

double REALGetRBVersion() {
  static HostGetRBVersion* service;
  return Find(service, "REALGetRBVersion") ? service() : 0.0;
}

void REALYieldToRB() {
  static HostYield* service;
  if (Find(service, "REALYieldToRB")) service();
}

REALclassRefStruct* REALGetClassRef(const char* name) {
  static HostGetClassRef* service;
  return Find(service, "pluginObjectType") ? service(name) : nullptr;
}

REALobjectStruct* REALnewInstance(REALclassRefStruct* classRef) {
  static HostNewInstance* service;
  if (!classRef) return nullptr;
  return Find(service, "CreateInstance") ? service(classRef) : nullptr;
}

void REALRegisterModule(REALmoduleDefinition* module) {
  static HostRegisterModule* service;
  if (Find(service, "PluginRegisterModule")) service(module);
}

void* REALLoadObjectMethod(REALobjectStruct* object, const char* declaration) {
  static HostLoadObjectMethod* service;
  return Find(service, "REALLoadObjectMethod") ? service(object, declaration) : nullptr;
}

void REALMessageBox(REALstringStruct* text) {
  static HostMessageBox* service;
  if (Find(service, "RuntimeMsgBox")) service(text);
}

/// Called once by the host. A second call means that the host loaded the library twice into one
/// process; it ends the process.
extern "C" __attribute__((visibility("default"))) LMX_HOST_CALLABLE void REALPluginMain(REALResolver resolver) {
  if (gResolver) StopLoadedTwice();
  gResolver = resolver;
  const auto registerVersion = reinterpret_cast<HostRegisterPluginVersion*>(gResolver("RegisterPluginVersion"));
  registerVersion(kPluginInterfaceVersion);
  PluginEntry();
}
