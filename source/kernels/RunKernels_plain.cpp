// The plain kernels, which run everywhere.
#include "PlainKernels.h"

namespace {
using namespace plain;
}  // namespace

#include "InstallKernels.h"

void InstallPlain(RunKernels* kernels) {
  InstallKernels(kernels);
  kernels->level = "plain";
}
