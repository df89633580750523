// The limit of the kernel levels: none in the plug-in, LMX_HIGHEST_LEVEL in a capped build.
#include "KernelLevel.h"

#ifndef LMX_HIGHEST_LEVEL
#define LMX_HIGHEST_LEVEL kLastLevel
#endif

const KernelLevel kHighestLevel = LMX_HIGHEST_LEVEL;
