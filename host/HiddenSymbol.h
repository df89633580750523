// Looks into a loaded library where it exports nothing, to see what it has chosen.
#pragma once

#include <string>

namespace host {

/// The address of what `name` stands for in the library `file`, which is in the process; the file's own symbol table tells
/// where it is, exported or not. Throws host::Error if the file is not loaded, or has no such symbol.
const void* HiddenSymbol(const std::string& file, const std::string& name);

}  // namespace host
