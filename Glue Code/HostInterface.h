// The binary contract between the plug-in and the host.
//
// The host loads the library and calls its one exported function with a resolver. From then on it
// calls the methods through the addresses in the registered module record. The plug-in finds every
// service of the host by name, through the resolver. This header is all that the two sides share:
// types, layouts, signatures, and who owns what until when. Each side writes out the entry names
// itself, so that a wrong one shows.
//
// On the product's ABI (32-bit x86) every record below is a sequence of 32-bit words; on a 64-bit
// ABI the module and method records are the natural structs of the same members.
#pragma once

#include <cstddef>
#include <cstdint>

// Objects of the host. The plug-in never looks inside them. A nil handle is a legal argument of
// every method.

struct REALobjectStruct;    // any host object
struct REALpictureStruct;   // a picture; its address is also that of its REALobjectStruct
struct REALstringStruct;    // a text
struct REALclassRefStruct;  // a class, as "pluginObjectType" gives it

// A `boolean` argument. Only its lowest byte counts: 0 is false, 1 is true. Each method says what
// another byte means.
using REALboolean = std::uint32_t;

// A `color` value: red in bits 16-23, green in 8-15, blue in 0-7, transparency in 24-31 (0 is
// opaque).
using REALcolor = std::uint32_t;

// -------------------------------------------------------------------------------------------------
// A picture's pixels, valid from "lockPictureDescription" until "unlockPictureDescription".

/// What the host tells about a locked picture. Rationale: the host fills as much of it as its
/// version knows. Only two members are for us; the rest is space for the host.
struct REALpictureDescription {
  std::uint32_t pictureType;  ///< one of the types below; any other is not usable
  void* pictureData;          ///< what the type says; may be nil
  std::uint32_t hostsOwn[126];
};

/// `pictureData` is a CoreGraphics bitmap context (nil: the picture cannot be locked). Pixels are
/// premultiplied by alpha, four bytes each: alpha, red, green, blue.
constexpr std::uint32_t kPictureTypeBitmapContext = 8;

/// `pictureData` is a REALpictureBuffer (nil: a picture of 0 x 0 pixels). Pixels are little-endian
/// words: blue in bits 0-7, green in 8-15, red in 16-23, and a transparency in 24-31 that runs from
/// 0 (opaque) to 127 (clear).
constexpr std::uint32_t kPictureTypeBuffer = 10;

/// The host's buffer record. Its addresses are 32 bits wide on every ABI: a 64-bit host keeps them
/// below 4 GiB.
struct REALpictureBuffer {
  std::uint32_t hostsOwnHead;
  std::int32_t width;   ///< pixels per row
  std::int32_t height;  ///< rows
  std::uint8_t hostsOwn[7216];
  std::uint32_t rowTable;  ///< address of `height` 32-bit row addresses, top row first; rows may lie anywhere
};
static_assert(offsetof(REALpictureBuffer, width) == 4);
static_assert(offsetof(REALpictureBuffer, height) == 8);
static_assert(offsetof(REALpictureBuffer, rowTable) == 7228);

// The bitmap context of a picture of type 8 is read with these five functions of CoreGraphics.
// On macOS the framework brings them; elsewhere the host process exports them under these names,
// with C linkage:
//
//   size_t CGBitmapContextGetWidth(CGContextRef)          pixels per row
//   size_t CGBitmapContextGetHeight(CGContextRef)         rows
//   size_t CGBitmapContextGetBitsPerPixel(CGContextRef)   32, or the picture reads as clear and
//                                                         ignores writes
//   size_t CGBitmapContextGetBytesPerRow(CGContextRef)    distance between the starts of
//                                                         neighbouring rows
//   void*  CGBitmapContextGetData(CGContextRef)           address of the top left pixel
//
// In a process that lacks one of them, pictures of type 8 cannot be locked.
using CGContextRef = struct CGContext*;

// -------------------------------------------------------------------------------------------------
// What the plug-in registers. The host keeps the addresses of both records for the life of the
// process.

/// A global method of the module.
struct REALmethodDefinition {
  void (*entry)();          ///< the function; its real signature follows from the declaration
  void (*setter)();         ///< nil: methods have none
  const char* declaration;  ///< in the host's language, for example "LMX_GetLastError() as integer"
  std::uint32_t flags;      ///< 0x14
  const void* unused[2];    ///< nil
};

/// The module: a name and a table of methods.
struct REALmoduleDefinition {
  std::uint32_t version;          ///< of the plug-in interface: 10
  const char* name;               ///< "LMX"
  REALmethodDefinition* methods;  ///< `methodCount` records
  std::uint32_t methodCount;
  const void* unused[10];  ///< nil: constants, properties and the like, of which the module has none
};

#if UINTPTR_MAX == UINT32_MAX
static_assert(sizeof(REALmethodDefinition) == 6 * 4);
static_assert(sizeof(REALmoduleDefinition) == 14 * 4);
static_assert(offsetof(REALpictureDescription, pictureData) == 4);
#endif

constexpr std::uint32_t kPluginInterfaceVersion = 10;
constexpr std::uint32_t kMethodFlags = 0x14;

// How the parameters of a declaration arrive, in its order, after the C calling convention of the
// ABI:
//   integer  int (a full register or stack word, sign extended)
//   boolean  REALboolean
//   double   double
//   color    REALcolor
//   picture  REALpictureStruct*, may be nil
//   ByRef x  a pointer to where the method stores its result; may be nil
// The result of a method that is declared "as picture" or "as string" carries one reference, which
// the caller owns.

// Services of the host, by the names that the resolver knows. The resolver may answer nil for any
// of them (an older host). The plug-in then does without, as if the service had refused.

/// Maps a service's name to its address, or to nil. Given to REALPluginMain and valid for the life
/// of the process.
using REALResolver = void* (*)(const char* entryName);

/// The library's one export. The host calls it once, before anything else.
using REALPluginMainFunction = void(REALResolver resolver);

using HostRegisterPluginVersion = void(int version);  // "RegisterPluginVersion": must exist
using HostGetRBVersion = double();                    // "REALGetRBVersion": for example 2011.04

// "REALBuildString": a new text of `length` bytes, owned by the caller; nil when there is no memory
// for it.
using HostBuildString = REALstringStruct*(const char* text, int length);
// "RuntimeMsgBox": shows the text and returns when the user has seen it. The text stays the
// caller's.
using HostMessageBox = void(REALstringStruct* text);

// "PluginRegisterModule": makes the module's methods available to host programs.
using HostRegisterModule = void(REALmoduleDefinition* module);

// "pluginObjectType": the named class, or nil. Stays valid; nothing to give back.
using HostGetClassRef = REALclassRefStruct*(const char* className);
// "CreateInstance": a new object on which no constructor has run yet. The caller owns one
// reference. May be nil.
using HostNewInstance = REALobjectStruct*(REALclassRefStruct* classRef);
// "REALLoadObjectMethod": the address of the object's method with that declaration, or nil.
using HostLoadObjectMethod = void*(REALobjectStruct* object, const char* declaration);
// The `picture` class's method "Constructor(width as integer, height as integer)", called on a new
// instance.
using HostPictureConstructor = void(REALobjectStruct* object, int width, int height);
// "REALUnlockObject": gives up one reference; the object goes when none is left.
using HostUnlockObject = void(REALobjectStruct* object);

// "lockPictureDescription": fills the description and keeps it, and the pixels, valid until the
// matching unlock.
using HostLockPictureDescription = void(REALpictureStruct* picture, REALpictureDescription* description);
// "unlockPictureDescription": ends one lock.
using HostUnlockPictureDescription = void(REALpictureStruct* picture);

// "REALYieldToRB": lets the host handle events for a moment. Program code may run meanwhile, and
// may call methods of this module. It may end in an exception, which passes through the method that
// yielded.
using HostYield = void();
