#include "Arguments.h"

#include <cstring>

namespace host {
namespace {

constexpr std::uint8_t kBeside = 0xC7;
// The upper bits of a boolean argument's word. Methods must look at the lowest byte only.
constexpr std::uint32_t kAboveBoolean = 0xC7C7C700;

std::size_t SizeOf(Type type) {
  switch (type) {
    case Type::Integer:
      return sizeof(int);
    case Type::Double:
      return sizeof(double);
    case Type::Boolean:
      return sizeof(bool);
    case Type::Colour:
      return sizeof(REALcolor);
    default:
      return 0;
  }
}

// Converts a value to the declared type; nil if that is impossible. Integers are accepted for all
// number types.
Value Convert(Type type, const Value& value) {
  const bool integer = value.Is<std::int32_t>();
  switch (type) {
    case Type::Integer:
      return integer ? value : Value();
    case Type::Double:
      return integer ? Value(double{0} + value.AsInteger()) : value.Is<double>() ? value : Value();
    case Type::Boolean:
      if (integer && (value.AsInteger() == 0 || value.AsInteger() == 1)) return Value(value.AsInteger() == 1);
      return value.Is<bool>() || value.Is<BooleanByte>() ? value : Value();
    case Type::Colour:
      if (integer) return Value(Colour{static_cast<std::uint32_t>(value.AsInteger())});
      return value.Is<Colour>() ? value : Value();
    case Type::Picture:
      return value.Is<Picture>() ? value : Value();
    case Type::String:
      return value.Is<std::string>() ? value : Value();
    case Type::None:
      break;
  }
  return {};
}

// Writes a value of a number type to memory, in the layout that the method reads.
void Store(const Value& value, std::uint8_t* place) {
  const auto copy = [place](auto number) { std::memcpy(place, &number, sizeof number); };
  if (value.Is<std::int32_t>()) copy(value.AsInteger());
  if (value.Is<double>()) copy(value.AsDouble());
  if (value.Is<bool>() || value.Is<BooleanByte>()) copy(value.AsBooleanByte());
  if (value.Is<Colour>()) copy(value.AsColour().value);
}

template <class Number>
Number Load(const std::uint8_t* place) {
  Number number;
  std::memcpy(&number, place, sizeof number);
  return number;
}

Value LoadValue(Type type, const std::uint8_t* place) {
  switch (type) {
    case Type::Integer:
      return Load<std::int32_t>(place);
    case Type::Double:
      return Load<double>(place);
    case Type::Boolean:
      return *place != 0;
    case Type::Colour:
      return Colour{Load<std::uint32_t>(place)};
    default:
      return {};
  }
}

}  // namespace

Arguments::Arguments(const Method& method, const std::vector<Value>& values) : method_(method), values_(values) {
  const std::size_t count = method.parameters.size();
  if (values.size() != count) {
    throw Error(method.name + " takes " + std::to_string(count) + " arguments, not " + std::to_string(values.size()));
  }
  places_.reserve(count);  // methods get addresses of these, so they must not move
  for (std::size_t i = 0; i < count; ++i) {
    const Parameter& parameter = method.parameters[i];
    if (parameter.byRef) {
      AddByRef(i, parameter, values[i]);
    } else {
      Add(parameter, values[i]);
    }
  }
}

Arguments::~Arguments() {
  for (Object* string : strings_) {
    --string->programReferences;
    Table().Release(*string);
  }
}

void Arguments::Refuse(const Parameter& parameter, const char* why) const {
  throw Error(method_.name + ": argument " + parameter.name + " as " + TypeName(parameter.type) + " " + why);
}

void Arguments::Add(const Parameter& parameter, const Value& value) {
  const bool object = parameter.type == Type::Picture || parameter.type == Type::String;
  if (value.IsNil()) {
    if (!object) Refuse(parameter, "cannot be nil");
    return native_.AddPointer(nullptr);
  }
  const Value converted = Convert(parameter.type, value);
  switch (converted.IsNil() ? Type::None : parameter.type) {
    case Type::Integer:
      return native_.AddInteger(converted.AsInteger());
    case Type::Double:
      return native_.AddDouble(converted.AsDouble());
    case Type::Boolean:
      return native_.AddWord(kAboveBoolean | converted.AsBooleanByte());
    case Type::Colour:
      return native_.AddWord(converted.AsColour().value);
    case Type::Picture:
      return native_.AddPointer(converted.AsPicture().Handle());
    case Type::String: {
      Object& string = Table().Add(Object::Kind::String, converted.AsText());
      string.references = string.programReferences = 1;
      strings_.push_back(&string);
      return native_.AddPointer(string.handle);
    }
    case Type::None:
      Refuse(parameter, "got a value of another type");
  }
}

void Arguments::AddByRef(std::size_t index, const Parameter& parameter, const Value& value) {
  if (value.IsNil()) return native_.AddPointer(nullptr);
  const Value converted = Convert(parameter.type, value);
  if (converted.IsNil()) Refuse(parameter, "got a value of another type");
  Place& place = places_.emplace_back();
  place.index = index;
  place.before.fill(kBeside);
  place.value.fill(kBeside);
  place.after.fill(kBeside);
  Store(converted, place.value.data());
  native_.AddPointer(place.value.data());
}

std::vector<Value> Arguments::Results() const {
  std::vector<Value> results = values_;
  for (const Place& place : places_) {
    results[place.index] = LoadValue(method_.parameters[place.index].type, place.value.data());
  }
  return results;
}

std::vector<std::string> Arguments::Overwritten() const {
  std::vector<std::string> names;
  for (const Place& place : places_) {
    const Parameter& parameter = method_.parameters[place.index];
    bool intact = true;
    for (std::uint8_t byte : place.before) intact = intact && byte == kBeside;
    for (std::size_t i = SizeOf(parameter.type); i < 8; ++i) intact = intact && place.value[i] == kBeside;
    for (std::uint8_t byte : place.after) intact = intact && byte == kBeside;
    if (!intact) names.push_back(parameter.name);
  }
  return names;
}

}  // namespace host
