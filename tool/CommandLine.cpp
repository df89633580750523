#include "CommandLine.h"

#include <algorithm>
#include <cctype>
#include <limits>

#include "Errors.h"
#include "Values.h"

namespace tool {
namespace {

constexpr int kMostJobs = 1024;

bool IsName(const std::string& text) {
  const auto isNameCharacter = [](unsigned char c) { return std::isalnum(c) != 0 || c == '_'; };
  return !text.empty() && std::isdigit(static_cast<unsigned char>(text.front())) == 0 &&
         std::all_of(text.begin(), text.end(), isNameCharacter);
}

host::Storage ParseStorage(const std::string& text) {
  if (text == "context") return host::Storage::BitmapContext;
  if (text == "buffer") return host::Storage::Buffer;
  throw UsageError("--storage is `context` or `buffer`, not `" + text + "`");
}

Format ParseFormat(const std::string& text) {
  if (host::SameName(text, "png")) return Format::Png;
  if (host::SameName(text, "jpeg") || host::SameName(text, "jpg")) return Format::Jpeg;
  throw UsageError("--format is `png` or `jpeg`, not `" + text + "`");
}

std::int32_t ParseNumber(const std::string& option, const std::string& text) {
  try {
    return ParseValue(host::Type::Integer, text).AsInteger();
  } catch (const UsageError& error) {
    throw UsageError(option + ": " + error.what());
  }
}

std::int32_t ParseNumber(const std::string& option, const std::string& text, int least, int most) {
  const std::int32_t number = ParseNumber(option, text);
  if (number < least || number > most) {
    throw UsageError(option + " is " + std::to_string(least) + " to " + std::to_string(most) + ", not `" + text + "`");
  }
  return number;
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
    if (stepEnded_) throw UsageError("a method is missing behind the last `+`");
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
    if (name == "-o" || name == "--output") {
      line_.output = ValueOf(name);
    } else if (name == "--plugin") {
      line_.plugin = ValueOf(name);
    } else if (name == "--yield") {
      line_.yield = ParseNumber(name, ValueOf(name));
    } else if (name == "--repeat") {
      line_.repeat = ParseNumber(name, ValueOf(name), 1, std::numeric_limits<std::int32_t>::max());
    } else if (name == "-j" || name == "--jobs") {
      line_.jobs = ParseNumber(name, ValueOf(name), 1, kMostJobs);
    } else if (name == "--tolerance") {
      line_.tolerance = ParseNumber(name, ValueOf(name), 0, 255);
    } else if (name == "--format") {
      line_.format = ParseFormat(ValueOf(name));
    } else if (name == "--compression") {
      line_.compression = ParseNumber(name, ValueOf(name), Encoding::kLeastCompression, Encoding::kMostCompression);
    } else if (name == "--quality") {
      line_.quality = ParseNumber(name, ValueOf(name), Encoding::kLeastQuality, Encoding::kMostQuality);
    } else if (name == "--storage") {
      line_.storage = ParseStorage(ValueOf(name));
    } else if (bool* flag = FlagOf(name)) {
      if (attached_) throw UsageError(name + " takes no value");
      *flag = true;
    } else {
      throw UsageError("there is no option " + name);
    }
    attached_.reset();
  }

  bool* FlagOf(const std::string& name) {
    if (name == "--opaque") return &line_.opaque;
    if (name == "--json") return &line_.json;
    if (name == "-v" || name == "--verbose") return &line_.verbose;
    if (name == "-h" || name == "--help") return &line_.help;
    if (name == "--version") return &line_.version;
    return nullptr;
  }

  std::string ValueOf(const std::string& option) {
    if (attached_) return *attached_;
    if (next_ == words_.size()) throw UsageError(option + " needs a value behind it");
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
