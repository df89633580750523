// The parts of stb_image and stb_image_write that lmx uses.
#pragma once

#define STBI_NO_STDIO
#define STBI_WRITE_NO_STDIO
#include <stb/stb_image.h>
#include <stb/stb_image_write.h>

/// Frees what the reader has allocated, after an exception has left it.
void FreeStbBlocks();
