// Makes the program's Picture values out of the host's objects.
#pragma once

#include "ObjectTable.h"
#include "Picture.h"

namespace host {

struct ProgramReference {
  /// A new reference to the object.
  static Picture Share(PictureObject& object);
  /// Takes over a reference that the plug-in owned.
  static Picture Adopt(PictureObject& object);
};

}  // namespace host
