// What the fuzzers start with: the cases that the tests name, as inputs of the targets.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace fuzz {

using Bytes = std::vector<std::uint8_t>;

std::vector<Bytes> MethodSeeds();
std::vector<Bytes> KernelSeeds();
std::vector<Bytes> PictureFileSeeds();
std::vector<Bytes> CommandLineSeeds();

}  // namespace fuzz
