// 24-bit BMP pictures: bottom-up rows padded to four bytes; transparent pixels
// are written as magenta RGB(255, 0, 255).
#pragma once

#include <string>

#include "render.h"

namespace rolegen {

bool WriteBmp24(const std::string& path, const Image& img);
// Reads a 24-bit uncompressed BMP; magenta pixels come back transparent.
bool ReadBmp24(const std::string& path, Image& img);

}  // namespace rolegen
