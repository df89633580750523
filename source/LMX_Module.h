// The module "LMX": its registration with the host.
#pragma once

/// Registers the module. Called once, at start-up.
void RegisterModule();
