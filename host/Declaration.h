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
  bool extends = false;  ///< the argument can also be the object of the call, as in p.Trim(...); first parameter only
};

/// A declared method.
struct Method {
  std::string name;
  std::vector<Parameter> parameters;
  Type result = Type::None;
  std::string declaration;    ///< the text as it was registered
  void (*entry)() = nullptr;  ///< set by the host
};

/// Parses a declaration. Case does not matter; blanks matter only between words. Anything that is
/// no declaration throws host::Error with its position: a missing or surplus word, an unknown type,
/// a parameter declared twice, `extends` on a parameter other than the first, ByRef on a picture or
/// string.
Method ParseDeclaration(std::string_view text);

/// Whether two names are the same in the host's language, which ignores case.
bool SameName(std::string_view a, std::string_view b);

}  // namespace host
