// Values of the host's language as text: what users write, and what people, scripts and programs
// read.
#pragma once

#include <string>

#include "host/Declaration.h"
#include "host/Value.h"

namespace tool {

/// Reads a value strictly: nothing may stand before or after it.
///   integer  -2147483648 to 2147483647
///   double   1, -0.5, 1e3, inf, nan
///   boolean  true, false, yes, no, 1, 0
///   color    #rrggbb, #rgb, &cRRGGBB, &cRRGGBBTT, &hTTRRGGBB; TT is the transparency, 00 opaque
///            and ff clear. #rrggbbxx is refused: on the web its last digits are alpha
/// Upper and lower case are the same. Throws UsageError saying what is expected.
host::Value ParseValue(host::Type type, const std::string& text);

/// For people: six digits are enough.
std::string ReadableText(const host::Value& value);
/// For scripts: every digit; null for numbers that JSON lacks.
std::string JsonText(const host::Value& value);
std::string JsonText(const std::string& text);
/// As a program in the host's language writes it.
std::string ProgramText(const host::Value& value);

}  // namespace tool
