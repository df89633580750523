// The text of an expected exception.
#pragma once

#include <functional>
#include <string>

/// The text of the exception that the action throws; "nothing was thrown" if there is none. An
/// exception of another type passes through.
template <class Exception>
std::string ThrownBy(const std::function<void()>& action) {
  try {
    action();
  } catch (const Exception& exception) {
    return exception.what();
  }
  return "nothing was thrown";
}
