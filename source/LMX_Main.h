// Start-up.
#pragma once

/// Registers the module, or tells the user that the host is too old. Called once, after gResolver
/// is set.
void PluginEntry();
