// Small pictures drawn by integer arithmetic, so they are the same everywhere. The hashes depend on
// every bit of them.
#pragma once

#include "support/Model.h"

namespace golden {

enum class Subject {
  Opaque,  ///< gradients and noise
  Soft,    ///< a disc with soft edges on a clear background
  Grey,    ///< opaque noise
  Wild,    ///< any bytes: colours above alpha, transparencies above 127
};

const char* NameOf(Subject subject);

model::StoredPicture Draw(Subject subject, host::Storage form, int width, int height);

}  // namespace golden
