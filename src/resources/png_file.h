// PNG files for frame dumps and contact sheets: 8-bit RGB or RGBA rows, top row
// first, tightly packed.
#pragma once
#include <cstdint>

bool WritePngFile(const char* path, int width, int height, int channels, const uint8_t* pixels);
