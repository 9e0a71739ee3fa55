// Screenshots: the back buffer as a baseline JFIF JPEG (YCbCr 4:2:0, quality 75).
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "media/surface.h"
#include "base/clock.h"

// "<dir>/screenshot/<y><m><d><h+8><min><s><ms>.jpg", numbers unpadded.
std::string ScreenShotFileName(const char* workingDir, const SSystemTime& t);
// 5-6-5 pixels to packed rows of blue, green, red bytes by the screenshot's shifts.
void SurfaceToBgr(const CSurface& surface, std::vector<uint8_t>& out);
// Encodes packed BGR rows; false when the file cannot be written.
bool WriteJpegBgr(const char* path, const uint8_t* bgr, int32_t width, int32_t height, int quality);
