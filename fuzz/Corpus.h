// A target's corpus: the inputs that are worth replaying, packed into one file.
//
// For each input, sorted by name: a line with its size and its name, its bytes, and a newline.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace fuzz {

using Bytes = std::vector<std::uint8_t>;

/// Inputs by name. libFuzzer names an input by the hash of its bytes; a former finding has a name
/// that says what it was.
using Corpus = std::map<std::string, Bytes>;

// All of these throw std::runtime_error if a file cannot be read or written.

Bytes ReadBytes(const std::filesystem::path& file);
void WriteBytes(const Bytes& bytes, const std::filesystem::path& file);

/// Packs and unpacks. Unpacking refuses bytes that Packed() cannot produce.
Bytes Packed(const Corpus& corpus);
Corpus Unpacked(const Bytes& bytes);

/// The files in a folder.
Corpus FilesIn(const std::filesystem::path& folder);

}  // namespace fuzz
