#include "MethodInput.h"

#include <algorithm>
#include <cfloat>
#include <climits>
#include <cstring>
#include <limits>

#include "Archive.h"
#include "support/Cases.h"
#include "support/Pictures.h"

namespace fuzz {
namespace {

using host::Storage;
using host::Value;
using model::Fault;
using model::StoredPicture;

constexpr int kLongest = 3000;
constexpr int kUsual = 41;  // sizes are below this
constexpr std::int64_t kMostNewPixels = 1 << 14;
constexpr int kMostScatteredRows = 500;

template <class Archive, class Picture>
void VisitPicture(Archive& archive, Picture& picture) {
  archive(picture.form);
  archive(picture.layout);
  archive(picture.padding);
  archive(picture.fault);
  archive(picture.defect);
  archive(picture.amount);
}

// Of 256 kinds, 32 mean that the next byte is the boolean's value. Of the others, odd kinds are
// true.
bool IsAnyByte(std::uint8_t kind) {
  return kind >> 5 == 5;
}

std::size_t BytesOf(char type, std::uint8_t kind) {
  if (type == 'd') return 8;
  if (type == 'b') return IsAnyByte(kind) ? 1 : 0;
  return type == 'i' || type == 'c' ? 4 : 0;
}

// 0 if the byte means nothing wrong, else one of 16 kinds, from 1.
int WrongKind(std::uint8_t byte) {
  return byte < kWrong ? 0 : byte - kWrong + 1;
}

// The number that follows `kind`. Its size depends on the type.
template <class Archive, class Argument>
void VisitArgument(Archive& archive, Argument& argument, char type) {
  archive(argument.kind);
  const auto as = [&](auto bits) {
    archive(bits);
    if constexpr (!std::is_const_v<Argument>) argument.bits = bits;
  };
  const std::size_t bytes = BytesOf(type, argument.kind);
  if (bytes == 8) as(argument.bits);
  if (bytes == 4) as(static_cast<std::uint32_t>(argument.bits));
  if (bytes == 1) as(static_cast<std::uint8_t>(argument.bits));
}

template <class Archive, class Input>
void Visit(Archive& archive, Input& input) {
  archive(input.method);
  archive(input.version);
  archive(input.fault.kind);
  archive(input.fault.service);
  archive(input.fault.at);
  VisitPicture(archive, input.sourcePicture);
  archive(input.source.flaw);
  archive(input.source.width);
  archive(input.source.height);
  archive(input.source.length);
  archive(input.source.missing);
  archive(input.source.content);
  for (auto& picture : input.newPictures) VisitPicture(archive, picture);
  const char* types = MethodOf(input).types;
  for (std::size_t i = 0; i < input.arguments.size(); ++i) VisitArgument(archive, input.arguments[i], types[i]);
  archive.Rest(input.words);
}

host::Layout LayoutOf(const PictureInput& input, Storage form, int height) {
  host::Layout layout;
  layout.flush = (input.layout & 4) != 0 ? host::Flush::Start : host::Flush::End;
  if (input.layout % 4 == 1) layout.padding = input.padding;
  if (input.layout % 4 == 2) layout.padding = 4 * (input.padding % 20);
  layout.scattered = input.layout % 4 == 3 && form == Storage::Buffer && height <= kMostScatteredRows;
  return layout;
}

Storage FormOf(const PictureInput& input) {
  return input.form % 2 == 1 ? Storage::Buffer : Storage::BitmapContext;
}

Fault FaultOf(const PictureInput& input) {
  if (input.fault < kWrong) return Fault::None;
  return input.fault % 2 == 0 ? Fault::NoPixels : Fault::UnusableType;
}

unsigned VariantOf(const PictureInput& input) {
  return input.fault / 2 % 4;
}

StoredPicture ContentOf(const MethodInput& input, Storage form, int width, int height) {
  if (input.source.content != 0) {
    Random random(input.source.content);
    return support::RandomPicture(random, form, width, height);
  }
  StoredPicture picture(form, width, height);
  for (std::size_t i = 0; i < picture.words.size() && !input.words.empty(); ++i) {
    picture.words[i] = input.words[i % input.words.size()];
  }
  return picture;
}

void TakeRowsAway(std::uint16_t mask, StoredPicture& picture) {
  for (int y = 0; y < picture.height; ++y) {
    if ((mask >> y % 16 & 1) == 0) continue;
    picture.missingRows.insert(y);
    for (int x = 0; x < picture.width; ++x) picture.Word(x, y) = host::kUnwritten;
  }
}

StoredPicture SourceOf(const MethodInput& input) {
  const SourceInput& source = input.source;
  const bool longWidth = source.width == 255;
  const bool longHeight = source.height == 255 && !longWidth;
  const int across = longWidth || longHeight ? 8 : kUsual;  // long pictures are narrow
  const int width = longWidth ? source.length % (kLongest + 1) : source.width % across;
  const int height = longHeight ? source.length % (kLongest + 1) : source.height % across;
  const Storage form = FormOf(input.sourcePicture);
  const Fault fault = FaultOf(input.sourcePicture);
  // A buffer without pixels is a picture of 0 x 0, which can be locked.
  if (form == Storage::Buffer && fault == Fault::NoPixels) return StoredPicture(form, 0, 0);
  StoredPicture picture = ContentOf(input, form, width, height);
  picture.fault = fault;
  const bool incomplete = source.flaw >= kWrong && form == Storage::Buffer && fault == Fault::None;
  if (incomplete) TakeRowsAway(source.missing, picture);
  return picture;
}

support::NewPicture NewPictureOf(const PictureInput& input) {
  const Storage form = FormOf(input);
  return {form, LayoutOf(input, form, 0), FaultOf(input), VariantOf(input)};
}

// Adds the picture's defect to its shape.
void Spoil(const PictureInput& input, host::PictureShape& shape) {
  static constexpr int kDepths[] = {1, 8, 16, 24, 31, 33, 64, 128};
  const bool context = shape.storage == host::Storage::BitmapContext;
  const int amount = (input.amount ^ 0x80) - 0x80;
  switch (WrongKind(input.defect)) {
    case 1:
      shape.width = std::max(shape.width + amount, 0);
      break;
    case 2:
      shape.height = std::max(shape.height + amount, 0);
      break;
    case 3:
      shape.width = amount < 0 ? amount : -1;
      break;
    case 4:
      shape.height = amount < 0 ? INT_MIN : -1;
      break;
    case 5:
      if (context) shape.defects.bytesPerRow = amount;
      break;
    case 6:
      if (context) shape.defects.bytesPerRow = -4 * shape.width - (amount & 15);
      break;
    case 7:
      if (context) shape.defects.bitsPerPixel = kDepths[amount & 7];
      break;
    case 8:
      if (!context) shape.defects.nilRowTable = true;
      break;
    case 9:
      if (!context && shape.height > 0) shape.defects.nilRows = {(amount & 127) % shape.height};
      break;
    case 10:
      // Nobody can notice that one form claims to be the other, so this defect is left out.
      if (const auto type = static_cast<std::uint32_t>(amount);
          type != kPictureTypeBitmapContext && type != kPictureTypeBuffer) {
        shape.defects.pictureType = type;
      }
      break;
    case 11:
      (context ? shape.defects.nilPixels : shape.defects.nilData) = true;
      break;
    default:
      break;
  }
}

std::int32_t Integer(const ArgumentInput& argument, const StoredPicture* source) {
  static constexpr std::int32_t kAwkward[] = {INT_MIN, INT_MIN + 1, INT_MAX, INT_MAX - 1, -90,   -89,   -1,    90,
                                              180,     270,         359,     360,         32767, 32768, 65535, 65536};
  const auto near = static_cast<std::int8_t>(argument.bits);
  switch (argument.kind % 5) {
    case 0:
      return near;
    case 1:
      return (source == nullptr ? 0 : source->width) + near;
    case 2:
      return (source == nullptr ? 0 : source->height) + near;
    case 3:
      return kAwkward[argument.bits % std::size(kAwkward)];
    default:
      return static_cast<std::int32_t>(static_cast<std::uint32_t>(argument.bits));
  }
}

double Double(const ArgumentInput& argument) {
  if (argument.kind == kAwkwardAngle) return support::AwkwardAngle(argument.bits);
  double number = 0;
  switch (argument.kind % 4) {
    case 0:
      return static_cast<std::int16_t>(argument.bits) / 64.0;
    case 1:
      return static_cast<std::int16_t>(argument.bits) / 32767.0;
    case 2:
      return 45.0 * static_cast<std::int8_t>(argument.bits);
    default:
      std::memcpy(&number, &argument.bits, sizeof number);
      return number;
  }
}

Value ArgumentOf(const ArgumentInput& argument, char type, const StoredPicture* source) {
  const bool nil = argument.kind % 8 == 7;
  switch (type) {
    case 'i':
      return Integer(argument, source);
    case 'd':
      return Double(argument);
    case 'b':
      if (IsAnyByte(argument.kind)) return host::BooleanByte{static_cast<std::uint8_t>(argument.bits)};
      return argument.kind % 2 == 1;
    case 'c':
      return host::Colour{static_cast<std::uint32_t>(argument.bits)};
    case 'I':
      return nil ? Value() : Value(std::int32_t{0x5A5A5A5A});
    default:
      return nil ? Value() : Value(-17.25);
  }
}

}  // namespace

std::uint8_t MethodByte(std::uint8_t byte) {
  constexpr std::uint8_t kFirstMethods = 16;  // must not change when methods are added
  return byte < Methods().size() ? byte : byte % kFirstMethods;
}

const Method& MethodOf(const MethodInput& input) {
  return Methods()[MethodByte(input.method)];
}

MethodInput Decode(const std::uint8_t* bytes, std::size_t size) {
  MethodInput input;
  if (size != 0) input.method = bytes[0];
  input.arguments.resize(std::strlen(MethodOf(input).types));
  Reader reader(bytes, size);
  Visit(reader, input);
  return input;
}

std::vector<std::uint8_t> Encode(const MethodInput& input) {
  Writer writer;
  Visit(writer, input);
  return writer.Bytes();
}

support::Setting SettingOf(const MethodInput& input) {
  support::Setting setting;
  setting.mostPixels = kMostNewPixels;
  for (const PictureInput& picture : input.newPictures) setting.newPictures.push_back(NewPictureOf(picture));
  const std::vector<PictureInput> made(std::begin(input.newPictures), std::end(input.newPictures));
  setting.spoilNew = [made](int ordinal, host::PictureShape& shape) {
    const auto index = static_cast<std::size_t>(ordinal) - 1;
    if (index < made.size()) Spoil(made[index], shape);
  };
  setting.spoilSource = [picture = input.sourcePicture](host::PictureShape& shape) {
    const int height = shape.height;
    Spoil(picture, shape);
    if (shape.height != height) shape.defects.nilRows.clear();
  };
  if (!MethodOf(input).hasSource || input.source.flaw == 255) return setting;
  setting.source = SourceOf(input);
  setting.layout = LayoutOf(input.sourcePicture, setting.source->form, setting.source->height);
  // An empty context has only one way to lack pixels.
  setting.variant = setting.source->words.empty() ? 0 : VariantOf(input.sourcePicture);
  return setting;
}

std::vector<Value> Arguments(const MethodInput& input) {
  const support::Setting setting = SettingOf(input);
  const StoredPicture* source = setting.source ? &*setting.source : nullptr;
  const char* types = MethodOf(input).types;
  std::vector<Value> values;
  for (std::size_t i = 0; i < input.arguments.size(); ++i) {
    values.push_back(ArgumentOf(input.arguments[i], types[i], source));
  }
  return values;
}

double HostVersion(const MethodInput& input) {
  static constexpr double kVersions[] = {2011.03, std::numeric_limits<double>::quiet_NaN(), -DBL_MAX, DBL_MAX, 2011.04};
  return kVersions[std::min<std::size_t>(255u - input.version, std::size(kVersions) - 1)];
}

bool HasDefects(const MethodInput& input) {
  const auto spoiled = [](const PictureInput& picture) { return WrongKind(picture.defect) != 0; };
  return spoiled(input.sourcePicture) ||
         std::any_of(std::begin(input.newPictures), std::end(input.newPictures), spoiled);
}

support::HostFault HostFaultOf(const FaultInput& fault) {
  using support::FaultKind;
  static constexpr FaultKind kKinds[] = {FaultKind::Fail, FaultKind::Throw, FaultKind::Withhold,
                                         FaultKind::ConstructorThrows};
  const FaultKind kind = fault.kind < kWrong ? FaultKind::None : kKinds[fault.kind % std::size(kKinds)];
  return {kind, host::kServices[fault.service % host::kServiceCount], fault.at + 1};
}

}  // namespace fuzz
