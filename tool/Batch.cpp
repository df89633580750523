#include "Batch.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <list>
#include <map>
#include <optional>
#include <set>
#include <thread>
#include <utility>

#include "Errors.h"
#include "File.h"
#include "Interrupt.h"
#include "Progress.h"

namespace tool {
namespace {

// A process that works on one picture and writes its report into a pipe. The report is a sequence
// of pieces, each a letter and a text that ends in a zero. It is complete when the pipe ends.
struct Worker {
  std::size_t index;
  pid_t process;
  File pipe;
  std::string text;
};

constexpr char kOut = 'o', kNote = 'n', kFailure = 'f';

std::string Packed(const Told& told) {
  const auto piece = [](char letter, const std::string& text) { return letter + text + '\0'; };
  std::string packed = piece(kOut, told.out);
  for (const std::string& note : told.notes) packed += piece(kNote, note);
  return packed + piece(kFailure, told.failure);
}

Told Unpacked(const std::string& packed) {
  Told told;
  for (std::size_t at = 0; at < packed.size();) {
    const char letter = packed[at];
    const std::string text(packed.c_str() + at + 1);
    at += 1 + text.size() + 1;
    if (letter == kOut) told.out = text;
    if (letter == kNote) told.notes.push_back(text);
    if (letter == kFailure) told.failure = text;
  }
  return told;
}

// Everything that the forked process does. It ends when its parent ends, for any reason.
[[noreturn]] void Work(pid_t parent, const File& pipe, const std::function<Told()>& work) {
  RememberEnds(false);
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (getppid() != parent) EndBy(SIGTERM);
  HideProgress();
  int status = Failure::kStatus;
  try {
    const std::string text = Packed(work());
    WriteAll(pipe, "what a worker tells", Bytes(text.begin(), text.end()));
    status = 0;
  } catch (const Interrupted&) {
    status = Interrupted::kStatus;
  } catch (const std::exception&) {  // there is nobody left to tell
  }
  std::exit(status);
}

class Batch {
 public:
  Batch(const std::vector<std::string>& names, std::ostream& out, const std::function<Told(std::size_t)>& work)
      : names_(names), out_(out), work_(work), told_(names.size()) {
    RememberEnds(true);
  }
  ~Batch() {
    Stop();
    RememberEnds(false);
  }
  Batch(const Batch&) = delete;
  Batch& operator=(const Batch&) = delete;

  void Run(std::size_t workers) {
    while (done_ < names_.size()) {
      while (workers_.size() < workers && started_ < names_.size()) Start();
      Show();
      Listen();
      if (InterruptRequested()) break;
      Tell();
    }
    Stop();
    line_.Erase();
    if (RememberedEnd() != 0 && RememberedEnd() != SIGINT) EndBy(RememberedEnd());
    const std::string part = std::to_string(done_) + " of " + std::to_string(names_.size()) + " pictures";
    if (InterruptRequested()) throw Interrupted("stopped after " + part);
    if (!failures_.empty()) throw Failure(FailureText());
  }

 private:
  void Start() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) throw Failure(std::string("no pipe: ") + std::strerror(errno));
    File reading(ends[0]), writing(ends[1]);
    std::fflush(nullptr);  // what is written later would be written twice
    const std::size_t index = started_;
    const pid_t parent = getpid(), process = fork();
    if (process < 0) throw Failure(std::string("no process: ") + std::strerror(errno));
    if (process == 0) Work(parent, writing, [this, index] { return work_(index); });
    workers_.push_back({index, process, std::move(reading), {}});
    ++started_;
  }

  // Waits until a worker has written something, or for a moment, since a signal may have come.
  void Listen() {
    constexpr int kMoment = 100;
    std::vector<pollfd> files;
    for (const Worker& worker : workers_) files.push_back({worker.pipe.Descriptor(), POLLIN, 0});
    if (poll(files.data(), files.size(), kMoment) <= 0) return;
    auto file = files.begin();
    for (auto worker = workers_.begin(); worker != workers_.end(); ++file) {
      const bool ended = file->revents != 0 && !Read(*worker);
      if (ended) Finish(*worker);
      worker = ended ? workers_.erase(worker) : std::next(worker);
    }
  }

  // False when there is no more.
  static bool Read(Worker& worker) {
    std::array<char, 1 << 14> buffer;
    const ssize_t count = read(worker.pipe.Descriptor(), buffer.data(), buffer.size());
    if (count < 0) return errno == EINTR;
    worker.text.append(buffer.data(), static_cast<std::size_t>(count));
    return count != 0;
  }

  static int StatusOf(pid_t process) {
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) continue;
    return status;
  }

  void Finish(const Worker& worker) {
    const int status = StatusOf(worker.process);
    if (InterruptRequested() && worker.text.empty()) return;
    Told told = Unpacked(worker.text);
    if (WIFSIGNALED(status)) {
      told.failure = std::string("its process was ended: ") + strsignal(WTERMSIG(status));
    } else if (WEXITSTATUS(status) != 0 && told.failure.empty()) {
      told.failure = "its process has told nothing";
    }
    ++done_;
    if (!told.failure.empty()) failures_.emplace(worker.index, told.failure);
    told_[worker.index] = std::move(told);
  }

  // Prints the reports whose predecessors are all printed.
  void Tell() {
    for (; next_ < told_.size() && told_[next_]; ++next_) {
      Told& told = *told_[next_];
      if (!told.out.empty() || !told.notes.empty()) line_.Erase();
      for (const std::string& note : told.notes) {
        if (notes_.insert(note).second) std::cerr << "lmx: " << note << '\n';
      }
      out_ << told.out;
      told = {};
    }
  }

  void Show() {
    std::string text = std::to_string(done_) + " of " + std::to_string(names_.size()) + " pictures";
    if (!failures_.empty()) text += ", " + std::to_string(failures_.size()) + " failed";
    line_.Show(text);
  }

  // Ends the workers with the signal that ends this process, and waits for them.
  void Stop() {
    const int end = RememberedEnd() == 0 ? SIGTERM : RememberedEnd();
    for (const Worker& worker : workers_) kill(worker.process, end);
    for (const Worker& worker : workers_) StatusOf(worker.process);
    workers_.clear();
  }

  std::string FailureText() const {
    std::string text = std::to_string(failures_.size()) + " of " + std::to_string(names_.size()) + " pictures failed";
    for (const auto& [index, failure] : failures_) {
      const std::string name = names_[index] + ": ";
      text += "\n  " + (failure.rfind(name, 0) == 0 ? "" : name) + failure;
    }
    return text;
  }

  const std::vector<std::string>& names_;
  std::ostream& out_;
  const std::function<Told(std::size_t)>& work_;
  std::list<Worker> workers_;
  std::vector<std::optional<Told>> told_;
  std::map<std::size_t, std::string> failures_;
  std::set<std::string> notes_;
  std::size_t started_ = 0, done_ = 0, next_ = 0;
  StatusLine line_;
};

}  // namespace

void RunBatch(const std::vector<std::string>& names, std::size_t workers, std::ostream& out,
              const std::function<Told(std::size_t)>& work) {
  Batch(names, out, work).Run(workers);
}

std::size_t Processors() {
  return std::max(std::thread::hardware_concurrency(), 1U);
}

}  // namespace tool
