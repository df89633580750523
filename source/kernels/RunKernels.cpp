// The choice of the kernels.
#include "RunKernels.h"

RunKernels gRunKernels;

void SelectRunKernels() {
  FillPlain(&gRunKernels);
}
