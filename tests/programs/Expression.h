// Expressions of the host's language, as the programs of the documentation write them.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace programs {

/// A program that is wrong, in words.
class ProgramError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct Expression {
  enum class Kind {
    Number,   ///< text: as it is written, with a point or without
    Text,     ///< text: without its quotes
    Colour,   ///< text: the hexadecimal digits after &c or &h
    Name,     ///< text: a variable, a function or a class
    Member,   ///< text: what is after the point; parts[0]: what is before it
    Call,     ///< parts[0]: what is called; then the arguments
    New,      ///< text: the class; then the arguments
    Operator  ///< text: as it is written, words in lower case; parts: one or two
  };
  Kind kind;
  std::string text;
  std::vector<Expression> parts;
};

/// The language does not tell upper from lower case.
std::string Lower(std::string text);

/// Words, numbers, texts with their quotes, colours and signs. A comment (// or ') ends the line.
std::vector<std::string> Tokens(const std::string& line);

/// Reads tokens from `place` on, and moves it after the expression. Throws ProgramError.
Expression ParseExpression(const std::vector<std::string>& tokens, std::size_t& place);

}  // namespace programs
