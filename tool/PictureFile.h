// Picture files: PNG and JPEG. Nothing in a file is believed before it is checked.
#pragma once

#include <string>

#include "Encode.h"
#include "File.h"
#include "Image.h"

namespace tool {

/// The largest picture that is read, in pixels: 8192 x 8192.
constexpr int kMaxPixels = 1 << 26;

/// The picture as it was seen: turned and mirrored as the camera says in EXIF data, of which none
/// are written again. Throws Failure for anything but a whole PNG or JPEG file within the limits,
/// and Interrupted on Ctrl-C.
Image ReadPicture(const std::string& path);

/// The same of a file that has been read.
Image DecodePicture(const std::string& path, const Bytes& bytes);

/// Throws Failure if the file cannot be written, and Interrupted on Ctrl-C; then what was there
/// before is still there.
void WritePicture(const std::string& path, const Image& image, const Encoding& encoding = {});

}  // namespace tool
