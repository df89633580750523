// A call of a method in a host that may do one thing wrong, with pictures that may be malformed,
// compared with the reference model.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Expectation.h"

namespace support {

/// Tells the host of a fault of a service.
void Inject(const HostFault& fault, host::Host& host);

/// Makes the call and expects the model's outcome: code, result, values, source, yields, and the
/// exception that leaves it. The host, which collects complaints, has had the code 2 before. No
/// lock or reference is lost that the method does not abandon, all pictures are locked at every
/// yield, nothing is written beside or into pictures that are not the call's to write, and what was
/// held is released in order. Where rows of a picture share memory, pixels are not compared.
/// Returns the code; nothing if an exception left the call.
std::optional<int> CheckFaultyCall(host::Host& host, const MethodCall& call, const Setting& setting,
                                   const HostFault& fault = {});

/// What a method asks of a host without faults, but for yields: "lock S", "create", "load R" ...
/// S is the source, R the result, T1 to T3 are temporary pictures. One of these goes as soon as
/// there is the picture that is made from it.
std::vector<std::string> ServiceCalls(const Method& method);
/// What it has asked of this one.
std::vector<std::string> ServiceCalls(const Method& method, const host::Host& host);

}  // namespace support
