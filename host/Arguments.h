// The arguments of one call on their way to a method and back.
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

/// Converts values to what a declaration says, and keeps what they refer to until the call is over.
class Arguments {
 public:
  /// Throws host::Error for a wrong number of arguments or one that cannot be converted.
  Arguments(const Method& method, const std::vector<Value>& values);
  ~Arguments();
  Arguments(const Arguments&) = delete;
  Arguments& operator=(const Arguments&) = delete;

  const NativeCall& Native() const { return native_; }
  /// The arguments with what the method left in those that it got by reference.
  std::vector<Value> Results() const;
  /// The ByRef parameters beside which the method wrote.
  std::vector<std::string> Overwritten() const;

 private:
  // Where a ByRef argument lies, between bytes that the method must not touch.
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
