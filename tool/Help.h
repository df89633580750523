// What lmx says about itself and about the methods of the plug-in.
#pragma once

#include <iosfwd>

#include "host/Host.h"

namespace tool {

void WriteUsage(std::ostream& out);
void WriteVersion(std::ostream& out);
/// Every method in the plug-in's order, a line each.
void WriteMethodList(std::ostream& out, const host::Host& plugin);
/// The declaration, the arguments and what they mean.
void WriteMethodHelp(std::ostream& out, const host::Method& method);

}  // namespace tool
