// A target's corpus: the inputs that are worth replaying, packed into one file.
//
// Of each input, in the order of the names: a line with its size and its name, its bytes, and the
// end of a line.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace fuzz {

using Bytes = std::vector<std::uint8_t>;

/// Inputs by name. libFuzzer names an input after the hash of its bytes; what was a finding has a
/// name that says so.
using Corpus = std::map<std::string, Bytes>;

// All of these throw std::runtime_error where a file cannot be read or written.

Bytes ReadBytes(const std::filesystem::path& file);
void WriteBytes(const Bytes& bytes, const std::filesystem::path& file);

/// Packs and unpacks. Bytes that Packed() does not give are refused.
Bytes Packed(const Corpus& corpus);
Corpus Unpacked(const Bytes& bytes);

/// The files of a folder.
Corpus FilesIn(const std::filesystem::path& folder);

}  // namespace fuzz
