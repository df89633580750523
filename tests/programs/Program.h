// Checks programs in the host's language, as the documentation contains them, and runs their calls.
//
// Every name must be known. Every call of the plug-in must fit its declaration: the method, the
// number and types of the arguments, the ByRef arguments, and whether the method has a result. Then
// the stand-in host makes the call. It must succeed, or fail with the code in a comment on its
// line, such as // error 31.
//
// A program is not interpreted: each line runs once, in order, whatever the conditions and loops
// are. A value that is unknown, such as a parameter, is an ordinary value of its type; a picture is
// the photo. Objects of the host other than pictures, numbers and texts have no type. They may be
// used in any way, except as arguments.
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
  /// A program of this name, or one that opens a picture, gets a copy of `photo`.
  Program(host::Host& plugin, const host::PictureShape& photo);

  /// Checks a program and returns what is wrong with it: "line 3: ..."; the first line has the
  /// number `firstLine`.
  std::vector<std::string> Check(const std::vector<std::string>& lines, int firstLine = 1);

  /// The methods that were called successfully so far.
  const std::set<std::string>& Called() const { return called_; }

 private:
  // A value, if it is known.
  struct Term {
    host::Type type = host::Type::None;  // None: nothing, or an object of the host
    std::optional<host::Value> value = {};
    bool isFraction = false;  // a number written with a point
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
  std::map<std::string, Term> variables_;  // by name, in lower case
  std::map<std::string, Function> functions_;
  host::Type result_ = host::Type::None;  // of the function that is being read
  std::set<std::string> called_;
  int expectedError_ = 0;
  bool errorSeen_ = false;
};

}  // namespace programs
