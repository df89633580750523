// See math.h.
#pragma once

#include <stddef.h>

extern "C" {
struct FILE;
extern FILE* __stderrp;
#define stderr __stderrp
int fprintf(FILE*, const char*, ...);
int snprintf(char*, size_t, const char*, ...);
int remove(const char*);  // overloads an algorithm of that name
}
