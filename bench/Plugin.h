// The plug-in under measurement: a built library, loaded into this process, and its methods called
// on pictures of a pool, by their addresses. The services that it gets do what they must and
// nothing more.
//
// Several can be loaded, one for each level of kernels; they share the one pool that lives.
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

/// The pool from which methods get their pictures, and the form in which new ones come. One lives
/// at a time.
class PluginPool : public Pool {
 public:
  explicit PluginPool(host::Storage form);
  ~PluginPool();
  PluginPool(const PluginPool&) = delete;
  PluginPool& operator=(const PluginPool&) = delete;

  /// A picture of the program's.
  PoolPicture* Make(int width, int height);

  const host::Storage storage;
};

/// A method with its arguments, to be called any number of times.
class MethodCall {
 public:
  /// `picture` and `yield` go where the declaration has them, the others in their order; a ByRef
  /// argument gets a place of its own. Throws host::Error if there are too many or too few, or of
  /// another type.
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
  /// Throws host::Error if it cannot be loaded or registers nothing.
  explicit Plugin(const std::string& file);
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;

  /// With or without the module's name before it. Throws host::Error.
  const host::Method& Method(const std::string& name) const;
  std::int32_t LastError() const;
  /// The level of kernels that it has chosen, as its own table says; a stripped library does not.
  const std::string& Level() const { return level_; }

 private:
  host::Library library_;
  std::vector<host::Method> methods_;
  std::string level_ = "unknown level";
};

}  // namespace bench
