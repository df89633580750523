#include "Picture.h"

#include <algorithm>

#include "ObjectTable.h"
#include "ProgramReference.h"
#include "Value.h"

namespace host {
namespace {

PictureObject* Retain(PictureObject* object) {
  if (object != nullptr) {
    ++object->references;
    ++object->programReferences;
  }
  return object;
}

// The picture's memory, made accessible. Throws host::Error if it has no readable words.
const PictureMemory& Words(const PictureObject& object) {
  const Defects& defects = object.memory->Shape().defects;
  if (defects.nilPixels || defects.bitsPerPixel != 32) throw Error(NameOf(object) + " has no readable pixels");
  object.memory->Open();
  return *object.memory;
}

const PictureMemory& WordsAt(const PictureObject& object, int x, int y) {
  const PictureShape& shape = object.memory->Shape();
  if (x < 0 || x >= shape.width || y < 0 || y >= shape.height) {
    throw Error("(" + std::to_string(x) + ", " + std::to_string(y) + ") is outside " + NameOf(object));
  }
  return Words(object);
}

std::size_t PixelCount(const PictureShape& shape) {
  return static_cast<std::size_t>(std::max(shape.width, 0)) * static_cast<std::size_t>(std::max(shape.height, 0));
}

// Quotient of two unsigned numbers, rounded to the nearest integer.
std::uint32_t Nearest(std::uint32_t dividend, std::uint32_t divisor) {
  return (dividend + divisor / 2) / divisor;
}

template <class PerChannel>
std::uint32_t MapColour(std::uint32_t pixel, PerChannel map) {
  return map(pixel >> 16 & 0xFF) << 16 | map(pixel >> 8 & 0xFF) << 8 | map(pixel & 0xFF);
}

std::uint32_t StraightFromStored(Storage storage, std::uint32_t word) {
  if (storage == Storage::Buffer) {
    const std::uint32_t transparency = std::min<std::uint32_t>(word >> 24, 127);
    return Nearest((127 - transparency) * 255, 127) << 24 | (word & 0xFFFFFF);
  }
  const std::uint32_t alpha = word >> 24;
  if (alpha == 0) return 0;
  const auto divide = [alpha](std::uint32_t k) { return std::min<std::uint32_t>(Nearest(k * 255, alpha), 255); };
  return alpha << 24 | MapColour(word, divide);
}

class Fnv1a {
 public:
  void Add(std::uint32_t word) {
    for (int shift = 0; shift < 32; shift += 8) hash_ = (hash_ ^ (word >> shift & 0xFF)) * 0x100000001B3;
  }
  std::uint64_t Value() const { return hash_; }

 private:
  std::uint64_t hash_ = 0xCBF29CE484222325;
};

}  // namespace

std::uint32_t StoredFromStraight(Storage storage, std::uint32_t pixel) {
  const std::uint32_t alpha = pixel >> 24;
  if (storage == Storage::Buffer) return (127 - Nearest(alpha * 127, 255)) << 24 | (pixel & 0xFFFFFF);
  return alpha << 24 | MapColour(pixel, [alpha](std::uint32_t k) { return Nearest(k * alpha, 255); });
}

Picture::Picture(const PictureShape& shape) {
  auto memory = std::make_unique<PictureMemory>(shape);
  PictureObject& object = Table().AddPicture();
  object.memory = std::move(memory);
  object_ = Retain(&object);
}

Picture::Picture(const Picture& other) : object_(Retain(other.object_)) {}
Picture::Picture(Picture&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}

Picture& Picture::operator=(Picture other) noexcept {
  std::swap(object_, other.object_);
  return *this;
}

Picture::~Picture() {
  if (object_ == nullptr) return;
  --object_->programReferences;
  Table().Release(*object_);
}

Picture ProgramReference::Share(PictureObject& object) {
  Picture picture;
  picture.object_ = Retain(&object);
  return picture;
}

Picture ProgramReference::Adopt(PictureObject& object) {
  Picture picture;
  ++object.programReferences;
  picture.object_ = &object;
  return picture;
}

PictureObject& Picture::Object() const {
  if (object_ == nullptr) throw Error("the picture is nil");
  return *object_;
}

const PictureShape& Picture::Shape() const {
  return Object().memory->Shape();
}

std::uint32_t Picture::Stored(int x, int y) const {
  return WordsAt(Object(), x, y).Load(x, y);
}

void Picture::SetStored(int x, int y, std::uint32_t word) {
  WordsAt(Object(), x, y).Store(x, y, word);
}

std::vector<std::uint32_t> Picture::StoredPixels() const {
  const PictureMemory& memory = Words(Object());
  std::vector<std::uint32_t> words(PixelCount(Shape()));
  if (words.empty()) return words;
  for (int y = 0; y < Height(); ++y) {
    memory.LoadRow(y, words.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(Width()));
  }
  return words;
}

void Picture::SetStoredPixels(const std::vector<std::uint32_t>& words) {
  const PictureMemory& memory = Words(Object());
  if (words.size() != PixelCount(Shape())) throw Error("the number of words is not the number of pixels");
  if (words.empty()) return;
  for (int y = 0; y < Height(); ++y) {
    memory.StoreRow(y, words.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(Width()));
  }
}

std::vector<std::uint32_t> Picture::StoredRow(int y) const {
  const PictureMemory& memory = WordsAt(Object(), 0, y);
  std::vector<std::uint32_t> words(static_cast<std::size_t>(Width()));
  memory.LoadRow(y, words.data());
  return words;
}

void Picture::SetStoredRow(int y, const std::vector<std::uint32_t>& words) {
  const PictureMemory& memory = WordsAt(Object(), 0, y);
  if (words.size() != static_cast<std::size_t>(Width())) throw Error("the number of words is not that of a row");
  memory.StoreRow(y, words.data());
}

void Picture::Fill(std::uint32_t word) {
  SetStoredPixels(std::vector<std::uint32_t>(PixelCount(Shape()), word));
}

bool Picture::SamePixels(const Picture& other) const {
  const PictureShape &a = Shape(), &b = other.Shape();
  return a.storage == b.storage && a.width == b.width && a.height == b.height && StoredPixels() == other.StoredPixels();
}

std::uint64_t Picture::Hash() const {
  Fnv1a hash;
  hash.Add(static_cast<std::uint32_t>(Width()));
  hash.Add(static_cast<std::uint32_t>(Height()));
  for (std::uint32_t word : StoredPixels()) hash.Add(word);
  return hash.Value();
}

std::vector<std::uint32_t> Picture::Straight() const {
  std::vector<std::uint32_t> pixels = StoredPixels();
  for (std::uint32_t& pixel : pixels) pixel = StraightFromStored(Shape().storage, pixel);
  return pixels;
}

void Picture::SetStraight(const std::vector<std::uint32_t>& pixels) {
  std::vector<std::uint32_t> words = pixels;
  for (std::uint32_t& word : words) word = StoredFromStraight(Shape().storage, word);
  SetStoredPixels(words);
}

Snapshot Picture::TakeSnapshot() const {
  Object().memory->Open();
  return object_->memory->TakeSnapshot();
}

bool Picture::PaddingIntact() const {
  Object().memory->Open();
  return object_->memory->PaddingIntact();
}

void Picture::SetReadOnly(bool readOnly) {
  Object().readOnly = readOnly;
}

std::uint8_t* Picture::PixelAddress(int x, int y) const {
  Object().memory->Open();
  return object_->memory->Pixel(x, y);
}

std::uint32_t Picture::Id() const {
  return Object().id;
}
int Picture::References() const {
  return Object().references;
}
int Picture::PluginReferences() const {
  return Object().PluginReferences();
}
int Picture::Locks() const {
  return Object().locks;
}
REALpictureStruct* Picture::Handle() const {
  return static_cast<REALpictureStruct*>(Object().handle);
}

}  // namespace host
