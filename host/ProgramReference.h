// How the host makes the program's picture values out of objects.
#pragma once

#include "ObjectTable.h"
#include "Picture.h"

namespace host {

struct ProgramReference {
  /// A value with a reference of its own.
  static Picture Share(PictureObject& object);
  /// A value that takes over a reference that the plug-in owned.
  static Picture Adopt(PictureObject& object);
};

}  // namespace host
