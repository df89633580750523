#include "Corpus.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace fuzz {

Bytes ReadBytes(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  Bytes bytes(std::istreambuf_iterator<char>(stream), {});
  if (!stream.is_open() || stream.bad()) throw std::runtime_error("cannot read " + file.string());
  return bytes;
}

void WriteBytes(const Bytes& bytes, const std::filesystem::path& file) {
  std::ofstream stream(file, std::ios::binary);
  stream.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  if (!stream.flush()) throw std::runtime_error("cannot write " + file.string());
}

Bytes Packed(const Corpus& corpus) {
  Bytes packed;
  for (const auto& [name, bytes] : corpus) {
    const std::string head = std::to_string(bytes.size()) + " " + name + "\n";
    packed.insert(packed.end(), head.begin(), head.end());
    packed.insert(packed.end(), bytes.begin(), bytes.end());
    packed.push_back('\n');
  }
  return packed;
}

Corpus Unpacked(const Bytes& bytes) {
  Corpus corpus;
  for (auto at = bytes.begin(); at != bytes.end();) {
    const auto end = std::find(at, bytes.end(), '\n');
    const std::string head(at, end);
    const std::size_t size = std::strtoul(head.c_str(), nullptr, 10);
    if (size >= static_cast<std::size_t>(bytes.end() - end)) break;
    at = end + 1 + static_cast<std::ptrdiff_t>(size);
    corpus[head.substr(head.find(' ') + 1)] = Bytes(end + 1, at);
    if (at != bytes.end()) ++at;
  }
  if (Packed(corpus) != bytes) throw std::runtime_error("not a packed corpus");
  return corpus;
}

Corpus FilesIn(const std::filesystem::path& folder) {
  Corpus corpus;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    corpus[entry.path().filename().string()] = ReadBytes(entry.path());
  }
  return corpus;
}

}  // namespace fuzz
