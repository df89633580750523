#include "KernelLevel.h"

#ifndef LMX_HIGHEST_LEVEL
#define LMX_HIGHEST_LEVEL KernelLevel::avx512
#endif

const KernelLevel kHighestLevel = LMX_HIGHEST_LEVEL;
