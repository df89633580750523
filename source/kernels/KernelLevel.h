// The highest level of kernels that a library may use. It has a unit of its own, so that a library
// that is capped at a level differs from the plug-in in this one object.
#pragma once

/// Lowest first. The names are those of the capped builds, too: CMake and the scripts read them
/// from this line.
enum class KernelLevel { plain, sse2, avx2, avx512 };
constexpr KernelLevel kLastLevel = KernelLevel::avx512;

extern const KernelLevel kHighestLevel;
