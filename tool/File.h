// Files as bytes: read whole, and written whole or not at all.
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

/// A file that lies beside another until it takes its place. It is gone if it does not come to
/// that, also when a signal ends the process. There is one at a time.
class Replacement {
 public:
  /// Throws Failure if there can be no such file.
  explicit Replacement(std::string path);
  ~Replacement();
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;

  const File& Target() const { return file_; }
  /// With the mode of the file that it replaces, and with its owner and group where the user may
  /// give them; without one, as new files are. Throws Failure.
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

/// Throws Failure for anything but a file of some bytes, and Interrupted on Ctrl-C.
Bytes ReadFile(const std::string& path);

/// Throws Failure if the file cannot be written, which is so too if the user may not write the one
/// that is there, and Interrupted on Ctrl-C; then what was there before is still there. The file
/// appears at once and complete. A device or pipe is written directly.
void WriteFile(const std::string& path, const Bytes& bytes);

}  // namespace tool
