// Runs an input of the methods' target and compares the outcome with the reference model.
#pragma once

#include <optional>

#include "MethodInput.h"
#include "host/Host.h"

namespace fuzz {

/// Makes the call and reports every difference from what support::CheckFaultyCall expects. The next
/// call must work again.
void CheckInputCall(const MethodInput& input);

/// The same in a host that loaded the plug-in earlier and only collects complaints. The fault must
/// not withhold a service, since the plug-in may know that service already. Returns the code of the
/// call; nothing if an exception left it.
std::optional<int> CheckCallIn(host::Host& host, const MethodInput& input);

/// Loads the plug-in into a host of the input's version with the input's fault, and reports every
/// difference from what a host of that version must see.
void CheckLoad(const MethodInput& input);

/// Whether the input is about loading: an unusual version, or a fault of a service that is used
/// during loading.
bool ConcernsLoading(const MethodInput& input);

}  // namespace fuzz
