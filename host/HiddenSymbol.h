// Looks into a loaded library where it exports nothing, to see what it has chosen.
#pragma once

#include <string>

namespace host {

/// The address of what `name` stands for in the library `file`, which is in the process; the file's
/// own symbol table tells where it is, exported or not. Nullptr if it has no such symbol, or was
/// stripped of its table. Throws host::Error if the file is not loaded.
const void* HiddenSymbol(const std::string& file, const std::string& name);

}  // namespace host
