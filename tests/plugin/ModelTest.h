// Random settings and arguments for the comparisons with the reference model.
#pragma once

#include <string>
#include <vector>

#include "support/Cases.h"
#include "support/Model.h"
#include "support/Pictures.h"
#include "support/PluginTest.h"

namespace support {

/// A picture, new pictures of either form and any layout; now and then a nil source, faults, or
/// missing rows.
Setting RandomSetting(Random& random);
/// The same without a source.
Setting RandomNewPictures(Random& random);
/// A pace of yields for lines of that many pixels: often about a line, or a few, or never, or any
/// integer.
std::int32_t RandomYield(Random& random, std::int32_t line);
/// A position or size near 0 to `size`, or any integer.
std::int32_t RandomNear(Random& random, std::int32_t size);
/// A rectangle near a picture, or any.
model::Rectangle RandomRectangle(Random& random, const Setting& setting);
/// Any colour, the opaque ones more often.
std::uint32_t RandomColour(Random& random);

}  // namespace support
