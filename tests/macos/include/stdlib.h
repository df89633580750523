// See math.h.
#pragma once

#include <stddef.h>

extern "C" {
struct ldiv_t {
  long quot, rem;
};
struct lldiv_t {
  long long quot, rem;
};
[[noreturn]] void abort();
int abs(int);
long labs(long);
long long llabs(long long);
ldiv_t ldiv(long, long);
lldiv_t lldiv(long long, long long);
void* malloc(size_t);
void free(void*);
int posix_memalign(void**, size_t, size_t);
}
