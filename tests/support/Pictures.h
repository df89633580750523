// Random pictures for tests, and conversions between the model's pictures and the host's.
#pragma once

#include <string>

#include "Model.h"
#include "Random.h"
#include "host/Picture.h"

namespace support {

/// Any content: all opaque, well-formed, any bytes (colours above alpha, transparencies above 127),
/// opaque with translucent stretches, or clear pixels that still have colours.
model::StoredPicture RandomPicture(Random& random, host::Storage form, int width, int height);
/// The same with a random form and size: mostly small, some a single row or column, a few empty.
model::StoredPicture RandomPicture(Random& random);
host::Storage RandomForm(Random& random);
/// Padded rows, scattered rows, or neither.
host::Layout RandomLayout(Random& random, host::Storage form);

/// The host's defects for a picture with that fault. There are several for most faults; `variant`
/// selects one.
host::Defects DefectsFor(model::Fault fault, host::Storage form, unsigned variant);

/// The host's shape of a picture, and the value that an unwritten picture of a shape has for the
/// plug-in. A picture that hides its pixels has no row that can be read.
host::PictureShape ShapeOf(const model::StoredPicture& picture, const host::Layout& layout, unsigned variant = 0);
model::StoredPicture ValueOf(const host::PictureShape& shape);
/// Whether the picture has words that a test can read.
bool HasWords(const host::PictureShape& shape);
host::Picture ToHost(const model::StoredPicture& picture, const host::Layout& layout, unsigned variant = 0);
model::StoredPicture FromHost(const host::Picture& picture);

/// Describes where two pictures differ; empty if they are equal.
std::string Difference(const model::StoredPicture& expected, const model::StoredPicture& got);
/// The same for a picture in the host. Of a bitmap context that hides its pixels, tells whether its
/// memory has changed. A buffer that hides its pixels is not compared.
std::string Difference(const model::StoredPicture& expected, const host::Picture& got);

}  // namespace support
