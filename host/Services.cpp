// The host's services, as the plug-in calls them, and the resolver that hands them out.

#include <cstring>

#include "HostState.h"

namespace host {
namespace {

constexpr const char* kPictureClass = "picture";
constexpr const char* kConstructor = "Constructor(width as integer, height as integer)";
constexpr const char* kConstructorName = "Constructor";

// Each use spells the signature out, so that the compiler compares it with the contract's.
template <class Function>
void* AddressOf(Function* function) {
  return reinterpret_cast<void*>(function);
}

std::uint32_t IdAt(const void* handle) {
  const Object* object = Table().Find(handle);
  return object == nullptr ? 0 : object->id;
}

void Log(HostState& state, const char* name, std::uint32_t object, ServiceOutcome outcome) {
  if (state.options.keepLog) state.log.push_back({name, object, outcome});
}

// Counts one call. Returns whether the service shall do its work; throws if it is told to throw.
bool Begin(HostState& state, Service service, std::uint32_t object) {
  ServiceBook& book = state.Book(service);
  ++book.calls;
  if (book.throwing.count(book.calls) != 0) {
    Log(state, EntryName(service), object, ServiceOutcome::Threw);
    throw Thrown(service);
  }
  const bool fails = book.failing.count(book.calls) != 0;
  Log(state, EntryName(service), object, fails ? ServiceOutcome::Failed : ServiceOutcome::Done);
  return !fails;
}

// Complaints begin with the name of the service.
void Complain(Service service, const std::string& text) {
  HostState::current->Complain(std::string(EntryName(service)) + ": " + text);
}

void RegisterPluginVersion(int version) {
  HostState& state = *HostState::current;
  if (!Begin(state, Service::RegisterPluginVersion, 0)) return;
  state.pluginVersions.push_back(version);
  if (version != static_cast<int>(kPluginInterfaceVersion)) {
    Complain(Service::RegisterPluginVersion, "interface version " + std::to_string(version) + " is not known");
  }
}

double GetRBVersion() {
  HostState& state = *HostState::current;
  return Begin(state, Service::GetRBVersion, 0) ? state.options.version : 0.0;
}

REALstringStruct* BuildString(const char* text, int length) {
  if (!Begin(*HostState::current, Service::BuildString, 0)) return nullptr;
  if (length < 0 || (text == nullptr && length != 0)) {
    Complain(Service::BuildString, text == nullptr ? "text is nil" : "length " + std::to_string(length));
    return nullptr;
  }
  Object& object = Table().Add(Object::Kind::String, std::string(text, static_cast<std::size_t>(length)));
  object.references = 1;
  return static_cast<REALstringStruct*>(object.handle);
}

void MessageBox(REALstringStruct* text) {
  HostState& state = *HostState::current;
  if (!Begin(state, Service::MessageBox, IdAt(text))) return;
  const Object* object = Table().Find(text);
  if (object == nullptr || object->kind != Object::Kind::String) {
    Complain(Service::MessageBox, "called with " + Table().Describe(text) + ", which is no string");
    return;
  }
  state.host.messageBoxes.push_back(object->text);
}

void RegisterModule(REALmoduleDefinition* module) {
  HostState& state = *HostState::current;
  if (!Begin(state, Service::RegisterModule, 0)) return;
  if (module == nullptr) return Complain(Service::RegisterModule, "the module is nil");
  if (state.module != nullptr) return Complain(Service::RegisterModule, "a second module");
  if (state.pluginVersions.empty()) Complain(Service::RegisterModule, "called before RegisterPluginVersion");
  state.module = module;
  state.CheckModule(*module);
}

REALclassRefStruct* GetClassRef(const char* className) {
  if (!Begin(*HostState::current, Service::GetClassRef, 0)) return nullptr;
  if (className == nullptr || std::strcmp(className, kPictureClass) != 0) {
    Complain(Service::GetClassRef, std::string("there is no class ") + (className == nullptr ? "nil" : className));
    return nullptr;
  }
  static Object& pictureClass = Table().Add(Object::Kind::Class, kPictureClass);
  return static_cast<REALclassRefStruct*>(pictureClass.handle);
}

REALobjectStruct* NewInstance(REALclassRefStruct* classRef) {
  if (!Begin(*HostState::current, Service::NewInstance, 0)) return nullptr;
  const Object* objectClass = Table().Find(classRef);
  if (objectClass == nullptr || objectClass->kind != Object::Kind::Class) {
    Complain(Service::NewInstance, "called with " + Table().Describe(classRef) + ", which is no class");
    return nullptr;
  }
  PictureObject& picture = Table().AddPicture();
  picture.references = 1;
  return static_cast<REALobjectStruct*>(picture.handle);
}

// If the shape cannot be made, the picture has no data, as in a host that is out of memory.
std::unique_ptr<PictureMemory> MakeMemory(const PictureShape& shape) {
  try {
    return std::make_unique<PictureMemory>(shape);
  } catch (const Error&) {
    PictureShape empty;
    empty.storage = shape.storage;
    empty.defects.nilData = true;
    return std::make_unique<PictureMemory>(empty);
  }
}

void PictureConstructor(REALobjectStruct* object, int width, int height) {
  HostState& state = *HostState::current;
  Log(state, kConstructorName, IdAt(object), ServiceOutcome::Done);
  const auto complain = [&](const std::string& text) { state.Complain(std::string(kConstructorName) + ": " + text); };
  PictureObject* picture = Table().FindPicture(object);
  if (picture == nullptr) return complain("called on " + Table().Describe(object) + ", which is no picture");
  if (picture->memory != nullptr) return complain(NameOf(*picture) + " is constructed already");
  if (width < 1 || height < 1) {
    complain("called with " + std::to_string(width) + " x " + std::to_string(height) + " pixels");
  }
  const NewPictures& settings = state.host.newPictures;
  PictureShape shape{width, height, settings.storage, settings.layout, {}};
  ++state.newPictures;
  if (settings.change) settings.change(state.newPictures, shape);
  picture->memory = MakeMemory(shape);
  ObjectTable::Protect(*picture);
}

void* LoadObjectMethod(REALobjectStruct* object, const char* declaration) {
  if (!Begin(*HostState::current, Service::LoadObjectMethod, IdAt(object))) return nullptr;
  if (Table().FindPicture(object) == nullptr) {
    Complain(Service::LoadObjectMethod, "called on " + Table().Describe(object) + ", which is no picture");
    return nullptr;
  }
  if (declaration == nullptr || std::strcmp(declaration, kConstructor) != 0) {
    const std::string asked = declaration == nullptr ? "nil" : "\"" + std::string(declaration) + "\"";
    Complain(Service::LoadObjectMethod, "the class picture has no method " + asked);
    return nullptr;
  }
  return AddressOf<HostPictureConstructor>(PictureConstructor);
}

void GiveUp(REALobjectStruct* handle) {
  Object* object = Table().Find(handle);
  if (object == nullptr || object->kind == Object::Kind::Class) {
    return Complain(Service::UnlockObject, "called with " + Table().Describe(handle) + ", which has no references");
  }
  if (object->PluginReferences() < 1) {
    return Complain(Service::UnlockObject, "the plug-in owns no reference to " + NameOf(*object));
  }
  const PictureObject* picture = Table().FindPicture(handle);
  if (object->references == 1 && picture != nullptr && picture->locks > 0) {
    Complain(Service::UnlockObject, NameOf(*object) + " goes while it is locked");
  }
  Table().Release(*object);
}

void UnlockObject(REALobjectStruct* handle) {
  const std::uint32_t id = IdAt(handle);
  GiveUp(handle);
  Begin(*HostState::current, Service::UnlockObject, id);
}

// Fills in the whole description, unless the picture refuses the lock.
void Describe(const PictureObject& picture, REALpictureDescription& description) {
  const PictureShape& shape = picture.memory->Shape();
  if (shape.defects.refusesLock) return;
  const bool context = shape.storage == Storage::BitmapContext;
  std::memset(&description, 0xE9, sizeof description);
  description.pictureType =
      shape.defects.pictureType.value_or(context ? kPictureTypeBitmapContext : kPictureTypeBuffer);
  description.pictureData = context ? picture.context : picture.memory->Record();
  if (shape.defects.nilData) description.pictureData = nullptr;
}

void SetUnusable(REALpictureDescription& description) {
  description.pictureType = 0;
  description.pictureData = nullptr;
}

void LockPictureDescription(REALpictureStruct* handle, REALpictureDescription* description) {
  const bool usable = Begin(*HostState::current, Service::LockPictureDescription, IdAt(handle));
  PictureObject* picture = Table().FindPicture(handle);
  if (description == nullptr) return Complain(Service::LockPictureDescription, "the description is nil");
  if (picture == nullptr || picture->memory == nullptr) {
    SetUnusable(*description);
    const char* what = picture == nullptr ? ", which is no picture" : ", whose constructor has not run";
    return Complain(Service::LockPictureDescription, "called with " + Table().Describe(handle) + what);
  }
  Table().Lock(*picture);
  ObjectTable::Protect(*picture);
  if (usable) {
    Describe(*picture, *description);
  } else {
    SetUnusable(*description);
  }
}

void EndLock(REALpictureStruct* handle) {
  HostState& state = *HostState::current;
  PictureObject* picture = Table().FindPicture(handle);
  if (picture == nullptr) {
    return Complain(Service::UnlockPictureDescription,
                    "called with " + Table().Describe(handle) + ", which is no picture");
  }
  if (picture->locks == 0) {
    // A plug-in that could not lock is allowed to end the lock all the same.
    if (state.Book(Service::LockPictureDescription).wasWithheld) return;
    return Complain(Service::UnlockPictureDescription, NameOf(*picture) + " is not locked");
  }
  Table().Unlock(*picture);
  ObjectTable::Protect(*picture);
}

void UnlockPictureDescription(REALpictureStruct* handle) {
  EndLock(handle);
  Begin(*HostState::current, Service::UnlockPictureDescription, IdAt(handle));
}

void YieldToRB() {
  HostState& state = *HostState::current;
  if (!Begin(state, Service::YieldToRB, 0) || !state.host.onYield) return;
  state.host.onYield();
  Table().ProtectAll();  // the program may have opened pictures to look at them
}

struct Entry {
  Service service;
  const char* name;
  void* address;
};

const std::array<Entry, kServiceCount>& Entries() {
  static const std::array<Entry, kServiceCount> entries = {{
      {Service::RegisterPluginVersion, "RegisterPluginVersion",
       AddressOf<HostRegisterPluginVersion>(RegisterPluginVersion)},
      {Service::GetRBVersion, "REALGetRBVersion", AddressOf<HostGetRBVersion>(GetRBVersion)},
      {Service::BuildString, "REALBuildString", AddressOf<HostBuildString>(BuildString)},
      {Service::MessageBox, "RuntimeMsgBox", AddressOf<HostMessageBox>(MessageBox)},
      {Service::RegisterModule, "PluginRegisterModule", AddressOf<HostRegisterModule>(RegisterModule)},
      {Service::GetClassRef, "pluginObjectType", AddressOf<HostGetClassRef>(GetClassRef)},
      {Service::NewInstance, "CreateInstance", AddressOf<HostNewInstance>(NewInstance)},
      {Service::LoadObjectMethod, "REALLoadObjectMethod", AddressOf<HostLoadObjectMethod>(LoadObjectMethod)},
      {Service::UnlockObject, "REALUnlockObject", AddressOf<HostUnlockObject>(UnlockObject)},
      {Service::LockPictureDescription, "lockPictureDescription",
       AddressOf<HostLockPictureDescription>(LockPictureDescription)},
      {Service::UnlockPictureDescription, "unlockPictureDescription",
       AddressOf<HostUnlockPictureDescription>(UnlockPictureDescription)},
      {Service::YieldToRB, "REALYieldToRB", AddressOf<HostYield>(YieldToRB)},
  }};
  return entries;
}

}  // namespace

HostState* HostState::current = nullptr;

const char* EntryName(Service service) {
  return Entries()[static_cast<std::size_t>(service)].name;
}

void* Resolve(const char* entryName) {
  HostState& state = *HostState::current;
  for (const Entry& entry : Entries()) {
    if (entryName == nullptr || std::strcmp(entry.name, entryName) != 0) continue;
    ServiceBook& book = state.Book(entry.service);
    ++book.lookups;
    if (book.withheldFrom == 0 || book.lookups < book.withheldFrom) return entry.address;
    book.wasWithheld = true;
    return nullptr;
  }
  state.Complain("the resolver was asked for " +
                 (entryName == nullptr ? "nil" : "\"" + std::string(entryName) + "\", which is no service"));
  return nullptr;
}

}  // namespace host
