// The version, as a text in the library file, where `strings` finds it. The program does not read
// it. Builds that make no library file may leave LMX_VERSION undefined.
#ifdef LMX_VERSION
[[gnu::used]] static const char version[] = "LMX " LMX_VERSION;
#endif
