// Files as bytes, read completely, and written completely or not at all.
#pragma once

#include <sys/stat.h>

#include <string>
#include <utility>
#include <vector>

namespace tool {

using Bytes = std::vector<unsigned char>;

/// An open file, closed at the end.
class File {
 public:
  explicit File(int descriptor) : descriptor_(descriptor) {}
  File(File&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  ~File();
  bool IsOpen() const { return descriptor_ >= 0; }
  int Descriptor() const { return descriptor_; }
  /// What was written may turn out not to fit only now.
  bool Close();

 private:
  int descriptor_;
};

/// A temporary file beside another file, which it replaces at the end. If it does not come to that
/// it is removed, also when a signal ends the process. There is one at a time.
class Replacement {
 public:
  /// Throws Failure if there can be no such file.
  explicit Replacement(std::string path);
  ~Replacement();
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;

  const File& Target() const { return file_; }
  /// Replaces the file. Mode, owner and group are those of the file that it replaces, as far as the
  /// user may set them, or those of a new file. Throws Failure.
  void TakePlace(const struct stat* replaced);

 private:
  File Make();

  const std::string path_;
  std::string temporary_;
  File file_;
};

/// The name of standard input and of standard output.
constexpr const char* kStandardStream = "-";

/// Throws Failure, naming the path, and Interrupted on Ctrl-C.
void WriteAll(const File& file, const std::string& path, const Bytes& bytes);

/// Reads a file of at least one byte. Throws Failure for anything else, and Interrupted on Ctrl-C.
Bytes ReadFile(const std::string& path);

/// Writes a file, which appears at once and complete. Throws Failure if it cannot be written, also
/// if the user may not write an existing file, and Interrupted on Ctrl-C; an existing file is then
/// unchanged. A device or pipe is written directly.
void WriteFile(const std::string& path, const Bytes& bytes);

}  // namespace tool
