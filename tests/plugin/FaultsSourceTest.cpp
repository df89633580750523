// Sources that are not what they should be, of every kind, for every method: no crash, the code
// that the method's rules say, and no pixel outside the picture read or written.
#include <algorithm>
#include <climits>

#include "FaultsCases.h"

namespace faults {

using host::Defects;
using host::PictureShape;
using host::Storage;

namespace {

// A kind of malformed source, made from a well-formed shape.
struct Kind {
  const char* name;
  Storage storage;
  std::function<void(PictureShape& shape)> spoil;
};

std::ostream& operator<<(std::ostream& out, const Kind& kind) {
  return out << (kind.storage == Storage::Buffer ? "buffer " : "context ") << kind.name;
}

PictureShape Spoiled(const Kind& kind) {
  PictureShape shape = SourceShape(kind.storage);
  kind.spoil(shape);
  return shape;
}

std::vector<Kind> NotLockable() {
  std::vector<Kind> kinds;
  for (const Storage storage : {Storage::BitmapContext, Storage::Buffer}) {
    kinds.push_back({"of type 0", storage, [](PictureShape& shape) { shape.defects.pictureType = 0; }});
    kinds.push_back({"of type 9", storage, [](PictureShape& shape) { shape.defects.pictureType = 9; }});
    kinds.push_back({"of type 11", storage, [](PictureShape& shape) { shape.defects.pictureType = 11; }});
    kinds.push_back({"of the greatest type", storage, [](PictureShape& shape) { shape.defects.pictureType = ~0u; }});
    kinds.push_back({"that tells nothing", storage, [](PictureShape& shape) { shape.defects.refusesLock = true; }});
  }
  kinds.push_back({"that is nil", Storage::BitmapContext, [](PictureShape& shape) { shape.defects.nilData = true; }});
  kinds.push_back(
      {"without address", Storage::BitmapContext, [](PictureShape& shape) { shape.defects.nilPixels = true; }});
  return kinds;
}

std::vector<Kind> Empty() {
  std::vector<Kind> kinds;
  for (const Storage storage : {Storage::BitmapContext, Storage::Buffer}) {
    kinds.push_back({"without columns", storage, [](PictureShape& shape) { shape.width = 0; }});
    kinds.push_back({"without rows", storage, [](PictureShape& shape) { shape.height = 0; }});
    kinds.push_back({"without either", storage, [](PictureShape& shape) { shape.width = shape.height = 0; }});
    kinds.push_back({"of width -1", storage, [](PictureShape& shape) { shape.width = -1; }});
    kinds.push_back({"of height -1", storage, [](PictureShape& shape) { shape.height = -1; }});
    kinds.push_back({"of the lowest sizes", storage, [](PictureShape& shape) {
                       shape.width = shape.height = INT_MIN;
                       shape.layout.padding = 0;
                     }});
  }
  kinds.push_back({"that is nil", Storage::Buffer, [](PictureShape& shape) { shape.defects.nilData = true; }});
  kinds.push_back({"without columns or address", Storage::BitmapContext, [](PictureShape& shape) {
                     shape.width = 0;
                     shape.defects.nilPixels = true;
                   }});
  return kinds;
}

// Pixels that cannot be told from clear ones.
std::vector<Kind> Clear() {
  std::vector<Kind> kinds;
  for (const int depth : {1, 8, 16, 24, 31, 64, 128}) {
    kinds.push_back({"of another depth", Storage::BitmapContext,
                     [depth](PictureShape& shape) { shape.defects.bitsPerPixel = depth; }});
  }
  kinds.push_back(
      {"without row table", Storage::Buffer, [](PictureShape& shape) { shape.defects.nilRowTable = true; }});
  kinds.push_back({"without any row", Storage::Buffer, [](PictureShape& shape) {
                     shape.defects.nilRows = {0, 1, 2, 3, 4};
                   }});
  return kinds;
}

// Pixels that lie unusually, but do not coincide.
std::vector<Kind> LaidOut() {
  std::vector<Kind> kinds;
  for (const Storage storage : {Storage::BitmapContext, Storage::Buffer}) {
    kinds.push_back({"of unaligned rows", storage, [](PictureShape& shape) { shape.layout.padding = 3; }});
    kinds.push_back({"without padding", storage, [](PictureShape& shape) { shape.layout.padding = 0; }});
    kinds.push_back(
        {"flush with its start", storage, [](PictureShape& shape) { shape.layout.flush = host::Flush::Start; }});
  }
  kinds.push_back({"of scattered rows", Storage::Buffer, [](PictureShape& shape) {
                     shape.layout.padding = 0;
                     shape.layout.scattered = true;
                   }});
  return kinds;
}

// Rows that coincide, overlap, or are missing: what a method makes of them depends on the order of
// its reads.
std::vector<Kind> Tangled() {
  std::vector<Kind> kinds;
  for (const int bytes : {0, 4, 5, 27}) {
    kinds.push_back({"of overlapping rows", Storage::BitmapContext,
                     [bytes](PictureShape& shape) { shape.defects.bytesPerRow = bytes; }});
  }
  for (const std::vector<int>& rows :
       std::vector<std::vector<int>>{{0}, {4}, {2}, {1, 2}, {0, 4}, {1, 3}, {0, 1, 2, 3}}) {
    kinds.push_back(
        {"of missing rows", Storage::Buffer, [rows](PictureShape& shape) { shape.defects.nilRows = rows; }});
  }
  return kinds;
}

// Rows that lie upwards in memory.
std::vector<Kind> Upwards() {
  std::vector<Kind> kinds;
  for (const int bytes : {-28, -31, -36}) {
    kinds.push_back({"of rows that lie upwards", Storage::BitmapContext,
                     [bytes](PictureShape& shape) { shape.defects.bytesPerRow = bytes; }});
  }
  return kinds;
}

}  // namespace

class FaultsSource : public FaultsTest {
 protected:
  using Check = std::function<void(const MethodCase& method, const Forms& forms, const Ran& ran)>;

  void ForEverySource(const std::vector<Kind>& kinds, const Check& check) {
    for (const Kind& kind : kinds) {
      for (const MethodCase& method : Methods()) {
        if (!method.hasSource) continue;
        for (const Storage made : {Storage::BitmapContext, Storage::Buffer}) {
          const Forms forms = {kind.storage, made};
          SCOPED_TRACE(testing::Message() << method.name << " of a " << kind << ", " << forms);
          host_->newPictures.storage = made;
          const Ran ran = Run(method, Numbered(Spoiled(kind)));
          EXPECT_EQ(ran.source.Locks(), 0);
          EXPECT_EQ(ran.source.PluginReferences(), 0);
          EXPECT_TRUE(ran.source.PaddingIntact());
          EXPECT_TRUE(ran.leaks.empty());
          if (!method.inPlace) {
            EXPECT_TRUE(ran.source.TakeSnapshot() == ran.before) << "the source has changed";
          }
          check(method, forms, ran);
        }
      }
    }
  }
};

TEST_F(FaultsSource, IsNotLockable) {
  ForEverySource(NotLockable(), [this](const MethodCase& method, const Forms&, const Ran& ran) {
    ExpectFailure(method, method.source, ran);
    EXPECT_EQ(Sequence(method, ran), std::vector<std::string>({"lock S", "unlock S"}));
  });
}

TEST_F(FaultsSource, IsEmpty) {
  ForEverySource(Empty(), [this](const MethodCase& method, const Forms&, const Ran& ran) {
    ExpectFailure(method, method.empty, ran);
  });
}

TEST_F(FaultsSource, IsClear) {
  ForEverySource(Clear(), [](const MethodCase& method, const Forms& forms, const Ran& ran) {
    EXPECT_EQ(ran.code, 0);
    ASSERT_EQ(!ran.result.IsNil(), method.MakesResult());
    if (method.inPlace) {
      EXPECT_TRUE(ran.source.TakeSnapshot() == ran.before) << "nothing can be written";
    }
    if (method.name == "GetAverageRGB") {
      EXPECT_TRUE(
          std::equal(ran.arguments.end() - 3, ran.arguments.end(), std::vector<host::Value>({0, 0, 0}).begin()));
    } else if (method.name == "GetAverageHSV") {
      EXPECT_TRUE(
          std::equal(ran.arguments.end() - 3, ran.arguments.end(), std::vector<host::Value>({-1.0, 0.0, 0.0}).begin()));
    } else if (method.name == "FlipRotate" || method.name == "FreeRotateByShear" || method.name == "Stretch" ||
               method.name == "AdjustHSV") {
      const std::uint32_t clear = forms.made == Storage::Buffer ? 0x7F000000 : 0;
      for (const std::uint32_t word : ran.result.StoredPixels()) ASSERT_EQ(word, clear);
    }
  });
}

TEST_F(FaultsSource, LiesUnusually) {
  ForEverySource(LaidOut(), [this](const MethodCase& method, const Forms& forms, const Ran& ran) {
    ExpectClean(method, forms, ran);
  });
}

TEST_F(FaultsSource, IsTangled) {
  ForEverySource(Tangled(), [](const MethodCase& method, const Forms&, const Ran& ran) {
    EXPECT_EQ(ran.code, 0);
    EXPECT_EQ(!ran.result.IsNil(), method.MakesResult());
  });
}

TEST_F(FaultsSource, LiesUpwards) {
  ForEverySource(Upwards(), [this](const MethodCase& method, const Forms& forms, const Ran& ran) {
    ExpectClean(method, forms, ran);
  });
}

// Positions in the sheared pictures are 16.16 numbers of 32 bits.
TEST_F(FaultsSource, IsTooLargeToRotate) {
  host_->newPictures.storage = Storage::Buffer;
  for (const auto& [width, height] :
       {std::pair(1, 46341), std::pair(46341, 1), std::pair(32768, 1), std::pair(1, 32768)}) {
    for (const double rotation : {0.0, 0.25, 90.0}) {
      SCOPED_TRACE(testing::Message() << width << " x " << height << " by " << rotation);
      const host::Picture source({width, height, Storage::Buffer, {}, {}});
      host_->ResetCounts();
      EXPECT_TRUE(host_->Call("FreeRotateByShear", {source, rotation, host::Colour{0}, 0}).result.IsNil());
      EXPECT_EQ(host_->Call("GetLastError", {}).result.AsInteger(), 0);
      EXPECT_EQ(host_->Calls(host::Service::NewInstance), 0);
    }
  }
  const host::Picture high({1, 32767, Storage::Buffer, {}, {}});
  const host::Picture turned = host_->Call("FreeRotateByShear", {high, 180.0, host::Colour{0}, 0}).result.AsPicture();
  ASSERT_FALSE(turned.IsNil());
  EXPECT_EQ(turned.Height(), 32767);
}

// Of a row that is missing nothing is read, and nothing is written to it.
TEST_F(FaultsSource, MissingRowsReadAsClear) {
  PictureShape shape = SourceShape(Storage::Buffer);
  shape.defects.nilRows = {1, 3};
  const host::Picture source = Numbered(shape);
  host_->newPictures.storage = Storage::Buffer;
  const host::Picture copy =
      host_->Call("Trim", {source, 0, 0, shape.width, shape.height, host::Colour{0}, 0}).result.AsPicture();
  ASSERT_FALSE(copy.IsNil());
  const host::Picture whole = Numbered(SourceShape(Storage::Buffer));
  for (int y = 0; y < shape.height; ++y) {
    for (int x = 0; x < shape.width; ++x) {
      const std::uint32_t alpha = 255 - 2 * (whole.Stored(x, y) >> 24);
      const std::uint32_t present = (127 - (alpha >> 1)) << 24 | (whole.Stored(x, y) & 0xFFFFFF);
      EXPECT_EQ(copy.Stored(x, y), y % 2 == 1 ? 0x7F000000 : present) << x << ", " << y;
    }
  }
}

}  // namespace faults
