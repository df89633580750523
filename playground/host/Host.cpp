// The host in the browser: the services that the plug-in asks for, pictures in both storage forms,
// and what the page's script needs of them. The script calls the methods itself, through the
// addresses in the registered table, which are indices of WebAssembly's function table.
//
// It counts references and locks and reports every breach, as the stand-in host in host/ does, but
// it has no guards around pixels, which cost time. Everything happens on one thread.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "HostInterface.h"
#include "Pixels.h"
#include "kernels/RunKernels.h"

#define PAGE_EXPORT(name) extern "C" __attribute__((export_name(#name), used))
#define PAGE_IMPORT(name) extern "C" __attribute__((import_module("page"), import_name(#name)))

extern "C" REALPluginMainFunction REALPluginMain;

/// The method under way lets the host handle events.
PAGE_IMPORT(yielded) void PageYielded();
/// Somebody broke the contract; does not come back.
PAGE_IMPORT(complain) void PageComplain(const char* text, std::size_t length);

namespace page {
namespace {

struct Object {
  enum class Kind { picture, text } kind;
  int references = 1;
};

struct Picture : Object {
  Picture() : Object{Kind::picture} {}
  ~Picture() {
    std::free(pixels);
    std::free(rows);
    std::free(record);
  }
  Picture(const Picture&) = delete;
  Picture& operator=(const Picture&) = delete;

  Form form = Form::context;
  int width = 0;
  int height = 0;
  std::uint32_t* pixels = nullptr;  // nil: no memory for them, and the picture cannot be locked
  int locks = 0;
  REALpictureBuffer* record = nullptr;  // these two of a buffer
  std::uint32_t* rows = nullptr;
};

struct Text : Object {
  explicit Text(std::string text) : Object{Kind::text}, content(std::move(text)) {}
  std::string content;
};

REALmoduleDefinition* gModule;
Form gNewForm = Form::context;
std::size_t gMostPixels = std::size_t{100} << 20;
int gYields;
int gObjects;
char gPictureClass;

void Complain(const char* service, const char* what) {
  const std::string text = std::string(service) + ": " + what;
  PageComplain(text.data(), text.size());
}

std::uint32_t Address(const void* pointer) {
  return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(pointer));
}

void LayOutBuffer(Picture& picture) {
  picture.record = static_cast<REALpictureBuffer*>(std::calloc(1, sizeof(REALpictureBuffer)));
  picture.rows = static_cast<std::uint32_t*>(std::malloc(4 * static_cast<std::size_t>(picture.height)));
  if (picture.record == nullptr || picture.rows == nullptr) return;
  for (int y = 0; y < picture.height; ++y) picture.rows[y] = Address(picture.pixels + y * picture.width);
  picture.record->width = picture.width;
  picture.record->height = picture.height;
  picture.record->rowTable = Address(picture.rows);
}

// A size that the page does not take, or for which there is no memory, leaves a picture that cannot
// be locked.
void Construct(Picture& picture, Form form, int width, int height) {
  picture.form = form;
  picture.width = width;
  picture.height = height;
  if (width < 1 || height < 1) return;
  const std::uint64_t count = static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
  if (count > gMostPixels) return;
  picture.pixels = static_cast<std::uint32_t*>(std::calloc(static_cast<std::size_t>(count), 4));
  if (picture.pixels != nullptr && form == Form::buffer) LayOutBuffer(picture);
}

Picture* AsPicture(void* handle, const char* service) {
  auto* object = static_cast<Object*>(handle);
  if (object != nullptr && object->kind == Object::Kind::picture && object->references > 0) {
    return static_cast<Picture*>(object);
  }
  Complain(service, "this is no picture");
  return nullptr;
}

void Release(Object* object) {
  if (object == nullptr || object->references < 1) return Complain("REALUnlockObject", "no reference is left");
  if (--object->references > 0) return;
  --gObjects;
  if (object->kind == Object::Kind::text) {
    delete static_cast<Text*>(object);
    return;
  }
  auto* picture = static_cast<Picture*>(object);
  if (picture->locks != 0) Complain("REALUnlockObject", "the picture is locked");
  delete picture;
}

// ---- The services -------------------------------------------------------------------------------

void RegisterPluginVersion(int version) {
  if (version != static_cast<int>(kPluginInterfaceVersion)) Complain("RegisterPluginVersion", "unknown version");
}

double GetRBVersion() {
  return 2011.04;
}

REALstringStruct* BuildString(const char* text, int length) {
  if (length < 0) Complain("REALBuildString", "a length below 0");
  ++gObjects;
  return reinterpret_cast<REALstringStruct*>(new Text(std::string(text, static_cast<std::size_t>(length))));
}

void MessageBox(REALstringStruct* text) {
  Complain("RuntimeMsgBox", reinterpret_cast<Text*>(text)->content.c_str());
}

void RegisterModule(REALmoduleDefinition* module) {
  if (gModule != nullptr) Complain("PluginRegisterModule", "a second module");
  gModule = module;
}

REALclassRefStruct* GetClassRef(const char* name) {
  return std::strcmp(name, "picture") == 0 ? reinterpret_cast<REALclassRefStruct*>(&gPictureClass) : nullptr;
}

REALobjectStruct* NewInstance(REALclassRefStruct* classRef) {
  if (reinterpret_cast<char*>(classRef) != &gPictureClass) Complain("CreateInstance", "this is no class");
  ++gObjects;
  return reinterpret_cast<REALobjectStruct*>(new Picture);
}

void Constructor(REALobjectStruct* object, int width, int height) {
  Picture* picture = AsPicture(object, "Constructor");
  if (picture->pixels != nullptr) Complain("Constructor", "called twice");
  Construct(*picture, gNewForm, width, height);
}

void* LoadObjectMethod(REALobjectStruct* object, const char* declaration) {
  AsPicture(object, "REALLoadObjectMethod");
  const bool known = std::strcmp(declaration, "Constructor(width as integer, height as integer)") == 0;
  return known ? reinterpret_cast<void*>(Constructor) : nullptr;
}

void UnlockObject(REALobjectStruct* object) {
  Release(reinterpret_cast<Object*>(object));
}

void LockPictureDescription(REALpictureStruct* handle, REALpictureDescription* description) {
  Picture* picture = AsPicture(handle, "lockPictureDescription");
  ++picture->locks;
  description->pictureType = 0;
  description->pictureData = nullptr;
  if (picture->pixels == nullptr) return;
  if (picture->form == Form::context) {
    description->pictureType = kPictureTypeBitmapContext;
    description->pictureData = picture;
  } else if (picture->rows != nullptr && picture->record != nullptr) {
    description->pictureType = kPictureTypeBuffer;
    description->pictureData = picture->record;
  }
}

void UnlockPictureDescription(REALpictureStruct* handle) {
  Picture* picture = AsPicture(handle, "unlockPictureDescription");
  if (--picture->locks < 0) Complain("unlockPictureDescription", "the picture is not locked");
}

void Yield() {
  ++gYields;
  PageYielded();
}

void* Resolve(const char* name) {
  static const struct {
    const char* name;
    void* address;
  } services[] = {
      {"RegisterPluginVersion", reinterpret_cast<void*>(RegisterPluginVersion)},
      {"REALGetRBVersion", reinterpret_cast<void*>(GetRBVersion)},
      {"REALBuildString", reinterpret_cast<void*>(BuildString)},
      {"RuntimeMsgBox", reinterpret_cast<void*>(MessageBox)},
      {"PluginRegisterModule", reinterpret_cast<void*>(RegisterModule)},
      {"pluginObjectType", reinterpret_cast<void*>(GetClassRef)},
      {"CreateInstance", reinterpret_cast<void*>(NewInstance)},
      {"REALLoadObjectMethod", reinterpret_cast<void*>(LoadObjectMethod)},
      {"REALUnlockObject", reinterpret_cast<void*>(UnlockObject)},
      {"lockPictureDescription", reinterpret_cast<void*>(LockPictureDescription)},
      {"unlockPictureDescription", reinterpret_cast<void*>(UnlockPictureDescription)},
      {"REALYieldToRB", reinterpret_cast<void*>(Yield)},
  };
  for (const auto& service : services) {
    if (std::strcmp(service.name, name) == 0) return service.address;
  }
  Complain(name, "there is no such service");
  return nullptr;
}

Picture& PictureOf(CGContextRef context) {
  return *reinterpret_cast<Picture*>(context);
}

}  // namespace
}  // namespace page

// ---- CoreGraphics: a context is the picture itself ----------------------------------------------

extern "C" {
std::size_t CGBitmapContextGetWidth(CGContextRef context) {
  return static_cast<std::size_t>(page::PictureOf(context).width);
}
std::size_t CGBitmapContextGetHeight(CGContextRef context) {
  return static_cast<std::size_t>(page::PictureOf(context).height);
}
std::size_t CGBitmapContextGetBitsPerPixel(CGContextRef) {
  return 32;
}
std::size_t CGBitmapContextGetBytesPerRow(CGContextRef context) {
  return 4 * static_cast<std::size_t>(page::PictureOf(context).width);
}
void* CGBitmapContextGetData(CGContextRef context) {
  return page::PictureOf(context).pixels;
}
}

// ---- What the language's library throws, no memory for example ----------------------------------

extern "C" {
[[noreturn]] void* __cxa_allocate_exception(std::size_t) noexcept {
  __builtin_trap();
}
[[noreturn]] void __cxa_throw(void*, void*, void (*)(void*)) {
  __builtin_trap();
}
}

// ---- What the script calls ----------------------------------------------------------------------

/// Loads the plug-in; gives the module that it registered.
PAGE_EXPORT(load) REALmoduleDefinition* Load() {
  REALPluginMain(page::Resolve);
  return page::gModule;
}

/// The level of the kernels in use, ended by a zero.
PAGE_EXPORT(levelName) const char* LevelName() {
  return gRunKernels.level;
}

PAGE_EXPORT(allocate) void* Allocate(std::size_t size) {
  return std::malloc(size);
}

PAGE_EXPORT(release) void ReleaseMemory(void* memory) {
  std::free(memory);
}

/// The storage form of pictures that the plug-in makes, and the most pixels that they may have.
PAGE_EXPORT(setNewPictures) void SetNewPictures(int buffer, std::size_t mostPixels) {
  page::gNewForm = buffer != 0 ? page::Form::buffer : page::Form::context;
  page::gMostPixels = mostPixels;
}

/// A picture with one reference; nil if there is no memory for it.
PAGE_EXPORT(newPicture) page::Picture* NewPicture(int buffer, int width, int height) {
  auto* picture = new page::Picture;
  page::Construct(*picture, buffer != 0 ? page::Form::buffer : page::Form::context, width, height);
  if (picture->pixels == nullptr) {
    delete picture;
    return nullptr;
  }
  ++page::gObjects;
  return picture;
}

/// Gives up one reference to a picture or a text.
PAGE_EXPORT(giveUp) void GiveUp(page::Object* object) {
  page::Release(object);
}

PAGE_EXPORT(pictureWidth) int PictureWidth(const page::Picture* picture) {
  return picture->width;
}
PAGE_EXPORT(pictureHeight) int PictureHeight(const page::Picture* picture) {
  return picture->height;
}
/// The stored words, row after row.
PAGE_EXPORT(picturePixels) std::uint32_t* PicturePixels(page::Picture* picture) {
  return picture->pixels;
}
PAGE_EXPORT(pictureIsBuffer) int PictureIsBuffer(const page::Picture* picture) {
  return picture->form == page::Form::buffer ? 1 : 0;
}
PAGE_EXPORT(pictureLocks) int PictureLocks(const page::Picture* picture) {
  return picture->locks;
}

/// Straight pixels, four bytes each: red, green, blue, alpha.
PAGE_EXPORT(setStraight) void SetStraight(page::Picture* picture, const std::uint8_t* rgba) {
  const std::size_t count = static_cast<std::size_t>(picture->width) * static_cast<std::size_t>(picture->height);
  page::StoreStraight(picture->form, picture->pixels, rgba, count);
}
PAGE_EXPORT(getStraight) void GetStraight(const page::Picture* picture, std::uint8_t* rgba) {
  const std::size_t count = static_cast<std::size_t>(picture->width) * static_cast<std::size_t>(picture->height);
  page::LoadStraight(picture->form, rgba, picture->pixels, count);
}

PAGE_EXPORT(pictureHash) std::uint64_t PictureHash(const page::Picture* picture) {
  return page::Hash(picture->form, picture->width, picture->height, picture->pixels);
}

PAGE_EXPORT(textData) const char* TextData(const page::Text* text) {
  return text->content.data();
}
PAGE_EXPORT(textLength) std::size_t TextLength(const page::Text* text) {
  return text->content.size();
}

/// Calls of the yield service since the last time that this was asked.
PAGE_EXPORT(takeYields) int TakeYields() {
  const int yields = page::gYields;
  page::gYields = 0;
  return yields;
}

/// Pictures and texts that exist.
PAGE_EXPORT(objectCount) int ObjectCount() {
  return page::gObjects;
}
