#include "KernelLevel.h"

#ifndef LMX_HIGHEST_LEVEL
#define LMX_HIGHEST_LEVEL kLastLevel
#endif

const KernelLevel kHighestLevel = LMX_HIGHEST_LEVEL;
