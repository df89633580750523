// The constants of the plug-in that bound a tile, a band, an array or a threshold. Each comes with
// lengths equal to it, one below and one above. A test compares this list with the sources, so a
// constant that is new or has another value must be entered here.
#pragma once

#include <string>
#include <vector>

namespace support {

struct Bound {
  std::string name;
  std::string value;         ///< as the sources write it
  std::vector<int> lengths;  ///< numbers of rows or columns; of kCachedPixels, pixels
};

const std::vector<Bound>& Bounds();

/// Integer constants that are no such bound, and why.
struct OtherConstant {
  std::string name;
  std::string reason;
};
const std::vector<OtherConstant>& OtherConstants();

/// The lengths of all bounds, sorted, without those of more than a few hundred pixels.
std::vector<int> LengthsAtBounds();
/// The lengths of one bound.
const std::vector<int>& LengthsAt(const std::string& name);

}  // namespace support
