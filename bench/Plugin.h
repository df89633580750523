// The plug-in to be measured: a built library, loaded into this process. Its methods are called
// directly, by address, on pictures of a pool. The services that it gets do only what they must.
//
// Several plug-ins can be loaded, one for each level of kernels. They share the pool.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "Pool.h"
#include "host/Declaration.h"
#include "host/Library.h"
#include "host/NativeCall.h"
#include "host/Value.h"

namespace bench {

/// The pool from which methods get their pictures, and the storage form of new ones. Only one can
/// live at a time.
class PluginPool : public Pool {
 public:
  explicit PluginPool(host::Storage form);
  ~PluginPool();
  PluginPool(const PluginPool&) = delete;
  PluginPool& operator=(const PluginPool&) = delete;

  /// A picture that the program owns.
  PoolPicture* Make(int width, int height);

  const host::Storage storage;
};

/// A method with its arguments, to be called any number of times.
class MethodCall {
 public:
  /// `picture` and `yield` take their places in the declaration; the other arguments fill the rest
  /// in order. A ByRef argument gets a variable of its own. Throws host::Error if there are too
  /// many or too few, or if one has the wrong type.
  MethodCall(const host::Method& method, PoolPicture* picture, const std::vector<host::Value>& arguments,
             std::int32_t yield);
  MethodCall(const MethodCall&) = delete;
  MethodCall& operator=(const MethodCall&) = delete;

  /// The picture that the method returns, or nil.
  PoolPicture* operator()() const;
  bool ReturnsPicture() const { return method_.result == host::Type::Picture; }

 private:
  const host::Method& method_;
  host::NativeCall native_;
  std::array<double, 16> results_ = {};
};

class Plugin {
 public:
  /// Throws host::Error if the library cannot be loaded or registers nothing.
  explicit Plugin(const std::string& file);
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;

  /// Finds a method by name, with or without the module's name before it. Throws host::Error if
  /// there is none.
  const host::Method& Method(const std::string& name) const;
  std::int32_t LastError() const;
  /// The level of kernels that it has selected, read from its table; "unknown level" if the library
  /// was stripped.
  const std::string& Level() const { return level_; }

 private:
  host::Library library_;
  std::vector<host::Method> methods_;
  std::string level_ = "unknown level";
};

}  // namespace bench
