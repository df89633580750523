#include "RandomSettings.h"

#include "Cases.h"
#include "Pictures.h"

namespace support {

using host::Storage;
using model::Fault;
using model::StoredPicture;

namespace {

Fault RandomFault(Random& random) {
  if (!OneIn(random, 25)) return Fault::None;
  return OneIn(random, 2) ? Fault::NoPixels : Fault::UnusableType;
}

void TakeRowsAway(Random& random, StoredPicture& picture) {
  for (int y = 0; y < picture.height; ++y) {
    if (!OneIn(random, 8)) continue;
    picture.missingRows.insert(y);
    for (int x = 0; x < picture.width; ++x) picture.Word(x, y) = host::kUnwritten;
  }
}

}  // namespace

Setting RandomNewPictures(Random& random) {
  constexpr std::size_t kMostNewPictures = 4;
  Setting setting;
  for (std::size_t i = 0; i < kMostNewPictures; ++i) {
    NewPicture plan;
    plan.form = RandomForm(random);
    plan.layout = RandomLayout(random, plan.form);
    plan.fault = RandomFault(random);
    plan.variant = random.Below(4);
    setting.newPictures.push_back(plan);
  }
  return setting;
}

Setting RandomSetting(Random& random) {
  Setting setting = RandomNewPictures(random);
  if (OneIn(random, 40)) return setting;
  setting.source = RandomPicture(random);
  setting.layout = RandomLayout(random, setting.source->form);
  setting.variant = random.Below(4);
  setting.source->fault = RandomFault(random);
  if (setting.source->words.empty()) setting.variant = 0;  // an empty context has only one way to lack pixels
  if (setting.source->form == Storage::Buffer) {
    // A buffer without pixels is a picture of 0 x 0, which can be locked.
    if (setting.source->fault == Fault::NoPixels) setting.source = StoredPicture(Storage::Buffer, 0, 0);
    if (setting.source->fault == Fault::None && OneIn(random, 15)) TakeRowsAway(random, *setting.source);
  }
  return setting;
}

}  // namespace support
