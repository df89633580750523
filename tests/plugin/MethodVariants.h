// Every method with arguments that depend on nothing but a size, some methods several times.
#pragma once

#include <vector>

#include "support/MethodTable.h"
#include "support/PluginTest.h"

namespace support {

struct Size {
  int width, height;
};

struct Variant {
  const char* name;
  const char* method;
  Size (*source)(Size size);
  std::vector<host::Value> (*arguments)(Size size, host::Colour frame);  ///< but for the yield, the last one
  bool byColumns;                                                        ///< whether the result is made by columns
};

/// The size that they are given is about that of the result.
const std::vector<Variant>& Variants();
const Method& MethodOf(const Variant& variant);
MethodCall CallOf(const Variant& variant, Size size, host::Colour frame, int yield);

}  // namespace support
