// Values of the host's language, as arguments and results of methods.
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>

#include "Picture.h"

namespace host {

/// The program asked for something impossible: an unknown method, an argument of the wrong type, a
/// missing library.
class Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The plug-in broke the contract. The text has one complaint per line.
class Misuse : public Error {
 public:
  using Error::Error;
};

/// A value of type `color`: transparency (0 is opaque) in bits 24-31, red, green, blue below.
struct Colour {
  std::uint32_t value = 0;
  bool operator==(const Colour& other) const { return value == other.value; }
};

/// The byte of a `boolean` as it lies in memory. It need be neither 0 (false) nor 1 (true).
struct BooleanByte {
  std::uint8_t value = 0;
  bool operator==(const BooleanByte& other) const { return value == other.value; }
};

/// Nil, or a value of one type. Reading it as another type throws host::Error.
class Value {
  using Data = std::variant<std::monostate, std::int32_t, double, bool, BooleanByte, Colour, Picture, std::string>;

 public:
  Value() = default;
  Value(std::nullptr_t) {}
  Value(std::int32_t integer) : data_(integer) {}
  Value(double number) : data_(number) {}
  Value(bool boolean) : data_(boolean) {}
  Value(BooleanByte byte) : data_(byte) {}
  Value(Colour colour) : data_(colour) {}
  /// A nil Picture makes a nil Value.
  Value(Picture picture) : data_(picture ? Data(std::move(picture)) : Data()) {}
  Value(std::string text) : data_(std::move(text)) {}
  Value(const char* text) : data_(std::string(text)) {}
  template <class T>
  Value(T* pointer) = delete;  // else a pointer would convert to a Boolean

  bool IsNil() const { return std::holds_alternative<std::monostate>(data_); }
  template <class T>
  bool Is() const {
    return std::holds_alternative<T>(data_);
  }

  std::int32_t AsInteger() const { return As<std::int32_t>("an integer"); }
  double AsDouble() const { return As<double>("a double"); }
  bool AsBoolean() const { return As<bool>("a boolean"); }
  /// The byte of a boolean: 0 or 1, or any byte of a BooleanByte.
  std::uint8_t AsBooleanByte() const { return Is<BooleanByte>() ? As<BooleanByte>("").value : AsBoolean() ? 1 : 0; }
  Colour AsColour() const { return As<Colour>("a color"); }
  const std::string& AsText() const { return As<std::string>("a string"); }
  /// Nil gives a nil Picture.
  Picture AsPicture() const { return IsNil() ? Picture() : As<Picture>("a picture"); }

  bool operator==(const Value& other) const { return data_ == other.data_; }
  bool operator!=(const Value& other) const { return !(*this == other); }

 private:
  template <class T>
  const T& As(const char* what) const {
    if (const T* value = std::get_if<T>(&data_)) return *value;
    throw Error(std::string(IsNil() ? "a nil value" : "the value") + " is not " + what);
  }

  Data data_;
};

}  // namespace host
