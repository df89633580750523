// Picture files: PNG and JPEG. Everything in a file is checked before it is used.
#pragma once

#include <string>

#include "Encode.h"
#include "File.h"
#include "Image.h"

namespace tool {

/// The largest picture that is read, in pixels: 8192 x 8192.
constexpr int kMaxPixels = 1 << 26;

/// Reads a picture and turns it upright, as its EXIF data say; EXIF data are not written again.
/// Throws Failure for anything but a complete PNG or JPEG file within the limits, and Interrupted
/// on Ctrl-C.
Image ReadPicture(const std::string& path);

/// The same of a file that has been read.
Image DecodePicture(const std::string& path, const Bytes& bytes);

/// Throws Failure if the file cannot be written, and Interrupted on Ctrl-C; an existing file is
/// then unchanged.
void WritePicture(const std::string& path, const Image& image, const Encoding& encoding = {});

}  // namespace tool
