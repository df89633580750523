// The circumstances of a random call: a source, and the new pictures that the host will make.
#pragma once

#include "PluginTest.h"
#include "Random.h"

namespace support {

/// A source and new pictures of any form and layout; sometimes a nil source, faults or missing
/// rows.
Setting RandomSetting(Random& random);
/// The same without a source.
Setting RandomNewPictures(Random& random);

}  // namespace support
