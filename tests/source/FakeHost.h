// The host's side in miniature: a resolver, every service as a function that records its call, and
// pictures in both storage forms of which a test chooses every word.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "HostInterface.h"
#include "host/GuardedMemory.h"

// The product knows these by name only; here they are what the tests need them to be.

/// A picture of the fake host; what "lockPictureDescription" tells about it.
struct REALpictureStruct {
  std::string name = "picture";
  std::uint32_t type = 0;
  void* data = nullptr;
};

struct REALstringStruct {
  std::string text;
};

struct REALclassRefStruct {
  std::string name;
};

struct CGContext {
  std::size_t width = 0;
  std::size_t height = 0;
  std::size_t bitsPerPixel = 32;
  std::size_t bytesPerRow = 0;
  void* data = nullptr;
};

namespace fake {

/// What a service throws that was told to.
struct Thrown {};

/// Answers and books of the one fake host.
struct Host {
  // Answers.
  std::set<std::string> missing;   ///< entry names that the resolver does not know
  std::set<std::string> throwing;  ///< services that throw, once called and recorded
  double version = 2011.04;
  REALclassRefStruct* pictureClass = nullptr;
  REALpictureStruct* newPicture = nullptr;  ///< what "CreateInstance" gives
  bool hasConstructor = true;
  REALstringStruct* string = nullptr;  ///< what "REALBuildString" gives, with the text set
  std::function<void()> onYield;

  // Books.
  std::vector<std::string> lookups;  ///< entry names
  std::vector<std::string> calls;    ///< for example "lockPictureDescription(source)"
};

/// The fake host; one for the process, like the plug-in's variables.
Host& TheHost();

/// Forgets everything that earlier tests left, and hands the resolver to the plug-in.
void Reset();

/// Lets the plug-in start up as in a host, once for the process, with the picture class at hand.
void StartPlugin();

void* Resolve(const char* entryName);

/// The handle under which services know a picture as an object.
inline REALobjectStruct* AsObject(REALpictureStruct* picture) {
  return reinterpret_cast<REALobjectStruct*>(picture);
}

/// A bitmap context of whole rows, each of `bytesPerRow` bytes, between inaccessible pages.
class Context {
 public:
  Context(std::int32_t width, std::int32_t height, std::size_t bytesPerRow);
  Context(std::int32_t width, std::int32_t height) : Context(width, height, static_cast<std::size_t>(width) * 4) {}

  REALpictureStruct* Handle() { return &picture; }
  std::uint8_t* Pixel(std::int32_t x, std::int32_t y);
  std::uint32_t Word(std::int32_t x, std::int32_t y);  ///< 0xAARRGGBB as stored
  void SetWord(std::int32_t x, std::int32_t y, std::uint32_t word);

  CGContext context;
  REALpictureStruct picture;

 private:
  host::GuardedMemory memory_;
};

/// A host buffer of which every row lies between inaccessible pages, and so do record and row
/// table.
class Buffer {
 public:
  Buffer(std::int32_t width, std::int32_t height);

  REALpictureStruct* Handle() { return &picture; }
  REALpictureBuffer& Record() { return *reinterpret_cast<REALpictureBuffer*>(record_.Block(0)); }
  std::uint8_t* Row(std::int32_t y) { return rows_.Block(static_cast<std::size_t>(y)); }
  std::uint32_t Word(std::int32_t x, std::int32_t y);  ///< 0xTTRRGGBB as stored
  void SetWord(std::int32_t x, std::int32_t y, std::uint32_t word);
  void MakeRowNil(std::int32_t y) { Table()[y] = 0; }

  REALpictureStruct picture;

 private:
  std::uint32_t* Table() { return reinterpret_cast<std::uint32_t*>(table_.Block(0)); }

  host::GuardedMemory rows_;
  host::GuardedMemory table_;
  host::GuardedMemory record_;
};

}  // namespace fake
