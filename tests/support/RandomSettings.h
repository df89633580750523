// What surrounds a random call: a source, and the new pictures that the host will make.
#pragma once

#include "PluginTest.h"
#include "Random.h"

namespace support {

/// A picture, new pictures of either form and any layout; now and then a nil source, faults, or
/// missing rows.
Setting RandomSetting(Random& random);
/// The same without a source.
Setting RandomNewPictures(Random& random);

}  // namespace support
