// Works on several pictures at once, each in a process of its own: plug-in and stand-in host have
// one thread, and the end of a process frees all memory of its picture.
#pragma once

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace tool {

/// What the work on one picture reports.
struct Told {
  std::string out;                 ///< for standard output
  std::vector<std::string> notes;  ///< for standard error, each once, whatever the number of pictures
  std::string failure;             ///< empty: none
};

/// Does the work for each name, `workers` at a time, each in a forked process. Reports come in the
/// order of the names, on `out` and on standard error; failures come last. A terminal shows how
/// many are done. After all work has ended, throws Failure with all failures, if any, and
/// Interrupted on Ctrl-C.
void RunBatch(const std::vector<std::string>& names, std::size_t workers, std::ostream& out,
              const std::function<Told(std::size_t)>& work);

/// The processors that this process may use.
std::size_t Processors();

}  // namespace tool
