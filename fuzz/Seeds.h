// The inputs that the fuzzers start with: the cases that the tests name.
#pragma once

#include <vector>

#include "Corpus.h"

namespace fuzz {

std::vector<Bytes> MethodSeeds();
std::vector<Bytes> KernelSeeds();
std::vector<Bytes> PictureFileSeeds();
std::vector<Bytes> CommandLineSeeds();

/// The words of the command line's dictionary, from the tables of lmx.
std::vector<std::string> CommandLineWords();

}  // namespace fuzz
