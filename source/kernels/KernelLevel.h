// The highest kernel level that a library may use. It is defined in a source file of its own: a
// capped build differs from the plug-in in this one object file.
#pragma once

/// The levels, lowest first. CMake and the scripts read the names of the capped builds from this
/// line.
enum class KernelLevel { plain, sse2, avx2, avx512 };
constexpr KernelLevel kLastLevel = KernelLevel::avx512;

extern const KernelLevel kHighestLevel;
