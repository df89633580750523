#include "Plugin.h"

#include <cstring>
#include <utility>

#include "HostInterface.h"
#include "host/BitmapContext.h"
#include "host/HiddenSymbol.h"
#include "host/Value.h"
#include "kernels/RunKernels.h"

// In 32 bits the plug-in may call with any stack alignment; the build realigns it in every function
// here.
namespace bench {
namespace {

PluginPool* gPool = nullptr;
const REALmoduleDefinition* gRegistered = nullptr;

PoolPicture& Picture(void* handle) {
  return *static_cast<PoolPicture*>(handle);
}

// ---- The services
// -------------------------------------------------------------------------------------------------

void RegisterVersion(int) {}
void Yield() {}
void UnlockDescription(REALpictureStruct*) {}

double GetVersion() {
  return 2011.04;
}

void RegisterModule(REALmoduleDefinition* module) {
  gRegistered = module;
}

REALclassRefStruct* GetClassRef(const char*) {
  static int pictureClass;
  return reinterpret_cast<REALclassRefStruct*>(&pictureClass);
}

REALobjectStruct* NewInstance(REALclassRefStruct*) {
  return reinterpret_cast<REALobjectStruct*>(gPool->Take());
}

void Construct(REALobjectStruct* object, int width, int height) {
  gPool->SetSize(Picture(object), gPool->storage, width, height);
}

void* LoadObjectMethod(REALobjectStruct*, const char*) {
  return reinterpret_cast<void*>(Construct);
}

void UnlockObject(REALobjectStruct* object) {
  gPool->GiveBack(Picture(object));
}

void LockDescription(REALpictureStruct* handle, REALpictureDescription* description) {
  PoolPicture& picture = Picture(handle);
  const bool context = picture.storage == host::Storage::BitmapContext;
  description->pictureType = context ? kPictureTypeBitmapContext : kPictureTypeBuffer;
  description->pictureData = context ? static_cast<void*>(&picture) : picture.record;
}

host::BitmapContext Describe(CGContextRef context, const char*) {
  const PoolPicture& picture = Picture(context);
  const auto width = static_cast<std::size_t>(picture.width);
  return {width, static_cast<std::size_t>(picture.height), 32, 4 * width, picture.pixels};
}

void* Resolve(const char* entryName) {
  const std::pair<const char*, void*> services[] = {
      {"RegisterPluginVersion", reinterpret_cast<void*>(RegisterVersion)},
      {"REALGetRBVersion", reinterpret_cast<void*>(GetVersion)},
      {"PluginRegisterModule", reinterpret_cast<void*>(RegisterModule)},
      {"pluginObjectType", reinterpret_cast<void*>(GetClassRef)},
      {"CreateInstance", reinterpret_cast<void*>(NewInstance)},
      {"REALLoadObjectMethod", reinterpret_cast<void*>(LoadObjectMethod)},
      {"REALUnlockObject", reinterpret_cast<void*>(UnlockObject)},
      {"lockPictureDescription", reinterpret_cast<void*>(LockDescription)},
      {"unlockPictureDescription", reinterpret_cast<void*>(UnlockDescription)},
      {"REALYieldToRB", reinterpret_cast<void*>(Yield)},
  };
  for (const auto& [name, service] : services) {
    if (std::strcmp(name, entryName) == 0) return service;
  }
  return nullptr;
}

}  // namespace

// ---- The pool
// -------------------------------------------------------------------------------------------------

PluginPool::PluginPool(host::Storage form) : storage(form) {
  if (gPool != nullptr) throw host::Error("one pool at a time");
  gPool = this;
}

PluginPool::~PluginPool() {
  gPool = nullptr;
}

PoolPicture* PluginPool::Make(int width, int height) {
  PoolPicture* const picture = Take();
  SetSize(*picture, storage, width, height);
  return picture;
}

// ---- Methods
// -------------------------------------------------------------------------------------------------

MethodCall::MethodCall(const host::Method& method, PoolPicture* picture, const std::vector<host::Value>& arguments,
                       std::int32_t yield)
    : method_(method) {
  std::size_t next = 0;
  std::size_t places = 0;
  for (const host::Parameter& parameter : method.parameters) {
    if (parameter.type == host::Type::Picture) {
      native_.AddPointer(picture);
      continue;
    }
    if (host::SameName(parameter.name, "yield")) {
      native_.AddInteger(yield);
      continue;
    }
    if (next == arguments.size()) throw host::Error(method.name + " needs more arguments");
    const host::Value& argument = arguments[next++];
    if (parameter.byRef) {
      native_.AddPointer(&results_.at(places++));
    } else if (parameter.type == host::Type::Double) {
      native_.AddDouble(argument.AsDouble());
    } else if (parameter.type == host::Type::Integer) {
      native_.AddInteger(argument.AsInteger());
    } else if (parameter.type == host::Type::Boolean) {
      native_.AddWord(argument.AsBooleanByte());
    } else {
      native_.AddWord(argument.AsColour().value);
    }
  }
  if (next != arguments.size()) throw host::Error(method.name + " takes fewer arguments");
}

PoolPicture* MethodCall::operator()() const {
  const auto word = static_cast<std::uintptr_t>(native_.Call(method_.entry, 0));
  return ReturnsPicture() ? reinterpret_cast<PoolPicture*>(word) : nullptr;
}

Plugin::Plugin(const std::string& file) {
  library_.Load(file);
  host::SetContextKeeper(Describe);
  gRegistered = nullptr;
  reinterpret_cast<REALPluginMainFunction*>(library_.Symbol("REALPluginMain"))(Resolve);
  if (gRegistered == nullptr) throw host::Error(file + " registers no methods");
  for (std::uint32_t i = 0; i < gRegistered->methodCount; ++i) {
    const REALmethodDefinition& definition = gRegistered->methods[i];
    methods_.push_back(host::ParseDeclaration(definition.declaration));
    methods_.back().entry = definition.entry;
  }
  const void* const kernels = host::HiddenSymbol(file, "gRunKernels");
  if (kernels != nullptr) level_ = static_cast<const RunKernels*>(kernels)->level;
}

const host::Method& Plugin::Method(const std::string& name) const {
  for (const host::Method& method : methods_) {
    if (host::SameName(method.name, name) || host::SameName(method.name, "LMX_" + name)) return method;
  }
  throw host::Error("the plug-in has no method " + name);
}

std::int32_t Plugin::LastError() const {
  return static_cast<std::int32_t>(host::NativeCall().Call(Method("GetLastError").entry, 0));
}

}  // namespace bench
