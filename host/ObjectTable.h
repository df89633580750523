// All live objects of the process, each with the address by which the plug-in knows it.
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
  void* handle = nullptr;     ///< the address that stands for the object; there is nothing at it
  int references = 0;         ///< all references
  int programReferences = 0;  ///< references that values of the program hold
  std::string text;           ///< the text of a string, the name of a class
};

/// A picture. `memory` is nil until its constructor has run.
struct PictureObject : Object {
  explicit PictureObject(std::uint32_t objectId) : Object(Kind::Picture, objectId) {}

  std::unique_ptr<PictureMemory> memory;
  int locks = 0;
  void* context = nullptr;  ///< stands for the bitmap context while locked
  bool readOnly = false;
};

class ObjectTable {
 public:
  /// A new object without references.
  PictureObject& AddPicture();
  Object& Add(Object::Kind kind, std::string text);
  /// Releases one reference. The object is destroyed with the last one.
  void Release(Object& object);

  /// The live object at this address, or nil.
  Object* Find(const void* handle) const;
  PictureObject* FindPicture(const void* handle) const;
  /// The picture whose context this is, while it is locked; or nil.
  PictureObject* FindContext(const void* context) const;
  /// Describes, for messages, the object that is or was at the address.
  std::string Describe(const void* handle) const;

  /// Starts or ends a lock. The first lock makes a new context, and the end of the last one removes
  /// it.
  void Lock(PictureObject& picture);
  void Unlock(PictureObject& picture);

  /// Sets the plug-in's access to the pixels of every picture; none to a picture that is not
  /// locked.
  void ProtectAll();
  static void Protect(const PictureObject& picture);

  /// All objects, in the order in which they were made.
  std::vector<Object*> Objects() const;
  std::vector<PictureObject*> Pictures() const;

 private:
  friend ObjectTable& Table();
  ObjectTable();
  void* TakeHandle(std::uint32_t id);
  void GiveHandle(void* handle) { freeHandles_.push_back(handle); }
  Object& Insert(std::unique_ptr<Object> object);

  std::uint32_t lastId_ = 0;
  std::uint8_t* handles_ = nullptr;      // inaccessible addresses, one for each object
  std::deque<void*> freeHandles_;        // the one that is unused for longest comes first
  std::vector<std::uint32_t> lastIdAt_;  // for each handle, the last object that it stood for
  std::unordered_map<const void*, std::unique_ptr<Object>> objects_;
  std::unordered_map<const void*, PictureObject*> contexts_;
};

/// The only table. It is never destroyed, so that pictures in static variables can still be.
ObjectTable& Table();

/// "picture #5", "string #7", "class picture".
std::string NameOf(const Object& object);

}  // namespace host
