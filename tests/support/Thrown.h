// The text of an exception that is expected.
#pragma once

#include <functional>
#include <string>

/// What the action's exception says; "nothing was thrown" if there is none. An exception of another
/// type passes through.
template <class Exception>
std::string ThrownBy(const std::function<void()>& action) {
  try {
    action();
  } catch (const Exception& exception) {
    return exception.what();
  }
  return "nothing was thrown";
}
