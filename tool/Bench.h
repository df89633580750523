// `lmx bench`: how long the methods take on a picture of the user's.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>

#include "Image.h"
#include "host/Picture.h"

namespace tool {

/// Times memcpy of the picture, then every operation of bench/ on it, without yields and with one
/// every `yield` pixels (10000 if `yield` was not given). Writes a line for each at once, or an
/// object of JSON. Throws Interrupted on Ctrl-C, between two operations.
void WriteBench(std::ostream& out, const std::string& plugin, const Image& image, host::Storage storage,
                std::optional<std::int32_t> yield, bool json);

}  // namespace tool
