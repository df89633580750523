#include "Options.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <sstream>

#include "host/Value.h"

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

std::vector<Size> Options::Sizes(const std::string& name, const std::string& fallback) const {
  std::vector<Size> sizes;
  std::istringstream words(Text(name, fallback));
  for (std::string word; std::getline(words, word, ',');) {
    Size size;
    if (std::sscanf(word.c_str(), "%dx%d", &size.width, &size.height) != 2 || size.width < 1 || size.height < 1) {
      throw host::Error("a size is WxH");
    }
    sizes.push_back(size);
  }
  return sizes;
}

bool Options::Wants(const std::string& name, const std::string& text) const {
  return text.find(Text(name, "")) != std::string::npos;
}

int RunProgram(int argc, char** argv, const char* usage, void (*run)(const Options&)) {
  try {
    run(Options(argc, argv, usage));
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", argv[0], error.what());
    return 1;
  }
}

}  // namespace bench
