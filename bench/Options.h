// The command lines of the measuring programs: --name=value and flags.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace bench {

struct Size {
  int width = 0;
  int height = 0;
  double Pixels() const { return static_cast<double>(width) * height; }
};

class Options {
 public:
  /// `usage` lists all names. Prints it and ends the process on --help and on an unknown word.
  Options(int argc, char** argv, const char* usage);

  bool Has(const std::string& name) const { return values_.count(name) != 0; }
  std::string Text(const std::string& name, const std::string& fallback) const;
  double Number(const std::string& name, double fallback) const;
  /// The sizes that the value lists as WxH,... Throws host::Error for anything else.
  std::vector<Size> Sizes(const std::string& name, const std::string& fallback) const;
  /// Whether `text` is selected: it contains the option's value, or the option was not given.
  bool Wants(const std::string& name, const std::string& text) const;

 private:
  std::map<std::string, std::string> values_;
};

/// The whole of main(). Prints an exception of `run` to standard error; the status is then 1.
int RunProgram(int argc, char** argv, const char* usage, void (*run)(const Options&));

}  // namespace bench
