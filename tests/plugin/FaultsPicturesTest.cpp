// Malformed pictures of every kind: as the source of every method and as each of its new pictures.
// No crash, the outcome of the reference model, and no access to memory outside the pixels.
#include <climits>
#include <set>

#include "FaultsTest.h"

namespace faults {

using host::PictureShape;
using host::Storage;

namespace {

struct Kind {
  std::string name;
  std::optional<Storage> only;  ///< of this form
  std::function<void(PictureShape& shape)> spoil;
  bool sourceToo = true;
};

// Takes away those of the rows that the picture has.
void TakeAway(const std::vector<int>& rows, PictureShape& shape) {
  for (const int row : rows) {
    if (row < shape.height) shape.defects.nilRows.push_back(row);
  }
}

void AddUnlockable(std::vector<Kind>& kinds) {
  for (const std::uint32_t type : {0u, 9u, 11u, ~0u}) {
    kinds.push_back({"type " + std::to_string(type), {}, [=](PictureShape& s) { s.defects.pictureType = type; }});
  }
  kinds.push_back({"tells nothing", {}, [](PictureShape& s) { s.defects.refusesLock = true; }});
  kinds.push_back({"nil", {}, [](PictureShape& s) { s.defects.nilData = true; }});
  kinds.push_back({"no address", Storage::BitmapContext, [](PictureShape& s) { s.defects.nilPixels = true; }});
}

void AddSizes(std::vector<Kind>& kinds) {
  const auto add = [&](const char* name, const std::function<support::Size(support::Size)>& resize) {
    kinds.push_back({name, {}, [resize](PictureShape& s) {
                       const support::Size size = resize({s.width, s.height});
                       s.width = size.width;
                       s.height = size.height;
                     }});
  };
  add("no columns", [](auto s) { return support::Size{0, s.height}; });
  add("no rows", [](auto s) { return support::Size{s.width, 0}; });
  add("neither", [](auto) { return support::Size{0, 0}; });
  add("width -1", [](auto s) { return support::Size{-1, s.height}; });
  add("height -1", [](auto s) { return support::Size{s.width, -1}; });
  add("both -1", [](auto) { return support::Size{-1, -1}; });
  add("larger", [](auto s) { return support::Size{s.width + 3, s.height + 2}; });
  add("smaller", [](auto s) { return support::Size{s.width - 1, s.height - 1}; });
  add("twice as large", [](auto s) { return support::Size{s.width * 2, s.height * 2}; });
  add("half as large", [](auto s) { return support::Size{s.width / 2, s.height / 2}; });
  add("wider, lower", [](auto s) { return support::Size{s.width + 40, 1}; });
  add("narrower, higher", [](auto s) { return support::Size{1, s.height + 40}; });
  kinds.push_back({"the lowest sizes", {}, [](PictureShape& s) {
                     s.width = s.height = INT_MIN;
                     s.layout.padding = 0;
                   }});
  kinds.push_back({"neither columns nor address", Storage::BitmapContext, [](PictureShape& s) {
                     s.width = 0;
                     s.defects.nilPixels = true;
                   }});
  kinds.push_back({"no memory", {}, [](PictureShape& s) { s.width = s.height = INT_MAX; }, false});
}

void AddDepthsAndRows(std::vector<Kind>& kinds) {
  for (const int depth : {1, 8, 16, 24, 31, 64, 128}) {
    kinds.push_back({"depth " + std::to_string(depth), Storage::BitmapContext,
                     [=](PictureShape& s) { s.defects.bitsPerPixel = depth; }});
  }
  kinds.push_back({"no row table", Storage::Buffer, [](PictureShape& s) { s.defects.nilRowTable = true; }});
  for (const std::vector<int>& rows : std::vector<std::vector<int>>{
           {0}, {1}, {2}, {4}, {1, 2}, {0, 4}, {1, 3}, {0, 1, 2, 3}, {0, 1, 2, 3, 4, 5, 6, 7}}) {
    std::string name = "without rows";
    for (const int row : rows) name += " " + std::to_string(row);
    kinds.push_back({name, Storage::Buffer, [=](PictureShape& s) { TakeAway(rows, s); }});
  }
  kinds.push_back({"without its last row", Storage::Buffer, [](PictureShape& s) { TakeAway({s.height - 1}, s); }});
}

void AddLayouts(std::vector<Kind>& kinds) {
  for (const int bytes : {0, 4, 5, 27}) {
    kinds.push_back({"rows " + std::to_string(bytes) + " bytes apart", Storage::BitmapContext,
                     [=](PictureShape& s) { s.defects.bytesPerRow = bytes; }});
  }
  for (const int more : {0, 3, 8}) {
    kinds.push_back({"rows upwards, padded by " + std::to_string(more), Storage::BitmapContext,
                     [=](PictureShape& s) { s.defects.bytesPerRow = -4 * s.width - more; }});
  }
  for (const int padding : {0, 3, 5}) {
    kinds.push_back({"padding " + std::to_string(padding), {}, [=](PictureShape& s) { s.layout.padding = padding; }});
  }
  kinds.push_back({"flush with its start", {}, [](PictureShape& s) { s.layout.flush = host::Flush::Start; }});
  kinds.push_back({"scattered rows", Storage::Buffer, [](PictureShape& s) {
                     s.layout.padding = 0;
                     s.layout.scattered = true;
                   }});
}

const std::vector<Kind>& Kinds() {
  static const std::vector<Kind> kinds = [] {
    std::vector<Kind> all;
    AddUnlockable(all);
    AddSizes(all);
    AddDepthsAndRows(all);
    AddLayouts(all);
    return all;
  }();
  return kinds;
}

}  // namespace

class FaultsPictures : public FaultsTest {};

TEST_F(FaultsPictures, SourcesAreOfEveryKind) {
  ForEveryOperation([this](const MethodCall& call, const Setting& setting) {
    if (!setting.source) return;
    for (const Kind& kind : Kinds()) {
      if (!kind.sourceToo || kind.only.value_or(setting.source->form) != setting.source->form) continue;
      SCOPED_TRACE(kind.name);
      Setting spoiled = setting;
      spoiled.spoilSource = kind.spoil;
      Check(call, spoiled);
    }
  });
}

TEST_F(FaultsPictures, NewPicturesAreOfEveryKind) {
  ForEveryOperation([this](const MethodCall& call, const Setting& setting) {
    const int made = static_cast<int>(std::string(call.method->made).size());
    for (const Kind& kind : Kinds()) {
      if (kind.only.value_or(setting.newPictures[0].form) != setting.newPictures[0].form) continue;
      for (int which = 1; which <= made; ++which) {
        SCOPED_TRACE(testing::Message() << "new picture " << which << ": " << kind.name);
        Setting spoiled = setting;
        spoiled.spoilNew = [&](int ordinal, PictureShape& shape) {
          if (ordinal == which) kind.spoil(shape);
        };
        Check(call, spoiled);
      }
      SCOPED_TRACE("all new pictures: " + kind.name);
      Setting spoiled = setting;
      spoiled.spoilNew = [&](int, PictureShape& shape) { kind.spoil(shape); };
      Check(call, spoiled);
    }
  });
}

// Yields count the lines of the result that the host made, with its width or height.
TEST_F(FaultsPictures, YieldsCountThePixelsThatTheHostMade) {
  for (const auto& [times, parts] : {std::pair(2, 1), std::pair(1, 2)}) {
    ForEveryOperation([&, scale = times, divisor = parts](MethodCall call, Setting setting) {
      std::set<int> lengths;
      setting.spoilNew = [&](int, PictureShape& shape) {
        shape.width = shape.width * scale / divisor;
        shape.height = shape.height * scale / divisor;
        lengths.insert({shape.width, shape.height});
      };
      Check(call, setting);
      for (const int length : std::set<int>(lengths)) {
        for (const int yield : {length, length + 1}) {
          SCOPED_TRACE(testing::Message() << scale << " / " << divisor << " of the size, yield " << yield);
          call.arguments.back() = yield;
          Check(call, setting);
        }
      }
    });
  }
}

// Positions in sheared pictures are 16.16 numbers of 32 bits.
TEST_F(FaultsPictures, SourcesAreTooLargeToRotate) {
  host_->newPictures.storage = host::Storage::Buffer;
  for (const auto& [width, height] :
       {std::pair(1, 46341), std::pair(46341, 1), std::pair(32768, 1), std::pair(1, 32768)}) {
    for (const double rotation : {0.0, 0.25, 90.0}) {
      SCOPED_TRACE(testing::Message() << width << " x " << height << " by " << rotation);
      const host::Picture source({width, height, host::Storage::Buffer, {}, {}});
      host_->ResetCounts();
      EXPECT_TRUE(host_->Call("FreeRotateByShear", {source, rotation, host::Colour{0}, 0}).result.IsNil());
      EXPECT_EQ(host_->Call("GetLastError", {}).result.AsInteger(), 0);
      EXPECT_EQ(host_->Calls(host::Service::NewInstance), 0);
    }
  }
  const host::Picture high({1, 32767, host::Storage::Buffer, {}, {}});
  const host::Picture turned = host_->Call("FreeRotateByShear", {high, 180.0, host::Colour{0}, 0}).result.AsPicture();
  ASSERT_FALSE(turned.IsNil());
  EXPECT_EQ(turned.Height(), 32767);
}

}  // namespace faults
