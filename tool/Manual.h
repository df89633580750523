// The manual page of lmx, written from the tables that its help shows.
#pragma once

#include <iosfwd>

#include "host/Host.h"

namespace tool {

/// In the man(7) macros, for section 1.
void WriteManual(std::ostream& out, const host::Host& plugin);

}  // namespace tool
