// Work on several pictures at once, each in a process of its own: the plug-in and the stand-in host
// know one thread, and what a picture needs of memory is given back with it.
#pragma once

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace tool {

/// What the work on one picture tells.
struct Told {
  std::string out;                 ///< for standard output
  std::vector<std::string> notes;  ///< for standard error, each once, whatever the number of pictures
  std::string failure;             ///< empty: none
};

/// Does the work for each name, `workers` of them at a time, every one in a process that this one
/// forks. What they tell comes in the order of the names, on `out` and on standard error; failures
/// come last. A terminal shows how many are done. Throws Failure with all failures if there were
/// any, and Interrupted on Ctrl-C, after all work has ended.
void RunBatch(const std::vector<std::string>& names, std::size_t workers, std::ostream& out,
              const std::function<Told(std::size_t)>& work);

/// The processors that this process may use.
std::size_t Processors();

}  // namespace tool
