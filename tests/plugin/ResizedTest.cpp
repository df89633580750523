// Hosts that make a new picture, a result or a temporary one, of another size than requested:
// wider, narrower, taller or lower, by one or by half. The call continues with that picture and
// makes the same requests in the same order.
#include <map>

#include "support/Cases.h"
#include "support/Pictures.h"
#include "support/PluginTest.h"

namespace {

using host::Colour;
using host::Storage;
using support::NewPicture;
using support::Operation;
using support::Resized;
using support::Setting;
using support::Size;

struct Change {
  const char* name;
  Resized resized;
};
constexpr Change kChanges[] = {
    {"wider by one", Resized::WiderByOne},       {"wider by half", Resized::WiderByHalf},
    {"narrower by one", Resized::NarrowerByOne}, {"half as wide", Resized::HalfAsWide},
    {"taller by one", Resized::TallerByOne},     {"taller by half", Resized::TallerByHalf},
    {"lower by one", Resized::LowerByOne},       {"half as high", Resized::HalfAsHigh},
};
constexpr Colour kFrame = {0x30204060};
constexpr Size kSizes[] = {{23, 17}, {72, 75}};

class ResizedTest : public support::PluginTest, public testing::WithParamInterface<Operation> {
 protected:
  // The services that the last call used, except yields, each with the number of its object.
  std::vector<std::string> Services() const {
    std::map<std::uint32_t, std::size_t> places;
    std::vector<std::string> services;
    for (const host::ServiceCall& call : host_.Log()) {
      if (std::string(call.name) == "REALYieldToRB") continue;
      const std::size_t place = places.emplace(call.object, places.size()).first->second;
      services.push_back(call.name + (" " + std::to_string(place)));
    }
    return services;
  }
};

INSTANTIATE_TEST_SUITE_P(Methods, ResizedTest, testing::ValuesIn(support::Operations()),
                         [](const auto& operation) { return support::TestName(operation.param.name); });

TEST_P(ResizedTest, NewPicturesOfAnotherSize) {
  const Operation& operation = GetParam();
  const support::Method& method = support::FindMethod(operation.method);
  const std::size_t made = std::string(method.made).size();
  Random random(1);
  for (const Size size : kSizes) {
    for (const Storage form : {Storage::BitmapContext, Storage::Buffer}) {
      const Size source = operation.SourceOf(size);
      const model::StoredPicture picture = support::RandomPicture(random, form, source.width, source.height);
      Setting setting;
      if (method.hasSource) setting.source = picture;
      setting.newPictures.assign(4, NewPicture{});
      for (NewPicture& plan : setting.newPictures) plan.form = form;
      CheckCall({operation, size, kFrame, 0}, setting);
      const std::vector<std::string> services = Services();
      for (std::size_t number = 1; number <= made; ++number) {
        for (const Change& change : kChanges) {
          for (const int yield : {0, 1, 2 * (method.ByColumns() ? size.height : size.width)}) {
            SCOPED_TRACE(testing::Message() << size.width << " x " << size.height << ", new picture " << number << " "
                                            << change.name << ", yield " << yield);
            Setting changed = setting;
            changed.newPictures[number - 1].resized = change.resized;
            CheckCall({operation, size, kFrame, yield}, changed);
            EXPECT_EQ(Services(), services);
            if (HasFailure()) return;
          }
        }
      }
    }
  }
}

}  // namespace
