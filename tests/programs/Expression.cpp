#include "Expression.h"

#include <algorithm>
#include <cctype>
#include <regex>
#include <utility>

namespace programs {
namespace {

bool IsDigit(char c) {
  return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

class Parser {
 public:
  Parser(const std::vector<std::string>& tokens, std::size_t& place) : tokens_(tokens), place_(place) {}

  // One level of operators after the other, the loosest first.
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
    if (!std::regex_match(name, std::regex("[A-Za-z_]\\w*"))) {
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

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

std::vector<std::string> Tokens(const std::string& line) {
  static const std::regex kToken(R"re('.*|//.*|"[^"]*"|&[cC][0-9a-fA-F]{6}\b|&[hH][0-9a-fA-F]{8}\b)re"
                                 R"re(|\d\w*(\.\d\w*)*|\w+|<>|<=|>=|[^ ])re");
  std::vector<std::string> tokens;
  for (auto token = std::sregex_iterator(line.begin(), line.end(), kToken); token != std::sregex_iterator(); ++token) {
    const std::string text = token->str();
    if (text[0] == '\'' || text.compare(0, 2, "//") == 0) break;
    if (text == "\"") throw ProgramError("a text without an end");
    if (text == "&") throw ProgramError("a colour is &cRRGGBB or &hTTRRGGBB");
    tokens.push_back(text);
  }
  return tokens;
}

Expression ParseExpression(const std::vector<std::string>& tokens, std::size_t& place) {
  return Parser(tokens, place).Parse();
}

}  // namespace programs
