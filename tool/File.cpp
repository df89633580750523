#include "File.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "Errors.h"
#include "Interrupt.h"

namespace tool {
namespace {

constexpr off_t kMaxFileSize = off_t{256} << 20;
constexpr std::size_t kPiece = std::size_t{1} << 20;  // between two looks for a Ctrl-C

[[noreturn]] void Fail(const std::string& path, const std::string& what) {
  throw Failure(path + ": " + what);
}

[[noreturn]] void FailErrno(const std::string& path, const char* doing) {
  const int error = errno;
  Fail(path, std::string("cannot ") + doing + ": " + std::strerror(error));
}

// A signal ends the wait for the other end of a pipe.
File Open(const std::string& path, int flags) {
  int descriptor = -1;
  while ((descriptor = open(path.c_str(), flags | O_CLOEXEC)) < 0 && errno == EINTR) StopIfInterrupted(path);
  return File(descriptor);
}

// Until its other end is closed.
Bytes ReadStandardInput() {
  const std::string name = "standard input";
  if (isatty(STDIN_FILENO) != 0) Fail(name, "is a terminal, and no picture");
  Bytes bytes;
  for (ssize_t count = 1; count != 0;) {
    StopIfInterrupted(name);
    const std::size_t done = bytes.size();
    bytes.resize(done + kPiece);
    count = read(STDIN_FILENO, bytes.data() + done, kPiece);
    if (count < 0 && errno != EINTR) FailErrno(name, "read");
    bytes.resize(done + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    if (bytes.size() > static_cast<std::size_t>(kMaxFileSize)) Fail(name, "is larger than 256 MiB");
  }
  StopIfInterrupted(name);
  if (bytes.empty()) Fail(name, "is empty");
  return bytes;
}

void WriteStandardOutput(const Bytes& bytes) {
  const std::string name = "standard output";
  File file(dup(STDOUT_FILENO));
  if (!file.IsOpen()) FailErrno(name, "write");
  WriteAll(file, name, bytes);
  if (!file.Close()) FailErrno(name, "write");
}

mode_t ModeOfNewFiles() {
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

// The file itself, where the path is a link to it.
std::string Resolved(const std::string& path) {
  std::error_code error;
  const std::filesystem::path resolved = std::filesystem::canonical(path, error);
  return error ? path : resolved.string();
}

}  // namespace

File::~File() {
  if (IsOpen()) close(descriptor_);
}

bool File::Close() {
  return close(std::exchange(descriptor_, -1)) == 0;
}

Replacement::Replacement(std::string path) : path_(std::move(path)), temporary_(path_ + ".XXXXXX"), file_(Make()) {}

Replacement::~Replacement() {
  if (!temporary_.empty()) unlink(temporary_.c_str());
  RemoveOnSignal(nullptr);
}

File Replacement::Make() {
  const SignalsHeld held;
  File file(mkostemp(temporary_.data(), O_CLOEXEC));
  if (!file.IsOpen()) FailErrno(path_, "write");
  RemoveOnSignal(temporary_.c_str());
  return file;
}

void Replacement::TakePlace(const struct stat* replaced) {
  mode_t mode = replaced == nullptr ? ModeOfNewFiles() : replaced->st_mode & 07777;
  if (replaced != nullptr && fchown(file_.Descriptor(), replaced->st_uid, replaced->st_gid) != 0) {
    mode &= 0777;  // nobody gets the rights of another owner
    if (fchown(file_.Descriptor(), static_cast<uid_t>(-1), replaced->st_gid) != 0) mode &= 0707;
  }
  if (fchmod(file_.Descriptor(), mode) != 0 || !file_.Close()) FailErrno(path_, "write");
  StopIfInterrupted(path_);
  if (rename(temporary_.c_str(), path_.c_str()) != 0) FailErrno(path_, "write");
  temporary_.clear();
}

void WriteAll(const File& file, const std::string& path, const Bytes& bytes) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    StopIfInterrupted(path);
    const ssize_t count = write(file.Descriptor(), bytes.data() + done, std::min(kPiece, bytes.size() - done));
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) FailErrno(path, "write");
    done += static_cast<std::size_t>(count);
  }
}

Bytes ReadFile(const std::string& path) {
  if (path == kStandardStream) return ReadStandardInput();
  // A pipe without a writer would be waited for.
  const File file = Open(path, O_RDONLY | O_NONBLOCK);
  struct stat status = {};
  if (!file.IsOpen() || fstat(file.Descriptor(), &status) != 0) FailErrno(path, "open");
  if (S_ISDIR(status.st_mode)) Fail(path, "is a folder, not a picture");
  if (!S_ISREG(status.st_mode)) Fail(path, "is no ordinary file");
  if (status.st_size > kMaxFileSize) Fail(path, "is larger than 256 MiB");
  if (status.st_size == 0) Fail(path, "is empty");
  Bytes bytes(static_cast<std::size_t>(status.st_size));
  std::size_t done = 0;
  while (done < bytes.size()) {
    if (done != 0) StopIfInterrupted(path);
    const ssize_t count = read(file.Descriptor(), bytes.data() + done, std::min(kPiece, bytes.size() - done));
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) FailErrno(path, "read");
    if (count == 0) Fail(path, "became shorter while it was read");
    done += static_cast<std::size_t>(count);
  }
  return bytes;
}

void WriteFile(const std::string& path, const Bytes& bytes) {
  if (path == kStandardStream) return WriteStandardOutput(bytes);
  File old = Open(path, O_WRONLY);
  if (!old.IsOpen() && errno != ENOENT) FailErrno(path, "write");
  struct stat status = {};
  if (old.IsOpen() && fstat(old.Descriptor(), &status) != 0) FailErrno(path, "write");
  if (old.IsOpen() && !S_ISREG(status.st_mode)) {
    WriteAll(old, path, bytes);
    if (!old.Close()) FailErrno(path, "write");
    return;
  }
  Replacement replacement(Resolved(path));
  WriteAll(replacement.Target(), path, bytes);
  replacement.TakePlace(old.IsOpen() ? &status : nullptr);
}

}  // namespace tool
