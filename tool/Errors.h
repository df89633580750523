// The ways in which lmx ends badly, and their exit statuses.
#pragma once

#include <stdexcept>

namespace tool {

/// The plug-in, a file or the machine failed.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
  static constexpr int kStatus = 1;
};

/// The same for commands whose status 1 has another meaning.
class Trouble : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
  static constexpr int kStatus = 2;
};

/// The command line is wrong.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
  static constexpr int kStatus = 2;
};

/// The user pressed Ctrl-C. Also thrown out of the yield service, through the plug-in.
class Interrupted : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
  static constexpr int kStatus = 130;
};

}  // namespace tool
