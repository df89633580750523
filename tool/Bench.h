// `lmx bench`: how long the methods take on a picture of the user's.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>

#include "Image.h"
#include "host/Picture.h"

namespace tool {

/// Times memcpy of the picture, then every operation that bench/ knows on it, without yields and
/// with one every `yield` pixels (10000 if nothing was asked for), and writes a line for each at
/// once, as an object of JSON if wanted. Throws Interrupted on Ctrl-C, between two operations.
void WriteBench(std::ostream& out, const std::string& plugin, const Image& image, host::Storage storage,
                std::optional<std::int32_t> yield, bool json);

}  // namespace tool
