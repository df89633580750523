// Expressions of the host's language, as programs in the documentation contain them.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace programs {

/// Describes what is wrong with a program.
class ProgramError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct Expression {
  enum class Kind {
    Number,   ///< text: as written, with or without a point
    Text,     ///< text: without its quotes
    Colour,   ///< text: the hexadecimal digits after &c or &h
    Name,     ///< text: a variable, a function or a class
    Member,   ///< text: what is after the point; parts[0]: what is before it
    Call,     ///< parts[0]: what is called; then the arguments
    New,      ///< text: the class; then the arguments
    Operator  ///< text: as written, words in lower case; parts: one or two
  };
  Kind kind;
  std::string text;
  std::vector<Expression> parts;
};

/// The language ignores case.
std::string Lower(std::string text);

/// Words, numbers, texts with their quotes, colours and signs. A comment (// or ') ends the line.
std::vector<std::string> Tokens(const std::string& line);

/// Reads an expression from `place` on, and moves `place` past it. Throws ProgramError.
Expression ParseExpression(const std::vector<std::string>& tokens, std::size_t& place);

}  // namespace programs
