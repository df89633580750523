// The version, in the file of the library: `strings` finds it. Nothing in the program reads it.
// Builds that make no library file need not tell theirs.
#ifdef LMX_VERSION
[[gnu::used]] static const char version[] = "LMX " LMX_VERSION;
#endif
