// The arguments of one call: converted for the method, and read back after it.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "Declaration.h"
#include "NativeCall.h"
#include "ObjectTable.h"
#include "Value.h"

namespace host {

/// Converts values to the declared types and keeps what the method's arguments point to alive.
class Arguments {
 public:
  /// Throws host::Error for a wrong number of arguments or one that cannot be converted.
  Arguments(const Method& method, const std::vector<Value>& values);
  ~Arguments();
  Arguments(const Arguments&) = delete;
  Arguments& operator=(const Arguments&) = delete;

  const NativeCall& Native() const { return native_; }
  /// The arguments after the call; ByRef arguments with the values that the method wrote.
  std::vector<Value> Results() const;
  /// Names the ByRef parameters around which the method wrote where it must not.
  std::vector<std::string> Overwritten() const;

 private:
  // A ByRef argument, between guard bytes that the method must not change.
  struct Place {
    std::size_t index;
    alignas(8) std::array<std::uint8_t, 8> before;
    std::array<std::uint8_t, 8> value;
    std::array<std::uint8_t, 8> after;
  };

  void Add(const Parameter& parameter, const Value& value);
  void AddByRef(std::size_t index, const Parameter& parameter, const Value& value);
  [[noreturn]] void Refuse(const Parameter& parameter, const char* why) const;

  const Method& method_;
  std::vector<Value> values_;
  NativeCall native_;
  std::vector<Place> places_;
  std::vector<Object*> strings_;
};

}  // namespace host
