// The books of the process: every object that lives, under the address that the plug-in knows it
// by.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "PictureMemory.h"

namespace host {

/// A text, a class or (see PictureObject) a picture.
struct Object {
  enum class Kind { Picture, String, Class };

  Object(Kind objectKind, std::uint32_t objectId) : kind(objectKind), id(objectId) {}
  virtual ~Object() = default;
  int PluginReferences() const { return references - programReferences; }

  const Kind kind;
  const std::uint32_t id;
  void* handle = nullptr;     ///< the address that stands for the object; nothing lies there
  int references = 0;         ///< of everybody
  int programReferences = 0;  ///< of which values of the program account for
  std::string text;           ///< of a string; name of a class
};

/// A picture, of which memory is nil until its constructor has run.
struct PictureObject : Object {
  explicit PictureObject(std::uint32_t objectId) : Object(Kind::Picture, objectId) {}

  std::unique_ptr<PictureMemory> memory;
  int locks = 0;
  void* context = nullptr;  ///< stands for the bitmap context while locked
  bool readOnly = false;
};

class ObjectTable {
 public:
  /// The one table. It is never destroyed, so pictures in static variables can be.
  static ObjectTable& Instance();

  /// A new object without references.
  PictureObject& AddPicture();
  Object& Add(Object::Kind kind, std::string text);
  /// Gives up one reference; the object goes with the last.
  void Release(Object& object);

  /// The live object at this address, or nil.
  Object* Find(const void* handle) const;
  PictureObject* FindPicture(const void* handle) const;
  /// The picture whose context this is, while it is locked; or nil.
  PictureObject* FindContext(const void* context) const;
  /// Names whatever is or was at the address, for messages.
  std::string Describe(const void* handle) const;

  /// Starts or ends a lock. The first one brings a fresh context, which the last one takes away.
  void Lock(PictureObject& picture);
  void Unlock(PictureObject& picture);

  /// Sets what the plug-in can do with each picture's pixels from now on: while it is not locked,
  /// nothing.
  void ProtectAll();
  static void Protect(const PictureObject& picture);

  /// In the order in which they were made.
  std::vector<Object*> Objects() const;
  std::vector<PictureObject*> Pictures() const;

 private:
  ObjectTable();
  void* TakeHandle(std::uint32_t id);
  void GiveHandle(void* handle) { freeHandles_.push_back(handle); }
  Object& Insert(std::unique_ptr<Object> object);

  std::uint32_t lastId_ = 0;
  std::uint8_t* handles_ = nullptr;      // inaccessible addresses, one for each object
  std::deque<void*> freeHandles_;        // the longest unused first
  std::vector<std::uint32_t> lastIdAt_;  // by handle: the last object that it stood for
  std::unordered_map<const void*, std::unique_ptr<Object>> objects_;
  std::unordered_map<const void*, PictureObject*> contexts_;
};

/// "picture #5", "string #7", "class picture".
std::string NameOf(const Object& object);

}  // namespace host
