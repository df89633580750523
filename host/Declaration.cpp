#include "Declaration.h"

#include <algorithm>
#include <array>
#include <utility>

#include "Value.h"

namespace host {
namespace {

constexpr std::array<std::pair<const char*, Type>, 6> kTypes = {{
    {"integer", Type::Integer},
    {"double", Type::Double},
    {"boolean", Type::Boolean},
    {"color", Type::Colour},
    {"picture", Type::Picture},
    {"string", Type::String},
}};

char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool IsLetter(char c) {
  return (Lower(c) >= 'a' && Lower(c) <= 'z') || c == '_';
}
bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// Reads a declaration from left to right.
class Parser {
 public:
  explicit Parser(std::string_view text) : text_(text) {}

  Method Parse() {
    Method method;
    method.declaration = std::string(text_);
    method.name = Word("a method name");
    Expect('(');
    if (!Accept(')')) {
      do method.parameters.push_back(ParseParameter(method));
      while (Accept(','));
      Expect(')');
    }
    if (!AtEnd()) {
      ExpectKeyword("as");
      method.result = ParseType();
    }
    if (!AtEnd()) Fail("the end");
    return method;
  }

 private:
  Parameter ParseParameter(const Method& method) {
    Parameter parameter;
    std::string word = Word("a parameter");
    if (SameName(word, "extends")) {
      if (!method.parameters.empty()) Fail("`extends` only on the first parameter");
      parameter.extends = true;
      word = Word("a parameter name");
    }
    if (SameName(word, "ByRef") || SameName(word, "ByVal")) {
      parameter.byRef = SameName(word, "ByRef");
      word = Word("a parameter name");
    }
    for (const char* keyword : {"extends", "ByRef", "ByVal", "as"}) {
      if (SameName(word, keyword)) Fail("a parameter name before this place");
    }
    for (const Parameter& earlier : method.parameters) {
      if (SameName(earlier.name, word)) Fail("no second parameter of this name");
    }
    parameter.name = word;
    ExpectKeyword("as");
    parameter.type = ParseType();
    const bool object = parameter.type == Type::Picture || parameter.type == Type::String;
    if (parameter.byRef && object) Fail("no object by reference");
    return parameter;
  }

  Type ParseType() {
    const std::string word = Word("a type");
    for (const auto& [name, type] : kTypes) {
      if (SameName(word, name)) return type;
    }
    Fail("a known type before this place");
  }

  std::string Word(const char* what) {
    SkipBlanks();
    const std::size_t start = place_;
    if (place_ < text_.size() && IsLetter(text_[place_])) {
      while (place_ < text_.size() && (IsLetter(text_[place_]) || IsDigit(text_[place_]))) ++place_;
    }
    if (place_ == start) Fail(what);
    return std::string(text_.substr(start, place_ - start));
  }

  void ExpectKeyword(const char* keyword) {
    const std::size_t start = place_;
    if (!AtEnd() && IsLetter(text_[place_]) && SameName(Word("a word"), keyword)) return;
    place_ = start;
    Fail(std::string("`") + keyword + "`");
  }

  bool Accept(char c) {
    if (AtEnd() || text_[place_] != c) return false;
    ++place_;
    return true;
  }

  void Expect(char c) {
    if (!Accept(c)) Fail(std::string("`") + c + "`");
  }

  void SkipBlanks() {
    while (place_ < text_.size() && (text_[place_] == ' ' || text_[place_] == '\t')) ++place_;
  }

  bool AtEnd() {
    SkipBlanks();
    return place_ == text_.size();
  }

  [[noreturn]] void Fail(const std::string& expected) const {
    throw Error("malformed declaration \"" + std::string(text_) + "\": expected " + expected + " at character " +
                std::to_string(place_ + 1));
  }

  std::string_view text_;
  std::size_t place_ = 0;
};

}  // namespace

const char* TypeName(Type type) {
  for (const auto& [name, known] : kTypes) {
    if (known == type) return name;
  }
  return "nothing";
}

Method ParseDeclaration(std::string_view text) {
  return Parser(text).Parse();
}

bool SameName(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return Lower(x) == Lower(y); });
}

}  // namespace host
