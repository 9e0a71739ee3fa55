// One 16-bit 5-6-5 drawing surface: the game's own pixel buffer that stands for a
// DirectDraw surface. Rows are contiguous (pitch = width pixels).
#pragma once
#include <cstdint>
#include <vector>

#include "base/types.h"

constexpr uint16_t KEY565 = 0xF81F;  // magenta RGB(255, 0, 255) in 5-6-5

inline uint16_t RgbTo565(COLORREF c) {
    return uint16_t(((GetRValue(c) >> 3) << 11) | ((GetGValue(c) >> 2) << 5) | (GetBValue(c) >> 3));
}
inline uint16_t RgbTo565(int r, int g, int b) { return RgbTo565(RGB(r, g, b)); }

struct CSurface {
    int32_t width = 0, height = 0;
    bool hasColorKey = false;
    uint16_t colorKey = KEY565;
    std::vector<uint16_t> pixels;

    void Create(int32_t w, int32_t h, bool keyed) {
        width = w;
        height = h;
        hasColorKey = keyed;
        pixels.assign(size_t(w) * size_t(h), 0);
    }
    uint16_t* Row(int32_t y) { return pixels.data() + size_t(y) * size_t(width); }
    const uint16_t* Row(int32_t y) const { return pixels.data() + size_t(y) * size_t(width); }
    uint16_t& At(int32_t x, int32_t y) { return pixels[size_t(y) * size_t(width) + size_t(x)]; }
    uint16_t At(int32_t x, int32_t y) const { return pixels[size_t(y) * size_t(width) + size_t(x)]; }
    bool Valid() const { return width > 0 && height > 0; }
};
