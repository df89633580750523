// A call in which the host does something wrong whose outcome the reference
// model alone cannot tell.
#pragma once

#include <optional>

#include "MethodInput.h"
#include "host/Host.h"

namespace fuzz {

/// Makes the call and reports what must not come of it. What must come of a single fault of a
/// service is told by the reference model; with defective pictures only what holds for every call
/// is checked: no lock or reference is lost, nothing is written beside or into pictures that are
/// not the call's to write, a failure gives nothing, the next call works.
void CheckFaultyCall(const MethodInput& input);

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
