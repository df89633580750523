// Few rows of choices in which every two choices meet.
#pragma once

#include <vector>

namespace support {

/// Factor f has the choices 0 to counts[f] - 1. A row has a choice of each factor, and for every
/// two factors, every choice of the one stands in some row together with every choice of the other.
/// `first` are rows that are wanted anyway.
std::vector<std::vector<int>> CoveringArray(const std::vector<int>& counts, std::vector<std::vector<int>> first = {});

}  // namespace support
