// Carries out a plan: calls its methods one after another, each on the picture that the one before
// left.
#pragma once

#include <functional>
#include <optional>

#include "Plan.h"
#include "Report.h"

namespace tool {

class Runner {
 public:
  /// `yield` is for steps without their own. Each method is called `repeat` times, and the last
  /// call counts. `tell` gets every call that counts, also a failed one.
  Runner(host::Host& plugin, std::optional<std::int32_t> yield, std::int32_t repeat,
         std::function<void(const CallReport&)> tell);
  ~Runner();
  Runner(const Runner&) = delete;
  Runner& operator=(const Runner&) = delete;

  /// Returns the result of the last step, or its own picture. Throws Failure with the plug-in's
  /// message when a method fails, and Interrupted on Ctrl-C, at the next yield.
  host::Picture Run(const Plan& plan, host::Picture picture);

 private:
  host::Picture RunStep(const Step& step, const host::Picture& picture);
  std::string MessageOf(std::int32_t error);

  host::Host& plugin_;
  const std::int32_t yield_;
  const std::int32_t repeat_;
  const std::function<void(const CallReport&)> tell_;
  std::string variable_;  // that a program would keep the picture in
};

}  // namespace tool
