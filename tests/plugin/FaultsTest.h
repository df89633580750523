// Calls of every method, with arguments that reach all of its passes, in hosts that do something
// wrong.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "support/FaultyCall.h"
#include "support/Pictures.h"

namespace faults {

using support::MethodCall;
using support::Operation;
using support::Setting;

constexpr support::Size kResult = {9, 8};
constexpr int kEveryLine = 1;  // a yield after every line

inline MethodCall CallOf(const Operation& operation, int yield = kEveryLine) {
  return MethodCall(operation, kResult, host::Colour{0x40102030}, yield);
}

/// A source and new pictures of these forms.
inline Setting SettingOf(const Operation& operation, host::Storage source, host::Storage made) {
  Setting setting;
  setting.layout.padding = 8;
  setting.newPictures.assign(4, support::NewPicture{made});
  if (!support::FindMethod(operation.method).hasSource) return setting;
  Random random(1);
  const auto [width, height] = operation.SourceOf(kResult);
  setting.source = support::RandomPicture(random, source, width, height);
  return setting;
}

class FaultsTest : public testing::Test {
 protected:
  FaultsTest() { Restart(); }

  /// Continues with a new host and a newly loaded plug-in.
  void Restart() {
    host_.reset();
    host::Options options;
    options.throwComplaints = false;
    host_ = std::make_unique<host::Host>(options);
    host_->Load(support::LibraryPath());
  }

  std::optional<int> Check(const MethodCall& call, const Setting& setting, const support::HostFault& fault = {}) {
    return support::CheckFaultyCall(*host_, call, setting, fault);
  }

  using Body = std::function<void(const MethodCall& call, const Setting& setting)>;

  /// Runs `body` for every operation, with all storage forms that change its calls. Stops at the
  /// first failure.
  static void ForEveryOperation(const Body& body) {
    using host::Storage;
    for (const Operation& operation : support::Operations()) {
      if (IsLeftOut(operation)) continue;
      const MethodCall call = CallOf(operation);
      for (const Storage source : {Storage::BitmapContext, Storage::Buffer}) {
        for (const Storage made : {Storage::BitmapContext, Storage::Buffer}) {
          if (source != made && (!call.method->hasSource || *call.method->made == '\0')) continue;
          SCOPED_TRACE(testing::Message() << operation.name << ", source of form " << static_cast<int>(source)
                                          << ", new pictures of form " << static_cast<int>(made));
          body(call, SettingOf(operation, source, made));
          if (HasFailure()) return;
        }
      }
    }
  }

  std::unique_ptr<host::Host> host_;

 private:
  // Skips the ordinary operations of a method that has one with unusual arguments for tests.
  static bool IsLeftOut(const Operation& operation) {
    const auto isOddOne = [&](const Operation& other) {
      return !other.measured && std::string(other.method) == operation.method;
    };
    return operation.measured && std::any_of(support::Operations().begin(), support::Operations().end(), isOddOne);
  }
};

}  // namespace faults
