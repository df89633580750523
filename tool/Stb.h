// stb_image and stb_image_write, as far as they are built in.
#pragma once

#define STBI_NO_STDIO
#define STBI_WRITE_NO_STDIO
#include <stb/stb_image.h>
#include <stb/stb_image_write.h>

/// What the reader has allocated and not given back, after an exception has ended it.
void FreeStbBlocks();
