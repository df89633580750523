#include "ObjectTable.h"

#include <algorithm>

#include "Value.h"

namespace host {
namespace {

// An address is used again only after all others were, so that stale ones are recognised.
constexpr std::size_t kHandles = 1 << 16;
constexpr std::size_t kHandlePitch = 16;

}  // namespace

ObjectTable& Table() {
  static ObjectTable& table = *new ObjectTable;
  return table;
}

ObjectTable::ObjectTable() : lastIdAt_(kHandles) {
  handles_ = static_cast<std::uint8_t*>(ReserveInaccessible(kHandles * kHandlePitch, GuardedMemory::Where::Anywhere));
  if (handles_ == nullptr) throw Error("no address space for handles");
  for (std::size_t i = 0; i < kHandles; ++i) freeHandles_.push_back(handles_ + i * kHandlePitch);
}

void* ObjectTable::TakeHandle(std::uint32_t id) {
  if (freeHandles_.empty()) throw Error("too many objects live");
  void* handle = freeHandles_.front();
  freeHandles_.pop_front();
  lastIdAt_[static_cast<std::size_t>(static_cast<std::uint8_t*>(handle) - handles_) / kHandlePitch] = id;
  return handle;
}

Object& ObjectTable::Insert(std::unique_ptr<Object> object) {
  object->handle = TakeHandle(object->id);
  Object& inserted = *object;
  objects_.emplace(inserted.handle, std::move(object));
  return inserted;
}

PictureObject& ObjectTable::AddPicture() {
  return static_cast<PictureObject&>(Insert(std::make_unique<PictureObject>(++lastId_)));
}

Object& ObjectTable::Add(Object::Kind kind, std::string text) {
  Object& object = Insert(std::make_unique<Object>(kind, ++lastId_));
  object.text = std::move(text);
  return object;
}

void ObjectTable::Release(Object& object) {
  if (--object.references > 0) return;
  if (object.kind == Object::Kind::Picture) {
    auto& picture = static_cast<PictureObject&>(object);
    while (picture.locks > 0) Unlock(picture);
  }
  void* handle = object.handle;
  objects_.erase(handle);
  GiveHandle(handle);
}

Object* ObjectTable::Find(const void* handle) const {
  const auto found = objects_.find(handle);
  return found == objects_.end() ? nullptr : found->second.get();
}

PictureObject* ObjectTable::FindPicture(const void* handle) const {
  Object* object = Find(handle);
  return object != nullptr && object->kind == Object::Kind::Picture ? static_cast<PictureObject*>(object) : nullptr;
}

PictureObject* ObjectTable::FindContext(const void* context) const {
  const auto found = contexts_.find(context);
  return found == contexts_.end() ? nullptr : found->second;
}

std::string ObjectTable::Describe(const void* handle) const {
  if (handle == nullptr) return "nil";
  if (const Object* object = Find(handle)) return NameOf(*object);
  if (const PictureObject* picture = FindContext(handle)) return "the context of " + NameOf(*picture);
  const auto offset = reinterpret_cast<std::uintptr_t>(handle) - reinterpret_cast<std::uintptr_t>(handles_);
  if (offset < kHandles * kHandlePitch && offset % kHandlePitch == 0) {
    if (const std::uint32_t id = lastIdAt_[offset / kHandlePitch]) {
      return "object #" + std::to_string(id) + " (or its context), which is gone";
    }
  }
  return "an address that the host never gave out";
}

void ObjectTable::Lock(PictureObject& picture) {
  if (picture.locks++ > 0 || picture.memory->Shape().storage != Storage::BitmapContext) return;
  picture.context = TakeHandle(picture.id);
  contexts_.emplace(picture.context, &picture);
}

void ObjectTable::Unlock(PictureObject& picture) {
  if (--picture.locks > 0 || picture.context == nullptr) return;
  contexts_.erase(picture.context);
  GiveHandle(picture.context);
  picture.context = nullptr;
}

void ObjectTable::Protect(const PictureObject& picture) {
  if (picture.memory == nullptr) return;
  using Access = GuardedMemory::Access;
  const Access usable = picture.readOnly ? Access::Read : Access::Write;
  picture.memory->Protect(picture.locks > 0 ? usable : Access::None);
}

void ObjectTable::ProtectAll() {
  for (const auto& entry : objects_) {
    if (entry.second->kind != Object::Kind::Picture) continue;
    Protect(static_cast<const PictureObject&>(*entry.second));
  }
}

std::vector<Object*> ObjectTable::Objects() const {
  std::vector<Object*> objects;
  for (const auto& entry : objects_) objects.push_back(entry.second.get());
  std::sort(objects.begin(), objects.end(), [](const Object* a, const Object* b) { return a->id < b->id; });
  return objects;
}

std::vector<PictureObject*> ObjectTable::Pictures() const {
  std::vector<PictureObject*> pictures;
  for (Object* object : Objects()) {
    if (object->kind == Object::Kind::Picture) pictures.push_back(static_cast<PictureObject*>(object));
  }
  return pictures;
}

std::string NameOf(const Object& object) {
  const std::string id = " #" + std::to_string(object.id);
  switch (object.kind) {
    case Object::Kind::Picture:
      return "picture" + id;
    case Object::Kind::String:
      return "string" + id;
    case Object::Kind::Class:
      return "class " + object.text;
  }
  return "object" + id;
}

}  // namespace host
