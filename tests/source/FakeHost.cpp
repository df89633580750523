#include "FakeHost.h"

#include <cstring>
#include <map>

#include "HostCalls.h"
#include "LMX_Picture.h"

extern "C" REALPluginMainFunction REALPluginMain;

namespace fake {
namespace {

std::string Text(const REALpictureStruct* picture) {
  return picture == nullptr ? "nil" : picture->name;
}

std::string Text(const REALobjectStruct* object) {
  return Text(reinterpret_cast<const REALpictureStruct*>(object));
}

std::string Text(const char* text) {
  return text == nullptr ? "nil" : text;
}

void Record(const char* service, const std::string& arguments) {
  TheHost().calls.push_back(std::string(service) + "(" + arguments + ")");
  if (TheHost().throwing.count(service) != 0) throw Thrown();
}

void RegisterPluginVersion(int version) {
  Record("RegisterPluginVersion", std::to_string(version));
}

double GetRBVersion() {
  Record("REALGetRBVersion", "");
  return TheHost().version;
}

REALstringStruct* BuildString(const char* text, int length) {
  Record("REALBuildString", std::to_string(length));
  if (TheHost().string != nullptr) TheHost().string->text.assign(text, static_cast<std::size_t>(length));
  return TheHost().string;
}

void MessageBox(REALstringStruct* text) {
  Record("RuntimeMsgBox", text == nullptr ? "nil" : text->text);
}

void RegisterModule(REALmoduleDefinition* module) {
  Record("PluginRegisterModule", module == nullptr ? "nil" : module->name);
}

REALclassRefStruct* GetClassRef(const char* className) {
  Record("pluginObjectType", Text(className));
  return TheHost().pictureClass;
}

REALobjectStruct* NewInstance(REALclassRefStruct* classRef) {
  Record("CreateInstance", classRef->name);
  return AsObject(TheHost().newPicture);
}

void Constructor(REALobjectStruct* object, int width, int height) {
  Record("Constructor", Text(object) + ", " + std::to_string(width) + ", " + std::to_string(height));
}

void* LoadObjectMethod(REALobjectStruct* object, const char* declaration) {
  Record("REALLoadObjectMethod", Text(object) + ", " + Text(declaration));
  return TheHost().hasConstructor ? reinterpret_cast<void*>(static_cast<HostPictureConstructor*>(Constructor))
                                  : nullptr;
}

void UnlockObject(REALobjectStruct* object) {
  Record("REALUnlockObject", Text(object));
}

void LockPictureDescription(REALpictureStruct* picture, REALpictureDescription* description) {
  Record("lockPictureDescription", Text(picture));
  // The host's own members are filled as well.
  std::memset(description, 0xE9, sizeof *description);
  description->pictureType = picture->type;
  description->pictureData = picture->data;
}

void UnlockPictureDescription(REALpictureStruct* picture) {
  Record("unlockPictureDescription", Text(picture));
}

void YieldToRB() {
  Record("REALYieldToRB", "");
  if (TheHost().onYield) TheHost().onYield();
}

template <class Function>
void* Address(Function* function) {
  return reinterpret_cast<void*>(function);
}

}  // namespace

Host& TheHost() {
  static Host host;
  return host;
}

void* Resolve(const char* entryName) {
  static const std::map<std::string, void*> entries = {
      {"RegisterPluginVersion", Address<HostRegisterPluginVersion>(RegisterPluginVersion)},
      {"REALGetRBVersion", Address<HostGetRBVersion>(GetRBVersion)},
      {"REALBuildString", Address<HostBuildString>(BuildString)},
      {"RuntimeMsgBox", Address<HostMessageBox>(MessageBox)},
      {"PluginRegisterModule", Address<HostRegisterModule>(RegisterModule)},
      {"pluginObjectType", Address<HostGetClassRef>(GetClassRef)},
      {"CreateInstance", Address<HostNewInstance>(NewInstance)},
      {"REALLoadObjectMethod", Address<HostLoadObjectMethod>(LoadObjectMethod)},
      {"REALUnlockObject", Address<HostUnlockObject>(UnlockObject)},
      {"lockPictureDescription", Address<HostLockPictureDescription>(LockPictureDescription)},
      {"unlockPictureDescription", Address<HostUnlockPictureDescription>(UnlockPictureDescription)},
      {"REALYieldToRB", Address<HostYield>(YieldToRB)},
  };
  TheHost().lookups.push_back(entryName);
  const auto entry = entries.find(entryName);
  const bool known = entry != entries.end() && TheHost().missing.count(entryName) == 0;
  return known ? entry->second : nullptr;
}

void Reset() {
  TheHost() = Host();
  gResolver = Resolve;
}

void StartPlugin() {
  static REALclassRefStruct pictureClass = {"picture class"};
  Reset();
  TheHost().pictureClass = &pictureClass;
  static const bool started = [] {
    gResolver = nullptr;
    REALPluginMain(Resolve);
    return true;
  }();
  static_cast<void>(started);
  gPictureClassRef = &pictureClass;
  TheHost().calls.clear();
  TheHost().lookups.clear();
}

Context::Context(std::int32_t width, std::int32_t height, std::size_t bytesPerRow)
    : memory_(1, static_cast<std::size_t>(height) * bytesPerRow, host::Flush::End,
              host::GuardedMemory::Where::Anywhere) {
  context.width = static_cast<std::size_t>(width);
  context.height = static_cast<std::size_t>(height);
  context.bytesPerRow = bytesPerRow;
  context.data = memory_.Block(0);
  picture.type = kPictureTypeBitmapContext;
  picture.data = &context;
}

std::uint8_t* Context::Pixel(std::int32_t x, std::int32_t y) {
  return memory_.Block(0) + static_cast<std::size_t>(y) * context.bytesPerRow + 4 * static_cast<std::size_t>(x);
}

std::uint32_t Context::Word(std::int32_t x, std::int32_t y) {
  std::uint32_t word;
  std::memcpy(&word, Pixel(x, y), 4);
  return __builtin_bswap32(word);
}

void Context::SetWord(std::int32_t x, std::int32_t y, std::uint32_t word) {
  word = __builtin_bswap32(word);
  std::memcpy(Pixel(x, y), &word, 4);
}

Buffer::Buffer(std::int32_t width, std::int32_t height)
    : rows_(static_cast<std::size_t>(height), static_cast<std::size_t>(width) * 4, host::Flush::End,
            host::GuardedMemory::Where::Below4GiB),
      table_(1, static_cast<std::size_t>(height) * 4, host::Flush::End, host::GuardedMemory::Where::Below4GiB),
      record_(1, sizeof(REALpictureBuffer), host::Flush::End, host::GuardedMemory::Where::Below4GiB) {
  const auto word = [](const void* address) {
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(address));
  };
  std::memset(&Record(), 0xB6, sizeof(REALpictureBuffer));
  for (std::int32_t y = 0; y < height; ++y) Table()[y] = word(Row(y));
  Record().width = width;
  Record().height = height;
  Record().rowTable = word(Table());
  picture.type = kPictureTypeBuffer;
  picture.data = &Record();
}

std::uint32_t Buffer::Word(std::int32_t x, std::int32_t y) {
  std::uint32_t word;
  std::memcpy(&word, Row(y) + 4 * x, 4);
  return word;
}

void Buffer::SetWord(std::int32_t x, std::int32_t y, std::uint32_t word) {
  std::memcpy(Row(y) + 4 * x, &word, 4);
}

}  // namespace fake

// What a process with bitmap contexts offers.

#define FAKE_EXPORT extern "C" __attribute__((visibility("default")))

FAKE_EXPORT std::size_t CGBitmapContextGetWidth(CGContextRef context) {
  return context->width;
}
FAKE_EXPORT std::size_t CGBitmapContextGetHeight(CGContextRef context) {
  return context->height;
}
FAKE_EXPORT std::size_t CGBitmapContextGetBitsPerPixel(CGContextRef context) {
  return context->bitsPerPixel;
}
FAKE_EXPORT std::size_t CGBitmapContextGetBytesPerRow(CGContextRef context) {
  return context->bytesPerRow;
}
FAKE_EXPORT void* CGBitmapContextGetData(CGContextRef context) {
  return context->data;
}
