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

using Picture = REALpictureStruct;

constexpr const char* kConstructor = "Constructor(width as integer, height as integer)";

REALResolver gResolver;

// Looks up the service at every call, and calls it without checking whether it exists.
template <class Function>
Function* Service(const char* name) {
  return reinterpret_cast<Function*>(gResolver(name));
}

REALobjectStruct* AsObject(Picture* p) {
  return reinterpret_cast<REALobjectStruct*>(p);
}
Picture* AsPicture(void* p) {
  return static_cast<Picture*>(p);
}

REALpictureDescription Lock(Picture* p) {
  REALpictureDescription description = {};
  Service<HostLockPictureDescription>("lockPictureDescription")(p, &description);
  return description;
}

void Unlock(Picture* p) {
  Service<HostUnlockPictureDescription>("unlockPictureDescription")(p);
}

class Locked {
 public:
  explicit Locked(Picture* p) : picture_(p), description_(Lock(p)) {}
  ~Locked() { Unlock(picture_); }
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
  Picture* picture_;
  const REALpictureDescription description_;
};

REALclassRefStruct* ClassNamed(const char* name) {
  return Service<HostGetClassRef>("pluginObjectType")(name);
}

REALobjectStruct* InstanceOf(REALclassRefStruct* type) {
  return Service<HostNewInstance>("CreateInstance")(type);
}

REALobjectStruct* Instance() {
  return InstanceOf(ClassNamed("picture"));
}

HostPictureConstructor* ConstructorOf(REALobjectStruct* object, const char* declaration = kConstructor) {
  void* method = Service<HostLoadObjectMethod>("REALLoadObjectMethod")(object, declaration);
  return reinterpret_cast<HostPictureConstructor*>(method);
}

REALobjectStruct* Construct(REALobjectStruct* object, int width, int height) {
  ConstructorOf(object)(object, width, height);
  return object;
}

void Release(REALobjectStruct* object) {
  Service<HostUnlockObject>("REALUnlockObject")(object);
}

void YieldOnce() {
  Service<HostYield>("REALYieldToRB")();
}

REALstringStruct* BuildText(const char* text, int length) {
  return Service<HostBuildString>("REALBuildString")(text, length);
}

REALstringStruct* BuildText(const char* text) {
  return BuildText(text, static_cast<int>(std::strlen(text)));
}

void Show(REALstringStruct* text) {
  Service<HostMessageBox>("RuntimeMsgBox")(text);
}

void RegisterModule(REALmoduleDefinition* module) {
  if (auto* registerModule = Service<HostRegisterModule>("PluginRegisterModule")) registerModule(module);
}

template <class Object>
Object* Nonsense() {
  return reinterpret_cast<Object*>(std::uintptr_t{0x1234});
}

// ---- Methods ------------------------------------------------------------------------------------

int Next() {
  static int count = 0;
  return ++count;
}

unsigned ByteOf(REALboolean boolean) {
  return boolean & 0xFF;
}

REALstringStruct* DescribeAll(Picture* p, int a, double b, REALboolean c, REALcolor d, long e, long f, unsigned long g,
                              double h, long i, REALboolean j) {
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

Picture* New(int width, int height) {
  REALobjectStruct* object = Instance();
  return object == nullptr ? nullptr : AsPicture(Construct(object, width, height));
}

int Kind(Picture* p) {
  const Locked lock(p);
  return lock.HasData() ? static_cast<int>(lock.Type()) : -static_cast<int>(lock.Type());
}

// Stores the word in every pixel, most significant byte first.
void Fill(Picture* p, REALcolor word) {
  const Locked lock(p);
  for (int y = 0; y < lock.Height(); ++y) {
    for (int x = 0; x < lock.Width(); ++x) {
      for (int i = 0; i < 4; ++i) lock.Pixel(x, y)[i] = static_cast<std::uint8_t>(word >> (24 - 8 * i));
    }
  }
}

int ReadByte(Picture* p, int x, int y) {
  const Locked lock(p);
  return *lock.Pixel(x, y);
}

int ReadByteUnlocked(Picture* p, int x, int y) {
  std::uint8_t* pixel = Locked(p).Pixel(x, y);
  return *pixel;
}

int ReadTableByte(Picture* p, int offset, REALboolean write) {
  const Locked lock(p);
  auto* byte = reinterpret_cast<std::uint8_t*>(std::uintptr_t{lock.Buffer().rowTable}) + offset;
  if (ByteOf(write) != 0) *byte = 0;
  return *byte;
}

void WriteRecord(Picture* p) {
  const Locked lock(p);
  const_cast<REALpictureBuffer&>(lock.Buffer()).hostsOwnHead = 0;
}

void Yield(Picture* p, int times) {
  const Locked lock(p);
  for (int i = 0; i < times; ++i) YieldOnce();
}

void ShowBox() {
  Show(BuildText("Hello"));
}

// ---- Misdeeds of more than a line ---------------------------------------------------------------

// These also ask for the other service, so that the host knows whether it exists.
void LeaveLocked(Picture* p) {
  Service<HostUnlockPictureDescription>("unlockPictureDescription");
  Lock(p);
}

void EndOuterLock(Picture* p) {
  Service<HostLockPictureDescription>("lockPictureDescription");
  Unlock(p);
}

void LockWithoutDescription(Picture* p) {
  Service<HostLockPictureDescription>("lockPictureDescription")(p, nullptr);
}

void UseContextAfterUnlock(Picture* p) {
  const auto context = static_cast<CGContextRef>(Lock(p).pictureData);
  Unlock(p);
  CGBitmapContextGetWidth(context);
  CGBitmapContextGetHeight(context);
  CGBitmapContextGetBitsPerPixel(context);
  CGBitmapContextGetBytesPerRow(context);
  CGBitmapContextGetData(context);
}

Picture* Released() {
  Picture* const released = New(2, 2);
  Release(AsObject(released));
  return released;
}

void ReleaseWhileLocked() {
  Picture* const locked = New(2, 2);
  Lock(locked);
  Release(AsObject(locked));
}

void ConstructReleased() {
  REALobjectStruct* const object = AsObject(New(2, 2));
  HostPictureConstructor* const construct = ConstructorOf(object);
  Release(object);
  construct(object, 2, 2);
}

void AskWrongConstructor() {
  REALobjectStruct* const object = AsObject(New(2, 2));
  ConstructorOf(object, "Constructor(width as integer)");
  Release(object);
}

// ---- Registration -------------------------------------------------------------------------------

template <class Function>
REALmethodDefinition Record(const char* declaration, Function entry) {
  return {reinterpret_cast<void (*)()>(+entry), nullptr, declaration, kMethodFlags, {}};
}

REALmoduleDefinition gSecondModule;

REALmethodDefinition gMethods[] = {
    Record("Odd_Next() as integer", Next),
    Record(
        "Odd_DescribeAll(extends p as picture, a as integer,b as double, c as boolean , d as color,e as integer, f as "
        "integer, g as color, h as double, i as integer, j as boolean) as string",
        DescribeAll),
    Record("Odd_Weigh(a as double, b as double, c as double, d as double, n as integer, e as double, f as double, g as "
           "double, h as double, i as double, j as double) as double",
           Weigh),
    Record("Odd_Change(ByRef i as integer, ByRef d as double, ByRef b as boolean, ByRef c as color)", Change),
    Record("Odd_Negate(b as boolean) as boolean", Negate),
    Record("Odd_Invert(c as color) as color", Invert),
    Record("Odd_WriteTooMuch(ByRef i as integer)", WriteTooMuch),
    Record("Odd_StackPointer() as integer", OddStackPointer),
    Record("Odd_New(width as integer, height as integer) as picture", New),
    Record("Odd_Kind(extends p as picture) as integer", Kind),
    Record("Odd_Fill(extends p as picture, word as color)", Fill),
    Record("Odd_ReadByte(extends p as picture, x as integer, y as integer) as integer", ReadByte),
    Record("Odd_ReadByteUnlocked(extends p as picture, x as integer, y as integer) as integer", ReadByteUnlocked),
    Record("Odd_ReadTableByte(extends p as picture, offset as integer, write as boolean) as integer", ReadTableByte),
    Record("Odd_WriteRecord(extends p as picture)", WriteRecord),
    Record("Odd_Yield(extends p as picture, times as integer)", Yield),
    Record("Odd_ShowBox()", ShowBox),

    // Misdeeds with locks.
    Record("Odd_LeaveLocked(extends p as picture)", LeaveLocked),
    Record("Odd_YieldAndLeaveLocked(extends p as picture)", [](Picture* p) { Lock(p), YieldOnce(); }),
    Record("Odd_UnlockTwice(extends p as picture)", [](Picture* p) { Lock(p), Unlock(p), Unlock(p); }),
    Record("Odd_EndOuterLock(extends p as picture)", EndOuterLock),
    Record("Odd_UnlockNonsense()", [] { Unlock(Nonsense<Picture>()); }),
    Record("Odd_LockNonsense()", [] { Lock(Nonsense<Picture>()); }),
    Record("Odd_LockString()", [] { Lock(AsPicture(BuildText("text"))); }),
    Record("Odd_LockUnconstructed()", [] { Lock(AsPicture(Instance())); }),
    Record("Odd_LockWithoutDescription(extends p as picture)", LockWithoutDescription),
    Record("Odd_UseContextAfterUnlock(extends p as picture)", UseContextAfterUnlock),

    // With objects.
    Record("Odd_UseAfterRelease()", [] { Lock(Released()); }),
    Record("Odd_ReleaseTwice()", [] { Release(AsObject(Released())); }),
    Record("Odd_ReleaseForeign(extends p as picture)", [](Picture* p) { Release(AsObject(p)); }),
    Record("Odd_ReleaseNil()", [] { Release(nullptr); }),
    Record("Odd_ReleaseWhileLocked()", ReleaseWhileLocked),
    Record("Odd_ConstructTwice()", [] { Release(Construct(AsObject(New(2, 2)), 3, 3)); }),
    Record("Odd_ConstructReleased()", ConstructReleased),
    Record("Odd_ConstructEmpty()", [] { Release(Construct(Instance(), 0, 2)); }),
    Record("Odd_AskWrongConstructor()", AskWrongConstructor),
    Record("Odd_Abandon()", [] { Instance(); }),
    Record("Odd_LeakPicture()", [] { New(2, 2); }),

    // With what is asked for and told.
    Record("Odd_AskMethodOfNil()", [] { ConstructorOf(nullptr); }),
    Record("Odd_AskUnknownService()", [] { gResolver("REALUnknown"); }),
    Record("Odd_AskUnknownClass()", [] { ClassNamed("movie"); }),
    Record("Odd_InstanceOfNonsense()", [] { InstanceOf(Nonsense<REALclassRefStruct>()); }),
    Record("Odd_BuildNegativeString()", [] { BuildText("text", -1); }),
    Record("Odd_BuildStringOfNil()", [] { BuildText(nullptr, 1); }),
    Record("Odd_ShowNonsense()", [] { Show(Nonsense<REALstringStruct>()); }),
    Record("Odd_RegisterNil()", [] { RegisterModule(nullptr); }),
    Record("Odd_RegisterAgain()", [] { RegisterModule(&gSecondModule); }),

    // With results.
    Record("Odd_ReturnArgument(extends p as picture) as picture", [](Picture* p) { return p; }),
    Record("Odd_ReturnReleased() as picture", Released),
    Record("Odd_ReturnUnconstructed() as picture", [] { return AsPicture(Instance()); }),
    Record("Odd_ReturnString() as picture", [] { return AsPicture(BuildText("text")); }),
};

REALmoduleDefinition gModule = {kPluginInterfaceVersion, "Odd", gMethods, std::size(gMethods), {}};

void Spoil(odd::LoadMisdeed misdeed) {
  REALmethodDefinition& method = gMethods[2];
  if (misdeed == odd::kWrongModuleVersion) gModule.version = 9;
  if (misdeed == odd::kNoModuleName) gModule.name = nullptr;
  if (misdeed == odd::kNoMethods) gModule.methodCount = 0;
  if (misdeed == odd::kModuleWordSet) gModule.unused[9] = &gModule;
  if (misdeed == odd::kSetter) method.setter = method.entry;
  if (misdeed == odd::kWrongFlags) method.flags = 0x15;
  if (misdeed == odd::kMethodWordSet) method.unused[1] = &gModule;
  if (misdeed == odd::kNoEntry) method.entry = nullptr;
  if (misdeed == odd::kNoDeclaration) method.declaration = nullptr;
  if (misdeed == odd::kMalformedDeclaration) method.declaration = "Odd_Weigh(a as number)";
  if (misdeed == odd::kSameNameTwice) method.declaration = "odd_NEXT() as integer";
}

}  // namespace

extern "C" __attribute__((visibility("default"))) void REALPluginMain(REALResolver resolver) {
  gResolver = resolver;
  const double number = Service<HostGetRBVersion>("REALGetRBVersion")() - odd::kVersionOfLoadMisdeeds;
  const auto misdeed = static_cast<odd::LoadMisdeed>(number < 0 ? 0 : static_cast<int>(number));
  const int version = misdeed == odd::kWrongInterface ? 11 : static_cast<int>(kPluginInterfaceVersion);
  if (misdeed != odd::kNoInterface) Service<HostRegisterPluginVersion>("RegisterPluginVersion")(version);
  Spoil(misdeed);
  RegisterModule(&gModule);
}
