// The corpus commands of scripts/fuzz:
//
//   fuzz_corpus seeds TARGET FOLDER   writes the seeds of a target, one file each
//   fuzz_corpus words DICT FILE       writes a dictionary and adds the words of the command line
//   fuzz_corpus unpack FILE FOLDER    writes the inputs of a corpus, one file each
//   fuzz_corpus pack FOLDER FILE      packs the files of a folder into the corpus, and prints what
//                                     has changed. Former findings are always kept. In inputs of
//                                     methods, the method byte becomes the method's place.
#include <cstdio>
#include <exception>
#include <stdexcept>

#include "Corpus.h"
#include "MethodInput.h"
#include "Seeds.h"

namespace fuzz {
namespace {

Corpus SeedsOf(const std::string& target) {
  static const std::map<std::string, std::vector<Bytes> (*)()> targets = {
      {"methods", MethodSeeds},
      {"kernels", KernelSeeds},
      {"picture_file", PictureFileSeeds},
      {"command_line", CommandLineSeeds},
  };
  const auto found = targets.find(target);
  if (found == targets.end()) throw std::runtime_error("no target " + target);
  Corpus corpus;
  for (Bytes& seed : found->second()) corpus["seed-" + std::to_string(corpus.size())] = std::move(seed);
  return corpus;
}

void WriteFiles(const Corpus& corpus, const std::filesystem::path& folder) {
  std::filesystem::create_directories(folder);
  for (const auto& [name, bytes] : corpus) WriteBytes(bytes, folder / name);
}

void WriteDictionary(const std::filesystem::path& from, const std::filesystem::path& to) {
  Bytes dictionary = ReadBytes(from);
  for (const std::string& word : CommandLineWords()) {
    const std::string line = word.empty() ? "" : "\"" + word + "\"\n";
    dictionary.insert(dictionary.end(), line.begin(), line.end());
  }
  WriteBytes(dictionary, to);
}

bool WasFinding(const std::string& name) {
  return name.rfind("finding-", 0) == 0;
}

void Pack(const std::filesystem::path& folder, const std::filesystem::path& file) {
  const Corpus before = std::filesystem::exists(file) ? Unpacked(ReadBytes(file)) : Corpus();
  Corpus corpus = FilesIn(folder);
  for (auto& [name, bytes] : corpus) {
    if (file.stem() == "methods" && !bytes.empty()) bytes[0] = MethodByte(bytes[0]);
  }
  for (const auto& [name, bytes] : before) {
    if (WasFinding(name)) corpus[name] = bytes;
  }
  std::size_t kept = 0;
  for (const auto& [name, bytes] : corpus) {
    const auto old = before.find(name);
    if (old != before.end() && old->second == bytes) ++kept;
  }
  const Bytes packed = Packed(corpus);
  WriteBytes(packed, file);
  std::printf("%s: %zu added, %zu removed, %zu kept; %zu bytes\n", file.stem().c_str(), corpus.size() - kept,
              before.size() - kept, kept, packed.size());
}

bool Carried(const std::string& command, const std::string& from, const std::string& to) {
  if (command == "seeds") return WriteFiles(SeedsOf(from), to), true;
  if (command == "words") return WriteDictionary(from, to), true;
  if (command == "unpack") return WriteFiles(Unpacked(ReadBytes(from)), to), true;
  if (command == "pack") return Pack(from, to), true;
  return false;
}

}  // namespace
}  // namespace fuzz

int main(int argc, char** argv) {
  try {
    if (argc == 4 && fuzz::Carried(argv[1], argv[2], argv[3])) return 0;
    std::fprintf(stderr,
                 "usage: fuzz_corpus seeds TARGET FOLDER | words DICT FILE | unpack FILE FOLDER | pack FOLDER FILE\n");
  } catch (const std::exception& error) {
    std::fprintf(stderr, "fuzz_corpus: %s\n", error.what());
  }
  return 1;
}
