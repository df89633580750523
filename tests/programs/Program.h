// Checks programs in the host's language, as the documentation has them, and runs what they call.
//
// Every name must be known, every call of the plug-in must fit its declaration: the method, the
// number and kinds of the arguments, what a ByRef argument is, and whether there is a result to
// use. Then the call is made, by the stand-in host. It must succeed, or fail with the code that a
// comment on its line tells: // error 31.
//
// A program is not interpreted: its lines are taken once, in their order, whatever conditions and
// loops say. A value that does not come out of that, such as a parameter, is a plain one of its
// type; a picture is the photo. What belongs to the host beyond pictures, numbers and texts has no
// type and may be used as it likes, but not as an argument.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "Expression.h"
#include "host/Host.h"

namespace programs {

class Program {
 public:
  /// `photo` is what a program of this name, or one that opens a picture, gets; each gets its own.
  Program(host::Host& plugin, const host::PictureShape& photo);

  /// Takes a program, and returns what is wrong with it: "line 3: ..."; lines count from
  /// `firstLine`.
  std::vector<std::string> Check(const std::vector<std::string>& lines, int firstLine = 1);

  /// The methods that were called with success so far.
  const std::set<std::string>& Called() const { return called_; }

 private:
  // A value, as far as it is known.
  struct Term {
    host::Type type = host::Type::None;  // None: nothing, or something of the host's
    std::optional<host::Value> value = {};
    bool isFraction = false;  // a number that is written with a point
    std::string variable = {};
    bool isNothing = false;  // of a call without a result
  };
  struct Function {
    host::Type result = host::Type::None;
    std::vector<host::Type> parameters;
  };
  using Tokens = std::vector<std::string>;

  void Declare(const std::string& name, host::Type type);
  void DeclareFunction(const Tokens& tokens);
  void BeginFunction(const Tokens& tokens);
  void Take(const Tokens& tokens);
  void TakeDim(const Tokens& tokens);
  void TakeSimple(const Tokens& tokens, std::size_t place);
  void Assign(const std::string& name, const Term& term);
  static void ExpectFit(const std::string& name, host::Type type, const Term& term);

  Term Whole(const Tokens& tokens, std::size_t place);
  Term Evaluate(const Expression& expression);
  Term EvaluateName(const std::string& name);
  Term EvaluateMember(const Expression& member);
  Term EvaluateOperator(const Expression& expression);
  Term EvaluateCall(const Expression& call);
  Term CallFunction(const std::string& name, const std::vector<Term>& arguments);
  Term CallMethod(const std::string& name, const Term* picture, std::vector<Term> arguments);

  host::Value ValueOf(const Term& term, host::Type type) const;

  host::Host& plugin_;
  host::PictureShape shape_;
  host::Picture photo_;
  std::map<std::string, Term> variables_;  // by name in lower case
  std::map<std::string, Function> functions_;
  host::Type result_ = host::Type::None;  // of the function whose lines are taken
  std::set<std::string> called_;
  int expectedError_ = 0;
  bool errorSeen_ = false;
};

}  // namespace programs
