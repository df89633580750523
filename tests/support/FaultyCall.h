// Calls a method in a host that may show one fault, on pictures that may be malformed, and compares
// the outcome with the reference model.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Expectation.h"

namespace support {

/// Sets the fault in the host.
void Inject(const HostFault& fault, host::Host& host);

/// Makes the call and expects the outcome of the model: code, result, values, source, yields, and
/// the exception that leaves the call. The host must collect complaints, and the last error is 2
/// before the call. Also checked: no lock or reference is lost except what the method abandons; all
/// pictures are locked at every yield; nothing is written outside the pixels, or into pictures that
/// the call must not change; releases come in the right order. Pixels are not compared in a picture
/// whose rows share memory. Returns the code; nothing if an exception left the call.
std::optional<int> CheckFaultyCall(host::Host& host, const MethodCall& call, const Setting& setting,
                                   const HostFault& fault = {});

/// The services that a method calls in a host without faults, except yields: "lock S", "create",
/// "load R" ... S is the source, R the result, T1 to T3 are temporary pictures. A temporary picture
/// is released as soon as the picture made from it exists.
std::vector<std::string> ServiceCalls(const Method& method);
/// The services that the method has called in this host.
std::vector<std::string> ServiceCalls(const Method& method, const host::Host& host);

}  // namespace support
