// A small set of rows in which every pair of choices occurs.
#pragma once

#include <vector>

namespace support {

/// Factor f has the choices 0 to counts[f] - 1. A row has one choice of each factor. For every two
/// factors, every pair of their choices occurs in some row. The result starts with the rows
/// `first`.
std::vector<std::vector<int>> CoveringArray(const std::vector<int>& counts, std::vector<std::vector<int>> first = {});

}  // namespace support
