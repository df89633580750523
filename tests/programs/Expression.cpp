#include "Expression.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <initializer_list>
#include <utility>

namespace programs {
namespace {

bool IsWordCharacter(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

bool IsDigit(char c) {
  return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

class Parser {
 public:
  Parser(const std::vector<std::string>& tokens, std::size_t& place) : tokens_(tokens), place_(place) {}

  // One level of operators after the other, those that bind least first.
  Expression Parse(std::size_t level = 0) {
    static const std::vector<std::vector<std::string>> kLevels = {
        {"or"}, {"and"}, {"=", "<>", "<", ">", "<=", ">="}, {"+", "-"}, {"*", "/", "\\", "mod"}};
    if (level == kLevels.size()) return ParseUnary();
    Expression left = Parse(level + 1);
    for (;;) {
      const std::string sign = Lower(Peek());
      const std::vector<std::string>& signs = kLevels[level];
      if (std::find(signs.begin(), signs.end(), sign) == signs.end()) return left;
      ++place_;
      Expression right = Parse(level + 1);
      left = {Expression::Kind::Operator, sign, {std::move(left), std::move(right)}};
    }
  }

 private:
  std::string Peek() const { return place_ < tokens_.size() ? tokens_[place_] : ""; }

  bool Accept(const char* token) {
    if (Lower(Peek()) != token) return false;
    ++place_;
    return true;
  }

  void Expect(const char* token) {
    if (!Accept(token)) throw ProgramError("expected `" + std::string(token) + "` before `" + Peek() + "`");
  }

  std::string Name() {
    const std::string name = Peek();
    if (name.empty() || !IsWordCharacter(name.front()) || IsDigit(name.front())) {
      throw ProgramError("expected a name before `" + name + "`");
    }
    ++place_;
    return name;
  }

  Expression ParseUnary() {
    for (const char* sign : {"-", "not"}) {
      if (Accept(sign)) return {Expression::Kind::Operator, sign, {ParseUnary()}};
    }
    Expression value = ParsePrimary();
    for (;;) {
      if (Accept(".")) {
        std::string name = Name();
        value = {Expression::Kind::Member, std::move(name), {std::move(value)}};
      } else if (Accept("(")) {
        value = {Expression::Kind::Call, "", {std::move(value)}};
        AddArguments(value);
      } else {
        return value;
      }
    }
  }

  void AddArguments(Expression& call) {
    if (Accept(")")) return;
    do call.parts.push_back(Parse());
    while (Accept(","));
    Expect(")");
  }

  Expression ParsePrimary() {
    if (Accept("(")) {
      Expression value = Parse();
      Expect(")");
      return value;
    }
    if (Accept("new")) {
      Expression made = {Expression::Kind::New, Name(), {}};
      if (Accept("(")) AddArguments(made);
      return made;
    }
    const std::string token = Peek();
    if (!token.empty()) {
      const auto literal = [&](Expression::Kind kind, std::string text) {
        ++place_;
        return Expression{kind, std::move(text), {}};
      };
      if (IsDigit(token.front())) return literal(Expression::Kind::Number, token);
      if (token.front() == '"') return literal(Expression::Kind::Text, token.substr(1, token.size() - 2));
      if (token.front() == '&') return literal(Expression::Kind::Colour, token.substr(2));
    }
    return {Expression::Kind::Name, Name(), {}};
  }

  const std::vector<std::string>& tokens_;
  std::size_t& place_;
};

}  // namespace

std::vector<std::string> Tokens(std::string_view line) {
  std::vector<std::string> tokens;
  const auto at = [line](std::size_t i) { return i < line.size() ? line[i] : '\0'; };
  for (std::size_t i = 0; i < line.size();) {
    const std::size_t start = i;
    if (at(i) == ' ') {
      ++i;
      continue;
    }
    if (at(i) == '\'' || line.substr(i, 2) == "//") break;
    if (at(i) == '"') {
      i = line.find('"', i + 1);
      if (i == std::string_view::npos) throw ProgramError("a text without an end");
      ++i;
    } else if (at(i) == '&') {
      const char form = static_cast<char>(std::tolower(static_cast<unsigned char>(at(i + 1))));
      for (i += 2; std::isxdigit(static_cast<unsigned char>(at(i))) != 0;) ++i;
      const std::size_t digits = i - start - 2;
      if (!(form == 'c' && digits == 6) && !(form == 'h' && digits == 8)) {
        throw ProgramError("a colour is &cRRGGBB or &hTTRRGGBB");
      }
    } else if (IsWordCharacter(at(i))) {
      const bool isNumber = IsDigit(at(i));
      while (IsWordCharacter(at(i)) || (isNumber && at(i) == '.' && IsDigit(at(i + 1)))) ++i;
    } else {
      static constexpr std::array<std::string_view, 3> kLongSigns = {"<>", "<=", ">="};
      const bool isLong = std::find(kLongSigns.begin(), kLongSigns.end(), line.substr(i, 2)) != kLongSigns.end();
      i += isLong ? 2 : 1;
    }
    tokens.emplace_back(line.substr(start, i - start));
  }
  return tokens;
}

Expression ParseExpression(const std::vector<std::string>& tokens, std::size_t& place) {
  return Parser(tokens, place).Parse();
}

}  // namespace programs
