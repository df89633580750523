// The C library's own, but for the name of standard error on macOS.
#pragma once

#include_next <stdio.h>

#undef stderr
#define stderr __stderrp
extern "C" FILE* __stderrp;
