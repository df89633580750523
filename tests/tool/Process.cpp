#include "Process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <ostream>
#include <sstream>
#include <system_error>

namespace tool_test {
namespace {

[[noreturn]] void Fail(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

// A pipe: one end reads what the other end writes.
struct Channel {
  int reading;
  int writing;
};

Channel Pipe() {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) Fail("pipe");
  return {ends[0], ends[1]};
}

Channel Terminal() {
  const int master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0) Fail("terminal");
  const int slave = open(ptsname(master), O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (slave < 0) Fail("terminal");
  return {master, slave};
}

void ApplyInChild(const Surroundings& surroundings) {
  sigset_t interrupt;
  sigemptyset(&interrupt);
  sigaddset(&interrupt, SIGINT);
  sigprocmask(surroundings.pendingInterrupt ? SIG_BLOCK : SIG_UNBLOCK, &interrupt, nullptr);
  signal(SIGINT, SIG_DFL);
  if (surroundings.pendingInterrupt) raise(SIGINT);
  if (surroundings.largestFile >= 0) {
    const auto size = static_cast<rlim_t>(surroundings.largestFile);
    const rlimit limit = {size, size};
    setrlimit(RLIMIT_FSIZE, &limit);
    signal(SIGXFSZ, SIG_DFL);
  }
}

// Reads both to the end. At the end, a terminal reports an error.
void Drain(int out, std::string& outText, int error, std::string& errorText) {
  std::array<pollfd, 2> files = {{{out, POLLIN, 0}, {error, POLLIN, 0}}};
  const std::array<std::string*, 2> texts = {&outText, &errorText};
  while (files[0].fd >= 0 || files[1].fd >= 0) {
    if (poll(files.data(), files.size(), -1) < 0 && errno != EINTR) Fail("poll");
    for (std::size_t i = 0; i < files.size(); ++i) {
      if (files[i].fd < 0 || files[i].revents == 0) continue;
      std::array<char, 4096> buffer{};
      const ssize_t count = read(files[i].fd, buffer.data(), buffer.size());
      if (count > 0) {
        texts[i]->append(buffer.data(), static_cast<std::size_t>(count));
      } else {
        close(files[i].fd);
        files[i].fd = -1;
      }
    }
  }
}

int StatusOf(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) Fail("waitpid");
  }
  return status;
}

}  // namespace

int InChild(const std::function<void()>& action) {
  const pid_t child = fork();
  if (child < 0) Fail("fork");
  if (child != 0) return StatusOf(child);
  try {
    action();
  } catch (...) {
    _exit(99);
  }
  std::fflush(nullptr);
  _exit(testing::Test::HasFailure() ? 1 : 0);
}

Ended Lmx(const std::vector<std::string>& arguments, Surroundings surroundings) {
  std::vector<std::string> words = {LMX_PROGRAM};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);

  const Channel in = Pipe();
  const auto size = static_cast<ssize_t>(surroundings.input.size());
  if (write(in.writing, surroundings.input.data(), surroundings.input.size()) != size) Fail("input");
  const Channel out = Pipe(), error = surroundings.terminal ? Terminal() : Pipe();
  const pid_t child = fork();
  if (child < 0) Fail("fork");
  if (child == 0) {
    ApplyInChild(surroundings);
    dup2(in.reading, STDIN_FILENO);
    dup2(out.writing, STDOUT_FILENO);
    dup2(error.writing, STDERR_FILENO);
    execv(pointers.front(), pointers.data());
    _exit(127);
  }
  close(in.reading);
  close(out.writing);
  close(error.writing);
  if (surroundings.started) surroundings.started(child, in.writing);
  close(in.writing);
  Ended ended;
  Drain(out.reading, ended.out, error.reading, ended.error);
  const int status = StatusOf(child);
  ended.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return ended;
}

bool operator==(const Ended& a, const Ended& b) {
  return a.status == b.status && a.out == b.out && a.error == b.error;
}

void PrintTo(const Ended& ended, std::ostream* out) {
  *out << "status " << ended.status << "\noutput: " << ended.out << "\nerrors: " << ended.error;
}

bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

bool StartsWith(const std::string& text, const std::string& start) {
  return text.rfind(start, 0) == 0;
}

std::vector<std::string> Lines(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

}  // namespace tool_test
