// Random arguments of every method for a source of a given size; awkward ones are more frequent.
// The rows of MethodTable.cpp refer to these functions.
#pragma once

#include <cstdint>

#include "Operations.h"
#include "Random.h"

namespace support {

/// A yield argument for lines of that many pixels: often about a line or a few lines, or never, or
/// any integer.
std::int32_t RandomYield(Random& random, std::int32_t line);
/// A position or size near the range 0 to `size`, or any integer.
std::int32_t RandomNear(Random& random, std::int32_t size);
/// Any colour; opaque ones are more frequent.
host::Colour RandomColour(Random& random);

Arguments RandomAdjustHSV(Random& random, Size source);
Arguments RandomAdjustRGB(Random& random, Size source);
// Any of the ByRef arguments may be nil.
Arguments RandomAverageHSV(Random& random, Size source);
Arguments RandomAverageRGB(Random& random, Size source);
Arguments RandomFlipRotate(Random& random, Size source);
Arguments RandomFreeRotate(Random& random, Size source);
Arguments RandomGradient(Random& random, Size source);
Arguments RandomDoubleGradient(Random& random, Size source);
Arguments RandomShear(Random& random, Size source);
Arguments RandomStretch(Random& random, Size source);
Arguments RandomTrim(Random& random, Size source);

}  // namespace support
