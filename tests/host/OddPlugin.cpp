// A small plug-in with odd methods, which breaks the contract when it is told to.

#include "OddPlugin.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "HostInterface.h"

extern "C" {
__attribute__((weak)) std::size_t CGBitmapContextGetWidth(CGContextRef);
__attribute__((weak)) std::size_t CGBitmapContextGetHeight(CGContextRef);
__attribute__((weak)) std::size_t CGBitmapContextGetBitsPerPixel(CGContextRef);
__attribute__((weak)) std::size_t CGBitmapContextGetBytesPerRow(CGContextRef);
__attribute__((weak)) void* CGBitmapContextGetData(CGContextRef);

// The stack pointer at the call instruction, modulo 16.
int OddStackPointer();
}

#if defined(__x86_64__)
asm(".pushsection .text\n.globl OddStackPointer\n.hidden OddStackPointer\nOddStackPointer:\n"
    "leaq 8(%rsp), %rax\nandl $15, %eax\nret\n.popsection\n");
#else
asm(".pushsection .text\n.globl OddStackPointer\n.hidden OddStackPointer\nOddStackPointer:\n"
    "leal 4(%esp), %eax\nandl $15, %eax\nret\n.popsection\n");
#endif

namespace {

constexpr const char* kConstructor = "Constructor(width as integer, height as integer)";

REALResolver gResolver;

// Looks the service up at every call, and calls it without asking whether it is there.
template <class Function>
Function* Service(const char* name) {
  return reinterpret_cast<Function*>(gResolver(name));
}

REALobjectStruct* AsObject(REALpictureStruct* p) {
  return reinterpret_cast<REALobjectStruct*>(p);
}
REALpictureStruct* AsPicture(void* p) {
  return static_cast<REALpictureStruct*>(p);
}

class Locked {
 public:
  explicit Locked(REALpictureStruct* p) : picture_(p) {
    Service<HostLockPictureDescription>("lockPictureDescription")(p, &description_);
  }
  ~Locked() { Service<HostUnlockPictureDescription>("unlockPictureDescription")(picture_); }
  Locked(const Locked&) = delete;
  Locked& operator=(const Locked&) = delete;

  bool IsContext() const { return description_.pictureType == kPictureTypeBitmapContext; }
  CGContextRef Context() const { return static_cast<CGContextRef>(description_.pictureData); }
  std::uint32_t Type() const { return description_.pictureType; }
  bool HasData() const { return description_.pictureData != nullptr; }
  const REALpictureBuffer& Buffer() const { return *static_cast<const REALpictureBuffer*>(description_.pictureData); }
  int Width() const { return IsContext() ? static_cast<int>(CGBitmapContextGetWidth(Context())) : Buffer().width; }
  int Height() const { return IsContext() ? static_cast<int>(CGBitmapContextGetHeight(Context())) : Buffer().height; }

  std::uint8_t* Pixel(int x, int y) const {
    if (!IsContext()) {
      std::uint32_t row;
      std::memcpy(&row, reinterpret_cast<const void*>(std::uintptr_t{Buffer().rowTable} + static_cast<unsigned>(4 * y)),
                  4);
      return reinterpret_cast<std::uint8_t*>(std::uintptr_t{row}) + 4 * x;
    }
    const auto distance = static_cast<std::ptrdiff_t>(CGBitmapContextGetBytesPerRow(Context()));
    return static_cast<std::uint8_t*>(CGBitmapContextGetData(Context())) + distance * y + 4 * x;
  }

 private:
  REALpictureStruct* picture_;
  REALpictureDescription description_ = {};
};

REALobjectStruct* Instance() {
  return Service<HostNewInstance>("CreateInstance")(Service<HostGetClassRef>("pluginObjectType")("picture"));
}

void Construct(REALobjectStruct* object, int width, int height) {
  void* method = Service<HostLoadObjectMethod>("REALLoadObjectMethod")(object, kConstructor);
  reinterpret_cast<HostPictureConstructor*>(method)(object, width, height);
}

void Release(REALobjectStruct* object) {
  Service<HostUnlockObject>("REALUnlockObject")(object);
}

REALstringStruct* BuildText(const char* text) {
  return Service<HostBuildString>("REALBuildString")(text, static_cast<int>(std::strlen(text)));
}

void* Nonsense() {
  return reinterpret_cast<void*>(std::uintptr_t{0x1234});
}

// ---- Methods ------------------------------------------------------------------------------------

int Next() {
  static int count = 0;
  return ++count;
}

unsigned ByteOf(REALboolean boolean) {
  return boolean & 0xFF;
}

REALstringStruct* DescribeAll(REALpictureStruct* p, int a, double b, REALboolean c, REALcolor d, long e, long f,
                              unsigned long g, double h, long i, REALboolean j) {
  char text[300];
  std::snprintf(text, sizeof text, "%d %d %g %u %08X %ld %ld %08lX %g %ld %u", p != nullptr, a, b, ByteOf(c), d, e, f,
                g, h, i, ByteOf(j));
  return BuildText(text);
}

double Weigh(double a, double b, double c, double d, int n, double e, double f, double g, double h, double i,
             double j) {
  return a + 10 * b + 100 * c + 1e3 * d + 1e4 * e + 1e5 * f + 1e6 * g + 1e7 * h + 1e8 * i + 1e9 * j + n * 1e10;
}

void Change(int* i, double* d, bool* b, REALcolor* c) {
  if (i != nullptr) *i += 1;
  if (d != nullptr) *d *= 2;
  if (b != nullptr) *b = !*b;
  if (c != nullptr) *c ^= 0xFFFFFFFF;
}

bool Negate(REALboolean b) {
  return ByteOf(b) == 0;
}
REALcolor Invert(REALcolor c) {
  return ~c;
}

void WriteTooMuch(int* i) {
  std::memset(i, 0, 8);
}

REALpictureStruct* New(int width, int height) {
  REALobjectStruct* object = Instance();
  if (object == nullptr) return nullptr;
  Construct(object, width, height);
  return AsPicture(object);
}

int Kind(REALpictureStruct* p) {
  const Locked lock(p);
  return lock.HasData() ? static_cast<int>(lock.Type()) : -static_cast<int>(lock.Type());
}

// Stores the word in every pixel, most significant byte first.
void Fill(REALpictureStruct* p, REALcolor word) {
  const Locked lock(p);
  for (int y = 0; y < lock.Height(); ++y) {
    for (int x = 0; x < lock.Width(); ++x) {
      for (int i = 0; i < 4; ++i) lock.Pixel(x, y)[i] = static_cast<std::uint8_t>(word >> (24 - 8 * i));
    }
  }
}

int ReadByte(REALpictureStruct* p, int x, int y) {
  const Locked lock(p);
  return *lock.Pixel(x, y);
}

int ReadByteUnlocked(REALpictureStruct* p, int x, int y) {
  std::uint8_t* pixel = Locked(p).Pixel(x, y);
  return *pixel;
}

int ReadTableByte(REALpictureStruct* p, int offset, REALboolean write) {
  const Locked lock(p);
  auto* byte = reinterpret_cast<std::uint8_t*>(std::uintptr_t{lock.Buffer().rowTable}) + offset;
  if (ByteOf(write) != 0) *byte = 0;
  return *byte;
}

void WriteRecord(REALpictureStruct* p) {
  const Locked lock(p);
  const_cast<REALpictureBuffer&>(lock.Buffer()).hostsOwnHead = 0;
}

void Yield(REALpictureStruct* p, int times) {
  const Locked lock(p);
  for (int i = 0; i < times; ++i) Service<HostYield>("REALYieldToRB")();
}

void ShowBox() {
  Service<HostMessageBox>("RuntimeMsgBox")(BuildText("Hello"));
}

void LockWrongly(REALpictureStruct* p, odd::Misdeed misdeed) {
  const auto lock = Service<HostLockPictureDescription>("lockPictureDescription");
  const auto unlock = Service<HostUnlockPictureDescription>("unlockPictureDescription");
  REALpictureDescription description = {};
  switch (misdeed) {
    case odd::kLeaveLocked:
      return lock(p, &description);
    case odd::kEndOuterLock:
      return unlock(p);
    case odd::kUnlockNonsense:
      return unlock(AsPicture(Nonsense()));
    case odd::kLockNonsense:
      return lock(AsPicture(Nonsense()), &description);
    case odd::kLockString:
      return lock(AsPicture(BuildText("text")), &description);
    case odd::kLockUnconstructed:
      return lock(AsPicture(Instance()), &description);
    case odd::kLockWithoutDescription:
      return lock(p, nullptr);
    case odd::kUnlockTwice:
      lock(p, &description);
      unlock(p);
      return unlock(p);
    case odd::kYieldAndLeaveLocked:
      lock(p, &description);
      return Service<HostYield>("REALYieldToRB")();
    case odd::kUseContextAfterUnlock:
      lock(p, &description);
      unlock(p);
      CGBitmapContextGetWidth(static_cast<CGContextRef>(description.pictureData));
      CGBitmapContextGetHeight(static_cast<CGContextRef>(description.pictureData));
      CGBitmapContextGetBitsPerPixel(static_cast<CGContextRef>(description.pictureData));
      CGBitmapContextGetBytesPerRow(static_cast<CGContextRef>(description.pictureData));
      CGBitmapContextGetData(static_cast<CGContextRef>(description.pictureData));
      return;
    default:
      return;
  }
}

void HandleObjectsWrongly(REALpictureStruct* p, odd::Misdeed misdeed) {
  REALpictureDescription description = {};
  REALobjectStruct* object = Instance();
  if (misdeed != odd::kConstructEmpty && misdeed != odd::kAbandon) Construct(object, 2, 2);
  switch (misdeed) {
    case odd::kUseAfterRelease:
      Release(object);
      return Service<HostLockPictureDescription>("lockPictureDescription")(AsPicture(object), &description);
    case odd::kReleaseTwice:
      Release(object);
      return Release(object);
    case odd::kReleaseForeign:
      Release(object);
      return Release(AsObject(p));
    case odd::kReleaseNil:
      Release(object);
      return Release(nullptr);
    case odd::kReleaseWhileLocked:
      Service<HostLockPictureDescription>("lockPictureDescription")(AsPicture(object), &description);
      return Release(object);
    case odd::kConstructTwice:
      Construct(object, 3, 3);
      return Release(object);
    case odd::kConstructReleased: {
      const auto load = Service<HostLoadObjectMethod>("REALLoadObjectMethod");
      const auto construct = reinterpret_cast<HostPictureConstructor*>(load(object, kConstructor));
      Release(object);
      return construct(object, 2, 2);
    }
    case odd::kConstructEmpty:
      Construct(object, 0, 2);
      return Release(object);
    case odd::kAskWrongConstructor:
      Service<HostLoadObjectMethod>("REALLoadObjectMethod")(object, "Constructor(width as integer)");
      return Release(object);
    default:
      return;  // kAbandon, kLeakPicture
  }
}

void AskWrongly(odd::Misdeed misdeed) {
  switch (misdeed) {
    case odd::kAskMethodOfNil:
      Service<HostLoadObjectMethod>("REALLoadObjectMethod")(nullptr, kConstructor);
      return;
    case odd::kAskUnknownService:
      gResolver("REALUnknown");
      return;
    case odd::kAskUnknownClass:
      Service<HostGetClassRef>("pluginObjectType")("movie");
      return;
    case odd::kInstanceOfNonsense:
      Service<HostNewInstance>("CreateInstance")(static_cast<REALclassRefStruct*>(Nonsense()));
      return;
    case odd::kBuildNegativeString:
      Service<HostBuildString>("REALBuildString")("text", -1);
      return;
    case odd::kBuildStringOfNil:
      Service<HostBuildString>("REALBuildString")(nullptr, 1);
      return;
    case odd::kShowNonsense:
      return Service<HostMessageBox>("RuntimeMsgBox")(static_cast<REALstringStruct*>(Nonsense()));
    case odd::kRegisterNil:
      return Service<HostRegisterModule>("PluginRegisterModule")(nullptr);
    case odd::kRegisterAgain: {
      static REALmoduleDefinition second;
      return Service<HostRegisterModule>("PluginRegisterModule")(&second);
    }
    default:
      return;
  }
}

REALpictureStruct* Misbehave(REALpictureStruct* p, int number) {
  const auto misdeed = static_cast<odd::Misdeed>(number);
  switch (misdeed) {
    case odd::kReturnArgument:
      return p;
    case odd::kReturnUnconstructed:
      return AsPicture(Instance());
    case odd::kReturnString:
      return AsPicture(BuildText("text"));
    case odd::kReturnReleased: {
      REALpictureStruct* released = New(2, 2);
      Release(AsObject(released));
      return released;
    }
    default:
      break;
  }
  if (misdeed <= odd::kUseContextAfterUnlock || misdeed == odd::kEndOuterLock) {
    LockWrongly(p, misdeed);
  } else if (misdeed <= odd::kAskWrongConstructor || misdeed == odd::kAbandon || misdeed == odd::kLeakPicture) {
    HandleObjectsWrongly(p, misdeed);
  } else {
    AskWrongly(misdeed);
  }
  return nullptr;
}

// ---- Registration -------------------------------------------------------------------------------

template <class Function>
REALmethodDefinition Record(Function* entry, const char* declaration) {
  return {reinterpret_cast<void (*)()>(entry), nullptr, declaration, kMethodFlags, {}};
}

REALmethodDefinition gMethods[] = {
    Record(Next, "Odd_Next() as integer"),
    Record(
        DescribeAll,
        "Odd_DescribeAll(extends p as picture, a as integer,b as double, c as boolean , d as color,e as integer, f as "
        "integer, g as color, h as double, i as integer, j as boolean) as string"),
    Record(Weigh,
           "Odd_Weigh(a as double, b as double, c as double, d as double, n as integer, e as double, f as double, g as "
           "double, h as double, i as double, j as double) as double"),
    Record(Change, "Odd_Change(ByRef i as integer, ByRef d as double, ByRef b as boolean, ByRef c as color)"),
    Record(Negate, "Odd_Negate(b as boolean) as boolean"),
    Record(Invert, "Odd_Invert(c as color) as color"),
    Record(WriteTooMuch, "Odd_WriteTooMuch(ByRef i as integer)"),
    Record(OddStackPointer, "Odd_StackPointer() as integer"),
    Record(New, "Odd_New(width as integer, height as integer) as picture"),
    Record(Kind, "Odd_Kind(extends p as picture) as integer"),
    Record(Fill, "Odd_Fill(extends p as picture, word as color)"),
    Record(ReadByte, "Odd_ReadByte(extends p as picture, x as integer, y as integer) as integer"),
    Record(ReadByteUnlocked, "Odd_ReadByteUnlocked(extends p as picture, x as integer, y as integer) as integer"),
    Record(ReadTableByte, "Odd_ReadTableByte(extends p as picture, offset as integer, write as boolean) as integer"),
    Record(WriteRecord, "Odd_WriteRecord(extends p as picture)"),
    Record(Yield, "Odd_Yield(extends p as picture, times as integer)"),
    Record(ShowBox, "Odd_ShowBox()"),
    Record(Misbehave, "Odd_Misbehave(extends p as picture, misdeed as integer) as picture"),
};

REALmoduleDefinition gModule = {kPluginInterfaceVersion, "Odd", gMethods, std::size(gMethods), {}};

void Spoil(odd::LoadMisdeed misdeed) {
  REALmethodDefinition& method = gMethods[2];
  switch (misdeed) {
    case odd::kWrongModuleVersion:
      gModule.version = 9;
      break;
    case odd::kNoModuleName:
      gModule.name = nullptr;
      break;
    case odd::kNoMethods:
      gModule.methodCount = 0;
      break;
    case odd::kModuleWordSet:
      gModule.unused[9] = &gModule;
      break;
    case odd::kSetter:
      method.setter = method.entry;
      break;
    case odd::kWrongFlags:
      method.flags = 0x15;
      break;
    case odd::kMethodWordSet:
      method.unused[1] = &gModule;
      break;
    case odd::kNoEntry:
      method.entry = nullptr;
      break;
    case odd::kNoDeclaration:
      method.declaration = nullptr;
      break;
    case odd::kMalformedDeclaration:
      method.declaration = "Odd_Weigh(a as number)";
      break;
    case odd::kSameNameTwice:
      method.declaration = "odd_NEXT() as integer";
      break;
    default:
      break;
  }
}

}  // namespace

extern "C" __attribute__((visibility("default"))) void REALPluginMain(REALResolver resolver) {
  gResolver = resolver;
  const double number = Service<HostGetRBVersion>("REALGetRBVersion")() - odd::kVersionOfLoadMisdeeds;
  const auto misdeed = static_cast<odd::LoadMisdeed>(number < 0 ? 0 : static_cast<int>(number));
  const int version = misdeed == odd::kWrongInterface ? 11 : static_cast<int>(kPluginInterfaceVersion);
  if (misdeed != odd::kNoInterface) Service<HostRegisterPluginVersion>("RegisterPluginVersion")(version);
  Spoil(misdeed);
  if (auto* registerModule = Service<HostRegisterModule>("PluginRegisterModule")) registerModule(&gModule);
}
