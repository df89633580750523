#include "Options.h"

#include <cstdio>
#include <cstdlib>

namespace bench {

Options::Options(int argc, char** argv, const char* usage) {
  for (int i = 1; i < argc; ++i) {
    const std::string word = argv[i];
    const std::size_t equals = word.find('=');
    const std::string name = word.substr(0, equals);
    const bool known =
        name.rfind("--", 0) == 0 && name.size() > 2 &&
        std::string(usage).find(equals == std::string::npos ? name + " " : name + "=") != std::string::npos;
    if (!known || name == "--help") {
      std::fputs(usage, name == "--help" ? stdout : stderr);
      std::exit(name == "--help" ? 0 : 2);
    }
    values_[name.substr(2)] = equals == std::string::npos ? "" : word.substr(equals + 1);
  }
}

std::string Options::Text(const std::string& name, const std::string& fallback) const {
  const auto found = values_.find(name);
  return found == values_.end() ? fallback : found->second;
}

double Options::Number(const std::string& name, double fallback) const {
  const auto found = values_.find(name);
  return found == values_.end() ? fallback : std::atof(found->second.c_str());
}

bool Options::Wants(const std::string& name, const std::string& text) const {
  return text.find(Text(name, "")) != std::string::npos;
}

}  // namespace bench
