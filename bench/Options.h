// The command lines of the measuring programs: --name=value, and flags.
#pragma once

#include <map>
#include <string>

namespace bench {

class Options {
 public:
  /// `usage` tells all names. Ends the process with it on --help, and on a word that is not in it.
  Options(int argc, char** argv, const char* usage);

  bool Has(const std::string& name) const { return values_.count(name) != 0; }
  std::string Text(const std::string& name, const std::string& fallback) const;
  double Number(const std::string& name, double fallback) const;
  /// Whether `text` is wanted: part of it is the option's value, or the option was not given.
  bool Wants(const std::string& name, const std::string& text) const;

 private:
  std::map<std::string, std::string> values_;
};

}  // namespace bench
