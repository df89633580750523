// What is measured of the methods: each with the arguments of ordinary use.
#pragma once

#include <string>
#include <vector>

namespace bench {

struct Operation {
  const char* name;
  const char* method;
  bool inPlace;       ///< changes its picture, which has to be a new one each time
  bool takesPicture;  ///< else time is told per pixel of the result, which then has the picture's size
  std::vector<double> (*arguments)(int width, int height);  ///< between the picture, of that size, and `yield`
};

const std::vector<Operation>& Operations();

}  // namespace bench
