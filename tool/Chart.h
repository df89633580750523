// A test chart: a picture in which every operation shows something, drawn when it is needed.
#pragma once

#include "Image.h"

namespace tool {

Image MakeChart();

}  // namespace tool
