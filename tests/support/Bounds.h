// The constants of the plug-in that bound a tile, a band, an array or a threshold, each with sizes
// at it, one below and one above. A test compares this list with the sources: a constant that is
// new or has another value belongs here.
#pragma once

#include <string>
#include <vector>

namespace support {

struct Bound {
  std::string name;
  std::string value;         ///< as the sources have it
  std::vector<int> lengths;  ///< of rows or columns
};

const std::vector<Bound>& Bounds();

/// Integers that bound nothing of the kind, and why.
struct OtherConstant {
  std::string name;
  std::string reason;
};
const std::vector<OtherConstant>& OtherConstants();

/// All lengths of all bounds, sorted, but for those of more than a few hundred pixels.
std::vector<int> LengthsAtBounds();
/// Lengths of one bound.
const std::vector<int>& LengthsAt(const std::string& name);

}  // namespace support
