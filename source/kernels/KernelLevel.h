// The highest level of kernels that a library may use. It has a unit of its own, so that a library that is capped at a
// level differs from the plug-in in this one object.
#pragma once

enum class KernelLevel { plain, sse2, avx2, avx512 };

extern const KernelLevel kHighestLevel;
