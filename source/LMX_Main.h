// Start-up.
#pragma once

#include "HostInterface.h"

/// The host's `picture` class, of which results are made; nil when the host does not know it.
extern REALclassRefStruct* gPictureClassRef;

/// Registers the module, or tells the user that the host is too old. Called once, when gResolver is there.
void PluginEntry();
