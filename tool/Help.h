// What lmx says about itself and about the methods of the plug-in.
#pragma once

#include <iosfwd>
#include <string>

#include "Documentation.h"
#include "host/Host.h"

namespace tool {

/// The version of lmx, which is that of the plug-in.
const char* Version();
/// What lmx does, to follow its name.
const char* Purpose();
/// The meaning of an argument, and its default value.
std::string MeaningOf(const host::Parameter& parameter, const MethodText* method);

void WriteUsage(std::ostream& out);
void WriteVersion(std::ostream& out);
/// Every method in the plug-in's order, a line each.
void WriteMethodList(std::ostream& out, const host::Host& plugin);
/// The declaration, the arguments and what they mean.
void WriteMethodHelp(std::ostream& out, const host::Method& method);

}  // namespace tool
