// Every method with every pair of choices from: the picture's size, the yield, and the memory
// layouts of the source, the temporary pictures and the result. Results are compared with the
// reference model. Many bugs need two such choices at a time.
#include <climits>
#include <map>

#include "support/Cases.h"
#include "support/CoveringArray.h"
#include "support/Pictures.h"
#include "support/PluginTest.h"

namespace {

using host::Colour;
using host::Storage;
using model::StoredPicture;
using support::MissingRow;
using support::NewPicture;
using support::Operation;
using support::Operations;
using support::Setting;
using support::Size;

// Small; slightly larger than a tile; wider or taller than every tile, band and array of the
// plug-in; and more than 3 x 2^20 pixels, so that non-temporal stores write the result. None is a
// multiple of registers or tiles.
enum SizeClass { kSmall, kTiles, kWide, kTall, kLarge, kSizeClasses };
constexpr Size kSizes[kSizeClasses] = {{23, 17}, {83, 71}, {4501, 67}, {67, 1101}, {1801, 1787}};
static_assert(1801 * 1787 > 3 << 20);

// Of a line of the result.
enum Pace { kNoYield, kEveryPixel, kOneLine, kAFewLines, kInsideABand, kBeyondAll, kPaces };

int YieldOf(int pace, int line) {
  switch (pace) {
    case kEveryPixel:
      return 1;
    case kOneLine:
      return line;
    case kAFewLines:
      return 3 * line + line / 2;
    case kInsideABand:
      return 37 * line + 1;
    case kBeyondAll:
      return INT_MAX;
    default:
      return 0;
  }
}

struct MemoryKind {
  const char* name;
  Storage form;
  bool scattered;
  MissingRow missing;
};
enum { kContext, kBuffer, kScattered };  // the first ones
constexpr MemoryKind kMemoryKinds[] = {
    {"a context", Storage::BitmapContext, false, MissingRow::None},
    {"a buffer", Storage::Buffer, false, MissingRow::None},
    {"a buffer with scattered rows", Storage::Buffer, true, MissingRow::None},
    {"a buffer without its first row", Storage::Buffer, false, MissingRow::First},
    {"a buffer without an inner row", Storage::Buffer, false, MissingRow::Inner},
    {"a buffer without its last row", Storage::Buffer, false, MissingRow::Last},
};

// ---------------------------------------------------------------------------------------- the rows

struct Combination {
  int operation, size, pace, source, temporary, result;
};

const std::vector<int>& Counts() {
  static const int kKinds = static_cast<int>(std::size(kMemoryKinds));
  static const std::vector<int> counts = {
      static_cast<int>(Operations().size()), kSizeClasses, kPaces, kKinds, kKinds, kKinds};
  return counts;
}

// Where two things are unusual, one may hide the other, because fast paths and yields are then not
// used. So every method also runs with one unusual thing at a time.
std::vector<std::vector<int>> WantedRows() {
  std::vector<std::vector<int>> rows;
  for (int operation = 0; operation < Counts()[0]; ++operation) {
    // A large result in another form than the source, with yields.
    const int source = operation % 3;
    const int result = source == kContext ? (operation % 2 == 0 ? kBuffer : kScattered) : kContext;
    rows.push_back({operation, kLarge, kInsideABand, source, operation / 2 % 3, result});
    // One missing row in one picture.
    for (const std::size_t picture : {std::size_t{3}, std::size_t{4}, std::size_t{5}}) {
      for (int kind = kScattered + 1; kind < Counts()[picture]; ++kind) {
        for (const int pace : {kNoYield, kAFewLines}) {
          rows.push_back({operation, kTiles, pace, kBuffer, operation % 2, kBuffer});
          rows.back()[picture] = kind;
        }
      }
    }
  }
  return rows;
}

const std::vector<Combination>& Combinations() {
  static const std::vector<Combination> combinations = [] {
    std::vector<Combination> made;
    for (const std::vector<int>& row : support::CoveringArray(Counts(), WantedRows())) {
      made.push_back({row[0], row[1], row[2], row[3], row[4], row[5]});
    }
    return made;
  }();
  return combinations;
}

TEST(Operations, HaveEveryMethodThatTouchesPixels) {
  std::map<std::string, bool> measured;
  for (const Operation& operation : Operations()) measured[operation.method] |= operation.measured;
  for (const support::Method& method : support::Methods()) {
    EXPECT_EQ(measured.count(method.name), method.byModel ? 1u : 0u) << method.name;
    EXPECT_EQ(measured[method.name], method.byModel != nullptr) << method.name << " is not measured";
  }
}

TEST(CoveringArray, HasEveryPair) {
  for (const std::vector<int>& counts : {Counts(), {2, 2}, {1, 1, 1}, {3, 1, 7, 2}}) {
    const std::vector<std::vector<int>> first =
        counts == Counts() ? WantedRows() : std::vector<std::vector<int>>{std::vector<int>(counts.size(), 0)};
    const std::vector<std::vector<int>> rows = support::CoveringArray(counts, first);
    EXPECT_TRUE(std::equal(first.begin(), first.end(), rows.begin()));
    std::size_t all = 1;
    for (const int count : counts) all *= static_cast<std::size_t>(count);
    EXPECT_LE(rows.size(), all);
    for (std::size_t g = 0; g < counts.size(); ++g) {
      for (std::size_t f = 0; f < g; ++f) {
        std::set<std::pair<int, int>> pairs;
        for (const std::vector<int>& row : rows) {
          ASSERT_EQ(row.size(), counts.size());
          ASSERT_TRUE(row[f] >= 0 && row[f] < counts[f]);
          pairs.insert({row[f], row[g]});
        }
        EXPECT_EQ(pairs.size(), static_cast<std::size_t>(counts[f] * counts[g])) << "factors " << f << " and " << g;
      }
    }
  }
}

// --------------------------------------------------------------------------------------- the calls

host::Layout LayoutOf(const MemoryKind& storage) {
  host::Layout layout;
  layout.scattered = storage.scattered;
  return layout;
}

NewPicture NewPictureOf(const MemoryKind& storage) {
  NewPicture plan;
  plan.form = storage.form;
  plan.layout = LayoutOf(storage);
  plan.missing = storage.missing;
  return plan;
}

// Random pixels, repeated. The period is a prime number, so that neighbouring rows differ.
StoredPicture SourceOf(const MemoryKind& storage, Size size, Random& random) {
  StoredPicture picture(storage.form, size.width, size.height);
  const StoredPicture part = support::RandomPicture(random, storage.form, 1, 8191);
  for (std::size_t i = 0; i < picture.words.size(); ++i) picture.words[i] = part.words[i % part.words.size()];
  picture.missingRows = support::MissingRows(storage.missing, size.height);
  for (const int y : picture.missingRows) {
    for (int x = 0; x < size.width; ++x) picture.Word(x, y) = host::kUnwritten;
  }
  return picture;
}

class PairsTest : public support::PluginTest, public testing::WithParamInterface<std::size_t> {
 protected:
  void CheckCombinations(bool large) {
    int number = 0;
    for (const Combination& combination : Combinations()) {
      ++number;
      if (combination.operation != static_cast<int>(GetParam()) || (combination.size == kLarge) != large) continue;
      SCOPED_TRACE(Text(combination));
      Check(combination, number);
      if (HasFailure()) return;
    }
  }

 private:
  static std::string Text(const Combination& c) {
    const Size size = kSizes[c.size];
    return "size " + std::to_string(size.width) + " x " + std::to_string(size.height) + ", pace " +
           std::to_string(c.pace) + ", source " + kMemoryKinds[c.source].name + ", temporary pictures " +
           kMemoryKinds[c.temporary].name + ", result " + kMemoryKinds[c.result].name;
  }

  void Check(const Combination& c, int number) {
    static constexpr Colour kFrames[] = {{0x00204060}, {0xFF000000}, {0x50FF8010}};
    const Operation& operation = Operations()[static_cast<std::size_t>(c.operation)];
    const support::Method& method = support::FindMethod(operation.method);
    const Size size = kSizes[c.size];
    Random random(static_cast<std::uint64_t>(number));
    Setting setting;
    setting.mostPixels = 1 << 24;
    setting.newPictures.assign(4, NewPictureOf(kMemoryKinds[c.temporary]));
    if (method.Result() > 0) setting.newPictures[method.Result() - 1] = NewPictureOf(kMemoryKinds[c.result]);
    if (method.hasSource) {
      setting.source = SourceOf(kMemoryKinds[c.source], operation.SourceOf(size), random);
      setting.layout = LayoutOf(kMemoryKinds[c.source]);
    }
    const int yield = YieldOf(c.pace, method.ByColumns() ? size.height : size.width);
    CheckCall({operation, size, kFrames[number % 3], yield}, setting);
  }
};

std::string NameOf(const testing::TestParamInfo<std::size_t>& operation) {
  return support::TestName(Operations()[operation.param].name);
}

class Pairs : public PairsTest {};
class LargePairs : public PairsTest {};
INSTANTIATE_TEST_SUITE_P(Methods, Pairs, testing::Range(std::size_t{0}, Operations().size()), NameOf);
INSTANTIATE_TEST_SUITE_P(Methods, LargePairs, testing::Range(std::size_t{0}, Operations().size()), NameOf);

TEST_P(Pairs, AreAsTheModelSays) {
  CheckCombinations(false);
}

TEST_P(LargePairs, AreAsTheModelSays) {
  CheckCombinations(true);
}

}  // namespace
