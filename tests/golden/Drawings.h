// Small pictures drawn by arithmetic on integers, the same everywhere. The hashes depend on every
// bit of them.
#pragma once

#include "support/Model.h"

namespace golden {

enum class Subject {
  Opaque,  ///< slopes and noise
  Soft,    ///< a disc with soft edges on a clear ground
  Grey,    ///< noise, opaque
  Wild,    ///< any bytes: colours above their alpha, transparencies above 127
};

const char* NameOf(Subject subject);

model::StoredPicture Draw(Subject subject, model::Form form, int width, int height);

}  // namespace golden
