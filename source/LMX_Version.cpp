// The version, in the file of the library: `strings` finds it. Nothing in the program reads it.
[[gnu::used]] static const char version[] = "LMX " LMX_VERSION;
