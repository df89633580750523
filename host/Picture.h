// Pictures of the stand-in host: the variables of the program, and the layout of pixels in memory.
//
// Pictures belong to the process, not to one Host. A source can be given to one Host after another,
// and a result outlives the Host that produced it. All pixel memory lies between inaccessible
// pages. While a picture is not locked, the plug-in has no access to its pixels at all. Any stray
// access stops the process.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "HostInterface.h"
#include "Storage.h"

namespace host {

struct PictureObject;

/// Which end of the pixels touches an inaccessible page without a gap. With scattered rows this
/// holds for every row.
enum class Flush { End, Start };

/// How the pixels of a well-formed picture lie in memory.
struct Layout {
  /// Bytes between the end of a row and the start of the next, filled with a pattern. May be any
  /// number, so rows may be unaligned. There is no padding after the last row.
  int padding = 0;
  /// Buffers without padding only: every row lies between inaccessible pages of its own, and the
  /// rows are in no particular order.
  bool scattered = false;
  Flush flush = Flush::End;
  /// Pixels that nobody has written are 0, not kUnwritten, and take no memory. A picture may then
  /// be as large as the address space. Only without padding and not scattered; rows follow one
  /// another or coincide.
  bool sparse = false;
};

/// What is wrong with a picture. The default is nothing.
struct Defects {
  /// The picture type that is reported instead of 8 or 10.
  std::optional<std::uint32_t> pictureType;
  /// Locking does not fill in the description. It still counts as a lock, which must be ended.
  bool refusesLock = false;
  /// `pictureData` is nil: no context, or no buffer record.
  bool nilData = false;
  /// Contexts: CGBitmapContextGetData answers nil.
  bool nilPixels = false;
  /// Contexts: the depth that is reported and laid out. At a depth other than 32 the words cannot
  /// be read as pixels.
  int bitsPerPixel = 32;
  /// The distance from row to row, instead of the width in bytes plus padding. May be 0 (all rows
  /// coincide), negative (later rows lie at lower addresses) or less than a row. The memory is
  /// large enough for it.
  std::optional<std::int32_t> bytesPerRow;
  /// Buffers: the record's row table address is nil.
  bool nilRowTable = false;
  /// Buffers: rows whose entry in the row table is nil.
  std::vector<int> nilRows;
};

/// Everything that defines a new picture. Width and height may be negative: they are reported as
/// they are, and the picture has no pixels.
struct PictureShape {
  int width = 0;
  int height = 0;
  Storage storage = Storage::BitmapContext;
  Layout layout = {};
  Defects defects = {};
};

/// The value of every pixel that nobody has written. The plug-in never stores this word, in either
/// form: as a context's word its blue exceeds alpha, as a buffer's its transparency exceeds 127.
constexpr std::uint32_t kUnwritten = 0xDBADC0DE;

/// A straight pixel, 0xAARRGGBB with 255 opaque, as a stored word, rounded to the nearest.
std::uint32_t StoredFromStraight(Storage storage, std::uint32_t pixel);

/// All memory of a picture as it was: pixels, padding, buffer record, row table.
class Snapshot {
 public:
  bool operator==(const Snapshot& other) const { return parts_ == other.parts_; }
  bool operator!=(const Snapshot& other) const { return !(*this == other); }

 private:
  friend class PictureMemory;
  std::vector<std::vector<std::uint8_t>> parts_;
};

/// A program's variable of class picture: nil, or a reference to a picture. Copies refer to the
/// same picture.
class Picture {
 public:
  Picture() = default;  ///< nil
  /// A new picture, every pixel kUnwritten. Throws host::Error for a shape that contradicts itself,
  /// and when there is not enough memory. A picture of more than 1 GiB must be sparse.
  explicit Picture(const PictureShape& shape);
  Picture(const Picture& other);
  Picture(Picture&& other) noexcept;
  Picture& operator=(Picture other) noexcept;
  ~Picture();

  bool IsNil() const { return object_ == nullptr; }
  explicit operator bool() const { return object_ != nullptr; }
  /// Whether both refer to the same picture. Equal pixels are not enough.
  bool operator==(const Picture& other) const { return object_ == other.object_; }
  bool operator!=(const Picture& other) const { return object_ != other.object_; }

  // Everything below throws host::Error on a nil picture.

  const PictureShape& Shape() const;
  int Width() const { return Shape().width; }
  int Height() const { return Shape().height; }

  // Stored words, in the picture's own form (see Storage). These throw host::Error outside the
  // picture and on a picture without readable pixels: depth other than 32, nil pixel address. Rows
  // with a nil entry read as kUnwritten and ignore writes. A locked picture shows what the plug-in
  // has written so far, so a yield handler may use them.

  std::uint32_t Stored(int x, int y) const;
  void SetStored(int x, int y, std::uint32_t word);
  /// All words, row by row from the top, Width() x Height() of them.
  std::vector<std::uint32_t> StoredPixels() const;
  void SetStoredPixels(const std::vector<std::uint32_t>& words);
  /// The words of row y, Width() of them.
  std::vector<std::uint32_t> StoredRow(int y) const;
  void SetStoredRow(int y, const std::vector<std::uint32_t>& words);
  void Fill(std::uint32_t word);
  /// Whether storage form, size and stored words are equal.
  bool SamePixels(const Picture& other) const;
  /// FNV-1a, 64 bits, over width, height and the stored words, each as four bytes, lowest first.
  /// Neither the storage form nor the memory layout has a part in it.
  std::uint64_t Hash() const;

  // Straight pixels, 0xAARRGGBB with 255 opaque, as files hold them. Both directions round to the
  // nearest value.

  std::vector<std::uint32_t> Straight() const;
  void SetStraight(const std::vector<std::uint32_t>& pixels);

  // Guards.

  Snapshot TakeSnapshot() const;
  /// Whether the padding between the rows still holds its pattern.
  bool PaddingIntact() const;
  /// Allows the plug-in only to read the pixels: a write stops the process. The program may still
  /// write.
  void SetReadOnly(bool readOnly);
  /// The address of pixel (x, y), for tests of the guards. Any x and y are allowed.
  std::uint8_t* PixelAddress(int x, int y) const;

  // References and locks.

  /// A number from 1 on that no other object of the process has.
  std::uint32_t Id() const;
  /// All references: one per Picture that refers to it, and those that the plug-in owns.
  int References() const;
  /// The references that the plug-in took and has not given up.
  int PluginReferences() const;
  /// Description locks that have not been ended.
  int Locks() const;
  /// The handle that the plug-in gets.
  REALpictureStruct* Handle() const;

 private:
  friend struct ProgramReference;
  PictureObject& Object() const;

  PictureObject* object_ = nullptr;
};

}  // namespace host
