// Pictures for tests: random ones, and the same picture as a value and as the host has it.
#pragma once

#include <string>

#include "Definition.h"
#include "Random.h"
#include "host/Picture.h"

namespace support {

/// Every storage form twice, for sources and results.
host::Storage StorageOf(definition::Form form);
definition::Form FormOf(host::Storage storage);

/// Anything a picture may hold: opaque, proper, any bytes (colours above alpha, transparencies above 127), opaque with
/// translucent stretches, or clear with colours left in it.
definition::StoredPicture RandomPicture(Random& random, definition::Form form, int width, int height);
/// The same with a random form and size: mostly small, some of a row's or column's shape, a few empty.
definition::StoredPicture RandomPicture(Random& random);
definition::Form RandomForm(Random& random);
/// Padded rows, scattered rows, or neither.
host::Layout RandomLayout(Random& random, definition::Form form);

/// How a picture with that fault is described to the host. There is more than one way; `variant` picks.
host::Defects DefectsFor(definition::Fault fault, definition::Form form, unsigned variant);

host::Picture ToHost(const definition::StoredPicture& picture, const host::Layout& layout, unsigned variant = 0);
definition::StoredPicture FromHost(const host::Picture& picture);

/// Where two pictures differ, in words; empty if they do not.
std::string Difference(const definition::StoredPicture& expected, const definition::StoredPicture& got);

}  // namespace support
