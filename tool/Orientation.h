// The orientation of a picture, from the EXIF data of its file.
#pragma once

#include <vector>

#include "Image.h"

namespace tool {

/// EXIF's numbers: where the first row and the first column of the file belong.
///   1 upright, 2 mirrored left and right, 3 turned by a half, 4 mirrored top and bottom,
///   5 mirrored at the falling diagonal, 6 to be turned clockwise,
///   7 mirrored at the rising diagonal, 8 to be turned counter-clockwise
constexpr int kUpright = 1, kMostOrientations = 8;

/// Reads it from a PNG or JPEG file; upright if the file does not say it clearly.
int OrientationOf(const std::vector<unsigned char>& file);

/// The picture as it was seen.
Image Upright(Image image, int orientation);

}  // namespace tool
