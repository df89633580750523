// Finds symbols of a loaded library that it does not export.
#pragma once

#include <string>

namespace host {

/// The address of the symbol `name` in the loaded library `file`. It is looked up in the file's own
/// symbol table, so it need not be exported. Nil if there is no such symbol or the table was
/// stripped. Throws host::Error if the file is not loaded.
const void* HiddenSymbol(const std::string& file, const std::string& name);

}  // namespace host
