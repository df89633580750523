// What an input of the methods' target means is done, and compared with the reference model.
#pragma once

#include <optional>

#include "MethodInput.h"
#include "host/Host.h"

namespace fuzz {

/// Makes the call and reports whatever is not as support::CheckFaultyCall expects. The next call
/// must work.
void CheckInputCall(const MethodInput& input);

/// The same in a host that has had the plug-in for a while, and that was told to collect
/// complaints. The fault is none that withholds a service, since the plug-in may know it already.
/// Returns the code of the call; nothing if an exception left it.
std::optional<int> CheckCallIn(host::Host& host, const MethodInput& input);

/// Loads the plug-in into a host of the input's version, with the input's fault, and reports
/// anything but what a host of that version must see.
void CheckLoad(const MethodInput& input);

/// Whether the input is about loading: an unusual version, or a fault of a service that is used
/// then.
bool ConcernsLoading(const MethodInput& input);

}  // namespace fuzz
