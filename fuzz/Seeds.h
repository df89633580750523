// What the fuzzers start with: the cases that the tests name, as inputs of the targets.
#pragma once

#include <vector>

#include "Corpus.h"

namespace fuzz {

std::vector<Bytes> MethodSeeds();
std::vector<Bytes> KernelSeeds();
std::vector<Bytes> PictureFileSeeds();
std::vector<Bytes> CommandLineSeeds();

/// What the command line's dictionary has from the tables of lmx.
std::vector<std::string> CommandLineWords();

}  // namespace fuzz
