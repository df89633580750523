// Pictures for tests: random ones, and the same picture as a value and as the host has it.
#pragma once

#include <string>

#include "Model.h"
#include "Random.h"
#include "host/Picture.h"

namespace support {

/// Anything a picture may hold: opaque, proper, any bytes (colours above alpha, transparencies
/// above 127), opaque with translucent stretches, or clear with colours left in it.
model::StoredPicture RandomPicture(Random& random, model::Form form, int width, int height);
/// The same with a random form and size: mostly small, some of a row's or column's shape, a few
/// empty.
model::StoredPicture RandomPicture(Random& random);
model::Form RandomForm(Random& random);
/// Padded rows, scattered rows, or neither.
host::Layout RandomLayout(Random& random, model::Form form);

/// How a picture with that fault is described to the host. There is more than one way; `variant`
/// picks.
host::Defects DefectsFor(model::Fault fault, model::Form form, unsigned variant);

/// The shape of a picture, and what a picture of a shape is to the plug-in when nobody has written
/// to it: one that hides its pixels has no row that could be read.
host::PictureShape ShapeOf(const model::StoredPicture& picture, const host::Layout& layout, unsigned variant = 0);
model::StoredPicture ValueOf(const host::PictureShape& shape);
/// Whether the picture has words that a test can read.
bool HasWords(const host::PictureShape& shape);
host::Picture ToHost(const model::StoredPicture& picture, const host::Layout& layout, unsigned variant = 0);
model::StoredPicture FromHost(const host::Picture& picture);

/// Where two pictures differ, in words; empty if they do not.
std::string Difference(const model::StoredPicture& expected, const model::StoredPicture& got);
/// The same; of a picture that hides its pixels, whether any memory has changed.
std::string Difference(const model::StoredPicture& expected, const host::Picture& got);

}  // namespace support
