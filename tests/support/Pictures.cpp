#include "Pictures.h"

#include <cstdio>

#include "Cases.h"

namespace support {

using host::Storage;
using model::Fault;
using model::StoredPicture;

namespace {

enum class Kind { Opaque, Proper, AnyBytes, OpaqueWithStretches, Clear };

std::uint32_t OpaqueWord(Random& random, Storage form) {
  return (random.Word() & 0xFFFFFF) | (form == Storage::Buffer ? 0 : 0xFF000000);
}

std::uint32_t ProperWord(Random& random, Storage form) {
  if (form == Storage::Buffer) return random.Below(128) << 24 | (random.Word() & 0xFFFFFF);
  const std::uint32_t alpha = random.Below(256);
  std::uint32_t word = alpha << 24;
  for (int shift = 0; shift < 24; shift += 8) word |= random.Below(alpha + 1) << shift;
  return word;
}

std::uint32_t ClearWord(Random& random, Storage form) {
  return (random.Word() & 0xFFFFFF) | (form == Storage::Buffer ? 0x7F000000 : 0);
}

void Fill(Random& random, Kind kind, StoredPicture& picture) {
  bool stretch = false;
  for (std::uint32_t& word : picture.words) {
    if (OneIn(random, 9)) stretch = OneIn(random, 4);
    switch (kind) {
      case Kind::Opaque:
        word = OpaqueWord(random, picture.form);
        break;
      case Kind::Proper:
        word = ProperWord(random, picture.form);
        break;
      case Kind::AnyBytes:
        word = random.Word();
        break;
      case Kind::OpaqueWithStretches:
        word = stretch ? ProperWord(random, picture.form) : OpaqueWord(random, picture.form);
        break;
      case Kind::Clear:
        word = ClearWord(random, picture.form);
        break;
    }
  }
}

int RandomLength(Random& random) {
  if (OneIn(random, 60)) return 0;
  if (OneIn(random, 30)) return NearPowerOfTwo(random, 256);
  if (OneIn(random, 12)) return random.Between(1, 200);
  if (OneIn(random, 3)) return random.Between(1, 70);
  return random.Between(1, 12);
}

std::string Hex(std::uint32_t word) {
  char text[12];
  std::snprintf(text, sizeof text, "%08X", static_cast<unsigned>(word));
  return text;
}

std::string Shape(const StoredPicture& picture) {
  return std::to_string(picture.width) + " x " + std::to_string(picture.height) +
         (picture.form == Storage::Buffer ? " buffer" : " bitmap context");
}

}  // namespace

Storage RandomForm(Random& random) {
  return OneIn(random, 2) ? Storage::Buffer : Storage::BitmapContext;
}

StoredPicture RandomPicture(Random& random, Storage form, int width, int height) {
  static constexpr Kind kKinds[] = {Kind::Opaque, Kind::Proper, Kind::AnyBytes, Kind::OpaqueWithStretches, Kind::Clear};
  StoredPicture picture(form, width, height);
  Fill(random, random.OneOf(kKinds), picture);
  return picture;
}

StoredPicture RandomPicture(Random& random) {
  int width = RandomLength(random);
  int height = RandomLength(random);
  if (OneIn(random, 30)) {
    width = random.Between(1, 5000);
    height = random.Between(1, 3);
    if (OneIn(random, 2)) std::swap(width, height);
  }
  return RandomPicture(random, RandomForm(random), width, height);
}

host::Layout RandomLayout(Random& random, Storage form) {
  host::Layout layout;
  layout.flush = OneIn(random, 2) ? host::Flush::Start : host::Flush::End;
  if (form == Storage::Buffer && OneIn(random, 3)) {
    layout.scattered = true;
  } else if (OneIn(random, 2)) {
    layout.padding = OneIn(random, 2) ? random.Between(1, 80) : 4 * random.Between(1, 20);
  }
  return layout;
}

host::Defects DefectsFor(Fault fault, Storage form, unsigned variant) {
  host::Defects defects;
  if (fault == Fault::NoPixels) {
    (form == Storage::BitmapContext && variant % 2 == 1 ? defects.nilPixels : defects.nilData) = true;
  } else if (fault == Fault::UnusableType) {
    if (variant % 2 == 0) {
      defects.pictureType = variant % 4 == 0 ? 9 : 0;
    } else {
      defects.refusesLock = true;
    }
  }
  return defects;
}

host::PictureShape ShapeOf(const StoredPicture& picture, const host::Layout& layout, unsigned variant) {
  host::PictureShape shape = {picture.width, picture.height, picture.form, layout,
                              DefectsFor(picture.fault, picture.form, variant)};
  shape.defects.nilRows.assign(picture.missingRows.begin(), picture.missingRows.end());
  return shape;
}

StoredPicture ValueOf(const host::PictureShape& shape) {
  constexpr std::int64_t kMostPixels = 1 << 28;  // the host has no memory for more
  const host::Defects& defects = shape.defects;
  const bool context = shape.storage == host::Storage::BitmapContext;
  const bool tooLarge = shape.width > 0 && std::int64_t{shape.width} * shape.height > kMostPixels;
  const bool nilData = defects.nilData || tooLarge;
  StoredPicture value(shape.storage, nilData ? 0 : shape.width, nilData ? 0 : shape.height, host::kUnwritten);
  value.missingRows.insert(defects.nilRows.begin(), defects.nilRows.end());
  if (defects.bitsPerPixel != 32 || defects.nilRowTable) {
    for (int y = 0; y < value.height; ++y) value.missingRows.insert(y);
  }
  if (context && (nilData || (defects.nilPixels && !value.words.empty()))) value.fault = Fault::NoPixels;
  if (defects.refusesLock || defects.pictureType) value.fault = Fault::UnusableType;
  return value;
}

bool HasWords(const host::PictureShape& shape) {
  return shape.defects.bitsPerPixel == 32 && !shape.defects.nilPixels && !shape.defects.nilData;
}

host::Picture ToHost(const StoredPicture& picture, const host::Layout& layout, unsigned variant) {
  host::Picture made(ShapeOf(picture, layout, variant));
  if (!made.Shape().defects.nilPixels) made.SetStoredPixels(picture.words);
  return made;
}

StoredPicture FromHost(const host::Picture& picture) {
  StoredPicture stored(picture.Shape().storage, picture.Width(), picture.Height());
  stored.words = picture.StoredPixels();
  return stored;
}

std::string Difference(const StoredPicture& expected, const StoredPicture& got) {
  if (expected.form != got.form || expected.width != got.width || expected.height != got.height) {
    return "a " + Shape(got) + " instead of a " + Shape(expected);
  }
  if (expected.words == got.words) return "";
  std::string text;
  int count = 0;
  for (int y = 0; y < expected.height; ++y) {
    for (int x = 0; x < expected.width; ++x) {
      if (expected.Word(x, y) == got.Word(x, y) || ++count > 6) continue;
      text += " (" + std::to_string(x) + "," + std::to_string(y) + ") " + Hex(got.Word(x, y)) + " instead of " +
              Hex(expected.Word(x, y)) + ";";
    }
  }
  return Shape(expected) + ", " + std::to_string(count) + " pixels differ:" + text;
}

std::string Difference(const StoredPicture& expected, const host::Picture& got) {
  if (expected.fault != Fault::None) return "";
  if (HasWords(got.Shape())) return Difference(expected, FromHost(got));
  const bool isContext = got.Shape().storage == host::Storage::BitmapContext;
  const bool unchanged = !isContext || got.TakeSnapshot() == host::Picture(got.Shape()).TakeSnapshot();
  return unchanged ? "" : "a picture whose pixels cannot be told has changed";
}

}  // namespace support
