// `lmx bench`: how long the methods take on a picture of the user's.
#pragma once

#include <iosfwd>
#include <string>

#include "Image.h"
#include "host/Picture.h"

namespace tool {

/// Times every operation that bench/ knows on the picture, beside memcpy of it, and writes a line for each at once, as
/// an object of JSON if wanted. Throws Interrupted on Ctrl-C, between two operations.
void WriteBench(std::ostream& out, const std::string& plugin, const Image& image, host::Storage storage, bool json);

}  // namespace tool
