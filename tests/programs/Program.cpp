#include "Program.h"

#include <algorithm>
#include <cmath>
#include <regex>

namespace programs {
namespace {

using host::Type;
using host::Value;
using Kind = Expression::Kind;

bool IsNumber(Type type) {
  return type == Type::Integer || type == Type::Double;
}

Type TypeNamed(const std::string& name) {
  for (const Type type : {Type::Integer, Type::Double, Type::Boolean, Type::Colour, Type::Picture, Type::String}) {
    if (host::SameName(name, host::TypeName(type))) return type;
  }
  return Type::None;
}

std::optional<double> NumberOf(const std::optional<Value>& value) {
  if (!value) return {};
  if (value->Is<std::int32_t>()) return value->AsInteger();
  if (value->Is<double>()) return value->AsDouble();
  return {};
}

Value NumberValue(Type type, double number) {
  return type == Type::Integer ? Value(static_cast<std::int32_t>(number)) : Value(number);
}

// The host's functions of numbers. Each takes one or two numbers.
std::optional<double> Computed(const std::string& function, double a, double b) {
  if (function == "abs") return std::fabs(a);
  if (function == "ceil") return std::ceil(a);
  if (function == "floor") return std::floor(a);
  if (function == "sin") return std::sin(a);
  if (function == "cos") return std::cos(a);
  if (function == "tan") return std::tan(a);
  if (function == "min") return std::min(a, b);
  if (function == "max") return std::max(a, b);
  return {};
}

// Other names of the host that the programs use, with their types.
const std::map<std::string, Type>& HostNames() {
  static const std::map<std::string, Type> names = {
      {"picture.open", Type::Picture}, {"getfolderitem", Type::None}, {"msgbox", Type::None},
      {"str", Type::String},           {"picture", Type::None},       {"rgb", Type::Colour},
  };
  return names;
}

[[noreturn]] void Fail(const std::string& text) {
  throw ProgramError(text);
}

// The tokens after the word at `place`. Throws if it is another word.
std::size_t After(const std::vector<std::string>& tokens, std::size_t place, const char* word) {
  if (place >= tokens.size() || Lower(tokens[place]) != word) Fail("expected `" + std::string(word) + "`");
  return place + 1;
}

struct Named {
  std::string name;
  Type type;
};

// Reads `name As Type, [ByRef] name As Type ...` up to anything else.
std::vector<Named> ParseNames(const std::vector<std::string>& tokens, std::size_t& place) {
  std::vector<Named> names;
  std::vector<std::string> waiting;
  const auto at = [&](std::size_t i) { return i < tokens.size() ? tokens[i] : std::string(); };
  for (;;) {
    if (Lower(at(place)) == "byref") ++place;
    waiting.push_back(at(place++));
    if (Lower(at(place)) == "as") {
      for (const std::string& name : waiting) names.push_back({name, TypeNamed(at(place + 1))});
      waiting.clear();
      place += 2;
    }
    if (at(place) != ",") break;
    ++place;
  }
  if (!waiting.empty()) Fail(waiting.front() + " has no type");
  return names;
}

}  // namespace

Program::Program(host::Host& plugin, const host::PictureShape& photo) : plugin_(plugin), shape_(photo) {}

std::vector<std::string> Program::Check(const std::vector<std::string>& lines, int firstLine) {
  photo_ = host::Picture(shape_);
  photo_.Fill(0xFF336699);
  variables_.clear();
  functions_.clear();
  result_ = Type::None;
  Declare("photo", Type::Picture);

  std::vector<std::string> complaints;
  const auto each = [&](const auto& take) {
    for (std::size_t i = 0; i < lines.size(); ++i) {
      try {
        std::smatch found;
        const bool fails = std::regex_search(lines[i], found, std::regex("// error ([0-9]+)"));
        expectedError_ = fails ? std::stoi(found[1]) : 0;
        errorSeen_ = !fails;
        const Tokens tokens = programs::Tokens(lines[i]);
        if (!tokens.empty()) take(tokens);
      } catch (const std::runtime_error& error) {
        const std::string line = "line " + std::to_string(firstLine + static_cast<int>(i)) + ": " + error.what();
        if (std::find(complaints.begin(), complaints.end(), line) == complaints.end()) complaints.push_back(line);
      }
    }
  };
  each([this](const Tokens& tokens) { DeclareFunction(tokens); });
  each([this](const Tokens& tokens) {
    Take(tokens);
    if (!errorSeen_) Fail("nothing fails with error " + std::to_string(expectedError_));
  });
  return complaints;
}

// ---- Statements ----

void Program::Declare(const std::string& name, Type type) {
  variables_[Lower(name)] = Term{type, {}, false, Lower(name)};
}

void Program::DeclareFunction(const Tokens& tokens) {
  const std::string first = Lower(tokens[0]);
  if (tokens.size() < 4 || (first != "function" && first != "sub")) return;
  Function function;
  std::size_t place = After(tokens, 2, "(");
  if (tokens[place] != ")") {
    for (const Named& parameter : ParseNames(tokens, place)) function.parameters.push_back(parameter.type);
  }
  place = After(tokens, place, ")");
  if (first == "function") function.result = TypeNamed(tokens.at(After(tokens, place, "as")));
  functions_[Lower(tokens[1])] = function;
}

void Program::BeginFunction(const Tokens& tokens) {
  result_ = functions_[Lower(tokens.at(1))].result;
  std::size_t place = 3;
  if (tokens.at(place) == ")") return;
  for (const Named& parameter : ParseNames(tokens, place)) Declare(parameter.name, parameter.type);
}

void Program::Take(const Tokens& tokens) {
  const std::string first = Lower(tokens[0]);
  static const std::set<std::string> kAlone = {"end", "else", "next", "wend", "try", "exit", "continue", "catch"};
  if (kAlone.count(first) != 0) return;
  if (first == "function" || first == "sub") return BeginFunction(tokens);
  if (first == "dim" || first == "property") return TakeDim(tokens);
  if (first == "raise") return static_cast<void>(Whole(tokens, 1));
  if (first == "return") {
    if (tokens.size() > 1) ExpectFit("the function", result_, Whole(tokens, 1));
    return;
  }
  if (first == "if" || first == "elseif" || first == "while") {
    std::size_t place = 1;
    const Term condition = Evaluate(ParseExpression(tokens, place));
    if (condition.type != Type::Boolean && condition.type != Type::None) Fail("a condition is a boolean");
    if (first == "while") return;
    place = After(tokens, place, "then");
    if (place < tokens.size()) Take(Tokens(tokens.begin() + static_cast<std::ptrdiff_t>(place), tokens.end()));
    return;
  }
  if (first == "for") {
    std::size_t place = 1;
    const std::vector<Named> counter = ParseNames(tokens, place);
    Declare(counter.front().name, counter.front().type);
    place = After(tokens, place, "=");
    Assign(counter.front().name, Evaluate(ParseExpression(tokens, place)));
    place = After(tokens, place, "to");
    Evaluate(ParseExpression(tokens, place));
    if (place < tokens.size()) Whole(tokens, After(tokens, place, "step"));
    return;
  }
  TakeSimple(tokens, 0);
}

void Program::TakeDim(const Tokens& tokens) {
  std::size_t place = 1;
  const std::vector<Named> names = ParseNames(tokens, place);
  for (const Named& name : names) Declare(name.name, name.type);
  if (place < tokens.size()) Assign(names.front().name, Whole(tokens, After(tokens, place, "=")));
}

// An assignment or a call.
void Program::TakeSimple(const Tokens& tokens, std::size_t place) {
  if (tokens.size() > place + 1 && tokens[place + 1] == "=") return Assign(tokens[place], Whole(tokens, place + 2));
  const auto equals = std::find(tokens.begin(), tokens.end(), "=");
  const bool setsMember = equals != tokens.end() && tokens.at(place + 1) == ".";
  if (setsMember) {  // a member of an object of the host
    Whole(Tokens(tokens.begin(), equals), place);
    Whole(tokens, static_cast<std::size_t>(equals - tokens.begin()) + 1);
    return;
  }
  if (Lower(tokens[place]) == "msgbox" && tokens.at(place + 1) != "(") {
    Whole(tokens, place + 1);
    return;
  }
  const Term term = Whole(tokens, place);
  if (!term.isNothing && term.type != Type::None) Fail("the result is not used");
}

void Program::Assign(const std::string& name, const Term& term) {
  const auto found = variables_.find(Lower(name));
  if (found == variables_.end()) Fail("unknown name " + name);
  Term& variable = found->second;
  if (term.isNothing) Fail("there is no result to assign to " + name);
  ExpectFit(name, variable.type, term);
  variable.value = term.value;
  if (IsNumber(variable.type) && term.value) {
    if (const auto number = NumberOf(term.value)) variable.value = NumberValue(variable.type, *number);
  }
}

// Objects of the host and nil fit every type.
void Program::ExpectFit(const std::string& name, Type type, const Term& term) {
  const bool fits = type == term.type || (IsNumber(type) && IsNumber(term.type)) || term.type == Type::None;
  if (!fits) Fail(name + " is " + TypeName(type) + ", and not " + TypeName(term.type));
}

// ---- Expressions ----

Program::Term Program::Whole(const Tokens& tokens, std::size_t place) {
  const Term term = Evaluate(ParseExpression(tokens, place));
  if (place != tokens.size()) Fail("unexpected `" + tokens[place] + "`");
  return term;
}

Program::Term Program::Evaluate(const Expression& expression) {
  const std::string& text = expression.text;
  switch (expression.kind) {
    case Kind::Number: {
      const bool isFraction = text.find('.') != std::string::npos;
      const Type type = isFraction ? Type::Double : Type::Integer;
      return {type, NumberValue(type, std::stod(text)), isFraction};
    }
    case Kind::Text:
      return {Type::String, Value(text)};
    case Kind::Colour:
      return {Type::Colour, Value(host::Colour{static_cast<std::uint32_t>(std::stoul(text, nullptr, 16))})};
    case Kind::Name:
      return EvaluateName(text);
    case Kind::Member:
      return EvaluateMember(expression);
    case Kind::Call:
      return EvaluateCall(expression);
    case Kind::New:
      for (const Expression& argument : expression.parts) Evaluate(argument);
      return {TypeNamed(text)};
    case Kind::Operator:
      break;
  }
  return EvaluateOperator(expression);
}

Program::Term Program::EvaluateName(const std::string& name) {
  const std::string key = Lower(name);
  if (key == "true" || key == "false") return {Type::Boolean, Value(key == "true")};
  if (key == "nil") return {Type::None, Value()};
  const auto variable = variables_.find(key);
  if (variable != variables_.end()) return variable->second;
  if (HostNames().count(key) != 0) return {};
  Fail("unknown name " + name);
}

Program::Term Program::EvaluateMember(const Expression& member) {
  const Term of = Evaluate(member.parts[0]);
  if (of.type == Type::None) return {};  // a member of an object of the host
  const std::string name = Lower(member.text);
  if (of.type != Type::Picture || (name != "width" && name != "height")) {
    Fail(std::string("a ") + TypeName(of.type) + " has no " + member.text);
  }
  const host::Picture picture = ValueOf(of, Type::Picture).AsPicture();
  if (!picture) return {Type::Integer};
  return {Type::Integer, Value(name == "width" ? picture.Width() : picture.Height())};
}

Program::Term Program::EvaluateOperator(const Expression& expression) {
  std::vector<Term> terms;
  for (const Expression& part : expression.parts) terms.push_back(Evaluate(part));
  const std::string& sign = expression.text;
  for (const Term& term : terms) {
    if (term.isNothing) Fail("there is no result before or after `" + sign + "`");
  }
  if (sign == "not" || sign == "and" || sign == "or") {
    for (const Term& term : terms) {
      if (term.type != Type::Boolean && term.type != Type::None) Fail("`" + sign + "` is of booleans");
    }
    return {Type::Boolean};
  }
  static const std::set<std::string> kComparisons = {"=", "<>", "<", ">", "<=", ">="};
  if (kComparisons.count(sign) != 0) return {Type::Boolean};
  const auto isOf = [&](auto&& test) { return std::all_of(terms.begin(), terms.end(), test); };
  if (sign == "+" && isOf([](const Term& term) { return term.type == Type::String; })) return {Type::String};
  if (!isOf([](const Term& term) { return IsNumber(term.type) || term.type == Type::None; })) {
    Fail("`" + sign + "` is of numbers");
  }
  const bool isWhole = sign != "/" && isOf([](const Term& term) { return term.type == Type::Integer; });
  const Type type = isWhole ? Type::Integer : Type::Double;
  const std::optional<double> a = NumberOf(terms[0].value);
  if (terms.size() == 1) return {type, a ? std::optional(NumberValue(type, -*a)) : std::nullopt, terms[0].isFraction};
  const std::optional<double> b = NumberOf(terms[1].value);
  if (!a || !b) return {type};
  const double number = sign == "+"     ? *a + *b
                        : sign == "-"   ? *a - *b
                        : sign == "*"   ? *a * *b
                        : *b == 0       ? 0
                        : sign == "/"   ? *a / *b
                        : sign == "mod" ? std::fmod(*a, *b)
                                        : std::trunc(*a / *b);
  return {type, NumberValue(type, number)};
}

Program::Term Program::EvaluateCall(const Expression& call) {
  const Expression& function = call.parts[0];
  std::vector<Term> arguments;
  for (std::size_t i = 1; i < call.parts.size(); ++i) arguments.push_back(Evaluate(call.parts[i]));
  const bool isMethod = host::SameName(function.text.substr(0, 4), "LMX_");
  if (function.kind == Kind::Name) {
    return isMethod ? CallMethod(function.text, nullptr, std::move(arguments)) : CallFunction(function.text, arguments);
  }
  if (function.kind != Kind::Member) Fail("what is called has no name");
  const Expression& owner = function.parts[0];
  const auto known = HostNames().find(Lower(owner.text + "." + function.text));
  if (owner.kind == Kind::Name && known != HostNames().end()) return {known->second};
  const Term of = Evaluate(owner);
  if (isMethod) return CallMethod(function.text, &of, std::move(arguments));
  if (of.type == Type::None || (of.type == Type::Picture && Lower(function.text) == "save")) return {};
  Fail(std::string("a ") + TypeName(of.type) + " has no " + function.text);
}

Program::Term Program::CallFunction(const std::string& name, const std::vector<Term>& arguments) {
  const std::string key = Lower(name);
  const auto own = functions_.find(key);
  if (own != functions_.end()) {
    const Function& function = own->second;
    if (function.parameters.size() != arguments.size()) Fail("wrong number of arguments for " + name);
    for (std::size_t i = 0; i < arguments.size(); ++i) ValueOf(arguments[i], function.parameters[i]);
    return {function.result, {}, false, "", function.result == Type::None};
  }
  const auto known = HostNames().find(key);
  if (known != HostNames().end()) return {known->second};
  const bool takesTwo = key == "min" || key == "max";
  if (!Computed(key, 0, 0)) Fail("unknown function " + name);
  if (arguments.size() != (takesTwo ? 2 : 1)) Fail("wrong number of arguments for " + name);
  const bool isWhole =
      std::all_of(arguments.begin(), arguments.end(), [](const Term& term) { return term.type == Type::Integer; });
  const Type type = isWhole && (takesTwo || key == "abs") ? Type::Integer : Type::Double;
  const std::optional<double> a = NumberOf(arguments[0].value), b = NumberOf(arguments.back().value);
  if (!a || !b) return {type};
  return {type, NumberValue(type, *Computed(key, *a, *b))};
}

// ---- Calls of the plug-in ----

Program::Term Program::CallMethod(const std::string& name, const Term* picture, std::vector<Term> arguments) {
  const host::Method* method = plugin_.FindMethod(name);
  if (method == nullptr || !host::SameName(method->name, name)) Fail("no method " + name);
  const std::vector<host::Parameter>& parameters = method->parameters;
  const bool extends = !parameters.empty() && parameters.front().extends;
  if (extends != (picture != nullptr)) {
    Fail(method->name + (extends ? " is called on a picture" : " is not called on anything"));
  }
  if (picture != nullptr) arguments.insert(arguments.begin(), *picture);
  if (arguments.size() != parameters.size()) {
    Fail(method->name + " takes " + std::to_string(parameters.size() - extends) + " arguments, not " +
         std::to_string(arguments.size() - extends));
  }
  std::vector<Value> values;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const host::Parameter& parameter = parameters[i];
    if (parameter.byRef && (arguments[i].variable.empty() || arguments[i].type != parameter.type)) {
      Fail(parameter.name + " must be a variable As " + TypeName(parameter.type));
    }
    try {
      values.push_back(ValueOf(arguments[i], parameter.type));
    } catch (const ProgramError& error) {
      Fail(method->name + ", " + parameter.name + ": " + error.what());
    }
  }

  const host::Outcome outcome = plugin_.Call(method->name, values);
  const int code = plugin_.Call("LMX_GetLastError", {}).result.AsInteger();
  const bool reports = host::SameName(name, "LMX_GetLastError") || host::SameName(name, "LMX_GetErrorMessage");
  if (!reports) {
    if (code != expectedError_) {
      Fail(method->name + " leaves error " + std::to_string(code) + ", not " + std::to_string(expectedError_));
    }
    if (code == 0 && method->result == Type::Picture && outcome.result.IsNil()) Fail(method->name + " returns nil");
    errorSeen_ = true;
  }
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    if (parameters[i].byRef) variables_[arguments[i].variable].value = outcome.arguments[i];
  }
  called_.insert(method->name);
  return {method->result, outcome.result, false, "", method->result == Type::None};
}

// The argument of this type for a term. Throws if the term does not fit.
host::Value Program::ValueOf(const Term& term, Type type) const {
  const bool isNil = term.type == Type::None && term.value;
  if (isNil && (type == Type::Picture || type == Type::None)) return {};
  if (type == Type::None) return {};
  if (term.isNothing) Fail("a call without a result");
  if (term.type == Type::None) Fail("of a type that is not known here");
  const bool fits = term.type == type || (IsNumber(term.type) && IsNumber(type));
  if (!fits) Fail(std::string(TypeName(term.type)) + " instead of " + TypeName(type));
  if (type == Type::Integer && term.isFraction) Fail("a fraction instead of integer");
  if (IsNumber(type)) return NumberValue(type, NumberOf(term.value).value_or(type == Type::Integer ? 40 : 0.5));
  if (term.value) return *term.value;
  if (type == Type::Picture) return photo_;
  if (type == Type::Colour) return host::Colour{0};
  if (type == Type::Boolean) return false;
  return std::string("text");
}

}  // namespace programs
