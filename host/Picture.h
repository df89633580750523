// Pictures of the stand-in host: what programs hold, and how their pixels lie in memory.
//
// Pictures belong to the process, not to one Host: a source made once can be given to one Host
// after another, and a result outlives the Host that produced it. All pixel memory lies between
// inaccessible pages and is itself inaccessible to the plug-in while the picture is not locked, so
// that any stray access stops the process.
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

/// Which end of the pixels touches an inaccessible page without a gap (of every row, where rows are
/// scattered).
enum class Flush { End, Start };

/// Where a well-formed picture's pixels lie.
struct Layout {
  /// Bytes between the end of a row and the start of the next, filled with a pattern. Any number,
  /// so rows may be unaligned. There is none after the last row, whose last pixel touches the
  /// inaccessible page.
  int padding = 0;
  /// Buffers only, and without padding: every row elsewhere, in no order, each between inaccessible
  /// pages.
  bool scattered = false;
  Flush flush = Flush::End;
  /// Pixels that nobody has written are 0 instead of kUnwritten, and take no memory, so that a
  /// picture may have as many bytes of pixels as there are addresses. Without padding, not
  /// scattered, and the rows follow one another or coincide.
  bool sparse = false;
};

/// What is wrong with a picture. The default is nothing.
struct Defects {
  /// Reported instead of 8 or 10.
  std::optional<std::uint32_t> pictureType;
  /// Locking leaves the description as the plug-in brought it. It still counts as a lock, which
  /// must be ended.
  bool refusesLock = false;
  /// `pictureData` is nil: no context, or no buffer record.
  bool nilData = false;
  /// Contexts: CGBitmapContextGetData answers nil.
  bool nilPixels = false;
  /// Contexts: the depth reported and laid out; the words of a picture of another depth cannot be
  /// read as pixels.
  int bitsPerPixel = 32;
  /// The distance from row to row instead of the width in bytes plus padding; may be 0 (all rows
  /// coincide), negative (rows lie upwards in memory) or less than a row. The memory is laid out to
  /// suit, so following it never leaves it.
  std::optional<std::int32_t> bytesPerRow;
  /// Buffers: the record's row table address is nil.
  bool nilRowTable = false;
  /// Buffers: rows whose entry in the row table is nil.
  std::vector<int> nilRows;
};

/// Everything that a picture is made from. Width and height may be negative: then that is what is
/// reported, over memory for no pixels.
struct PictureShape {
  int width = 0;
  int height = 0;
  Storage storage = Storage::BitmapContext;
  Layout layout = {};
  Defects defects = {};
};

/// The word in every pixel that nobody has written. As a stored word of either form it is one that
/// a plug-in never stores: green and blue exceed alpha's premultiplied range, and the transparency
/// exceeds 127.
constexpr std::uint32_t kUnwritten = 0xDBADC0DE;

/// All memory of a picture as it was: pixels, padding, buffer record, row table.
class Snapshot {
 public:
  bool operator==(const Snapshot& other) const { return parts_ == other.parts_; }
  bool operator!=(const Snapshot& other) const { return !(*this == other); }

 private:
  friend class PictureMemory;
  std::vector<std::vector<std::uint8_t>> parts_;
};

/// A program's variable of class picture: nil, or one reference to a picture. Copies refer to the
/// same picture.
class Picture {
 public:
  Picture() = default;  ///< nil
  /// A new picture, every pixel kUnwritten. Throws host::Error for a shape that contradicts itself,
  /// and when there is no memory for it (more than 1 GiB of pixels is never tried, unless they are
  /// sparse).
  explicit Picture(const PictureShape& shape);
  Picture(const Picture& other);
  Picture(Picture&& other) noexcept;
  Picture& operator=(Picture other) noexcept;
  ~Picture();

  bool IsNil() const { return object_ == nullptr; }
  explicit operator bool() const { return object_ != nullptr; }
  /// The same picture, not merely the same pixels.
  bool operator==(const Picture& other) const { return object_ == other.object_; }
  bool operator!=(const Picture& other) const { return object_ != other.object_; }

  // Everything below throws host::Error on a nil picture.

  const PictureShape& Shape() const;
  int Width() const { return Shape().width; }
  int Height() const { return Shape().height; }

  // Stored words, in the picture's own form (see Storage). These throw host::Error outside the
  // picture and on a picture without readable pixels: depth other than 32, nil pixel address. Rows
  // with a nil entry read as kUnwritten and ignore writes. On a locked picture they see what the
  // plug-in sees, so a yield handler may use them.

  std::uint32_t Stored(int x, int y) const;
  void SetStored(int x, int y, std::uint32_t word);
  /// Row after row, top row first, Width() x Height() words.
  std::vector<std::uint32_t> StoredPixels() const;
  void SetStoredPixels(const std::vector<std::uint32_t>& words);
  /// The same for row y, Width() words.
  std::vector<std::uint32_t> StoredRow(int y) const;
  void SetStoredRow(int y, const std::vector<std::uint32_t>& words);
  void Fill(std::uint32_t word);
  /// The same storage form, size and stored words.
  bool SamePixels(const Picture& other) const;
  /// FNV-1a, 64 bits, over width, height and the stored words, each as four bytes, lowest first.
  /// The storage form is no part of it, nor is where the pixels lie.
  std::uint64_t Hash() const;

  // Straight pixels, 0xAARRGGBB with 255 opaque: what files hold. Both directions round to the
  // nearest value.

  std::vector<std::uint32_t> Straight() const;
  void SetStraight(const std::vector<std::uint32_t>& pixels);

  // Guards.

  Snapshot TakeSnapshot() const;
  /// True while the padding between the rows holds its pattern.
  bool PaddingIntact() const;
  /// While set, the plug-in may only read the pixels: a write stops the process. The program may
  /// still write.
  void SetReadOnly(bool readOnly);
  /// Where pixel (x, y) lies; for tests of the guards. Any x and y: no test of the range.
  std::uint8_t* PixelAddress(int x, int y) const;

  // The host's books.

  /// Counts up from 1 over all objects of the process; never used twice.
  std::uint32_t Id() const;
  /// References of everybody: one per Picture that refers to it, and those that the plug-in owns.
  int References() const;
  /// The references that no Picture accounts for: what the plug-in took and did not give up.
  int PluginReferences() const;
  /// Description locks that are not yet ended.
  int Locks() const;
  /// What the plug-in gets to see.
  REALpictureStruct* Handle() const;

 private:
  friend struct ProgramReference;
  PictureObject& Object() const;

  PictureObject* object_ = nullptr;
};

}  // namespace host
