// Declarations of methods in the host's language, for example
//   LMX_Trim(extends p as picture, left as integer,ByRef mean as double) as picture
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host {

enum class Type { None, Integer, Double, Boolean, Colour, Picture, String };

/// The type's name as declarations write it; "nothing" for None.
const char* TypeName(Type type);

struct Parameter {
  std::string name;
  Type type = Type::None;
  bool byRef = false;    ///< the method stores a result through it
  bool extends = false;  ///< the method can also be called as a method of this argument; only on the first
};

/// A declared method.
struct Method {
  std::string name;
  std::vector<Parameter> parameters;
  Type result = Type::None;
  std::string declaration;    ///< the text that was parsed
  void (*entry)() = nullptr;  ///< filled by the host
};

/// Parses a declaration. Upper and lower case are the same, and blanks matter only between words.
/// Throws host::Error naming the place on anything that is no declaration: a word missing or too
/// many, an unknown type, a parameter twice, `extends` after the first parameter, ByRef of a
/// picture or string.
Method ParseDeclaration(std::string_view text);

/// Whether two names of the host's language are the same.
bool SameName(std::string_view a, std::string_view b);

}  // namespace host
