#include "CommandLine.h"

#include <algorithm>
#include <cctype>

#include "Errors.h"
#include "Options.h"

namespace tool {
namespace {

bool IsName(const std::string& text) {
  const auto isNameCharacter = [](unsigned char c) { return std::isalnum(c) != 0 || c == '_'; };
  return !text.empty() && std::isdigit(static_cast<unsigned char>(text.front())) == 0 &&
         std::all_of(text.begin(), text.end(), isNameCharacter);
}

class Parser {
 public:
  explicit Parser(const std::vector<std::string>& words) : words_(words) {}

  CommandLine Parse() {
    while (next_ < words_.size()) {
      const std::string& word = words_[next_++];
      if (onlyOperands_ || word.size() < 2 || word.front() != '-') {
        AddWord(word);
      } else if (word == "--") {
        onlyOperands_ = true;
      } else {
        AddOption(word);
      }
    }
    if (stepEnded_) throw UsageError("a method is missing after the last `+`");
    return std::move(line_);
  }

 private:
  void AddWord(const std::string& word) {
    if (word == "+") {
      if (line_.steps.empty() || stepEnded_) throw UsageError("a method is missing before a `+`");
      stepEnded_ = true;
      return;
    }
    if (line_.steps.empty() || stepEnded_) {
      line_.steps.push_back({word, {}, {}});
      stepEnded_ = false;
      return;
    }
    const std::size_t equals = word.find('=');
    if (equals != std::string::npos && IsName(word.substr(0, equals))) {
      line_.steps.back().assignments.push_back({word.substr(0, equals), word.substr(equals + 1)});
    } else {
      line_.steps.back().operands.push_back(word);
    }
  }

  void AddOption(const std::string& word) {
    const std::size_t equals = word.rfind("--", 0) == 0 ? word.find('=') : std::string::npos;
    const std::string name = word.substr(0, equals);
    if (equals != std::string::npos) attached_ = word.substr(equals + 1);
    const Option* option = FindOption(name);
    if (option == nullptr) throw UsageError("there is no option " + name);
    if (option->value == nullptr && attached_) throw UsageError(name + " takes no value");
    option->apply(line_, name, option->value == nullptr ? "" : ValueOf(name));
    attached_.reset();
  }

  std::string ValueOf(const std::string& option) {
    if (attached_) return *attached_;
    if (next_ == words_.size()) throw UsageError(option + " needs a value after it");
    return words_[next_++];
  }

  const std::vector<std::string>& words_;
  std::size_t next_ = 0;
  bool onlyOperands_ = false;
  bool stepEnded_ = false;               // by a `+`; the next word is a method
  std::optional<std::string> attached_;  // of --name=value
  CommandLine line_;
};

}  // namespace

CommandLine ParseCommandLine(const std::vector<std::string>& words) {
  return Parser(words).Parse();
}

}  // namespace tool
